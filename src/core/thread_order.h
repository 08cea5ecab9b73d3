// Order between threads that only one of them pays for: where one thread often stores and then loads, and another
// seldom does the same the other way round, the seldom one can do the work of both.
#pragma once

namespace sigvex {

// Whether order_threads() works here.
bool threads_can_be_ordered();

// Every thread of the process passes a full fence between two of its instructions: what it did before is seen by the
// caller afterwards, and what it does from then on sees what the caller did before.
void order_threads();

}  // namespace sigvex

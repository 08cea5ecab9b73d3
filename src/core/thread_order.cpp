#include "core/thread_order.h"

#if defined(__linux__) && __has_include(<linux/membarrier.h>)
#include <linux/membarrier.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace sigvex {

// The registration holds for the process and may be repeated.
bool threads_can_be_ordered() { return syscall(SYS_membarrier, MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED, 0, 0) == 0; }
void order_threads() {
  if (threads_can_be_ordered()) syscall(SYS_membarrier, MEMBARRIER_CMD_PRIVATE_EXPEDITED, 0, 0);
}

}  // namespace sigvex
#else
namespace sigvex {

bool threads_can_be_ordered() { return false; }
void order_threads() {}

}  // namespace sigvex
#endif

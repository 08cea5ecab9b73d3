// Every statistic of one result by name, with what is true of it whatever the samples.
#pragma once

#include "support/twin.h"

namespace sigvex_test {

template <class T> struct Statistic {
  const char* name;
  int32_t (*of)(const Record<T>*, Record<T>*);
  bool takes_complex, keeps_form;
  T of_nothing;
};

template <class T> const std::vector<Statistic<T>>& statistics();

// What the statistic of that name gives.
template <class T> Vec<T> result_of(const char* name, const Vec<T>& input);

}  // namespace sigvex_test

// Every statistic of one result by name, with what is true of it whatever the samples.
#pragma once

#include <cstring>

#include "support/twin.h"

namespace sigvex_test {

template <class T> struct Statistic {
  const char* name;
  int32_t (*of)(const Record<T>*, Record<T>*);
  bool takes_complex, keeps_form;
  T of_nothing;
};

#define STATISTIC(op, ...) \
  Statistic<T> { #op, Twin{&dsps_##op, &dspfs_##op }.template of < T>(), __VA_ARGS__ }
template <class T>
const Statistic<T> kStatistics[] = {
    STATISTIC(sum, true, true, 0),          STATISTIC(mean, true, true, 0),        STATISTIC(gmean, true, true, 0),
    STATISTIC(hmean, true, true, 0),        STATISTIC(median, true, true, 0),      STATISTIC(max, true, true, 0),
    STATISTIC(min, true, true, 0),          STATISTIC(magsq_sum, true, false, 0),  STATISTIC(rms, true, false, 0),
    STATISTIC(pop_var, true, false, 0),     STATISTIC(pop_stddev, true, false, 0), STATISTIC(samp_var, true, false, 0),
    STATISTIC(samp_stddev, true, false, 0), STATISTIC(skew, false, false, 0),      STATISTIC(excess, false, false, -3),
};

template <class T> Vec<T> result_of(const char* name, const Vec<T>& input) {
  Vec<T> result;
  for (const Statistic<T>& statistic : kStatistics<T>) {
    if (std::strcmp(statistic.name, name) != 0) continue;
    EXPECT_EQ(statistic.of(input, result), 0) << name;
  }
  EXPECT_GT(result.size(), 0U) << name;
  return result;
}

}  // namespace sigvex_test

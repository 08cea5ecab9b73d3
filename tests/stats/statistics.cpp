#include "stats/statistics.h"

#include <cstring>

namespace sigvex_test {
namespace {

template <class Double, class Float> Double choose(double, Double in_double, Float) { return in_double; }
template <class Double, class Float> Float choose(float, Double, Float in_float) { return in_float; }

}  // namespace

// The name of an operation and its function of precision T.
#define TWIN_ROW(family, op) #op, choose(T(), &dsp##family##_##op, &dspf##family##_##op)

template <class T> const std::vector<Statistic<T>>& statistics() {
  static const std::vector<Statistic<T>> all = {
      {TWIN_ROW(s, sum), true, true, 0},          {TWIN_ROW(s, mean), true, true, 0},
      {TWIN_ROW(s, gmean), true, true, 0},        {TWIN_ROW(s, hmean), true, true, 0},
      {TWIN_ROW(s, median), true, true, 0},       {TWIN_ROW(s, max), true, true, 0},
      {TWIN_ROW(s, min), true, true, 0},          {TWIN_ROW(s, magsq_sum), true, false, 0},
      {TWIN_ROW(s, rms), true, false, 0},         {TWIN_ROW(s, pop_var), true, false, 0},
      {TWIN_ROW(s, pop_stddev), true, false, 0},  {TWIN_ROW(s, samp_var), true, false, 0},
      {TWIN_ROW(s, samp_stddev), true, false, 0}, {TWIN_ROW(s, skew), false, false, 0},
      {TWIN_ROW(s, excess), false, false, -3},
  };
  return all;
}

template <class T> Vec<T> result_of(const char* name, const Vec<T>& input) {
  Vec<T> result;
  for (const Statistic<T>& statistic : statistics<T>()) {
    if (std::strcmp(statistic.name, name) != 0) continue;
    EXPECT_EQ(statistic.of(input, result), 0) << name;
  }
  EXPECT_GT(result.size(), 0U) << name;
  return result;
}

template const std::vector<Statistic<double>>& statistics();
template const std::vector<Statistic<float>>& statistics();
template Vec<double> result_of(const char*, const Vec<double>&);
template Vec<float> result_of(const char*, const Vec<float>&);

}  // namespace sigvex_test

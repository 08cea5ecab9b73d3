#include "filter/stream.h"

namespace sigvex_test::hardware_filter_test {

TWIN(d, hwfilt);
constexpr Twin respond{&dspi_hwfilt, &dspfi_hwfilt};

SUITE_OF_BOTH(HardwareFilter);

constexpr int kHalves[] = {12, 20, 5, 38, 61, 95};  // points of the sets 100 .. 105
constexpr double kPassbands[] = {0.092, 0.456, 0.5, 0.486, 0.45, 0.466};

// Three stages, each a sum of 189 terms or fewer whose magnitudes add up to less than 4: 3 * 189 * 4 eps.
template <class T> constexpr double kTolerance = 2268 * kEps<T>;

template <class T> Vec<T> response(int32_t set, int32_t octaves, int32_t n, T rate, int32_t compensate = 0) {
  Vec<T> v(std::vector<T>(static_cast<size_t>(n), T(1)));
  v->delta = std::ldexp(rate, -octaves) / static_cast<T>(n);
  EXPECT_EQ(respond(v, set, octaves, rate, compensate), 0);
  return v;
}

TEST_BOTH(HardwareFilter, ACosineLeavesTheChainAsItsResponseAndDelaySay) {
  constexpr int32_t kBins = 64;
  for (int32_t set = 100; set <= 105; ++set) {
    for (const int32_t octaves : {0, 1, 2, 3}) {
      const Vec<T> gain = response<T>(set, octaves, kBins, T(44100));
      const int step = 1 << octaves, late = (kHalves[set - 100] - 1) * (step - 1);
      for (const int bin : {0, 3, 11, 28, 32, 41}) {  // beyond half the rate a bin stands for its negative frequency
        SCOPED_TRACE(::testing::Message() << set << ' ' << octaves << ' ' << bin);
        const double turn = 2 * M_PI * (bin > kBins / 2 ? bin - kBins : bin) / (kBins * step);
        Vec<T> in(std::vector<std::complex<T>>(2048)), out;
        for (size_t k = 0; k < 2048; ++k) {
          in[2 * k] = static_cast<T>(std::cos(turn * static_cast<double>(k)));
          in[2 * k + 1] = static_cast<T>(std::sin(turn * static_cast<double>(k)));
        }
        in->delta = T(0.25);
        EXPECT_EQ(hwfilt(in, out, set, octaves, nullptr), 0);
        EXPECT_TRUE(out->points == 2048 >> octaves && out->complex == 1 && out->delta == T(0.25 * step));
        for (int k = 2 * late / step + 1; k < out->points; ++k) {
          const double angle = turn * (k * step - late), g = gain[static_cast<size_t>(bin)];
          ASSERT_NEAR(out[2 * static_cast<size_t>(k)], g * std::cos(angle), kTolerance<T>) << k;
          ASSERT_NEAR(out[2 * static_cast<size_t>(k) + 1], g * std::sin(angle), kTolerance<T>) << k;
        }
      }
    }
  }
}

TEST_BOTH(HardwareFilter, CompensationInvertsTheResponseWithinThePassband) {
  for (int32_t set = 100; set <= 105; ++set) {
    for (const int32_t octaves : {0, 1, 5, 30}) {
      const Vec<T> gain = response<T>(set, octaves, 1000, 2), inverse = response<T>(set, octaves, 1000, 2, 1);
      for (size_t k = 0; k < 1000; ++k) {
        const double place = static_cast<double>(std::min(k, 1000 - k)) / 1000, end = kPassbands[set - 100];
        const bool inside = inverse[k] == T(1) / gain[k], outside = inverse[k] == T(1);
        const double reach = octaves == 0                   ? 1
                             : std::abs(place - end) < 1e-6 ? place
                                                            : end;  // an edge on a bin is either
        ASSERT_TRUE(reach == place ? inside || outside : place < reach ? inside : outside) << set << ' ' << k;
        EXPECT_TRUE(place >= end || gain[k] > T(0.6));
      }
    }
  }
  Vec<T> pairs = Vec<T>::pairs({{1, 2}, {3, -4}, {5, 6}});  // the same gains for both parts
  pairs->delta = 4;
  EXPECT_EQ(respond(pairs, 100, 2, T(48), 0), 0);
  const Vec<T> gain = response<T>(100, 2, 3, T(48));
  EXPECT_TRUE(exactly(pairs, {gain[0], 2 * gain[0], 3 * gain[1], -4 * gain[1], 5 * gain[2], 6 * gain[2]}));
  EXPECT_TRUE(pairs->complex == 1 && pairs->delta == 4);
}

TEST_BOTH(HardwareFilter, BlocksOfAnySizesGiveWhatOneCallGives) {
  for (const int32_t octaves : {0, 1, 4, 9}) {
    const auto run = [=](Vec<T>& x, Vec<T>& y, Record<T>* state) {
      const int32_t status = hwfilt(x, y, 101, octaves, state);
      EXPECT_TRUE(!state || (state->points == octaves * 39 && !state->complex == !x->complex));
      return status;
    };
    const Vec<T> whole = expect_same_in_blocks(noise<T>(3000, octaves == 4), 40, run);
    EXPECT_EQ(whole->points, (3000 + (1 << octaves) - 1) >> octaves);
  }
}

TEST_BOTH(HardwareFilter, ParametersOutOfRangeTouchNothing) {
  Vec<T> v{1, 2}, out{3}, state{4};
  for (const auto& [set, octaves] : {std::pair(99, 1), {106, 1}, {100, -1}, {100, 31}}) {
    EXPECT_EQ(hwfilt(v, out, set, octaves, state) & respond(v, set, octaves, T(1), 0), -1);
  }
  for (const T rate : {T(0), T(-1), kNaN<T>, kInf<T>}) EXPECT_EQ(respond(v, 100, 1, rate, 0), -1);
  for (const int32_t compensate : {-1, 2}) EXPECT_EQ(respond(v, 100, 1, T(1), compensate), -1);
  EXPECT_TRUE(exactly(v, {1, 2}) && exactly(out, {3}) && exactly(state, {4}));
}

}  // namespace sigvex_test::hardware_filter_test

#include "filter/stream.h"
#include "support/cpu_targets.h"
#include "support/failing_storage.h"

namespace sigvex_test::resample_stream_test {

constexpr Twin resample{&dsph_rsmp, &dspfh_rsmp};
constexpr Twin built_in_set{&dspd_rsmp2, &dspfd_rsmp2};
TWIN(i, rtoc);
TWINS(h, rsmp_coef_alloc, rsmp_coef_init, rsmp_coef_setup, rsmp_coef_destroy, rsmp_state_alloc, rsmp_state_init,
      rsmp_state_reset, rsmp_state_destroy, rsmp_state_get_offset, rsmp_state_set_offset, rsmp_get_delay_pts,
      rsmp_get_in_pts, rsmp_get_out_pts, rsmp_get_settle_pts);

template <class T> struct Coef {
  explicit Coef(double max_ratio, uint32_t kernel = DSP_RSMP_KAISER, double attenuation = 126, double transition = 0.1,
                int32_t steps = 0) {
    EXPECT_EQ(rsmp_coef_init(&c), 0);
    EXPECT_EQ(rsmp_coef_setup(&c, kernel, attenuation, transition, max_ratio, steps), 0);
  }
  ~Coef() { EXPECT_EQ(rsmp_coef_destroy(&c), 0); }
  double delay() const {
    double points = -1;
    EXPECT_EQ(rsmp_get_delay_pts(&c, &points), 0);
    return points;
  }
  std::conditional_t<std::is_same_v<T, double>, dsp_rsmp_coef, dspf_rsmp_coef> c;
};
template <class T> struct State {
  State() { EXPECT_EQ(rsmp_state_init(&s), 0); }
  ~State() { EXPECT_EQ(rsmp_state_destroy(&s), 0); }
  double offset() const {
    double x = -1;
    EXPECT_EQ(rsmp_state_get_offset(&s, &x), 0);
    return x;
  }
  std::conditional_t<std::is_same_v<T, double>, dsp_rsmp_state, dspf_rsmp_state> s;
};

SUITE_OF_BOTH(StreamResampler);

// The kernel by its formulas, but for its gain. The last two are read so finely that their shape shows.
struct Design {
  double attenuation, transition, shape, length;
  int32_t steps = 0;
  double exact_to = attenuation;  // dB

  double operator()(double distance) const {
    const double u = 2 * distance / length, x = static_cast<double>(kPi) * (1 - transition) * distance;
    return std::abs(u) > 1 ? 0 : std::cyl_bessel_i(0, shape * std::sqrt(1 - u * u)) * (x == 0 ? 1 : std::sin(x) / x);
  }
  double gain() const {
    double sum = 0;
    for (double distance = -length / 2; distance < length / 2; distance += 1.0 / 256) sum += (*this)(distance) / 256;
    return sum;
  }
};
const Design kDesigns[] = {{126, 0.1, 0.1102 * (126 - 8.7), 96},
                           {140, 0.05, 0.1102 * (140 - 8.7), 192},
                           {36, 0.125, 0.5842 * std::pow(36 - 21, 0.4) + 0.07886 * (36 - 21), 32, 256, 90},
                           {20.5, 0.125, 0, 16, 256, 90}};

// Pieces of 600 points, each of its own ratio, from an offset on.
constexpr double kRatios[] = {0.91875, 3.5, 0.28125, 1.0, 1.75}, kOffset = 0.3;
constexpr size_t kPiece = 600;

template <class T> std::vector<Wide> definition(const Vec<T>& in, double delay, const Design& design) {
  const double gain = design.gain();
  std::vector<Wide> expected;
  double q = kOffset, last = 0;
  for (const double ratio : kRatios) {
    const double stretch = std::max(1.0, ratio), reach = design.length / 2 * stretch;
    for (last += kPiece; q < last; q += ratio) {
      Wide sum = 0;
      for (int k = std::max(0, static_cast<int>(q - delay - reach)); k < std::min(q - delay + reach, last); ++k) {
        sum += wide(in, static_cast<size_t>(k)) * Wide(design((q - delay - k) / stretch) / stretch / gain);
      }
      expected.push_back(sum);
    }
  }
  return expected;
}

template <class T>
void expect_outputs(const Vec<T>& in, const Coef<T>& coef, const std::vector<Wide>& expected, double exact_to) {
  State<T> whole, blocks;
  EXPECT_EQ(rsmp_state_set_offset(&whole.s, kOffset) | rsmp_state_set_offset(&blocks.s, kOffset), 0);
  std::vector<T> joined, cut_up;
  size_t first = 0;
  for (const double ratio : kRatios) {
    Vec<T> piece = cut(in, first, first + kPiece), out;
    first += kPiece;
    piece->delta = 2;
    int32_t points = -1;
    EXPECT_EQ(rsmp_get_out_pts(&whole.s, ratio, int32_t{kPiece}, &points), 0);
    EXPECT_EQ(resample(piece, out, &coef.c, ratio, &whole.s), 0);
    EXPECT_TRUE(out->points == points && out->complex == piece->complex && out->delta == T(2 * ratio));
    for (const T x : out.samples()) joined.push_back(x);
    const auto run = [&](Vec<T>& x, Vec<T>& y, Record<T>*) { return resample(x, y, &coef.c, ratio, &blocks.s); };
    for (const T y : in_blocks(piece, 40, run)) cut_up.push_back(y);
  }
  EXPECT_EQ(whole.offset(), blocks.offset());
  EXPECT_TRUE(exactly(Vec<T>(cut_up), joined));
  const Vec<T> result(joined, in->complex);
  ASSERT_EQ(static_cast<size_t>(result->points), expected.size());
  // The cubic's error and that of the gain lie below the attenuation or what is said; 96 to 672 products are rounded.
  EXPECT_LT((transform_error(result, [&](size_t k) { return expected[k]; })),
            std::pow(10, -exact_to / 20) + 16 * kEps<T>);
}

TEST_BOTH(StreamResampler, IsTheDefinitionInBlocksOfAnySizesAtChangingRatios) {
  for (const Design& design : kDesigns) {
    const Coef<T> coef(3.5, DSP_RSMP_KAISER, design.attenuation, design.transition, design.steps);
    for (const bool complex : {false, true}) {
      if (complex && &design != kDesigns) continue;
      const Vec<T> in = noise<T>(std::size(kRatios) * kPiece, complex);
      const std::vector<Wide> expected = definition(in, coef.delay(), design);
      for_each_cpu_target([&](const char* target) {
        SCOPED_TRACE(::testing::Message() << target << ' ' << design.attenuation << ' ' << complex);
        expect_outputs(in, coef, expected, design.exact_to);
      });
    }
  }
}

TEST_BOTH(StreamResampler, BuiltInSetsAreThoseOfTheBlockResampler) {
  for (uint32_t set = 0; set < 5; ++set) {
    const Coef<T> coef(1, set);
    Vec<T> in = noise<T>(5000, false), out, expected;
    State<T> state;
    EXPECT_EQ(resample(in, out, &coef.c, 0.8, &state.s), 0);
    EXPECT_EQ(built_in_set(in, expected, uint8_t{1}, set, 0.8, nullptr), 0);
    ASSERT_EQ(out->points, expected->points);
    // Lines between steps of a 256th of a sample: 1/8 (2 pi 0.5 / 256)^2.
    EXPECT_LT((transform_error(out, [&](size_t k) { return Wide(expected[k]); })), 2e-5) << set;
  }
}

TEST_BOTH(StreamResampler, AChangeOfFormOrSpanKeepsTheLastPoints) {
  const Coef<T> coef(1), longer(2);
  const Vec<T> in = noise<T>(300, false);
  State<T> state;
  std::vector<T> joined;
  Vec<T> whole;
  EXPECT_EQ(resample(in, whole, &coef.c, 0.75, &state.s) | rsmp_state_reset(&state.s), 0);
  for (const size_t first : {0, 100, 200}) {  // the middle as pairs
    const size_t width = first == 100 ? 2 : 1;
    Vec<T> block = cut(in, first, first + 100), out;
    EXPECT_EQ(width == 2 ? rtoc(block) : 0, 0);
    EXPECT_EQ(resample(block, out, &coef.c, 0.75, &state.s), 0);
    EXPECT_EQ(out->complex, width == 2);
    for (size_t k = 0; k < out.size(); k += width) joined.push_back(out[k]);
  }
  EXPECT_TRUE(exactly(whole, joined));
  for (const auto& [from, to] : {std::pair(&coef, &longer), {&longer, &coef}}) {
    State<T> changed, silent;  // what a span more has room for counts as silence
    Vec<T> past = cut(in, 0, 200), next = cut(in, 200, 300), unused, out, expected;
    EXPECT_EQ(resample(past, unused, &from->c, 0.75, &changed.s), 0);
    EXPECT_EQ(resample(next, out, &to->c, 0.75, &changed.s), 0);
    std::fill_n(past->data, 200 - static_cast<size_t>(2 * coef.delay()), T(0));
    EXPECT_EQ(resample(past, unused, &to->c, 0.75, &silent.s), 0);
    EXPECT_EQ(resample(next, expected, &to->c, 0.75, &silent.s), 0);
    EXPECT_TRUE(exactly(out, expected.samples()));
  }
}

TEST_BOTH(StreamResampler, CountsAreExactAndATransientEndsWhereItIsSaid) {
  const Coef<T> coef(3);
  for (const double ratio : {0.7, 1.0, 2.5}) {
    State<T> state;
    Vec<T> bad(std::vector<T>(777, kNaN<T>)), good(std::vector<T>(999, 1)), out;
    EXPECT_EQ(resample(bad, out, &coef.c, ratio, &state.s), 0);
    int32_t settle = -1, in_points = -1, out_points = -1;
    for (const int32_t wanted : {1, 2, 100, 12345}) {
      EXPECT_EQ(rsmp_get_in_pts(&state.s, ratio, wanted, &in_points), 0);
      EXPECT_TRUE(rsmp_get_out_pts(&state.s, ratio, in_points, &out_points) == 0 && out_points >= wanted);
      EXPECT_TRUE(rsmp_get_out_pts(&state.s, ratio, in_points - 1, &out_points) == 0 && out_points < wanted);
    }
    EXPECT_EQ(rsmp_get_settle_pts(&coef.c, &state.s, ratio, &settle), 0);
    EXPECT_EQ(resample(good, out, &coef.c, ratio, &state.s), 0);
    for (int32_t m = 0; m < out->points; ++m) ASSERT_EQ(std::isnan(out[static_cast<size_t>(m)]), m < settle) << m;
    EXPECT_TRUE(rsmp_state_reset(&state.s) == 0 && state.offset() == 0);  // and nothing of the NaNs is left
    EXPECT_EQ(resample(good, out, &coef.c, ratio, &state.s), 0);
    for (const T y : out.samples()) ASSERT_TRUE(std::abs(y) < 2);
  }
}

TEST_BOTH(StreamResampler, RefusalsAndExhaustedStorageLeaveTheStreamAsItWas) {
  Coef<T> coef(2), none(1);
  EXPECT_EQ(rsmp_coef_destroy(&none.c), 0);
  State<T> state;
  Vec<T> in = noise<T>(300, false), kept{7, 8}, expected, grown;
  int32_t points = 5;
  for (const double ratio : {0.0, -1.0, std::nan(""), 2.001, HUGE_VAL}) {
    EXPECT_EQ(resample(in, kept, &coef.c, ratio, &state.s), -1) << ratio;
    EXPECT_EQ(rsmp_get_settle_pts(&coef.c, &state.s, ratio, &points), -1) << ratio;
  }
  EXPECT_EQ(resample(in, kept, &none.c, 1.0, &state.s), -1);
  for (const double offset : {-1e-9, std::nan(""), 3e9}) EXPECT_EQ(rsmp_state_set_offset(&state.s, offset), -1);
  EXPECT_EQ(rsmp_get_out_pts(&state.s, 1e-9, 300, &points) & rsmp_get_in_pts(&state.s, 1e9, 300, &points), -1);
  const auto refused = [&](uint32_t kernel, double attenuation, double transition, double max_ratio, int32_t steps) {
    return rsmp_coef_setup(&coef.c, kernel, attenuation, transition, max_ratio, steps) == -1;
  };
  EXPECT_TRUE(refused(5, 99, .1, 1, 0) && refused(16, 19, .1, 1, 0) && refused(16, 99, .5, 1, 0) &&
              refused(16, 99, .1, std::nan(""), 0) && refused(16, 99, .1, 1e9, 0) && refused(16, 99, .1, 1, -1));
  EXPECT_TRUE(exactly(kept, {7, 8}) && points == 5 && state.offset() == 0);

  const double ratio = 1.5, in_place = 0.75;  // the output in place outgrows the input's storage
  EXPECT_EQ(resample(in, expected, &coef.c, ratio, &state.s) | rsmp_state_reset(&state.s), 0);
  EXPECT_EQ(resample(in, grown, &coef.c, in_place, &state.s), 0);
  for (int failing = 0, failed = 1; failed; ++failing) {
    decltype(coef.c)* c = nullptr;
    decltype(state.s)* s = nullptr;
    Vec<T> out, own = in;
    const FailingStorage<T> storage(failing);
    failed = rsmp_coef_alloc(&c) < 0 || rsmp_state_alloc(&s) < 0 || rsmp_coef_setup(c, 16, 126.0, 0.1, 2.0, 0) < 0 ||
             resample(in, out, c, ratio, s) < 0;
    if (!failed) {
      EXPECT_TRUE(exactly(out, expected.samples()));
      EXPECT_EQ(rsmp_state_reset(s), 0);
      failed = resample(own, own, c, in_place, s) < 0;
      EXPECT_TRUE(exactly(own, failed ? in.samples() : grown.samples()));
    }
    if (c && c->length && s && failed) {
      EXPECT_TRUE(rsmp_get_out_pts(s, 1.0, 300, &points) == 0 && points == 300 && out->points % 200 == 0);
    }
    EXPECT_EQ(rsmp_state_destroy(s), s ? 0 : -1);
    EXPECT_EQ(rsmp_coef_destroy(c), c ? 0 : -1);
  }
}

}  // namespace sigvex_test::resample_stream_test

#include <array>
#include <random>

#include "support/twin.h"

namespace sigvex_test::interpolation_test {

SUITE_OF_BOTH(Interpolation);

// Within some roundings; what is not finite is the same.
const auto near = [](auto found, auto wanted) {
  return identical(found, wanted) || std::abs(found - wanted) <= 4 * kEps<decltype(wanted)> * std::abs(wanted);
};

TEST_BOTH(Interpolation, FollowsItsTable) {
  const auto interp = TWIN_OF(, interp);
  constexpr T inf = kInf<T>, nan = kNaN<T>;
  constexpr uint32_t strict = DSP_INTERP_LINEAR | DSP_INTERP_STRICT;
  const Vec<T> x{0, 1, 3, 4}, y{0, 1, 5, 4}, even{0, 1, 4, 9}, spoiled{1, inf, 3, 5, 7, 9, 11}, dot{2}, seven{7};
  const Vec<T> points = Vec<T>::pairs({{0, 9}, {1, 4}, {4, 1}, {9, 0}});
  const struct {
    const Vec<T>&x, &y;  // x without points stands for a null one
    Vec<T> xi;
    uint32_t mode;
    std::vector<T> expected;
  } rows[] = {
      // clang-format off
      {x, y, {-1, 0, T(0.4), T(0.5), 2, T(3.25), 4, 9, -inf, inf, nan}, DSP_INTERP_NEAREST,
       {0, 0, 0, 1, 5, 5, 4, 4, 0, 4, nan}},
      {x, y, {9, 4, T(3.5), 2, T(0.5), 0, -1, nan}, DSP_INTERP_LINEAR, {4, 4, T(4.5), 3, T(0.5), 0, 0, nan}},
      // By hand: slopes 2/3, 9/7, 0, -2 at the points, and in the middle of an interval (y0 + y1)/2 + h (d0 - d1)/8.
      {x, y, {4, T(0.5), 2, T(3.5), 3, 5, nan}, DSP_INTERP_CUBIC, {4, T(71) / 168, T(93) / 28, T(4.75), 5, 4, nan}},
      {{}, even, {T(0.5), T(1.5), T(2.5), 3, -1}, DSP_INTERP_CUBIC, {T(0.3125), T(2.21875), T(6.21875), 9, 0}},
      {{}, points, {T(0.5), T(2.5)}, DSP_INTERP_CUBIC, {T(0.3125), T(6.21875), T(6.21875), T(0.3125)}},
      {{}, points, {T(0.5), 8}, strict, {}}, {{}, points, {nan}, strict, {}},
      {{}, points, {0, T(2.25), 3}, strict, {0, 9, T(5.25), T(0.75), 9, 0}},
      {{}, spoiled, {0, 1, 2, T(2.5), T(5.5)}, DSP_INTERP_LINEAR, {1, inf, 3, 4, 10}},
      {{}, spoiled, {0, 1, 2, 3, T(3.5), T(5.5)}, DSP_INTERP_CUBIC, {1, inf, 3, 5, 6, 10}},
      {dot, seven, {1, 2, 3}, DSP_INTERP_CUBIC, {7, 7, 7}}, {dot, seven, {2, nan}, DSP_INTERP_LINEAR, {7, nan}},
      {{0, 2}, {1, 5}, {T(0.5)}, DSP_INTERP_CUBIC, {2}}};
  // clang-format on
  for (const auto& row : rows) {
    Vec<T> yi{3, 2, 1}, itself = row.xi;
    itself->delta = T(0.25);
    const Record<T>* const abscissae = row.x->points ? static_cast<const Record<T>*>(row.x) : nullptr;
    const int32_t status = row.expected.empty() ? -1 : 0;
    EXPECT_EQ(interp(abscissae, row.y, row.xi, yi, row.mode), status);
    EXPECT_EQ(interp(abscissae, row.y, itself, itself, row.mode), status);
    EXPECT_TRUE(exactly(itself, status < 0 ? row.xi.samples() : yi.samples()));
    EXPECT_TRUE(status < 0 ? exactly(yi, {3, 2, 1}) : scalars_agree(yi, row.expected, near));
    EXPECT_TRUE(itself->delta == T(0.25) && yi->delta == 1);
  }
}

// Even and uneven tables looked up in random and in rising order, beside a plain search.
TEST_BOTH(Interpolation, FindsItsIntervalsInAnyOrder) {
  const auto interp = TWIN_OF(, interp);
  std::mt19937 random(7);
  std::uniform_real_distribution<T> uniform(-1, 26);
  for (const bool even : {true, false}) {
    constexpr size_t kPoints = 400;
    std::vector<T> at(kPoints), values(kPoints), places(kPoints);
    for (size_t k = 0; k < kPoints; ++k) {
      values[k] = uniform(random);
      places[k] = uniform(random);
      at[k] = T(k) * T(0.0625) + (even ? 0 : T(0.002) * values[k]);
    }
    if (!even) std::sort(places.begin(), places.begin() + kPoints / 2);
    for (size_t k = kPoints - 10; k < kPoints; ++k) places[k] = at[k * 37 % kPoints];
    Vec<T> x(at), y(values), xi(places), yi;
    y->delta = T(0.0625);
    const Record<T>* const abscissae = even ? nullptr : x.get();
    ASSERT_EQ(interp(abscissae, y, xi, yi, DSP_INTERP_LINEAR), 0);
    for (size_t k = 0; k < kPoints; ++k) {
      const size_t above = std::upper_bound(at.begin(), at.end(), places[k]) - at.begin();
      long double wanted = above == 0 ? values.front() : values.back();
      if (above > 0 && above < kPoints) {
        const long double low = at[above - 1], t = (places[k] - low) / (at[above] - low);
        wanted = (1 - t) * values[above - 1] + t * values[above];
      }
      EXPECT_LE(std::abs(static_cast<long double>(yi[k]) - wanted), 26 * kEps<T>) << k;
    }
  }
}

// Slope and curvature of a cubic at both ends of an interval, from its values at the thirds, h apart.
template <class T> std::array<T, 4> bends(const T* y, T h) {
  const T a = y[0] - 2 * y[1] + y[2], b = y[1] - 2 * y[2] + y[3];
  return {(-11 * y[0] + 18 * y[1] - 9 * y[2] + 2 * y[3]) / (6 * h), (2 * a - b) / (h * h),
          (11 * y[3] - 18 * y[2] + 9 * y[1] - 2 * y[0]) / (6 * h), (2 * b - a) / (h * h)};
}

// What defines a spline: it passes through its table, slope and curvature are continuous, and vanish where they shall.
TEST_BOTH(Interpolation, SplinesAreSmooth) {
  const auto cspline = TWIN_OF(, cspline);
  const Vec<T> x{-3, -2, -1, 1, T(1.5), T(2.5), 4, 5}, y{1, -2, 3, 3, 0, -1, 4, 2};
  const T tolerance = 3000 * kEps<T>;  // 10 roundings of values up to 5 over the square of a sixth
  for (const uint32_t end : {DSP_SPLINE_NATURAL, DSP_SPLINE_CLAMPED, DSP_SPLINE_NOT_A_KNOT}) {
    std::vector<T> places;
    for (size_t k = 0; k + 1 < x.size(); ++k) {
      for (const int i : {0, 1, 2, 3}) places.push_back(i == 3 ? x[k + 1] : x[k] + (x[k + 1] - x[k]) * T(i) / 3);
    }
    Vec<T> xi(places), yi;
    ASSERT_EQ(cspline(x, y, xi, yi, end), 0);
    std::array<T, 4> before{}, here{};
    for (size_t k = 0; k + 1 < x.size(); ++k, before = here) {
      EXPECT_TRUE(yi[4 * k] == y[k] && yi[4 * k + 3] == y[k + 1]);
      here = bends(&yi[4 * k], (x[k + 1] - x[k]) / 3);
      for (const size_t order : {0, 1}) {
        EXPECT_NEAR(here[order], k > 0 ? before[order + 2] : here[order], tolerance);
        const bool vanishes = order == (end == DSP_SPLINE_NATURAL) && end != DSP_SPLINE_NOT_A_KNOT;
        EXPECT_NEAR(vanishes && k == 0 ? here[order] : 0, 0, tolerance);
        EXPECT_NEAR(vanishes && k + 2 == x.size() ? here[order + 2] : 0, 0, tolerance);
      }
    }
  }
}

TEST_BOTH(Interpolation, SplinesTakeTheirEnds) {
  const auto cspline = TWIN_OF(, cspline);
  const auto cubic = [](T x) { return ((x - 3) * x + 2) * x - 1; };
  const auto ends = [](T at) { return Vec<T>::pairs({{at * at, 3 - at}}).samples(); };
  constexpr T nan = kNaN<T>;
  constexpr uint32_t natural = DSP_SPLINE_NATURAL, no_knot = DSP_SPLINE_NOT_A_KNOT;
  const struct {
    Vec<T> x, y;
    T at;
    uint32_t end;
    std::vector<T> expected;
  } rows[] = {// clang-format off
      {{0, 1, 3}, {0, 1, -1}, T(0.5), natural, {T(0.625)}}, {{0, 1, 3}, {0, 1, -1}, 4, natural, {T(-2.5)}},
      {{0, 1, 2}, {0, 1, 0}, T(0.25), DSP_SPLINE_CLAMPED, {T(0.15625)}},
      {{}, {cubic(0), cubic(1), cubic(2), cubic(3), cubic(4)}, T(3.5), no_knot, {cubic(T(3.5))}},
      {{-2, 1, 2, 5}, {cubic(-2), cubic(1), cubic(2), cubic(5)}, -4, no_knot, {cubic(-4)}},
      {{-1, 0, 2}, Vec<T>::pairs({{1, 4}, {0, 3}, {4, 1}}), 3, no_knot, ends(3)},
      {{1, 3}, {2, 6}, 4, natural, {8}}, {{1, 3}, {2, 6}, 0, no_knot, {0}},
      {{1, 3}, {2, 6}, T(1.5), DSP_SPLINE_CLAMPED, {T(2.625)}}, {{5}, {6}, 99, DSP_SPLINE_CLAMPED, {6}},
      {{1, 3}, {2, 6}, nan, natural, {nan}}, {{1, 3}, {2, 6}, T(3.5), natural | DSP_SPLINE_STRICT, {}},
      {{1, 3}, {2, 6}, 3, natural | DSP_SPLINE_STRICT, {6}}, {{1, 3}, {2, 6}, 2, 3, {}},
      {{1, 1}, {2, 6}, 1, natural, {}}, {{3, 1}, {2, 6}, 1, natural, {}}, {{1, nan}, {2, 6}, 1, natural, {}},
      {{-kInf<T>, 1}, {2, 6}, 1, natural, {}}, {{1, 2, 3}, {2, 6}, 1, natural, {}},
      {Vec<T>::pairs({{1, 0}, {2, 0}}), {2, 6}, 1, natural, {}}, {{}, {}, 1, natural, {}}};
  // clang-format on
  for (const auto& row : rows) {
    Vec<T> yi{3, 2, 1}, xi{row.at}, itself = row.y;
    const Record<T>* const x = row.x->points ? static_cast<const Record<T>*>(row.x) : nullptr;
    const int32_t status = row.expected.empty() ? -1 : 0;
    EXPECT_EQ(cspline(x, row.y, xi, yi, row.end), status);
    EXPECT_EQ(cspline(x, itself, xi, itself, row.end), status);
    EXPECT_TRUE(exactly(itself, status < 0 ? row.y.samples() : yi.samples()));
    EXPECT_TRUE(status < 0 ? exactly(yi, {3, 2, 1}) : scalars_agree(yi, row.expected, near));
  }
  Vec<T> nothing, yi{1};
  EXPECT_EQ(cspline(nullptr, nothing, nothing, yi, DSP_SPLINE_NATURAL), 0);
  EXPECT_EQ(yi->points, 0);
}

TEST_BOTH(Interpolation, SurfacesAreProductsOfSplines) {
  const auto cspline_2d = TWIN_OF(b, cspline_2d);
  const auto f = [](T x, T y) { return std::complex<T>((x - 2) * x * x + y * y * x, y * y * y - x * x * y + 5); };
  const Vec<T> x{-1, 0, 2, 3}, y{0, 1, 2, T(3.5), 5}, one{4}, xi{T(0.5), 3, -1, T(2.25), 4},
      yi{T(4.5), 5, 0, T(0.25), 6};
  std::vector<std::complex<T>> values, expected;
  for (size_t j = 0; j < y.size(); ++j) {
    for (size_t i = 0; i < x.size(); ++i) values.push_back(f(x[i], y[j]));
  }
  for (size_t k = 0; k < xi.size(); ++k) expected.push_back(f(xi[k], yi[k]));
  const Vec<T> surface(values), wanted(expected);
  Vec<T> result, row{1, 2, 4, 8}, itself = xi;
  ASSERT_EQ(cspline_2d(xi, yi, result, x, y, surface, DSP_SPLINE_NOT_A_KNOT), 0);
  EXPECT_TRUE(close(result, wanted.samples(), 100 * kEps<T>, 10));
  ASSERT_EQ(cspline_2d(itself, yi, itself, x, y, surface, DSP_SPLINE_NOT_A_KNOT), 0);
  EXPECT_TRUE(exactly(itself, result.samples()));
  // One row: the spline along x whatever the ordinate, and the other way round; natural ends, not those of a product.
  Vec<T> along_x, along_y, line;
  ASSERT_EQ(TWIN_OF(, cspline)(x, row, xi, line, DSP_SPLINE_NATURAL), 0);
  ASSERT_EQ(cspline_2d(xi, yi, along_x, x, one, row, DSP_SPLINE_NATURAL), 0);
  ASSERT_EQ(cspline_2d(yi, xi, along_y, one, x, row, DSP_SPLINE_NATURAL), 0);
  EXPECT_TRUE(exactly(along_x, line.samples()) && exactly(along_y, line.samples()));
  EXPECT_EQ(cspline_2d(xi, one, result, x, y, surface, 0U), -1);
  EXPECT_EQ(cspline_2d(xi, yi, result, x, x, surface, 0U), -1);
  EXPECT_EQ(cspline_2d(xi, yi, result, x, y, surface, DSP_SPLINE_STRICT), -1);
  EXPECT_TRUE(close(result, wanted.samples(), 100 * kEps<T>, 10));
}

}  // namespace sigvex_test::interpolation_test

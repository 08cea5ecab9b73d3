#include "support/cpu_targets.h"
#include "support/reference_transform.h"

namespace sigvex_test::polynomial_test {

SUITE_OF_BOTH(Polynomials);

template <class T> Vec<T> vector_of(const std::vector<Wide>& z, bool complex) {
  std::vector<T> re;
  std::vector<std::complex<T>> both;
  for (const Wide& x : z)
    re.push_back(static_cast<T>(x.real())), both.emplace_back(re.back(), static_cast<T>(x.imag()));
  return complex ? Vec<T>(both) : Vec<T>(re);
}
// The product of (x - z) over the zeros, each in long double: exact for small integers.
std::vector<Wide> product(const std::vector<Wide>& zeros) {
  std::vector<Wide> p{1};
  for (const Wide& z : zeros) {
    p.insert(p.begin(), 0);
    for (size_t k = 0; k + 1 < p.size(); ++k) p[k] -= p[k + 1] * z;
  }
  return p;
}

// c (x - a)^7 beside its root, where Horner's rule alone keeps no more than a few bits: the closed form is c d^7.
TEST_BOTH(Polynomials, AreEvaluatedAsInTwiceThePrecision) {
  const auto peval = TWIN_OF(s, peval);
  const struct {
    Wide a, c, direction;
    bool complex_p, complex_x;
  } rows[] = {{1, 3, 1, false, false},
              {1, 3, {1, 2}, false, true},
              {1, {1, 2}, -1, true, false},
              {{1, -1}, {2, 1}, {1, 1}, true, true}};
  std::vector<T> first[4];
  for_each_cpu_target([&](const char* target) {
    for (const auto& row : rows) {
      std::vector<Wide> coefficients = product(std::vector<Wide>(7, row.a)), places, expected;
      for (Wide& c : coefficients) c *= row.c;
      for (int k = 1; k <= 35; ++k) {
        const Wide d = row.direction * (static_cast<long double>(k) / 64);
        places.push_back(row.a + d);
        expected.push_back(row.c * d * (d * d) * (d * d) * (d * d));
      }
      const Vec<T> p = vector_of<T>(coefficients, row.complex_p);
      for (const size_t n : {0U, 1U, 15U, 16U, 35U}) {
        Vec<T> x = vector_of<T>({places.begin(), places.begin() + n}, row.complex_x), y{1, 2, 3}, alias = p;
        x->delta = T(0.125);
        ASSERT_EQ(peval(p, x, y), 0);
        EXPECT_TRUE(y->delta == T(0.125) && y->complex == (row.complex_p || row.complex_x) && y->points == int(n));
        for (size_t k = 0; k < n; ++k) {
          EXPECT_LE(std::abs(wide(y, k) - expected[k]), 2 * kEps<T> * std::abs(expected[k])) << target << ' ' << k;
        }
        EXPECT_EQ(peval(alias, x, alias), 0);
        EXPECT_EQ(peval(p, x, x), 0);
        EXPECT_TRUE(exactly(alias, y.samples()) && exactly(x, y.samples()));
        std::vector<T>& same = first[&row - rows];
        if (n == 35 && same.empty()) same = y.samples();
        EXPECT_TRUE(n < 35 || exactly(y, same)) << target;
      }
    }
  });
  Vec<T> x{kInf<T>, -kInf<T>, kNaN<T>, 2, -0.0}, y;
  EXPECT_EQ(peval(Vec<T>{1, 2, 3}, x, y), 0);
  EXPECT_TRUE(exactly(y, {kInf<T>, kInf<T>, kNaN<T>, 17, 1}));
  EXPECT_EQ(peval(Vec<T>{-7}, x, y), 0);
  EXPECT_TRUE(exactly(y, {-7, -7, -7, -7, -7}));
  EXPECT_EQ(peval(Vec<T>(), x, y), 0);
  EXPECT_TRUE(exactly(y, {0, 0, 0, 0, 0}));
}

TEST_BOTH(Polynomials, HaveTheirExactRootsInOrder) {
  const auto proots = TWIN_OF(s, proots);
  const auto in_place = TWIN_OF(i, proots);
  using P = std::vector<std::complex<T>>;
  const T root2 = std::sqrt(T(2)), large = std::is_same_v<T, double> ? T(0x1p1000) : T(0x1p100);
  const auto far = static_cast<T>(1e5L + std::sqrt(1e10L - 1)), near = 1 / far;
  const struct {
    Vec<T> p;
    P roots;
  } rows[] = {// clang-format off
      {{-6, 11, -6, 1}, {1, 2, 3}}, {{1, 0, 1}, {{0, -1}, {0, 1}}}, {{-1, 0, 0, 0, 1}, {-1, {0, -1}, {0, 1}, 1}},
      {{5, -4, 1, 0, 0}, {{2, -1}, {2, 1}}}, {{0, 0, 2, 1}, {-2, 0, 0}}, {{-1, 3, -3, 1}, {1, 1, 1}},
      {{-4, 0, 3, 1}, {-2, -2, 1}}, {{4, 0, -4, 0, 1}, {-root2, -root2, root2, root2}},
      {{1, 0, 3, 0, 3, 0, 1}, {{0, -1}, {0, -1}, {0, -1}, {0, 1}, {0, 1}, {0, 1}}},
      {{1, T(-2e5), 1}, {near, far}},  // the small root of the textbook formula cancels
      {{1 / large, 3, 2 * large}, {-1 / large, T(-0.5) / large}},
      {Vec<T>::pairs({{0, 2}, {-2, -1}, {1, 0}}), {{0, 1}, 2}}, {Vec<T>::pairs({{3, 4}, {1, 0}}), {{-3, -4}}},
      {Vec<T>::pairs({{5, 0}, {-4, 0}, {1, 0}}), {{2, -1}, {2, 1}}}, {{7}, {}}, {{0, 0, 0}, {}}, {{}, {}}};
  // clang-format on
  for (const auto& row : rows) {
    Vec<T> roots{1, 2, 3}, itself = row.p;
    roots->delta = itself->delta = T(0.25);
    EXPECT_EQ(proots(row.p, roots), 0);
    EXPECT_EQ(in_place(itself), 0);
    const Vec<T> expected(row.roots);
    EXPECT_TRUE(close(roots, expected.samples(), kEps<T>)) << ::testing::PrintToString(row.p.samples());
    EXPECT_TRUE(exactly(itself, roots.samples()) && roots->complex == 1 && roots->delta == T(0.25) &&
                itself->delta == T(0.25));
  }
  for (const Vec<T>& refused :
       {Vec<T>{1, kNaN<T>}, Vec<T>{kInf<T>, 1}, Vec<T>::pairs({{1, -kInf<T>}, {1, 0}}), Vec<T>{large, 1 / large}}) {
    Vec<T> roots{1, 2, 3}, itself = refused;
    EXPECT_EQ(proots(refused, roots) + in_place(itself), -2);
    EXPECT_TRUE(exactly(roots, {1, 2, 3}) && exactly(itself, refused.samples()));
  }
}

// Correctly rounded but for one ulp, a root leaves no more of p than eps times the sum of k |a_k z^k|; the sum of the
// roots tells whether one was found twice.
TEST_BOTH(Polynomials, OfDegreeOneHundredLeaveNothingAtTheirRoots) {
  const auto proots = TWIN_OF(s, proots);
  const auto pztoc = TWIN_OF(i, pztoc);
  std::mt19937 random(4);
  std::normal_distribution<T> normal;
  for (const bool complex : {false, true}) {
    for (const size_t degree : {1U, 2U, 7U, 30U, 100U}) {
      std::vector<Wide> a;
      for (size_t k = 0; k <= degree; ++k) a.emplace_back(normal(random), complex ? normal(random) : 0);
      Vec<T> roots, p = vector_of<T>(a, complex);
      ASSERT_EQ(proots(p, roots), 0);
      ASSERT_EQ(roots->points, int32_t(degree));
      Wide sum = a[degree - 1] / a[degree];
      long double sizes = 0;
      for (size_t k = 0; k < degree; ++k) {
        const Wide z = wide(roots, k);
        Wide value = 0;
        long double bound = 0;
        for (size_t j = degree + 1; j-- > 0;) {
          value = value * z + a[j];
          bound = bound * std::abs(z) + static_cast<long double>(j) * std::abs(a[j]);
        }
        EXPECT_LE(std::abs(value), kEps<T> * bound) << k;
        sum += z;
        sizes += std::abs(z);
        const auto conjugate = std::conj(roots.at(k));
        bool paired = complex;
        for (size_t j = 0; j < degree; ++j) paired |= roots.at(j) == conjugate && (j != k || z.imag() == 0);
        EXPECT_TRUE(paired) << k;
      }
      EXPECT_LE(std::abs(sum), kEps<T> * sizes);
      // And back: every rounded root moves each coefficient by no more than eps times the product of (|z| + 1).
      EXPECT_EQ(pztoc(roots), 0);
      for (size_t k = 0; k <= degree; ++k) {
        EXPECT_LE(std::abs(wide(roots, k) * a[degree] - a[k]), 100 * kEps<T> * static_cast<long double>(degree)) << k;
        EXPECT_TRUE(complex || roots.at(k).imag() == 0);
      }
    }
  }
}

TEST_BOTH(Polynomials, AreSolvedFromAStart) {
  const auto psolve = TWIN_OF(s, psolve);
  const auto pcsolve = TWIN_OF(s, pcsolve);
  const T huge = kHuge<T>, root2 = std::sqrt(T(2));
  const struct {
    Vec<T> p;
    T start, root;
    int32_t status = 0;
    // clang-format off
  } rows[] = {{{-2, 0, 1}, 1, root2}, {{-2, 0, 1}, -1, -root2}, {{-2, 0, 1}, huge, root2}, {{-2, 0, 1}, 0, -root2},
              {{-1, 3, -3, 1}, 5, 1}, {{2, -2, 0, 1}, 0, T(-1.7692923542386314152404094643L)},
              {{0, 0, -1, 1}, T(0.1), 0}, {{0, 0, 0, 4}, T(-0.25), 0}, {{-6, 11, -6, 1}, T(2.9), 3},
              {{-6, 11, -6, 1}, 1000, 3}, {{4, 0, -4, 0, 1}, 9, root2}, {{1, 0, 1}, 2, 7, -1}, {{5, 0}, 0, 7, -1},
              {{}, 0, 7, -1}, {{1, kNaN<T>}, 0, 7, -1}, {{1, 1}, kInf<T>, 7, -1},
              {Vec<T>::pairs({{1, 0}, {1, 0}}), 0, 7, -1}};
  // clang-format on
  for (const auto& row : rows) {
    T root = 7;
    EXPECT_EQ(psolve(row.p, &root, row.start), row.status);
    EXPECT_LE(std::abs(root - row.root), kEps<T> * std::abs(row.root)) << ::testing::PrintToString(row.p.samples());
  }
  const Vec<T> circle{1, 0, 1}, pair = Vec<T>::pairs({{0, 2}, {-2, -1}, {1, 0}});
  const struct {
    const Vec<T>& p;
    Vec<T> start;
    std::vector<T> root;
    int32_t status = 0;
    // clang-format off
  } points[] = {{circle, Vec<T>::pairs({{2, 1}}), {0, 1}}, {circle, {3}, {0, -1}},
                {pair, Vec<T>::pairs({{2, T(0.5)}}), {2, 0}}, {pair, Vec<T>::pairs({{T(-0.5), 2}}), {0, 1}},
                {circle, {1, 2}, {1, 2}, -1}, {circle, {}, {}, -1}, {Vec<T>{3}, {1}, {1}, -1},
                {circle, Vec<T>::pairs({{0, kNaN<T>}}), {0, kNaN<T>}, -1}};
  // clang-format on
  for (const auto& row : points) {
    Vec<T> start = row.start, root;
    root->delta = start->delta = T(0.5);
    EXPECT_EQ(pcsolve(row.p, root, start), row.status);
    EXPECT_EQ(pcsolve(row.p, start, start), row.status);
    EXPECT_TRUE(close(start, row.root, kEps<T>, 0.01) || std::isnan(row.root[1]));
    EXPECT_TRUE(root->points == (row.status == 0) && root->delta == T(0.5));
    EXPECT_TRUE(row.status < 0 || (exactly(root, start.samples()) && root->complex == 1));
  }
}

TEST_BOTH(Polynomials, AreMultipliedOutOfTheirZeros) {
  const auto pztoc = TWIN_OF(i, pztoc);
  std::vector<Wide> circle;
  for (int k = 0; k < 64; ++k) circle.push_back(std::polar(1.0L, 2 * kPi * k / 64));
  Vec<T> unity = vector_of<T>(circle, true);
  ASSERT_EQ(pztoc(unity), 0);  // in any other order the intermediate coefficients reach 2^60
  for (size_t k = 0; k <= 64; ++k)
    EXPECT_LE(std::abs(wide(unity, k) - Wide(k == 64 ? 1 : k == 0 ? -1 : 0)), 64 * kEps<T>);
  const struct {
    Vec<T> zeros;
    std::vector<T> coefficients;
    int32_t status = 0;
    // clang-format off
  } rows[] = {{{3, 1, 2}, {-6, 11, -6, 1}}, {{0, 0, -0.0}, {0, 0, 0, 1}}, {{}, {1}},
              {Vec<T>::pairs({{0, 1}, {2, 0}}), {0, 2, -2, -1, 1, 0}},
              {Vec<T>::pairs({{T(0.1), T(0.3)}, {4, 0}, {T(0.1), T(-0.3)}}), {T(-0.4), 0, T(0.9), 0, T(-4.2), 0, 1, 0}},
              {{1, kInf<T>}, {1, kInf<T>}, -1}, {{kNaN<T>}, {kNaN<T>}, -1},
              {{std::numeric_limits<T>::max(), 2}, {std::numeric_limits<T>::max(), 2}, -1}};
  // clang-format on
  for (const auto& row : rows) {
    Vec<T> v = row.zeros;
    v->delta = T(0.5);
    EXPECT_EQ(pztoc(v), row.status);
    EXPECT_TRUE(v->delta == T(0.5) && v->complex == row.zeros->complex);
    EXPECT_TRUE(row.status == 0 ? close(v, row.coefficients, 2 * kEps<T>) : exactly(v, row.coefficients));
  }
}

}  // namespace sigvex_test::polynomial_test

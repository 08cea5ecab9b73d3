#include <random>

#include "run.h"

namespace sigvex_test::correlate_test {

using Complex = std::complex<double>;
using Signal = std::vector<Complex>;

class Correlate : public Tool {
 protected:
  // Noise in a file of its own.
  Signal noise(const std::string& name, size_t points, bool pairs, std::mt19937& random) const {
    std::normal_distribution<double> normal(0.5, 1);
    Signal x(points);
    std::vector<double> values;
    for (Complex& z : x) {
      values.push_back(normal(random));
      if (pairs) values.push_back(normal(random));
      z = {values[values.size() - (pairs ? 2 : 1)], pairs ? values.back() : 0};
    }
    record(name, values, 0.25, pairs);
    return x;
  }
  json peak(const std::string& arguments) const { return result("correlate --peaks 1 " + arguments)["peaks"][0]; }
};

// By the sums themselves: unequal lengths, real with complex, one block and several.
TEST_F(Correlate, EveryLagIsTheScaledSumOfItsProducts) {
  std::mt19937 random(5);
  enum Divisor { kNone, kPoints, kEnergies };
  const struct {
    const char* options;
    Divisor divisor;
    bool mean_removed, unbiased = false, circular = false;
  } rows[] = {{"--scale sum --detrend none", kNone, false},
              {"--scale sum", kNone, true},
              {"--scale mean --detrend none", kPoints, false},
              {"--scale mean --detrend none --unbiased", kPoints, false, true},
              {"", kEnergies, true},
              {"--unbiased", kEnergies, true, true},
              {"--circular", kEnergies, true, false, true}};
  struct Size {
    size_t a, b;
    long reach;
    bool pairs;
  };
  for (const Size& size : {Size{50, 70, 80, false}, {71, 40, 9, true}, {64, 64, 40, false}, {140001, 140001, 3, false}})
    for (const auto& row : rows) {
      if (row.circular && size.a != size.b) continue;
      Signal a = noise("a", size.a, false, random), b = noise("b", size.b, size.pairs, random);
      const double reach = 0.25 * static_cast<double>(size.reach);
      output("correlate a b --format binary --output r --max-lag " + std::to_string(reach) + ' ' + row.options);
      const Vec<double> v = read_record("r");
      const long n = static_cast<long>(size.a), m = static_cast<long>(size.b);
      double energies = 1;
      for (Signal* x : {&a, &b}) {
        Complex mean = std::accumulate(x->begin(), x->end(), Complex(0)) / static_cast<double>(x->size());
        double energy = 0;
        for (Complex& z : *x) energy += std::norm(z -= row.mean_removed ? mean : 0);
        energies *= std::sqrt(energy);
      }
      const long first = row.circular ? std::max(-size.reach, 1 - n / 2) : std::max(-size.reach, 1 - n);
      const long last = row.circular ? std::min(size.reach, n / 2) : std::min(size.reach, m - 1);
      ASSERT_EQ(v->points, last - first + 1);
      EXPECT_EQ(v->delta, 0.25);
      for (long lag = first; lag <= last; ++lag) {
        Complex sum = 0;
        double pairs = 0;
        for (long j = 0; j < n; ++j)
          if (row.circular || (j + lag >= 0 && j + lag < m)) {
            sum += std::conj(a[static_cast<size_t>(j)]) * b[static_cast<size_t>((j + lag + m) % m)];
            ++pairs;
          }
        const double shorter = static_cast<double>(std::min(n, m));
        double scale = row.unbiased ? shorter / pairs : 1;
        if (row.divisor != kNone) scale /= row.divisor == kPoints ? shorter : energies;
        sum *= scale;
        const size_t k = static_cast<size_t>(lag - first);
        // Two transforms of 2^16 points: some 20 roundings of the root of the energies.
        const double tolerance = 1e-13 * energies * scale;
        ASSERT_NEAR(v[size.pairs ? 2 * k : k], sum.real(), tolerance) << lag;
        ASSERT_NEAR(size.pairs ? v[2 * k + 1] : 0, sum.imag(), tolerance) << lag;
      }
    }
}

// A sum of tones below 0.4 of the rate, shifted by a part of a sample: found between the samples, the same way from two
// files, two columns, two channels and two records, also through a pipe.
TEST_F(Correlate, ADelayIsFoundBetweenTheSamples) {
  std::mt19937 random(6);
  std::uniform_real_distribution<double> uniform(0, 1);
  std::vector<double> a(4000), b(4000);
  for (int tone = 0; tone < 300; ++tone) {
    const double f = 0.4 * uniform(random), phase = 6 * uniform(random);
    for (size_t k = 0; k < a.size(); ++k) {
      a[k] += std::cos(2 * M_PI * f * static_cast<double>(k) + phase);
      b[k] += std::cos(2 * M_PI * f * (static_cast<double>(k) - 12.3) + phase);
    }
  }
  std::string csv = "one,other\n";
  for (size_t k = 0; k < a.size(); ++k) csv += std::to_string(a[k]) + "," + std::to_string(b[k]) + "\n";
  write("two.csv", csv);
  write("both", record("a.dsp", a, 1e-3) + record("b.dsp", b, 1e-3));
  output("convert two.csv two.wav --rate 1000");
  for (const char* files : {"a.dsp b.dsp", "two.csv --with other --rate 1000", "two.csv two.csv --with 2 --delta 1e-3",
                            "two.wav --with 2", "both --with 2", "a.dsp two.wav --with 2"}) {
    const json found = peak(std::string("--max-lag 1 ") + files);
    EXPECT_NEAR(found["lag"], 0.0123, 5e-6) << files;  // a two-hundredth of a sample: the ends of the recording
    EXPECT_GT(found["value"], 0.99);
  }
  const std::string piped = output("correlate - --with 2 --channel 1 --peaks 1", read("two.wav"));
  EXPECT_NE(piped.find("standard input, 1 with 2: 4000 points"), std::string::npos) << piped;
  EXPECT_NE(piped.find("0.0123"), std::string::npos) << piped;
  // Of itself: its period, not the lag 0.
  record("p.dsp", sine(5000, 1 / 33.25, 1), 1e-3);
  EXPECT_NEAR(peak("p.dsp --min-lag 0.02")["samples"], 33.25, 0.05);
  const std::string rows = output("correlate a.dsp --max-lag 0.001 --format csv");
  EXPECT_TRUE(rows.starts_with("lag (s),coefficient\n0,") && rows.find("\n0.001,") != rows.npos) << rows;
  output("correlate a.dsp --plot c.svg");
  EXPECT_NE(read("c.svg").find("</svg>"), std::string::npos);
}

TEST_F(Correlate, WhatDoesNotFitIsRefused) {
  record("a.dsp", {1, 2, 3, 4}, 1);
  record("b.dsp", {1, 2, 3, 4}, 0.5);
  record("c.dsp", {1, 2}, 1);
  expect_refusals({{"correlate a.dsp b.dsp", 1, "b.dsp: its samples are 0.5 s apart, those of"},
                   {"correlate a.dsp c.dsp --circular", 1, "have 4 and 2 points, but must be periods of one length"},
                   {"correlate - -", 2, "the standard input cannot be both recordings"},
                   {"correlate a.dsp --with 2", 1, "--with 2, but the file holds 1 record"},
                   {"correlate a.dsp --unbiased --circular", 2, "--unbiased is for"},
                   {"correlate a.dsp --min-lag 2 --max-lag 1", 2, "--min-lag must not be above --max-lag"},
                   {"correlate a.dsp --max-lag 1e12", 2, "--max-lag 1e+12: must be 0 to 6.71089e+07 s"},
                   {"correlate a.dsp --format json --plot -", 2, "would both fill the standard output"}});
}

}  // namespace sigvex_test::correlate_test

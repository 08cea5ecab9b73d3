#include <random>

#include "run.h"

namespace sigvex_test::spectrum_test {

using Spectrum = Tool;

// The scalloping of no window is asked for here: levels are refined with the window's own shape, so that what remains
// is what the mirror image leaks into the line. At 200 bins from it that is below 1e-3 (Uniform: 1/(400 pi)).
TEST_F(Spectrum, ASineReadsItsAmplitudeAndFrequencyOnAndOffTheBins) {
  constexpr size_t kPoints = 1000;
  for (uint32_t type = 0; type < 32; ++type) {
    char name[64];
    ASSERT_EQ(dsp_window_to_str(type, name, sizeof name), 0);
    for (double bin : {200.0, 200.25, 200.5, 200.9}) {
      record("s.dsp", sine(kPoints, bin / kPoints, 0.7), 1e-3);
      const json found = spectrum(std::string("s.dsp --peaks 1 --window ") + name);
      ASSERT_EQ(found["peaks"].size(), 1u) << name;
      EXPECT_NEAR(found["peaks"][0]["level"], 0.7, 0.7e-3) << name << ' ' << bin;
      EXPECT_NEAR(found["peaks"][0]["frequency"], bin, 2e-3) << name;
      EXPECT_EQ(found["window"]["name"], name);
    }
  }
}

TEST_F(Spectrum, ScalesRelateAsAmplitudeRmsPowerAndDensity) {
  record("s.dsp", sine(4096, 0.1203, 2), 1.0 / 8192);
  const std::tuple<const char*, double, const char*> rows[] = {
      // clang-format off
      {"", 2, "V"}, {"--single", 2, "V"}, {"--scale rms", std::sqrt(2), "V"}, {"--scale power", 2, "V^2"},
      {"--scale density", 2 / (1.5 * 2), "V^2/Hz"},  // Hann: 1.5 bins of 2 Hz
      {"--db", 20 * std::log10(2), "dB(V)"}, {"--window Kaiser90 --parameter 600", 2, "V"}};
  // clang-format on
  for (const auto& [options, level, unit] : rows) {
    const json peak = spectrum(std::string("s.dsp --unit V ") + options)["peaks"][0];
    EXPECT_NEAR(peak["level"], level, 1e-5) << options;
    EXPECT_EQ(peak["unit"], unit);
  }
}

// A constant and the alternation at half the rate have no mirror image: they are not doubled.
TEST_F(Spectrum, ConstantAndHalfRateReadTheirOwnLevel) {
  record("dc.dsp", std::vector<double>(256, 3), 1);
  record("half.dsp", sine(256, 0.5, 0.5, 0), 1);
  for (const std::string scale : {" --scale peak", " --scale rms"}) {
    const json a = spectrum("dc.dsp --detrend none" + scale)["peaks"], b = spectrum("half.dsp" + scale)["peaks"];
    ASSERT_TRUE(a.size() == 1 && b.size() == 1);
    EXPECT_TRUE(a[0]["frequency"] == 0 && b[0]["frequency"] == 0.5);
    EXPECT_NEAR(a[0]["level"], 3, 1e-12);
    EXPECT_NEAR(b[0]["level"], 0.5, 1e-12);
  }
  EXPECT_TRUE(spectrum("dc.dsp")["peaks"].empty());  // the mean is removed
}

TEST_F(Spectrum, ComplexInputGivesBothSides) {
  std::vector<double> iq;
  for (int k = 0; k < 999; ++k) {
    iq.push_back(0.25 * std::cos(-2 * M_PI * 0.2 * k));
    iq.push_back(0.25 * std::sin(-2 * M_PI * 0.2 * k));
  }
  record("iq.dsp", iq, 0.001, true);
  const json found = spectrum("iq.dsp");
  EXPECT_TRUE(found["complex"]);
  EXPECT_NEAR(found["peaks"][0]["frequency"], -200, 1e-3);
  EXPECT_NEAR(found["peaks"][0]["level"], 0.25, 1e-5);
  EXPECT_NEAR(spectrum("iq.dsp --scale power")["peaks"][0]["level"], 0.0625, 1e-5);
  const json above = spectrum("iq.dsp --from-hz 0")["peaks"];
  EXPECT_TRUE(above.empty() || above[0]["level"] < 1e-6);
}

// White noise of standard deviation s at rate R has the one-sided density 2 s^2 / R. The mean over B bins and K frames
// has the relative standard deviation 1/sqrt(BK); the floor's median somewhat more. Four of them are allowed.
TEST_F(Spectrum, NoiseDensityIsRightWithinItsConfidence) {
  constexpr size_t kPoints = 1 << 17;
  constexpr double kDeviation = 0.3, kRate = 8000, kDensity = 2 * kDeviation * kDeviation / kRate;
  std::mt19937_64 random(7);
  std::normal_distribution<double> normal(0, kDeviation);
  std::vector<double> x(kPoints);
  for (double& v : x) v = normal(random);
  record("n.dsp", x, 1 / kRate);
  const auto density_of = [](const json& found) {
    return double(found["noise_floor"]["density"]) / std::sqrt(kDensity);
  };
  for (const std::string window : {"Uniform", "Hann", "FlatTop", "Kaiser90", "Gauss70", "Tukey25"})
    for (const std::string points : {"1024", "1000", "131072"}) {
      const json found = spectrum("n.dsp --scale density --peaks 5 --window " + window + " --points " + points);
      const double bins = std::stod(points) / 2 / double(found["window"]["enbw_bins"]);
      const double allowed = 4 * 1.5 / std::sqrt(double(found["frames"]["independent"]) * bins);
      EXPECT_NEAR(double(found["noise_floor"]["level"]) / kDensity, 1, allowed) << window << ' ' << points;
      EXPECT_NEAR(density_of(found), 1, allowed) << window << ' ' << points;
      for (const json& peak : found["peaks"]) EXPECT_FALSE(peak["clear"]) << window << ' ' << points << ' ' << peak;
    }
  // Whatever the averaging shows, the density is that of the noise, and noise alone makes no clear line. A mean is as
  // sure as its frames, a hold as one of them; the closed forms of the medians are right within 2 %.
  const std::pair<std::string, bool> modes[] = {
      {"exponential", true}, {"magnitude", true}, {"geometric", true},
      {"harmonic", false},   {"max", false},      {"min", false},
      {"last", false},       {"vector", false},   {"synchronous --reference 1000", false}};
  for (const auto& [mode, sure] : modes) {
    const json found = spectrum("n.dsp --points 512 --peaks 1 --averaging " + mode);
    const double frames = sure ? double(found["frames"]["independent"]) : 1;
    EXPECT_NEAR(density_of(found), 1, 0.01 + 2 * 1.5 / std::sqrt(frames * 256 / 1.5)) << mode;
    EXPECT_FALSE(found["peaks"][0]["clear"]) << mode << found;
  }
}

// Three frames that hold a line of amplitude 1, -2 and 3: each mean has its closed form. A peak is clear, in dB over
// the noise's mean, from where noise alone would come in any of the 201 bins once in a hundred spectra: by Chernoff's
// bound for a mean, whose cumulants a quadrature over the exponential distribution of noise powers gave.
TEST_F(Spectrum, EveryAveragingIsTheMeanItSays) {
  std::vector<double> x;
  for (double amplitude : {1, -2, 3})
    for (double v : sine(400, 0.1, amplitude)) x.push_back(v);
  record("three.dsp", x, 1);
  const std::tuple<std::string, double, double> rows[] = {{"mean", std::sqrt(14 / 3.0), 7.8628},
                                                          {"exponential --average-length 2", std::sqrt(5.75), 8.1976},
                                                          {"magnitude", 2, 7.9587},
                                                          {"magnitude --average-length 2", 2.25, 8.2703},
                                                          {"geometric", std::cbrt(6), 8.4820},
                                                          {"harmonic", std::sqrt(3 / (1 + 1 / 4.0 + 1 / 9.0)), 10.4617},
                                                          {"max", 3, 7.7843},
                                                          {"min", 1, 9.9601},
                                                          {"last", 3, 9.9601},
                                                          {"vector", 2 / 3.0, 9.9601},
                                                          {"synchronous --reference 0.1", 2, 9.9601}};
  for (const auto& [mode, level, clear] : rows) {
    for (const std::string precision : {"", " --single"}) {
      const json found = spectrum("three.dsp --points 400 --overlap 0 --averaging " + mode + precision);
      EXPECT_EQ(found["frames"]["count"], 3);
      // Some 50 roundings of float.
      EXPECT_NEAR(found["peaks"][0]["level"], level, precision.empty() ? 1e-9 : 1e-5) << mode;
      EXPECT_NEAR(found["clear_from_db"], clear, 1e-3) << mode;
    }
  }
}

// Uncorrelated frames average as many as they are; a Hann window at 75 % overlap correlates by 0.659 with its
// neighbour.
TEST_F(Spectrum, FramesFollowPointsOverlapAndAverageAndCountByTheirOverlap) {
  record("s.dsp", sine(1000, 0.11, 1), 1);
  record("l.dsp", sine(64000, 0.11, 1), 1);
  // clang-format off
  const std::tuple<const char*, int, int> rows[] = {
      {"", 1, 1000}, {"--points 100", 19, 100}, {"--points 100 --overlap 75% --average 3", 3, 100},
      {"--average 4 --overlap 0", 4, 250}, {"--average 3", 3, 500}};
  // clang-format on
  for (const auto& [options, count, points] : rows) {
    const json frames = spectrum(std::string("s.dsp ") + options)["frames"];
    EXPECT_TRUE(frames["count"] == count && frames["points"] == points) << frames;
  }
  EXPECT_EQ(spectrum("l.dsp --points 640 --overlap 0")["frames"]["independent"], 100);
  const json frames = spectrum("l.dsp --points 640 --overlap 75")["frames"];
  EXPECT_NEAR(double(frames["independent"]) / double(frames["count"]),
              1 / (1 + 2 * (0.659 * 0.659 + 0.167 * 0.167 + 0.0075 * 0.0075)), 0.01);
}

// The Uniform window leaks 1/(120 pi) = 0.0027 of the strong line over 120 bins into the weak one.
TEST_F(Spectrum, SideLobesOfAStrongLineAreNotPeaksAndAWeakOneIs) {
  std::vector<double> x = sine(2000, 0.1003, 1);
  const std::vector<double> weak = sine(2000, 0.1603, 0.01);
  std::transform(x.begin(), x.end(), weak.begin(), x.begin(), std::plus<>());
  record("s.dsp", x, 1);
  for (const std::string window : {"Uniform", "Hann", "Hamming", "BlackmanHarris4", "FlatTop"}) {
    const json peaks = spectrum("s.dsp --window " + window)["peaks"];
    ASSERT_EQ(peaks.size(), 2u) << window;
    EXPECT_NEAR(peaks[1]["frequency"], 0.1603, 5e-4) << window;
    EXPECT_NEAR(peaks[1]["level"], 0.01, 0.003) << window;
  }
}

TEST_F(Spectrum, HarmonicsAndDistortion) {
  std::vector<double> x(20000);
  for (size_t k = 0; k < x.size(); ++k) {
    const double w = 2 * M_PI * 0.01237 * static_cast<double>(k);
    x[k] = std::sin(w) + 0.03 * std::sin(2 * w) + 0.04 * std::sin(3 * w + 1);
  }
  record("h.dsp", x, 1e-4);
  const json found = spectrum("h.dsp --harmonics=3 --peaks 1 --window BlackmanHarris4");
  ASSERT_EQ(found["harmonics"].size(), 2u);
  EXPECT_EQ(found["harmonics"][1]["order"], 3);
  EXPECT_NEAR(found["harmonics"][1]["frequency"], 371.1, 1e-3);
  EXPECT_NEAR(found["harmonics"][1]["level"], 0.04, 1e-5);
  EXPECT_NEAR(found["harmonic_distortion"], 0.05, 1e-5);
}

TEST_F(Spectrum, EveryFormatHoldsTheSameSpectrum) {
  record("s.dsp", sine(128, 0.25, 3), 0.5);
  for (const std::string format : {"dsp", "binary"}) {
    output("spectrum s.dsp --output s.out --format " + format);
    const Vec<double> v = read_record("s.out");
    ASSERT_EQ(v->points, 65);
    EXPECT_EQ(v->delta, 1 / 64.0);
    EXPECT_NEAR(v[32], 3, 1e-12);
    EXPECT_NEAR(v[33], 1.5, 1e-12);
  }
  const std::vector<std::string> texts[] = {{"summary", "[65/0.01562] "},
                                            {"trace", "SigvexData\tTrue\n"},
                                            {"gnuplot", "0.5 3"},
                                            {"table", " 0.5000 Hz ", " 3.00 mV peak ", "noise floor",
                                             "bin spacing      0.015625 Hz", "0.0234375 Hz (1.5 bins)"}};
  for (const auto& text : texts) {
    const std::string out = output("spectrum s.dsp --unit mV --format " + text[0]);
    for (size_t k = 1; k < text.size(); ++k) EXPECT_NE(out.find(text[k]), std::string::npos) << out;
  }
}

TEST_F(Spectrum, PicturesAreDrawn) {
  record("s.dsp", sine(512, 0.1, 1), 1e-3);
  output("spectrum s.dsp --plot s.svg");
  output("spectrum s.dsp --plot s.png --db");
  EXPECT_NE(read("s.svg").find("</svg>"), std::string::npos);
  EXPECT_EQ(read("s.png").substr(1, 3), "PNG");
  EXPECT_NE(output("spectrum s.dsp --plot -").find("500 Hz\n"), std::string::npos);
  EXPECT_EQ(files().size(), 3u);  // nothing temporary is left
}

// The recording that ships with the project, as the manual shows it.
TEST_F(Spectrum, TheCardiogramShowsTheMainsLineAndTheBeatAmongItsNeighbours) {
  write("ecg.dsp", contents(SIGVEX_DATA "/ecg.dsp"));
  const json mains = spectrum("ecg.dsp --unit mV --from-hz 50")["peaks"][0];
  EXPECT_NEAR(mains["frequency"], 59.99, 0.01);
  EXPECT_NEAR(mains["level"], 0.012, 0.0005);
  const auto expect_peak = [](const json& peaks, double frequency, double width) {
    EXPECT_TRUE(std::any_of(peaks.begin(), peaks.end(), [&](const json& p) {
      return (frequency < 50 || p["clear"]) && std::fabs(double(p["frequency"]) - frequency) < width;
    })) << frequency;
  };
  expect_peak(spectrum("ecg.dsp")["peaks"], 59.99, 0.01);
  const json beat = spectrum("ecg.dsp --points 2880 --to-hz 5")["peaks"];
  for (double hump : {1.63, 2.25, 3.25}) expect_peak(beat, hump, 0.0625);
}

}  // namespace sigvex_test::spectrum_test

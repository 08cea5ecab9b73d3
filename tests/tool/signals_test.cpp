#include "run.h"

namespace sigvex_test::signals_test {

using Signals = Tool;

// More than one block, so that a step where blocks join would show.
TEST_F(Signals, AToneKeepsFrequencyAndLevelThroughEveryRate) {
  output("generate cosine a.wav --rate 1000 --seconds 140 --frequency 50.5 --amplitude 0.5");
  output("resample a.wav b.wav --to-rate 441");
  output("resample a.wav d.wav --to-rate 441 --set 3");
  output("decimate a.wav c.csv --factor 4 --filter");
  // The kernel of set 3 is flat within 0.26 dB.
  for (const auto& [file, tolerance] : {std::pair("a.wav", 1e-6), {"b.wav", 1e-6}, {"d.wav", 0.015}, {"c.csv", 1e-4}}) {
    const json peak = spectrum(file + std::string(" --peaks 1"))["peaks"][0];
    EXPECT_NEAR(peak["frequency"], 50.5, 1e-3) << file;
    EXPECT_NEAR(peak["level"], 0.5, tolerance) << file;
  }
}

TEST_F(Signals, ResamplingKeepsThePlaceAndTheExactCount) {
  record("in.dsp", sine(1080, 0.03, 1), static_cast<double>(1.0F / 360));
  const json samples = result("resample in.dsp - --to-rate 250")["samples"];
  ASSERT_EQ(samples.size(), 750u);
  const std::vector<double> expected = sine(750, 0.03 * 1.44, 1);
  for (size_t k = 200; k < 550; ++k) ASSERT_NEAR(samples[k], expected[k], 1e-7) << k;
  EXPECT_EQ(result("resample in.dsp - --to-rate 540 --set 1")["samples"].size(), 1620u);
}

TEST_F(Signals, AFilterRemovesOneOfTwoTonesAndKeepsThePlaceOfTheOther) {
  std::vector<double> low = sine(1000, 0.01, 1), both = low;
  const std::vector<double> high = sine(1000, 0.3, 1);
  for (size_t k = 0; k < both.size(); ++k) both[k] += high[k];
  record("in.dsp", both, 0.001);
  // An audio file through a pipe, whose header is completed behind the samples.
  const std::string wav = output("filter in.dsp - --format wav --design high-pass --cutoff 200");
  EXPECT_NEAR(spectrum("- --peaks 1", wav)["peaks"][0]["frequency"], 300, 0.1);
  const json samples = result("filter in.dsp - --design low-pass --cutoff 100 --taps 201")["samples"];
  ASSERT_EQ(samples.size(), low.size());
  for (size_t k = 100; k < 900; ++k) ASSERT_NEAR(samples[k], low[k], 1e-3) << k;  // the window's side lobes: -74 dB
}

TEST_F(Signals, RefusalsNameTheArgumentAndLeaveNothing) {
  record("i", sine(100, 0.1, 1), 0.001);
  expect_refusals({{"filter i o.dsp --design low-pass --cutoff 501", 2, "must be above 0 to 500 Hz"},
                   {"filter i o.dsp --design band-pass --center 9 --bandwidth 19", 2, "must not reach beyond 0"},
                   {"resample i o.dsp --ratio 0", 2, "--ratio '0': must be 0.001 to 1000"},
                   {"filter i o.dsp --design low-pass --cutoff 9 --shape 1", 2, "--shape is for --design sinh"},
                   {"filter i o.dsp --design low-pass --cutoff 9 --delay 1", 2, "--delay is for --design delayed"},
                   {"filter i o.dsp --design delayed-low-pass --cutoff 9 --delay 1", 2, "must be -0.05 to 0.05 s"},
                   {"filter i o.dsp --design set9 --taps 9", 2, "is fixed"},
                   {"generate gauss o.dsp --rate 9 --points 9 --amplitude nan", 2, "--amplitude: nan is not a finite"},
                   {"generate gauss o.dsp --rate -1 --points 9", 2, "--rate: '-1' must be a number above 0"},
                   {"generate line o.dsp --rate 9 --points 9 --slope 1e308 --amplitude 9", 2, "too large"},
                   {"generate cosine o.dsp --rate 9 --points 9", 2, "--frequency is required"},
                   {"spectrum i --averaging synchronous", 2, "needs --reference"},
                   {"spectrum i --averaging max --average-length 3", 2, "--average-length is not for"},
                   {"spectrum i --averaging synchronous --reference 600", 1, "reaches from 0 to 500"}});
}

}  // namespace sigvex_test::signals_test

#include "run.h"

namespace sigvex_test {
namespace {

class Signals : public Tool {
 protected:
  void succeed(const std::vector<std::string>& arguments) const {
    const Outcome outcome = run(arguments);
    ASSERT_EQ(outcome.status, 0) << outcome.err;
  }
  void expect_tone(const std::string& file, double frequency, double level, double tolerance) const {
    const nlohmann::json peak = measure({path(file), "--peaks", "1"})["peaks"][0];
    EXPECT_NEAR(peak["frequency"], frequency, 1e-3) << file;
    EXPECT_NEAR(peak["level"], level, tolerance) << file;
  }
};

// More than one block, so that a step where blocks join would show.
TEST_F(Signals, AToneKeepsFrequencyAndLevelThroughEveryRate) {
  succeed({"generate", "cosine", path("a.wav"), "--rate", "1000", "--seconds", "140", "--frequency", "50.5",
           "--amplitude", "0.5"});
  succeed({"resample", path("a.wav"), path("b.wav"), "--to-rate", "441"});
  succeed({"resample", path("a.wav"), path("d.wav"), "--to-rate", "441", "--set", "3"});
  succeed({"decimate", path("a.wav"), path("c.csv"), "--factor", "4", "--filter"});
  expect_tone("a.wav", 50.5, 0.5, 1e-6);
  expect_tone("b.wav", 50.5, 0.5, 1e-6);
  expect_tone("d.wav", 50.5, 0.5, 0.5 * 0.03);  // the kernel is flat within 0.26 dB
  expect_tone("c.csv", 50.5, 0.5, 1e-4);
}

TEST_F(Signals, ResamplingKeepsThePlaceAndTheExactCount) {
  const std::string from = record("in.dsp", sine(1080, 0.03, 1), static_cast<double>(1.0F / 360));
  const nlohmann::json samples = run({"resample", from, "-", "--format", "json", "--to-rate", "250"}).json()["samples"];
  ASSERT_EQ(samples.size(), 750u);
  const std::vector<double> expected = sine(750, 0.03 * 1.44, 1);
  for (size_t k = 200; k < 550; ++k) ASSERT_NEAR(samples[k], expected[k], 1e-7) << k;
}

TEST_F(Signals, AFilterRemovesOneOfTwoTonesAndKeepsThePlaceOfTheOther) {
  std::vector<double> low = sine(1000, 0.01, 1), both = low;
  const std::vector<double> high = sine(1000, 0.3, 1);
  for (size_t k = 0; k < both.size(); ++k) both[k] += high[k];
  const std::string from = record("in.dsp", both, 0.001);
  // An audio file through a pipe, whose header is completed behind the samples.
  const Outcome wav = run({"filter", from, "-", "--format", "wav", "--design", "high-pass", "--cutoff", "200"});
  EXPECT_NEAR(measure({"-", "--peaks", "1"}, wav.out)["peaks"][0]["frequency"], 300, 0.1) << wav.err;
  const Outcome outcome =
      run({"filter", from, "-", "--format", "json", "--design", "low-pass", "--cutoff", "100", "--taps", "201"});
  const nlohmann::json samples = outcome.json()["samples"];
  ASSERT_EQ(samples.size(), low.size());
  for (size_t k = 100; k < 900; ++k) ASSERT_NEAR(samples[k], low[k], 1e-3) << k;  // the window's side lobes: -74 dB
}

TEST_F(Signals, RefusalsNameTheArgumentAndLeaveNothing) {
  const std::string from = record("in.dsp", sine(100, 0.1, 1), 0.001);
  const std::string o = path("o.dsp");
  expect_refusals({
      {{"filter", from, o, "--design", "low-pass", "--cutoff", "501"}, 2, "must be above 0 to 500 Hz"},
      {{"resample", from, o, "--ratio", "0"}, 2, "--ratio '0': must be 0.001 to 1000"},
      {{"filter", from, o, "--design", "low-pass", "--cutoff", "9", "--shape", "1"}, 2, "--shape is for --design sinh"},
      {{"filter", from, o, "--design", "low-pass", "--cutoff", "9", "--delay", "1"},
       2,
       "--delay is for --design delayed"},
      {{"filter", from, o, "--design", "delayed-low-pass", "--cutoff", "9", "--delay", "1"},
       2,
       "must be -0.05 to 0.05 s"},
      {{"filter", from, o, "--design", "set9", "--taps", "9"}, 2, "is fixed"},
      {{"generate", "gauss", o, "--rate", "9", "--points", "9", "--amplitude", "nan"},
       2,
       "--amplitude: nan is not a finite"},
      {{"generate", "gauss", o, "--rate", "-1", "--points", "9"}, 2, "--rate: '-1' must be a number above 0"},
      {{"generate", "line", o, "--rate", "9", "--points", "9", "--slope", "1e308", "--amplitude", "9"}, 2, "too large"},
      {{"spectrum", from, "--averaging", "synchronous"}, 2, "needs --reference"},
      {{"spectrum", from, "--averaging", "max", "--average-length", "3"}, 2, "--average-length is not for"},
      {{"spectrum", from, "--averaging", "synchronous", "--reference", "600"}, 1, "reaches from 0 to 500"},
      {{"generate", "cosine", o, "--rate", "9", "--points", "9"}, 2, "--frequency is required"},
  });
}

}  // namespace
}  // namespace sigvex_test

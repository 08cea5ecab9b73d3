#include <random>

#include "run.h"

namespace sigvex_test::convert_test {

using Convert = Tool;

// A chain through every format that can hold it brings the samples back to the bit. Text has no precision of its own:
// what was single is asked for again.
TEST_F(Convert, LosslessFormatsKeepEveryBit) {
  std::mt19937_64 random(3);
  std::uniform_real_distribution<double> uniform(-1, 1);
  for (const bool single : {false, true}) {
    const auto rounded = [=](double x) { return single ? static_cast<double>(static_cast<float>(x)) : x; };
    std::vector<double> x(300);
    for (double& v : x) v = rounded(uniform(random));
    record("in.dsp", x, 1.0 / 8000);
    if (single) output("convert in.dsp in.dsp --single");
    EXPECT_EQ(read("in.dsp").size(), single ? 20 + 4 * x.size() : 24 + 8 * x.size());
    std::string from = "in.dsp";
    for (const char* to : {"a.csv", "b.wav", "c.dsp"}) {
      output("convert " + from + ' ' + to + (single ? " --single" : " --double"));
      from = to;
    }
    const Vec<double> v = read_record(from);
    EXPECT_TRUE(exactly(v, x));
    EXPECT_DOUBLE_EQ(v->delta, rounded(1.0 / 8000));
  }
}

TEST_F(Convert, CompressedAudioIsCloseAndKeepsTheRate) {
  record("in.dsp", sine(44100, 0.01, 0.5), 1.0 / 44100);
  for (const auto& [to, tolerance] :
       {std::pair<std::string, double>("out.flac", 1e-6), {"out.ogg", 0.02}}) {  // 24 bits; lossy
    output("convert in.dsp " + to);
    const json peak = spectrum(to + " --peaks 1");
    EXPECT_NEAR(peak["rate"], 44100, 1e-9);
    EXPECT_EQ(peak["unit"], "FS");
    EXPECT_NEAR(peak["peaks"][0]["frequency"], 441, 0.01);
    EXPECT_NEAR(peak["peaks"][0]["level"], 0.5, tolerance);
  }
}

TEST_F(Convert, ChannelsAndColumnsTravelTogetherOrAlone) {
  output("convert - two.wav --rate 2", "t (s),left,right\n0,0.5,0.125\n0.5,-0.5,0.25\n1,1,0\n");
  output("convert two.wav two.dsp");
  for (const char* file : {"two.wav", "two.dsp"})
    EXPECT_EQ(result(std::string("info --channel 2 ") + file)["maximum"], 0.25) << file;
  EXPECT_EQ(output("convert two.wav - --format csv --gain 2"),
            "time (s),channel 1 (FS),channel 2 (FS)\n0,1,0.25\n0.5,-1,0.5\n1,2,0\n");
  EXPECT_EQ(output("convert two.wav - --format csv --channel 1 --from 0.5"), "time (s),value (FS)\n0,-0.5\n0.5,1\n");
  const json iq = result("convert two.wav - --channel 1 --imag 2");
  EXPECT_EQ(iq["samples"], json::parse("[[0.5,0.125],[-0.5,0.25],[1,0]]"));
  EXPECT_EQ(iq["complex"], true);
}

TEST_F(Convert, WhatAFormatCannotHoldIsRefused) {
  record("loud.dsp", {0, 2}, 0.5);
  record("odd.dsp", {0, 1}, 0.3);
  record("full.dsp", {0, 1 + 0x1p-52}, 0.5);
  output("convert full.dsp full.flac");  // beyond full scale by rounding only
  expect_refusals({{"convert loud.dsp a.flac", 1, "reaches 2, but full scale of flac is 1"},
                   {"convert odd.dsp a.wav", 1, "needs a whole number"},
                   {"convert loud.dsp a.xyz", 2, "no known suffix; give --format"}});
}

}  // namespace sigvex_test::convert_test

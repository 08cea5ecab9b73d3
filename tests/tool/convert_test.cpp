#include <random>

#include "run.h"

namespace sigvex_test {
namespace {

using Json = nlohmann::json;
using Convert = Tool;

// A chain through every format that can hold it brings the samples back to the bit. Text has no precision of its own:
// what was single is asked for again.
TEST_F(Convert, LosslessFormatsKeepEveryBit) {
  std::mt19937_64 random(3);
  std::uniform_real_distribution<double> uniform(-1, 1);
  for (bool single : {false, true}) {
    std::vector<double> x(300);
    for (double& v : x) v = single ? static_cast<double>(static_cast<float>(uniform(random))) : uniform(random);
    std::string from = record("in.dsp", x, 1.0 / 8000);
    if (single) {
      ASSERT_EQ(run({"convert", from, path("single.dsp"), "--single"}).status, 0);
      from = path("single.dsp");
      EXPECT_EQ(std::filesystem::file_size(from), 20 + 4 * x.size());
    }
    for (const char* to : {"a.csv", "b.wav", "c.dsp"}) {
      const Outcome outcome = run({"convert", from, path(to), single ? "--single" : "--double"});
      ASSERT_EQ(outcome.status, 0) << to << outcome.err;
      from = path(to);
    }
    const Vec<double> v = read_record(from);
    EXPECT_TRUE(exactly(v, x));
    EXPECT_DOUBLE_EQ(v->delta, single ? static_cast<double>(static_cast<float>(1.0 / 8000)) : 1.0 / 8000);
  }
}

TEST_F(Convert, CompressedAudioIsCloseAndKeepsTheRate) {
  const std::string from = record("in.dsp", sine(44100, 0.01, 0.5), 1.0 / 44100);
  for (const auto& [to, tolerance] : {std::pair{"out.flac", 1e-6}, {"out.ogg", 0.02}}) {  // 24 bits; lossy
    ASSERT_EQ(run({"convert", from, path(to)}).status, 0);
    const Json peak = measure({path(to), "--peaks", "1"});
    EXPECT_NEAR(peak["rate"], 44100, 1e-9);
    EXPECT_EQ(peak["unit"], "FS");
    EXPECT_NEAR(peak["peaks"][0]["frequency"], 441, 0.01);
    EXPECT_NEAR(peak["peaks"][0]["level"], 0.5, tolerance);
  }
}

TEST_F(Convert, ChannelsAndColumnsTravelTogetherOrAlone) {
  const std::string csv = "t (s),left,right\n0,0.5,0.125\n0.5,-0.5,0.25\n1,1,0\n";
  ASSERT_EQ(run({"convert", "-", path("two.wav"), "--rate", "2"}, csv).status, 0);
  EXPECT_EQ(run({"info", path("two.wav"), "--channel", "2", "--format", "json"}).json()["maximum"], 0.25);
  EXPECT_EQ(run({"convert", path("two.wav"), "-", "--format", "csv", "--gain", "2"}).out,
            "time (s),channel 1 (FS),channel 2 (FS)\n0,1,0.25\n0.5,-1,0.5\n1,2,0\n");
  EXPECT_EQ(run({"convert", path("two.wav"), "-", "--format", "csv", "--channel", "1", "--from", "0.5"}).out,
            "time (s),value (FS)\n0,-0.5\n0.5,1\n");
  ASSERT_EQ(run({"convert", path("two.wav"), path("two.dsp")}).status, 0);
  EXPECT_EQ(run({"info", path("two.dsp"), "--channel", "2", "--format", "json"}).json()["maximum"], 0.25);
  const Outcome iq = run({"convert", path("two.wav"), "-", "--format", "json", "--channel", "1", "--imag", "2"});
  EXPECT_EQ(iq.json()["samples"], Json::parse("[[0.5,0.125],[-0.5,0.25],[1,0]]"));
  EXPECT_EQ(iq.json()["complex"], true);
}

TEST_F(Convert, WhatAFormatCannotHoldIsRefused) {
  const std::string loud = record("loud.dsp", {0, 2}, 0.5), odd = record("odd.dsp", {0, 1}, 0.3);
  EXPECT_NE(run({"convert", loud, path("a.flac")}).err.find("reaches 2, but full scale of flac is 1"),
            std::string::npos);
  EXPECT_NE(run({"convert", odd, path("a.wav")}).err.find("needs a whole number"), std::string::npos);
  const Outcome unknown = run({"convert", loud, path("a.xyz")});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_NE(unknown.err.find("no known suffix; give --format"), std::string::npos);
  EXPECT_EQ(files().size(), 2u);
}

}  // namespace
}  // namespace sigvex_test

#include "run.h"

namespace sigvex_test::input_test {

using Input = Tool;

// CSV of the shapes that instruments and spreadsheets write; every one holds the samples 0, 1, 4, 9, 16.
TEST_F(Input, CsvOfEveryShape) {
  const struct {
    const char *text, *options = "";
    double delta = 1;
    const char* unit = "";
  } rows[] = {
      {"0\n1\n4\n9\n16\n"},
      {"0\r\n1\r\n4\r\n9\r\n16"},
      {"\xef\xbb\xbfvalue\n0\n1\n4\n9\n16\n"},
      {"U [V]\n0\n1\n4\n+9\n1.6e1\n", "", 1, "V"},
      {"# by a logger\n\ndate,a\n2020-1-1,0\n2-2-2,1\n3-3-3,4\n4-4-4,9\n5-5-5,16\n", "--rate 4", 0.25},
      {"t;U (mV)\n0,5;0\n1;1\n1,5;4\n2;9\n2,5;16\n", "", 0.5, "mV"},
      {"t (ms)\ta\n0.0\t0\n0.5\t1\n1.0\t4\n1.5\t9\n2.0\t16\n", "", 0.0005},
      {"7 0\n7 1\n 7  4\n7\t9\n7 16\n", "--column 2"},
      {"a,b,c\n7,0,7\n7,1,7\n7,4,7\n7,9,7\n7,16,7\n", "--column B"},
      {"\"a, x\"\"\",b\n0,7\n1,7\n4,7\n9,7\n16,7\n", "--column 'a, x\"'"},
      {"0/1\n1/1\n4/1\n9/1\n16/1\n", "--delimiter /"},
      {"7\n0\n1\n4\n9\n16\n", "--header yes"},
      {"0.000,0\n0.003,1\n0.006,4\n0.008,9\n0.011,16\n", "", 0.00275},  // times rounded to milliseconds
  };
  for (const auto& row : rows) {
    const json info = result(std::string("info - ") + row.options, row.text);
    EXPECT_TRUE(info["points"] == 5 && info["mean"] == 6 && info["maximum"] == 16) << row.text;
    EXPECT_DOUBLE_EQ(info["spacing"], row.delta) << row.text;
    EXPECT_EQ(info.value("unit", ""), row.unit) << row.text;
  }
}

TEST_F(Input, RangeInSecondsTakesWholeSamples) {
  record("x.dsp", std::vector<double>(1000, 1), 0.1);
  for (const auto& [range, points] :
       {std::pair("--from 30.3 --to 30.6", 3), {"--from 30.31 --to 30.6", 2}, {"--from 0 --to 1e9", 1000}}) {
    EXPECT_EQ(result(std::string("info x.dsp ") + range)["points"], points) << range;
  }
}

TEST_F(Input, TheTypeIsFoundByContentAlsoFromAPipe) {
  const std::string bytes = record("x.dsp", {1, 2, 3}, 0.5);
  EXPECT_EQ(result("info -", bytes)["mean"], 2);
  const json text = result("info -", "# a remark\n#DSP complex = 1\n#DSP delta = 0.25\n1 2\n3 4\n");
  EXPECT_TRUE(text["type"] == "\"#DSP\" text" && text["mean"] == json::parse("[2.0,3.0]")) << text;
  EXPECT_TRUE(text["points"] == 2 && text["spacing"] == 0.25 && text["rate"] == 4 && text["duration"] == 0.5) << text;
  // Two records in one file are its channels; the second in the other byte order.
  std::string swapped = bytes;
  for (size_t k = 0, width = 4; k < swapped.size(); k += width) {
    width = k < 16 ? 4 : 8;
    std::reverse(swapped.data() + k, swapped.data() + k + width);
  }
  const json second = result("info - --channel 2", bytes + swapped);
  EXPECT_TRUE(second["mean"] == 2 && second["type"] == "vector record, double precision, foreign byte order") << second;
}

// Exit status 1 for the data, 2 for the command line.
TEST_F(Input, EveryFaultIsOneLineWithFilePlaceAndReason) {
  const std::string good = record("x.dsp", {1, 2, 3, 4}, 0.5), nan = record("nan.dsp", {1, 2, NAN, 4}, 0.5),
                    zero_delta = record("d.dsp", {1, 2, 3, 4}, 0);
  const std::string wav = output("generate line - --format wav --rate 9 --points 5");
  std::string huge = good, negative = good;
  huge.replace(8, 4, "\xff\xff\xff\x7f");
  negative.replace(8, 4, "\xfe\xff\xff\xff");
  expect_refusals(
      {{"spectrum -", 1, "standard input: is empty"},
       {"spectrum .", 1, ": is a directory"},
       {"spectrum none.wav", 1, "none.wav: No such file or directory"},
       {"spectrum -", 1, "standard input: byte 40: ends inside a record that claims 4 points", good.substr(0, 40)},
       {"spectrum -", 1, "ends inside a record that claims 2147483647 points", huge},
       {"spectrum -", 1, "byte 1: a record that claims -2 points", negative},
       {"info - --channel 2", 1, "--channel 2, but the file holds 1 record", good},
       {"info -", 1, "standard input: line 3, column 3: not a number", "#DSP points = 4\n1 2\n3 x\n"},
       {"info -", 1, "ends before the declared number of values", "#DSP points = 4\n1 2\n3\n"},
       {"spectrum -", 1, "standard input: sample 3 of the range (1 s): is not a number (NaN)", nan},
       {"spectrum -", 1, "the spacing of the samples is 0: give --rate or --delta", zero_delta},
       {"spectrum -", 1, "standard input: line 3, column 1: 'x3' is not a number", "1\n2\nx3\n"},
       {"spectrum - --column b", 1, "line 3, column 2: empty cell", "a,b\n1,2\n3,\n"},
       {"info - --column b --delimiter ,", 1, "line 3, column 2: only 1 of 2 columns", "a,b\n1,2\n3\n"},
       {"info -", 1, "line 1 has 2 columns, a line behind it not; give --delimiter", "a,b\n1,2\n3\n"},
       {"spectrum - --column 3", 1, "no column '3' among 2 (a, b)", "a,b\n1,2\n3,4\n"},
       {"info -", 1, "line 1: no number in 'just words'", "just words\n"},
       {"info -", 1, "byte 1: neither text nor a vector record nor an audio file", std::string("\x01\x00\x02", 3)},
       {"info -", 1, "not a readable audio file", "RIFF....WAVEjunk"},
       {"info -", 1, "byte 100: ends inside 40 bytes of samples that the header claims", wav.substr(0, 100)},
       {"spectrum - --points 5", 1, "--points 5, but there are only 4 samples", good},
       {"spectrum -", 1, "1 samples are too few for a spectrum", "1\n"},
       {"spectrum - --from 2", 1, "--from 2 lies beyond the end of the recording at 2 s", good},
       {"spectrum - --from-hz 1.5", 1, "no bin from 1.5 to 1", good},
       {"spectrum - --output no/such/file", 1, "no/such/file: No such file or directory", good},
       {"spectrum - --output /dev/full", 1, "/dev/full: No space left on device", good},
       {"spectrum - --window Hanm", 2, "'Hanm': unknown; the windows are Uniform, Bartlett, Hann,", good},
       {"spectrum - --points 2.5", 2, "--points '2.5': must be a whole number from 2 to 2147483647", good},
       {"spectrum - --overlap 100", 2, "--overlap '100': must be 0 to 99 per cent", good},
       {"spectrum - --from 1 --to 1", 2, "--to must be later than --from", good},
       {"spectrum - --rate 1 --delta 1", 2, "excludes", good},
       {"spectrum - --plot s.gif", 2, "must end in .png or .svg, or be -", good},
       {"spectrum - --imag 2", 2, "--imag is for CSV columns and audio channels", good},
       {"spectrum", 2, "FILE is required"},
       {"spektrum -", 2, "'spektrum': no such command; the commands are spectrum,"}});
  // A step: not taken as time.
  output("info - --column a", "t,a\n0,1\n1,1\n2,1\n9,1\n10,1\n11,1\n");
}

TEST_F(Input, AFaultLeavesTheOldOutputAndNothingElse) {
  write("result", "old");
  EXPECT_EQ(run("spectrum - --output result", "1\n2\nx\n").status, 1);
  EXPECT_EQ(run("spectrum - --output result --plot no/plot.png", "1\n2\n4\n").status, 1);
  EXPECT_EQ(run("convert - result --format flac", "1\n2\n4\n").status, 1);  // beyond full scale
  EXPECT_EQ(read("result"), "old");
  output("spectrum - --output result --format json", "1\n2\n4\n");
  EXPECT_EQ(json::parse(read("result"))["points"], 3);
  EXPECT_EQ(files().size(), 1u);
}

TEST_F(Input, VersionAndHelp) {
  EXPECT_EQ(output("--version"), "sigvex 3.35.6\n");
  for (const std::string command : {"spectrum", "info", "convert"}) {
    EXPECT_NE(output("--help").find(command), std::string::npos);
    EXPECT_NE(output(command + " --help").find("Example"), std::string::npos);
  }
}

}  // namespace sigvex_test::input_test

#include "run.h"

namespace sigvex_test::window_test {

using WindowCommand = Tool;

TEST_F(WindowCommand, TheFiguresAreThoseOfTheWeightsItWrites) {
  const json all = result("window --points 500")["windows"];
  ASSERT_EQ(all.size(), 32u);
  for (const json& window : all) {
    const std::string name = window["name"];
    output("window " + name + " --points 500 --format binary --output w");
    const Vec<double> w = read_record("w");
    ASSERT_EQ(w->points, 500);
    EXPECT_NEAR(w[250], 1, 1e-12) << name;
    double sum = 0, square = 0;
    for (size_t k = 0; k < 500; ++k) sum += w[k], square += w[k] * w[k];
    EXPECT_NEAR(window["coherent_gain"], sum / 500, 1e-12) << name;
    EXPECT_NEAR(window["enbw"], 500 * square / (sum * sum), 1e-9) << name;
  }
  const std::string table = output("window hann");
  EXPECT_NE(table.find("Hann    0.5000  1.5000      1.4236"), std::string::npos) << table;
  output("window Hann --plot w.png --output table");
  EXPECT_EQ(read("w.png").substr(1, 3), "PNG");
  expect_refusals({{"window Hanm", 2, "NAME 'Hanm': unknown; the windows are"},
                   {"window --plot x.svg", 2, "NAME is required for --plot"},
                   {"window --points 1", 2, "--points"}});
}

}  // namespace sigvex_test::window_test

#include "run.h"

namespace sigvex_test {
namespace {

using nlohmann::json;
using WindowCommand = Tool;

TEST_F(WindowCommand, TheFiguresAreThoseOfTheWeightsItWrites) {
  const json all = run({"window", "--format", "json", "--points", "500"}).json()["windows"];
  ASSERT_EQ(all.size(), 32u);
  for (const json& window : all) {
    const std::string name = window["name"];
    ASSERT_EQ(run({"window", name, "--points", "500", "--format", "binary", "--output", path("w")}).status, 0) << name;
    const Vec<double> w = read_record(path("w"));
    ASSERT_EQ(w->points, 500);
    EXPECT_NEAR(w[250], 1, 1e-12) << name;
    double sum = 0, square = 0;
    for (size_t k = 0; k < 500; ++k) sum += w[k], square += w[k] * w[k];
    EXPECT_NEAR(window["coherent_gain"], sum / 500, 1e-12) << name;
    EXPECT_NEAR(window["enbw"], 500 * square / (sum * sum), 1e-9) << name;
  }
  const std::string table = run({"window", "hann"}).out;
  EXPECT_NE(table.find("Hann    0.5000  1.5000      1.4236"), std::string::npos) << table;
  EXPECT_EQ(run({"window", "Hann", "--plot", path("w.png"), "--output", path("table")}).status, 0);
  EXPECT_EQ(contents(path("w.png")).substr(1, 3), "PNG");
  expect_refusals({{{"window", "Hanm"}, 2, "NAME 'Hanm': unknown; the windows are"},
                   {{"window", "--plot", path("x.svg")}, 2, "NAME is required for --plot"},
                   {{"window", "--points", "1"}, 2, "--points"}});
}

}  // namespace
}  // namespace sigvex_test

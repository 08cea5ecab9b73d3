// Runs the built command as a user does: arguments in, standard output, standard error and exit status out.
#pragma once

#include <stdlib.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "support/twin.h"

namespace sigvex_test {

using nlohmann::json;

struct Outcome {
  int status = -1;
  std::string out, err;
};

inline std::string contents(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// A directory of its own for every test, removed with all that is in it.
class Tool : public ::testing::Test {
 protected:
  Tool() {
    std::string name = (std::filesystem::temp_directory_path() / "sigvex-XXXXXX").string();
    directory_ = mkdtemp(name.data());
    std::filesystem::create_directory(directory_ / "work");
  }
  ~Tool() override { std::filesystem::remove_all(directory_); }

  std::string path(const std::string& name) const { return (directory_ / "work" / name).string(); }
  void write(const std::string& name, const std::string& text) const {
    std::ofstream(path(name), std::ios::binary) << text;
  }
  std::string read(const std::string& name) const { return contents(path(name)); }
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory_ / "work"))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  // A binary record of real samples, or of pairs; its bytes.
  std::string record(const std::string& name, const std::vector<double>& samples, double delta,
                     bool pairs = false) const {
    Vec<double> v(samples, pairs);
    v->delta = delta;
    FILE* const file = std::fopen(path(name).c_str(), "wb");
    EXPECT_EQ(dspf_fwrite(v, file), 0);
    std::fclose(file);
    return read(name);
  }
  Vec<double> read_record(const std::string& name) const {
    Vec<double> v;
    FILE* const stream = std::fopen(path(name).c_str(), "rb");
    EXPECT_EQ(dspf_fread(v, stream), 1) << name;
    std::fclose(stream);
    return v;
  }

  // In the test's directory, by the shell.
  Outcome run(const std::string& command, const std::string& input = {}) const {
    const auto file = [this](const char* name) { return (directory_ / name).string(); };
    std::ofstream(file("in"), std::ios::binary) << input;
    const std::string line = "cd '" + path("") + "' && '" SIGVEX_TOOL "' " + command + " <../in >../out 2>../err";
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contents(file("out")), contents(file("err"))};
  }
  // What a run that must succeed prints; as JSON.
  std::string output(const std::string& command, const std::string& input = {}) const {
    const Outcome outcome = run(command, input);
    EXPECT_EQ(outcome.status, 0) << command << '\n' << outcome.err;
    return outcome.out;
  }
  json result(const std::string& command, const std::string& input = {}) const {
    return json::parse(output(command + " --format json", input), nullptr, false);
  }
  json spectrum(const std::string& arguments, const std::string& input = {}) const {
    return result("spectrum " + arguments, input);
  }

  struct Refusal {
    std::string command;
    int status;
    const char* message;
    std::string input = {};
  };
  // Each ends with its status and one line that says so, prints nothing else and leaves no file.
  void expect_refusals(const std::vector<Refusal>& refusals) const {
    const std::vector<std::string> before = files();
    for (const auto& [command, status, message, input] : refusals) {
      const Outcome outcome = run(command, input);
      EXPECT_TRUE(outcome.status == status && outcome.out.empty()) << command << '\n' << outcome.err;
      EXPECT_TRUE(outcome.err.starts_with("sigvex: ") && outcome.err.find('\n') == outcome.err.size() - 1 &&
                  outcome.err.find(message) != std::string::npos)
          << "got: " << outcome.err << "want: " << message;
    }
    EXPECT_EQ(files(), before);
  }

 private:
  std::filesystem::path directory_;
};

inline std::vector<double> sine(size_t points, double cycles_per_sample, double amplitude, double phase = 0.3) {
  std::vector<double> x(points);
  for (size_t k = 0; k < points; ++k)
    x[k] = amplitude * std::cos(2 * M_PI * cycles_per_sample * static_cast<double>(k) + phase);
  return x;
}

}  // namespace sigvex_test

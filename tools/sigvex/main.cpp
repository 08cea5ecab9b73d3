// sigvex: the library's measurements from the command line.
#include <signal.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "commands.h"
#include "errors.h"
#include "help.h"
#include "sigvex.h"
#include "text.h"

namespace {

constexpr int kDataFault = 1, kUsageFault = 2;

// One line, whatever the message is made of.
int complain(std::string message, int status) {
  std::replace(message.begin(), message.end(), '\n', ' ');
  while (message.ends_with(' ')) message.pop_back();
  std::fprintf(stderr, "sigvex: %s\n", message.c_str());
  return status;
}

std::string version() {
  const int32_t v = dsp_version();
  return sigvex_tool::format("sigvex %d.%d.%d", v / 1000000, v / 1000 % 1000, v % 1000);
}

// The arguments from last to first, as the parser wants them. --harmonics may stand alone or be followed by its number,
// which must not be taken for the file.
std::vector<std::string> arguments(int argc, char** argv) {
  std::vector<std::string> list;
  for (int k = 1; k < argc; ++k) {
    list.emplace_back(argv[k]);
    if (list.back() == "--harmonics" && k + 1 < argc && sigvex_tool::to_number(argv[k + 1]))
      list.back() += std::string("=") + argv[++k];
  }
  std::reverse(list.begin(), list.end());
  return list;
}

// No number of any option is NaN or infinite. Ranges that the parser checks let NaN through.
void refuse_unbounded_numbers(CLI::App& program) {
  for (CLI::App* command : program.get_subcommands({}))
    for (CLI::Option* option : command->get_options()) {
      const std::string type = option->get_type_name();
      if (option->get_positional() || type.starts_with("NAME") || type.starts_with("TEXT") || type.starts_with("FILE"))
        continue;
      option->check([](const std::string& text) {
        const std::optional<double> number = sigvex_tool::to_number(text);
        return number && !std::isfinite(*number) ? text + " is not a finite number" : std::string();
      });
    }
}

int run(int argc, char** argv) {
  CLI::App program("Measures signals: reads a recording, shows what is in it.", "sigvex");
  program.set_version_flag("--version", version(), "Print the version and exit");
  program.set_help_flag("-h,--help", "Print this help and exit; 'sigvex COMMAND --help' explains a command");
  program.formatter(std::make_shared<sigvex_tool::Help>());
  program.require_subcommand(1);
  program.footer(
      "Examples:\n"
      "  sigvex info recording.wav                     what the file holds\n"
      "  sigvex spectrum recording.wav                 its strongest lines and the noise floor\n"
      "  sigvex spectrum --plot - recording.wav        the same with a picture in the terminal\n"
      "  sigvex convert recording.wav recording.csv    another file format\n"
      "  sigvex correlate stereo.wav --with 2          how much later the second channel comes\n"
      "  sigvex window FlatTop --plot -                what a window does to a spectrum\n"
      "  sigvex filter in.wav out.wav --design low-pass --cutoff 3000\n"
      "  sigvex resample in.wav out.wav --to-rate 16000\n"
      "\n"
      "A recording is a WAV, FLAC, OGG or CSV file, a vector record or \"#DSP\" text; '-' reads the standard input.\n"
      "Exit status: 0 success, 1 the data are at fault, 2 the command line is.");
  sigvex_tool::add_spectrum(program);
  sigvex_tool::add_correlate(program);
  sigvex_tool::add_window(program);
  sigvex_tool::add_info(program);
  sigvex_tool::add_convert(program);
  sigvex_tool::add_generate(program);
  sigvex_tool::add_filter(program);
  sigvex_tool::add_resample(program);
  sigvex_tool::add_decimate(program);
  refuse_unbounded_numbers(program);
  if (argc > 1 && argv[1][0] != '-') {
    std::string known;
    bool found = false;
    for (const CLI::App* command : program.get_subcommands({})) {
      found |= command->get_name() == argv[1];
      known += (known.empty() ? "" : ", ") + command->get_name();
    }
    if (!found)
      throw sigvex_tool::UsageError(sigvex_tool::in_quotes(argv[1]) + ": no such command; the commands are " + known);
  }
  try {
    program.parse(arguments(argc, argv));
  } catch (const CLI::Success& request) {  // --help, --version
    program.exit(request);
    if (std::fflush(stdout) == 0 && std::cout.flush()) return 0;
    return complain(std::string("standard output: ") + std::strerror(errno), kDataFault);
  } catch (const CLI::ParseError& error) {
    return complain(std::string(error.what()) + (argc > 1 ? "" : "; try sigvex --help"), kUsageFault);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  for (int s : {SIGPIPE, SIGXFSZ}) signal(s, SIG_IGN);  // a closed pipe, a file too large: write errors with a message
  dsp_lib_init();
  try {
    return run(argc, argv);
  } catch (const sigvex_tool::UsageError& error) {
    return complain(error.what(), kUsageFault);
  } catch (const sigvex_tool::DataError& error) {
    return complain(error.what(), kDataFault);
  } catch (const std::bad_alloc&) {
    return complain("not enough memory", kDataFault);
  } catch (const std::exception& error) {
    return complain(error.what(), kDataFault);
  }
}

#include "result.h"

#include "choices.h"
#include "errors.h"

namespace sigvex_tool {
namespace {

bool on_stdout(const ResultOptions& o) { return o.output.empty() || o.output == "-"; }

}  // namespace

void add_result_options(CLI::App& command, ResultOptions& o, const std::string& group,
                        const std::vector<std::string>& formats, const std::string& format_text,
                        const std::string& plot_text) {
  command.add_option("--format", o.format, format_text)
      ->check(CLI::IsMember(formats))
      ->capture_default_str()
      ->type_name("FORMAT")
      ->group(group);
  command.add_option("--output", o.output, "File for the result instead of the standard output")
      ->type_name("FILE")
      ->group(group);
  add_plot_option(command, "--plot", o.plot, plot_text)->group(group);
}

void refuse_one_place_for_both(const ResultOptions& o) {
  if (o.plot == "-" && on_stdout(o) && o.format != "table")
    throw UsageError("--plot - and --format " + o.format + " would both fill the standard output: give --output FILE");
  if (!on_stdout(o) && o.plot == o.output) throw UsageError("--plot and --output name the same file");
}

void deliver(const ResultOptions& o, const std::function<void(OutputFile&)>& write,
             const std::function<std::vector<Curve>()>& curves) {
  const bool in_terminal = o.plot == "-";
  OutputFile out(o.output), picture(o.plot);
  if (!o.plot.empty() && !in_terminal) plot_file(curves(), picture);
  write(out);
  if (in_terminal) {
    bool apart = on_stdout(o);
    for (const Curve& curve : curves()) {
      picture.write((apart ? "\n" : "") + plot_text(curve, terminal_columns(), kPlotRows));
      apart = true;
    }
  }
  out.commit();
  picture.commit();
}

}  // namespace sigvex_tool

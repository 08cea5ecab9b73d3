// sigvex convert: a recording in another file format, whole or a range of it.
#include <memory>

#include "blocks.h"
#include "commands.h"
#include "writer.h"

namespace sigvex_tool {
namespace {

struct Options {
  InputOptions input;
  OutputOptions output;
  double gain = 1;
};

void run_convert(Options& o) {
  format_of(o.output);
  o.input.all_channels = true;
  const std::unique_ptr<Source> source = open_source(o.input);
  const SourceInfo info = source->info();
  OutputFile out(o.output.file);
  const std::unique_ptr<Writer> writer = open_writer(out, info, o.output);
  for_each_block(*source, kBlockFrames, [&](std::vector<double>& samples) {
    for (double& x : samples) x *= o.gain;
    writer->write(samples.data(), samples.size() / info.channels);
  });
  writer->finish();
  out.commit();
}

}  // namespace

void add_convert(CLI::App& program) {
  auto o = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("convert", "Write a recording in another file format or precision");
  add_input_options(*command, o->input);
  add_output_options(*command, o->output);
  command->add_option("--gain", o->gain, "Factor for every sample")
      ->capture_default_str()
      ->type_name("G")
      ->group("Output");
  command->footer(
      "All channels of an audio file and all numeric columns of a CSV file are converted unless --channel or --column "
      "picks\n"
      "one; in the vector formats they become one record each, which --channel N reads again. FLAC is written with 24 "
      "bits.\n"
      "\n"
      "Examples:\n"
      "  sigvex convert ecg.dsp ecg.csv --unit mV\n"
      "  sigvex convert stereo.flac left.txt --channel 1 --from 10 --to 12\n"
      "  sigvex convert table.csv signal.wav --column 3 --rate 8000 --gain 0.1");
  command->callback([o] { run_convert(*o); });
}

}  // namespace sigvex_tool

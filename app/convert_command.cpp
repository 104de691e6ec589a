#include "app/convert_command.h"

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "app/choose.h"
#include "app/interrupt.h"
#include "app/progress.h"
#include "imageio/image_file.h"
#include "pipeline/convert.h"

namespace cvt::app {

using pipeline::RowSink;
using pipeline::RowSource;
using pipeline::Settings;
using pipeline::Status;

namespace {

std::string InputName(const Arguments& arguments) {
  return arguments.input == "-" ? "standard input" : arguments.input;
}

std::string OutputName(const Arguments& arguments) {
  return arguments.output == "-" ? "standard output" : arguments.output;
}

Outcome OpenSource(const Arguments& arguments, RowSource* source) {
  imageio::ReadOptions options;
  if (Outcome failed = ReadBackground(arguments, &options.background); Failed(failed)) return failed;
  if (arguments.maxPixels) options.maxPixels = *arguments.maxPixels;
  return {imageio::OpenImage(arguments.input, options, source), InputName(arguments)};
}

Outcome Explain(const Arguments& arguments, const RowSource& source, const Settings& settings) {
  if (!arguments.explain) return Done();
  std::vector<std::string> lines;
  Status status = pipeline::Explain(source.image, settings, &lines);
  for (const std::string& line : lines) std::fprintf(stderr, "%s\n", line.c_str());
  return {status, InputName(arguments)};
}

Outcome CreateSink(const Arguments& arguments, RowSink* sink) {
  imageio::WriteOptions options;
  options.format = WishedFormat(arguments);
  if (arguments.force) options.existing = imageio::Existing::Replace;
  options.temporary = RemoveWhenInterrupted;
  const SignalsHeld held;  // between the creation of the file and the note of its name
  return {imageio::CreateImage(arguments.output, options, sink), OutputName(arguments)};
}

// The sink, watched: whether it was the one that failed, and how far the work is.
RowSink Watched(const RowSink& sink, Progress* progress, bool* sinkFailed) {
  const auto note = [sinkFailed](Status status) {
    *sinkFailed = pipeline::Failed(status);
    return status;
  };
  return {[&sink, progress, note](const pipeline::Image& image) {
            progress->rows = image.height;
            return note(sink.begin(image));
          },
          [&sink, progress, note](std::int32_t y, const std::uint8_t* row) {
            ShowProgress(y, progress);
            return note(sink.write(y, row));
          },
          [&sink, note] { return note(sink.end()); }};
}

Outcome Convert(const Arguments& arguments, RowSource& source, const Settings& settings, const RowSink& sink) {
  bool sinkFailed = false;
  Progress progress = StartProgress(arguments.quiet);
  RowSink watched = Watched(sink, &progress, &sinkFailed);
  Status status = pipeline::Convert(source, settings, watched);
  EraseProgress(progress);
  return {status, sinkFailed ? OutputName(arguments) : InputName(arguments)};
}

}  // namespace

Outcome RunConvert(const Arguments& arguments) {
  imageio::Format format{};
  Status status = imageio::ChooseFormat(arguments.output, WishedFormat(arguments), &format);
  if (pipeline::Failed(status)) return {status, OutputName(arguments)};
  PaletteWish wish;
  if (Outcome failed = ReadPaletteWish(arguments, &wish); Failed(failed)) return failed;
  RowSource source;
  if (Outcome failed = OpenSource(arguments, &source); Failed(failed)) return failed;
  Settings settings;
  if (Outcome failed = ChooseSettings(arguments, wish, source.image, format, &settings); Failed(failed))
    return failed;
  if (Outcome failed = Explain(arguments, source, settings); Failed(failed)) return failed;
  RowSink sink;
  if (Outcome failed = CreateSink(arguments, &sink); Failed(failed)) return failed;
  if (settings.layout == pipeline::Layout::Planes) sink = pipeline::PackRows(std::move(sink));
  return Convert(arguments, source, settings, sink);
}

}  // namespace cvt::app

#include "app/convert_command.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "app/choose.h"
#include "app/files.h"
#include "app/fit_palette.h"
#include "app/overlay.h"
#include "app/progress.h"
#include "pipeline/convert.h"

namespace cvt::app {

using pipeline::RowSink;
using pipeline::RowSource;
using pipeline::Settings;
using pipeline::Status;

namespace {

Outcome Explain(const Arguments& arguments, const RowSource& source, const Settings& settings) {
  if (!arguments.explain) return Done();
  std::vector<std::string> lines;
  Status status = pipeline::Explain(source.image, settings, &lines);
  for (const std::string& line : lines) std::fprintf(stderr, "%s\n", line.c_str());
  return {status, InputName(arguments)};
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

Outcome CheckDepth(const Arguments& arguments, imageio::Format format) {
  const bool rawOnly = arguments.depth && pipeline::IsDirect(static_cast<std::int32_t>(*arguments.depth)) &&
                       *arguments.depth != pipeline::kDirectDepth;
  if (!rawOnly || format == imageio::Format::Raw) return Done();
  return Usage("--depth", std::to_string(*arguments.depth) +
                              " bits a pixel are for raw output only (give --format raw, or --depth 24)");
}

// Opens the image and settles what becomes of it. A palette that is fitted to the image takes all of its rows,
// so that the image is opened once more.
Outcome Prepare(const Arguments& arguments, imageio::Format format, RowSource* source, Settings* settings) {
  PaletteWish wish;
  if (Outcome failed = ReadPaletteWish(arguments.palette, &wish); Failed(failed)) return failed;
  if (Outcome failed = OpenSource(arguments, arguments.input, source); Failed(failed)) return failed;
  Chosen chosen;
  if (Outcome failed = ChooseSettings(arguments, wish, source->image, format, &chosen); Failed(failed))
    return failed;
  *settings = std::move(chosen.settings);
  const Extent output{settings->width, settings->height};
  if (Outcome failed = ReadOverlay(arguments, output, &settings->overlay); Failed(failed)) return failed;
  if (!chosen.adaptive) return Done();
  if (!std::filesystem::is_regular_file(arguments.input)) {
    return Usage("--palette", "adaptive reads the image twice, " + InputName(arguments) +
                                  " can be read only once (give a file, or another palette)");
  }
  Status status = FitPalette(*source, settings);
  if (pipeline::Failed(status)) return {status, InputName(arguments)};
  return OpenSource(arguments, arguments.input, source);
}

}  // namespace

Outcome RunConvert(const Arguments& arguments) {
  imageio::Format format{};
  Status status = imageio::ChooseFormat(arguments.output, WishedFormat(arguments), &format);
  if (pipeline::Failed(status)) return {status, OutputName(arguments)};
  if (Outcome failed = CheckDepth(arguments, format); Failed(failed)) return failed;
  RowSource source;
  Settings settings;
  if (Outcome failed = Prepare(arguments, format, &source, &settings); Failed(failed)) return failed;
  if (Outcome failed = Explain(arguments, source, settings); Failed(failed)) return failed;
  RowSink sink;
  if (Outcome failed = CreateSink(arguments, &sink); Failed(failed)) return failed;
  const bool takesPlanes = format == imageio::Format::Raw;
  if (settings.layout == pipeline::Layout::Planes && !takesPlanes) sink = pipeline::PackRows(std::move(sink));
  return Convert(arguments, source, settings, sink);
}

}  // namespace cvt::app

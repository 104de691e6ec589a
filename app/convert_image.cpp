#include "app/convert_image.h"

#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "app/checksum.h"
#include "app/fit_palette.h"
#include "app/interrupt.h"
#include "app/overlay.h"
#include "app/progress.h"

namespace cvt::app {

using imageio::Format;
using pipeline::RowSink;
using pipeline::RowSource;
using pipeline::Settings;
using pipeline::Status;

namespace {

Outcome Explain(const Arguments& arguments, const Files& files, const RowSource& source,
                const Settings& settings) {
  if (!arguments.explain) return Done();
  std::vector<std::string> lines;
  Status status = pipeline::Explain(source.image, settings, &lines);
  std::string text;  // written at once: other workers may have something to tell as well
  if (arguments.outDir) text = OneLine(files.input) + ":\n";
  for (const std::string& line : lines) text += line + "\n";
  std::fputs(text.c_str(), stderr);
  return {status, InputName(files)};
}

// The sink, watched: whether it was the one that failed, how far the work is, and what was made.
RowSink Watched(const RowSink& sink, Progress* progress, Made* made, bool* sinkFailed) {
  const auto note = [sinkFailed](Status status) {
    *sinkFailed = pipeline::Failed(status);
    return status;
  };
  return {[&sink, progress, made, note](const pipeline::Image& image) {
            progress->whole = image.height;
            made->width = image.width;
            made->height = image.height;
            made->depth = image.depth;
            return note(sink.begin(image));
          },
          [&sink, progress, note](std::int32_t y, const std::uint8_t* row) {
            ShowPercent(y, progress);
            return note(sink.write(y, row));
          },
          [&sink, note] { return note(sink.end()); }};
}

Outcome Convert(const Files& files, RowSource& source, const Settings& settings, const RowSink& sink,
                Messages messages, Made* made) {
  bool sinkFailed = false;
  Progress progress = StartProgress(messages == Messages::Quiet);
  RowSink watched = Watched(sink, &progress, made, &sinkFailed);
  Status status = pipeline::Convert(source, settings, watched);
  EraseProgress(progress);
  return {status, sinkFailed ? OutputName(files) : InputName(files)};
}

Outcome CheckDepth(const Arguments& arguments, Format format) {
  const auto depth = static_cast<std::int32_t>(arguments.depth.value_or(pipeline::kDirectDepth));
  return {imageio::CheckDepth(depth, format), "--depth"};
}

// A palette that is fitted to the image takes all of its rows, so that the image is opened once more.
Outcome Fit(const Arguments& arguments, const Files& files, RowSource* source, Settings* settings) {
  Status status = FitPalette(*source, settings);
  if (pipeline::Failed(status)) return {status, InputName(files)};
  return OpenSource(arguments, files.input, source);
}

// Rows that go into a file as the format wants them, counted into the checksum where a report tells it.
RowSink Arranged(const Arguments& arguments, RowSink sink, const Settings& settings, Format format, Made* made) {
  if (arguments.report) sink = Checked(std::move(sink), &made->crc);
  const bool packs = settings.layout == pipeline::Layout::Planes && !imageio::TakesAnyRows(format);
  return packs ? pipeline::PackRows(std::move(sink)) : sink;
}

// A pipe may have a reader that takes its time: nothing is held for that.
bool ReportsToFile(const Arguments& arguments) {
  std::error_code unknown;
  return arguments.report && *arguments.report != "-" &&
         std::filesystem::is_regular_file(*arguments.report, unknown);
}

}  // namespace

Outcome OpenConversion(const Arguments& arguments, const Wishes& wishes, const Files& files, Format format,
                       RowSource* source, Chosen* chosen) {
  if (Outcome failed = CheckDepth(arguments, format); Failed(failed)) return failed;
  if (Outcome failed = OpenSource(arguments, files.input, source); Failed(failed)) return failed;
  if (Outcome failed = ChooseSettings(arguments, wishes, source->image, format, chosen); Failed(failed))
    return failed;
  if (chosen->adaptive && (files.input == "-" || !std::filesystem::is_regular_file(files.input))) {
    return Usage("--palette", "adaptive reads the image twice, " + InputName(files) +
                                  " can be read only once (give a file, or another palette)");
  }
  Settings& settings = chosen->settings;
  return ReadOverlay(arguments, files, {settings.width, settings.height}, &settings.overlay);
}

Outcome ConvertInto(const Arguments& arguments, const Wishes& wishes, const Files& files, Format format,
                    const CreateRows& create, Messages messages, Made* made) {
  RowSource source;
  Chosen chosen;
  Outcome outcome = OpenConversion(arguments, wishes, files, format, &source, &chosen);
  if (Failed(outcome)) return outcome;
  made->fromWidth = source.image.width;
  made->fromHeight = source.image.height;
  RowSink sink;
  if (outcome = create(&sink); Failed(outcome)) return outcome;
  Settings& settings = chosen.settings;
  if (chosen.adaptive) outcome = Fit(arguments, files, &source, &settings);
  if (!Failed(outcome)) outcome = Explain(arguments, files, source, settings);
  if (Failed(outcome)) return outcome;
  sink = Arranged(arguments, std::move(sink), settings, format, made);
  return Convert(files, source, settings, sink, messages, made);
}

Outcome ConvertImage(const Arguments& arguments, const Wishes& wishes, const Files& files, Messages messages,
                     Made* made) {
  Format format{};
  Status status = imageio::ChooseFormat(files.output, WishedFormat(arguments), &format);
  if (pipeline::Failed(status)) return {status, OutputName(files)};
  const auto create = [&arguments, &files, made](RowSink* sink) {
    return CreateSink(arguments, files, sink, [&arguments, made] {
      made->held = ReportsToFile(arguments);
      if (made->held) HoldInterrupts();
    });
  };
  return ConvertInto(arguments, wishes, files, format, create, messages, made);
}

}  // namespace cvt::app

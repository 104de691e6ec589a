#include "pipeline/convert.h"

#include <memory>

#include "pipeline/run.h"
#include "pipeline/two_colors.h"

namespace cvt::pipeline {
namespace {

using Runs = std::vector<std::unique_ptr<Run>>;

// Sets the stages up from the last to the first: each pushes its rows into the one behind it.
Status StartRuns(const Plan& plan, TakeRowFunction last, Runs* runs) {
  TakeRowFunction next = std::move(last);
  runs->resize(plan.stages.size());
  for (std::size_t i = plan.stages.size(); i-- > 0;) {
    (*runs)[i] = std::make_unique<Run>();
    Run* run = (*runs)[i].get();
    if (Status bad = StartRun(plan.stages[i], std::move(next), run); Failed(bad)) return bad;
    next = [run](std::int32_t, const std::uint8_t* row) { return PushRow(run, row); };
  }
  return Ok();
}

// Rows of output must neither be missing nor come twice.
Status CheckRowsOut(const Runs& runs) {
  for (const std::unique_ptr<Run>& run : runs)
    if (run->rowsOut != run->stage.output.height)
      return Fail(Code::Limit, "the conversion made " + std::to_string(run->rowsOut) + " rows instead of " +
                                   std::to_string(run->stage.output.height) + " (please report this)");
  return Ok();
}

// What the sink gets. An image that is scaled keeps the size that it has on paper.
Image OutputOf(const Plan& plan, const Image& source, const Settings& settings) {
  Image output = plan.stages.back().output;
  const bool clipped = settings.crop.width > 0;
  const std::int32_t width = clipped ? settings.crop.width : source.width;
  const std::int32_t height = clipped ? settings.crop.height : source.height;
  output.resolution = {source.resolution.x * output.width / width, source.resolution.y * output.height / height};
  return output;
}

Status RunStages(RowSource& source, const Settings& settings, RowSink& sink) {
  Plan plan;
  if (Status bad = MakePlan(source.image, settings, &plan); Failed(bad)) return bad;
  Runs runs;
  const auto write = [&sink](std::int32_t y, const std::uint8_t* row) { return sink.write(y, row); };
  if (Status bad = StartRuns(plan, write, &runs); Failed(bad)) return bad;
  if (Status bad = sink.begin(OutputOf(plan, source.image, settings)); Failed(bad)) return bad;
  std::vector<std::uint8_t> row(RowBytes(source.image));
  for (std::int32_t y = 0; y < source.image.height; ++y) {
    if (Status bad = source.read(row.data()); Failed(bad)) return bad;
    if (Status bad = PushRow(runs.front().get(), row.data()); Failed(bad)) return bad;
  }
  if (Status bad = CheckRowsOut(runs); Failed(bad)) return bad;
  return sink.end();
}

}  // namespace

Status Convert(RowSource& source, const Settings& settings, RowSink& sink) {
  if (!WantsTwoColors(settings)) return RunStages(source, settings, sink);
  RowSink narrowing = NarrowRows(&sink);
  return RunStages(source, WithTwoBits(settings), narrowing);
}

}  // namespace cvt::pipeline

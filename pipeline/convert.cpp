#include "pipeline/convert.h"

#include <memory>

#include "pipeline/stage.h"
#include "pipeline/two_colors.h"

namespace cvt::pipeline {
namespace {

using Workers = std::vector<std::unique_ptr<Worker>>;

// Sets the stages up from the last to the first: each pushes its rows into the one behind it.
Status StartWorkers(const Plan& plan, TakeRowFunction last, Workers* workers) {
  TakeRowFunction next = std::move(last);
  workers->resize(plan.stages.size());
  for (std::size_t i = plan.stages.size(); i-- > 0;) {
    (*workers)[i] = std::make_unique<Worker>();
    Worker* worker = (*workers)[i].get();
    if (Status bad = StartWorker(plan.stages[i], std::move(next), worker); Failed(bad)) return bad;
    next = [worker](std::int32_t, const std::uint8_t* row) { return PushRow(worker, row); };
  }
  return Ok();
}

// Rows of output must neither be missing nor come twice.
Status CheckRowsOut(const Workers& workers) {
  for (const std::unique_ptr<Worker>& worker : workers)
    if (worker->rowsOut != worker->stage.output.height)
      return Fail(Code::Limit, "the conversion made " + std::to_string(worker->rowsOut) + " rows instead of " +
                                   std::to_string(worker->stage.output.height) + " (please report this)");
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
  Workers workers;
  const auto write = [&sink](std::int32_t y, const std::uint8_t* row) { return sink.write(y, row); };
  if (Status bad = StartWorkers(plan, write, &workers); Failed(bad)) return bad;
  if (Status bad = sink.begin(OutputOf(plan, source.image, settings)); Failed(bad)) return bad;
  std::vector<std::uint8_t> row(RowBytes(source.image));
  for (std::int32_t y = 0; y < source.image.height; ++y) {
    if (Status bad = source.read(row.data()); Failed(bad)) return bad;
    if (Status bad = PushRow(workers.front().get(), row.data()); Failed(bad)) return bad;
  }
  if (Status bad = CheckRowsOut(workers); Failed(bad)) return bad;
  return sink.end();
}

}  // namespace

Status Convert(RowSource& source, const Settings& settings, RowSink& sink) {
  if (!WantsTwoColors(settings)) return RunStages(source, settings, sink);
  RowSink narrowing = NarrowRows(&sink);
  return RunStages(source, WithTwoBits(settings), narrowing);
}

}  // namespace cvt::pipeline

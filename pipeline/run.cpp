#include "pipeline/run.h"

#include <utility>

namespace cvt::pipeline {
namespace {

// The rows of a part as the whole stage numbers them, without those that only lead up to it.
TakeRowFunction Numbered(Run* run, const Part& part) {
  return [run, part](std::int32_t y, const std::uint8_t* row) {
    if (y < part.dropped) return Ok();
    ++run->rowsOut;
    return run->next(part.firstOut + y - part.dropped, row);
  };
}

bool Wants(const RunningPart& running, std::int32_t y) {
  const Part& part = running.part;
  const std::int32_t rows = part.rowsIn + (part.last ? 0 : RowsAhead(running.worker.stage));
  return y >= part.firstIn && y < part.firstIn + rows;
}

}  // namespace

Status StartRun(const Stage& stage, TakeRowFunction next, Run* run) {
  run->stage = stage;
  run->next = std::move(next);
  for (std::int32_t i = 0; i < stage.parts; ++i) {
    run->parts.push_back(std::make_unique<RunningPart>());
    RunningPart& started = *run->parts.back();
    started.part = PartOf(stage, i);
    if (Status bad = StartWorker(StageOfPart(stage, i), Numbered(run, started.part), &started.worker); Failed(bad))
      return bad;
  }
  return Ok();
}

Status PushRow(Run* run, const std::uint8_t* row) {
  const std::int32_t y = run->rowsIn++;
  for (const std::unique_ptr<RunningPart>& running : run->parts) {
    if (!Wants(*running, y)) continue;
    if (Status bad = PushRow(&running->worker, row); Failed(bad)) return bad;
  }
  return Ok();
}

}  // namespace cvt::pipeline

#include "pipeline/parts.h"

#include <algorithm>

#include "pipeline/limits.h"

namespace cvt::pipeline {
namespace {

constexpr std::int32_t kOverlap = 3;      // lines of the smaller image that a part starts before what it is for
constexpr std::int32_t kFewestLines = 8;  // of the smaller image in a part

struct Cut {
  std::int32_t height, newHeight, parts;
};

// Parts are cut at lines of the smaller of source and output: those are whole lines of both, or nearly.
std::int32_t Smaller(const Cut& cut) { return std::min(cut.height, cut.newHeight); }

std::int32_t CutBefore(const Cut& cut, std::int32_t i) {
  return static_cast<std::int32_t>(std::int64_t{i} * Smaller(cut) / cut.parts);
}

// The line of an image of `total` lines that is nearest to a line of the smaller one.
std::int32_t LineOf(const Cut& cut, std::int32_t line, std::int32_t total) {
  const std::int64_t smaller = Smaller(cut);
  return static_cast<std::int32_t>((2 * std::int64_t{line} * total + smaller) / (2 * smaller));
}

Part PartOf(const Cut& cut, std::int32_t i) {
  const std::int32_t from = CutBefore(cut, i), to = CutBefore(cut, i + 1), start = i == 0 ? 0 : from - kOverlap;
  Part part;
  part.firstIn = LineOf(cut, start, cut.height);
  part.rowsIn = LineOf(cut, to, cut.height) - part.firstIn;
  part.firstOut = LineOf(cut, from, cut.newHeight);
  part.rowsOut = LineOf(cut, to, cut.newHeight) - part.firstOut;
  part.dropped = part.firstOut - LineOf(cut, start, cut.newHeight);
  part.last = i + 1 == cut.parts;
  return part;
}

bool IsMultiple(std::int32_t newHeight, std::int32_t height) {
  return newHeight > height && newHeight % height == 0;
}

// Every part must be small enough. Averages to a multiple of the height lie one line lower: all parts of an image
// must, or none.
bool Serves(const Cut& cut) {
  for (std::int32_t i = 0; i < cut.parts; ++i) {
    const Part part = PartOf(cut, i);
    const std::int32_t made = part.dropped + part.rowsOut;
    if (!CanAverage(part.rowsIn, made)) return false;
    if (IsMultiple(made, part.rowsIn) != IsMultiple(cut.newHeight, cut.height)) return false;
  }
  return true;
}

}  // namespace

std::int32_t PartsNeeded(std::int32_t height, std::int32_t newHeight) {
  for (Cut cut{height, newHeight, 1}; cut.parts == 1 || Smaller(cut) / cut.parts >= kFewestLines; ++cut.parts) {
    if (Serves(cut)) return cut.parts;
  }
  return 1;
}

Part PartOf(const Stage& stage, std::int32_t i) {
  return PartOf({stage.entry.image.height, stage.output.height, stage.parts}, i);
}

Stage StageOfPart(const Stage& stage, std::int32_t i) {
  if (stage.parts == 1) return stage;
  const Part part = PartOf(stage, i);
  Stage alone = stage;
  alone.parts = 1;
  alone.entry.image.height = part.rowsIn;
  alone.output.height = part.dropped + part.rowsOut;
  // Never a single band: averages to a multiple would lie otherwise than in parts that have several.
  alone.bandLines = std::min(stage.bandLines, part.rowsIn - 1);
  alone.goesOn = !part.last;
  return alone;
}

}  // namespace cvt::pipeline

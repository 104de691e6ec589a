// Tall images that are averaged, cut into parts.
//
// Averaging forms the product of the two heights, which 32 bits hold for some four thousand lines each. Taller
// images go through in parts, each a conversion of its own. A part starts a few lines before what it is for,
// since its first lines lack the ones above them, and these lines are dropped: no seam is left. Parts begin and
// end at whole lines of source and output; where the ratio has none in common, at the nearest.
#pragma once

#include <cstdint>

#include "pipeline/plan.h"

namespace cvt::pipeline {

/// Rows that a part takes and gives, of the stage that it is a part of.
struct Part {
  std::int32_t firstIn = 0, rowsIn = 0;
  std::int32_t firstOut = 0, rowsOut = 0;  // that it is for
  std::int32_t dropped = 0;                // rows that come out before these
  bool last = true;                        // nothing follows; else it takes RowsAhead more behind its last
};

/// The fewest parts by which a height can be averaged to another; 1 where none would do.
std::int32_t PartsNeeded(std::int32_t height, std::int32_t newHeight);

/// Part `i` of stage.parts.
Part PartOf(const Stage& stage, std::int32_t i);

/// The stage that part `i` is by itself.
Stage StageOfPart(const Stage& stage, std::int32_t i);

}  // namespace cvt::pipeline

// What a conversion will be, settled before any work: the chains that follow one another, and for each the
// form in which rows enter, what the routines are told, and where bands are cut.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "pipeline/convert.h"
#include "pipeline/image.h"
#include "pipeline/intake.h"

namespace cvt::pipeline {

/// One chain: rows of `entry.image` come in, rows of `output` go out.
struct Stage {
  Entry entry;
  Image output;
  std::vector<IRGB> wantedColors;  // of the output's values as the routines see them; none for direct colour
  Crop crop;                       // width 0: no clipping
  std::uint8_t halftoneMethod = kNearest;
  std::uint8_t scaleDownMethod = 0;
  std::int32_t threshold = kMiddleThreshold;
  Thresholds thresholds;
  bool smooth = false;
  std::shared_ptr<const Overlay> overlay;  // of the last stage; may be null
  std::int16_t keepValue = 0;              // pixel value whose runs never vanish
  std::uint32_t paperValue = 0;            // pixel value that lines are drawn on: what merging lines starts from
  std::int32_t bandLines = 0;              // most lines in a band
  std::int32_t parts = 1;                  // that go through one after another, see parts.h
  bool goesOn = false;                     // averages in parts: RowsAhead more rows come behind the last one
};

struct Plan {
  std::vector<Stage> stages;  // at least one; the last gives what the sink gets
};

/// Lines of the band of `stage` that starts at line `top`: as many as there may be, but where lines merge
/// or are sampled, cut where an output line ends, so that no output line is handed on twice.
std::int32_t LinesFrom(const Stage& stage, std::int32_t top);

/// Rows by which averages lag behind the rows of `stage` that they are made of. Rows enter so much ahead; the
/// first that does is the mean of those that would be lost.
std::int32_t RowsAhead(const Stage& stage);

/// Code::Usage or Code::Limit with the reason when the image cannot be converted so.
Status MakePlan(const Image& image, const Settings& settings, Plan* plan);

}  // namespace cvt::pipeline

// The last thing that happens to a finished band: an overlay is laid over its lines, through the library's
// translucent line writers.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "pipeline/convert.h"

namespace cvt::pipeline {

/// An overlay in pixel values of the output. Transparent pixels have a value that no output pixel has; it is
/// the one that the transparency table marks.
struct Stamp {
  std::shared_ptr<const Overlay> overlay;
  std::vector<std::uint32_t> valueOf;      // of each index of the overlay
  std::vector<std::uint8_t> transparency;  // by value
  std::vector<std::uint8_t> indices;       // one line of the overlay,
  std::vector<std::uint16_t> runLengths;   //   and the same as runs
  std::vector<std::uint32_t> values;
};

/// Empty where there is no overlay, which is null then.
Stamp MakeStamp(std::shared_ptr<const Overlay> overlay, const Image& output);

/// Lays the overlay over the lines of a band. False when memory is exhausted.
bool StampBand(Stamp* stamp, tagRasterPacked* band);

}  // namespace cvt::pipeline

// One conversion from start to end: rows in, settings, rows out. What an application calls.
//
// Sets up descriptors, context, tables and buffers for the library, plans bands that stay within its
// limits, pumps them through Cvtr2r and gives everything back, whatever happens. Memory does not depend
// on the height of the image.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pipeline/image.h"
#include "pipeline/status.h"

namespace cvt::pipeline {

enum class Halftone : std::uint8_t { Nearest, Diffusion };

/// What to make of the image.
struct Settings {
  std::int32_t depth = 1;                 // bits in an output pixel, 1 to 8
  std::vector<IRGB> palette;              // output colours, at most 1 << depth; order is kept
  Halftone halftone = Halftone::Nearest;  // Diffusion needs depth 1
  std::int32_t threshold = 128;           // depth 1, Nearest: white from this gray level up, 0 to 256
  bool invert = false;                    // swap black and white: match the negative
  Layout layout = Layout::Packed;         // of the last band and of the rows that the sink gets
  std::int32_t bandLines = 0;             // most lines in a band, 0: as many as fit (results do not depend on it)
};

/// Converts all rows of `source` and writes them to `sink`.
///
/// Code::Usage   the settings cannot be met for this image; nothing was read or written
/// Code::Limit   the image is outside the limits of the system; nothing was read or written
/// other         as `source` or `sink` answered; rows may have been written, `sink.end` was not called
Status Convert(RowSource& source, const Settings& settings, RowSink& sink);

/// Tells, a line a link, which conversions the chain will run for such an image, with sizes, depths,
/// bands and bytes. Fails as Convert does for images and settings that cannot be converted.
Status Explain(const Image& image, const Settings& settings, std::vector<std::string>* lines);

}  // namespace cvt::pipeline

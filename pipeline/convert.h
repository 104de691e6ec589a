// One conversion from start to end: rows in, settings, rows out. What an application calls.
//
// Sets up descriptors, context, tables and buffers for the library, plans bands that stay within its
// limits, pumps them through Cvtr2r and gives everything back, whatever happens. Where one chain of
// conversions cannot do it, several follow one another. Memory does not depend on the height of the image.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pipeline/image.h"
#include "pipeline/status.h"

namespace cvt::pipeline {

enum class Halftone : std::uint8_t { Nearest, Diffusion, Ordered };
enum class Reduce : std::uint8_t { Keep, Decimate, Smooth };  // thin features kept, sampled, area averaged
enum class Enlarge : std::uint8_t { Replicate, Smooth };

inline constexpr std::int32_t kMiddleThreshold = 128;  // white from the lighter half of the gray levels up

/// A rectangle of the source image; width 0: the whole image.
struct Crop {
  std::int32_t x = 0, y = 0, width = 0, height = 0;
};

/// Thresholds of ordered dither, row by row; a pixel lighter than its threshold moves up. Width and height
/// are 1 to 255. Empty: the 8 x 8 matrix of dispersed dots.
struct Thresholds {
  std::int32_t width = 0, height = 0;
  std::vector<std::uint8_t> values;
};

/// An image of up to 8 bits that is laid over the converted one; it must lie within it.
struct Overlay {
  Image image = {};                     // indexed, Packed; width 0: none
  std::vector<std::uint8_t> rows = {};  // RowBytes apart
  std::int32_t x = 0, y = 0;            // of its first pixel in the output
  std::int32_t transparent = -1;        // index whose pixels leave the image as it is; -1: none
};

/// What to make of the image.
struct Settings {
  std::int32_t depth = 1;                 // bits in an output pixel: 1 to 8, or 15, 16, 24, 32 for direct colour
  std::vector<IRGB> palette = {};         // output colours, at most 1 << depth, order kept; none for direct colour
  std::vector<IRGB> writtenPalette = {};  // colours that the output tells for its values; none: palette
  Halftone halftone = Halftone::Nearest;
  Thresholds thresholds = {};                 // for Halftone::Ordered
  std::int32_t threshold = kMiddleThreshold;  // depth 1, Nearest: white from this gray level up, 0 to 256
  double gamma = 1.0;                         // tone curve before reduction
  bool invert = false;                        // swap black and white: match the negative
  Layout layout = Layout::Packed;             // of the last band and of the rows that the sink gets
  Crop crop = {};                             // cut out before anything else
  std::int32_t width = 0, height = 0;         // new size; 0: as it is
  Reduce reduce = Reduce::Smooth;
  Enlarge enlarge = Enlarge::Replicate;
  IRGB keepColor{0, 0, 0};  // Reduce::Keep: the colour whose runs never vanish
  Overlay overlay = {};     // its colours become the nearest of the output
  // Most lines in a band, 0: as many as fit. Results do not depend on it, but for smooth scaling to the same
  // height or a multiple of it: cut into bands, such an image starts with the mean of three lines, not two, or
  // lies one line lower.
  std::int32_t bandLines = 0;
};

/// Converts all rows of `source` and writes them to `sink`.
///
/// Code::Usage   the settings cannot be met for this image; nothing was read or written
/// Code::Limit   the image is outside the limits of the system; nothing was read or written
/// other         as `source` or `sink` answered; rows may have been written, `sink.end` was not called
Status Convert(RowSource& source, const Settings& settings, RowSink& sink);

/// What colours become by the gamma and the inversion of `settings`.
std::vector<IRGB> ToneOf(const Settings& settings, std::vector<IRGB> colors);

/// Tells, a line a link, which conversions the chain will run for such an image, with sizes, depths,
/// bands and bytes. Fails as Convert does for images and settings that cannot be converted.
Status Explain(const Image& image, const Settings& settings, std::vector<std::string>* lines);

}  // namespace cvt::pipeline

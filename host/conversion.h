// Setting up one conversion: the context, its tables and buffers, and where finished bands go.
//
// Everything that a conversion needs from the host hangs on its context; conversions on different contexts
// know nothing of each other and may run on different threads.
#pragma once

#include <cstdint>

#include "cvt/cvtr2r.h"

namespace cvt::host {

/// Takes a finished band of either kind; it copies what it keeps. 0 for success, anything else ends the
/// conversion with that status.
using NextStage = std::int16_t (*)(void* user, tagRasterPacked* band);

inline constexpr std::uint16_t kMostBandBytes = 65535;

/// What a conversion is set up from. Only lineCapacity, the two descriptors and `next` have no default.
/// Descriptors are read while the conversion is opened; their palettes and the matrix need not outlive that.
///
/// A context gets the tables of ordered dither when halftoneMethod asks for that and the destination is indexed,
/// the table of a uniform cube when the destination's palette starts with CubeLevels' UniformCube, and lines to
/// scale with when the images differ in size or origin or the source is clipped.
struct ConversionSetup {
  const tagIGFD* source = nullptr;
  const tagIGFD* destination = nullptr;
  std::uint16_t lineCapacity = 0;  // image column after the last of the widest line in the chain, 1 or more
  NextStage next = nullptr;
  void* user = nullptr;                      // handed to `next`
  std::uint16_t bandLimit = kMostBandBytes;  // bytes in the largest band that `next` takes, 1 or more
  std::uint8_t halftoneMethod = kNearest;
  std::uint8_t scaleDownMethod = 0;  // kDecimate, or anything else to keep thin features
  std::uint32_t paperValue = 0;      // pixel value before the first line, which lines that merge differ from
  const std::uint8_t* ditherMatrix = nullptr;  // thresholds of ordered dither, copied; null: 8 x 8 Bayer
  std::uint8_t ditherWidth = 0;                // of a matrix that is given, 1 or more; kFixedBlock needs 64
  std::uint8_t ditherHeight = 0;               // thresholds or more
  std::int32_t threshold = 128;                // monochrome destination: white from this gray level up, 0 to 256
  bool invertMono = false;                     // monochrome destination: swap black and white
  double gamma = 1.0;                          // tone curve of direct-colour sources, above 0; 1 leaves them alone
};

/// Makes a context that Cvtr2r can be called with. Palettes must have 1 << bitsPerPixel entries.
///
/// Null when memory is exhausted or the set-up cannot be met: no room for a pixel, no next stage, an
/// indexed descriptor without a palette or of other than 1 to 8 bits, gamma not above 0, bandLimit 0, a matrix
/// of too few thresholds, an image to be scaled that is wider than lineCapacity.
/// Nothing is left allocated then. End the conversion with CloseConversion.
tagCRLA* OpenConversion(const ConversionSetup& setup);

/// The `user` that a conversion was set up with.
void* UserOf(const tagCRLA* context);

/// Releases a context made by OpenConversion and all that belongs to it; null is allowed.
void CloseConversion(tagCRLA* context);

}  // namespace cvt::host

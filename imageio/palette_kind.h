// What a palette is made of, as far as file formats care.
#pragma once

#include <algorithm>

#include "pipeline/image.h"

namespace cvt::imageio {

inline bool IsGray(IRGB color) { return color.red == color.green && color.green == color.blue; }

/// Indexed, with grays only.
inline bool IsGray(const pipeline::Image& image) {
  return image.depth <= 8 &&
         std::all_of(image.palette.begin(), image.palette.end(), [](IRGB c) { return IsGray(c); });
}

/// Indexed, and the palette is exactly the gray ramp of `depth` bits.
inline bool IsRamp(const pipeline::Image& image, std::int32_t depth) {
  if (image.depth > 8) return false;
  return image.palette == pipeline::GrayRamp(depth);
}

/// One bit, black and white in either order.
inline bool IsBlackAndWhite(const pipeline::Image& image) {
  constexpr IRGB kBlack{0, 0, 0};
  constexpr IRGB kWhite{255, 255, 255};
  const std::vector<IRGB>& palette = image.palette;
  if (image.depth != 1 || palette.size() != 2) return false;
  return (palette[0] == kBlack && palette[1] == kWhite) || (palette[0] == kWhite && palette[1] == kBlack);
}

}  // namespace cvt::imageio

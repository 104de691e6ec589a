// Bands as the pipeline sees them from outside the library: how many bytes, and where what stands.
#pragma once

#include <cstdint>
#include <cstring>

#include "cvt/records.h"
#include "pipeline/image.h"

namespace cvt::pipeline {

/// Bytes of pixels in the largest band: a block is told by a 16-bit size that includes its header.
inline constexpr std::int32_t kBandBytes = 65535 - static_cast<std::int32_t>(kBandHeaderBytes);

/// Bits that a pixel of a band takes: its planes, or the bits it is stored in.
constexpr std::int32_t BandBits(Layout layout, std::int32_t depth) {
  if (layout == Layout::Planes) return depth;
  return depth == kDirectDepth ? 32 : StoredBits(depth);
}

/// Bytes of one line of a band, all its planes together. Rows are padded to 16-bit words.
constexpr std::int32_t BandLineBytes(Layout layout, std::int32_t width, std::int32_t bits) {
  if (layout == Layout::Planes) return (width + 15) / 16 * 2 * bits;
  return (width * bits + 15) / 16 * 2;
}

inline std::uint8_t* PixelsOf(tagRasterPacked* band) {
  return reinterpret_cast<std::uint8_t*>(band) + kBandHeaderBytes;
}

/// The layout that a band's operation code tells.
inline Layout LayoutOf(const tagRasterPacked* band) {
  std::uint16_t code = 0;
  std::memcpy(&code, reinterpret_cast<const std::uint8_t*>(band) - kBandPrefixBytes, sizeof code);
  return code == kPlaneBand ? Layout::Planes : Layout::Packed;
}

}  // namespace cvt::pipeline

// Bands as the pipeline sees them from outside the library: how many bytes, and where what stands.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>

#include "cvt/host.h"
#include "pipeline/image.h"

namespace cvt::pipeline {

/// Bytes of pixels in the largest band: a block is told by a 16-bit size that includes its header.
inline constexpr std::int32_t kBandBytes = 65535 - static_cast<std::int32_t>(kBandHeaderBytes);

/// Bits that a pixel of a band takes: its planes, or the bits it is stored in.
constexpr std::int32_t BandBits(Layout layout, std::int32_t depth) {
  if (layout == Layout::Planes) return depth;
  return depth > 16 ? 32 : StoredBits(depth);
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

struct FreeBand {
  void operator()(tagRasterPacked* band) const {
    SioFreeSMem(reinterpret_cast<std::uint8_t*>(band) - kBandPrefixBytes);
  }
};
using OwnedBand = std::unique_ptr<tagRasterPacked, FreeBand>;

/// A block for a band of up to `bytes` bytes of pixels; null when memory is exhausted.
inline OwnedBand NewBand(std::int32_t bytes) {
  return OwnedBand(static_cast<tagRasterPacked*>(
      SioCreateOp(kPackedBand, static_cast<std::uint32_t>(bytes) + kBandHeaderBytes)));
}

/// Labels a block as a band of `layout` and clears its header.
inline void LabelBand(Layout layout, std::int32_t bytes, tagRasterPacked* band) {
  const std::uint16_t prefix[2] = {
      layout == Layout::Planes ? kPlaneBand : kPackedBand,
      static_cast<std::uint16_t>(static_cast<std::uint32_t>(bytes) + kBandHeaderBytes)};
  std::memcpy(reinterpret_cast<std::uint8_t*>(band) - kBandPrefixBytes, prefix, sizeof prefix);
  *band = {};
}

}  // namespace cvt::pipeline

// A new band: its block from the host and its header.
#pragma once

#include <cstdint>
#include <type_traits>

#include "cvt/host.h"
#include "frame/layout.h"

namespace cvt {

// Where a band lies and what it holds; the low 16 bits go to the header.
struct BandShape {
  std::uint32_t left, top, width, lines, depth;
};

// Bytes of one plane of a band.
constexpr std::uint32_t PlaneBytes(std::uint32_t width, std::uint32_t lines) { return RowBytes(width, 1) * lines; }

// A band with room for `pixelBytes` bytes of pixels, as its family reckons them; null when memory is
// exhausted. What a packed band's header has no use for is left as the host delivered it.
template <class To>
typename To::Band* CreateBand(const BandShape& shape, std::uint32_t pixelBytes) {
  auto* band = static_cast<typename To::Band*>(SioCreateOp(To::kOperation, pixelBytes + kBandHeaderBytes));
  if (band == nullptr) return nullptr;
  band->left = Low16(shape.left);
  band->top = Low16(shape.top);
  band->width = Low16(shape.width);
  band->lineCount = Low16(shape.lines);
  band->bitsPerPixel = Low16(shape.depth);
  if constexpr (std::is_same_v<To, Planes>) band->planeBytes = Low16(PlaneBytes(shape.width, shape.lines));
  return band;
}

}  // namespace cvt

// How pixels of one value are painted over those that a byte, or a 16-bit unit of small pixels, holds.
#pragma once

#include <cstdint>

#include "frame/ints.h"

namespace cvt {

// Part of a byte of a plane: the pixels that a run covers, from `first` on.
constexpr std::uint8_t PixelMask(std::uint32_t first, std::uint32_t pixels) {
  return Low8((0xFFU >> first) & ~(0xFFU >> (first + pixels)));
}

constexpr std::uint8_t PaintPlaneByte(std::uint8_t old, std::uint8_t mask, bool set) {
  return Low8(set ? old | std::uint32_t{mask} : old & ~std::uint32_t{mask});
}

// Pixels of 1 << depthClass bits in a unit of 16, the first in the top bits.
struct UnitLayout {
  std::uint32_t bits;    // in a pixel
  std::uint32_t pixels;  // in a unit
};

constexpr UnitLayout UnitLayoutOf(std::uint32_t depthClass) { return {1U << depthClass, 16U >> depthClass}; }

// Only the pixel's own field is cleared first: a value too wide for it spills into the pixels before it.
constexpr std::uint32_t PaintInUnit(std::uint32_t unit, UnitLayout layout, std::uint32_t pixel,
                                    std::uint32_t value) {
  const std::uint32_t shift = 16 - layout.bits * (pixel + 1);
  const std::uint32_t field = ((1U << layout.bits) - 1) << shift;
  return Low16((unit & ~field) | value << shift);
}

// A unit all of whose pixels are painted; nothing of what it held is left.
constexpr std::uint32_t FullUnit(UnitLayout layout, std::uint32_t value) {
  std::uint32_t unit = 0;
  for (std::uint32_t pixel = 0; pixel < layout.pixels; ++pixel) unit = PaintInUnit(unit, layout, pixel, value);
  return unit;
}

static_assert(PixelMask(0, 8) == 0xFF && PixelMask(3, 2) == 0x18 && PixelMask(7, 1) == 1);
static_assert(PaintPlaneByte(0xF0, 0x18, true) == 0xF8 && PaintPlaneByte(0xF0, 0x18, false) == 0xE0);
static_assert(PaintInUnit(0x1234, UnitLayoutOf(2), 1, 0xA) == 0x1A34);
static_assert(PaintInUnit(0x1234, UnitLayoutOf(2), 1, 0x8A) == 0x9A34);  // 8 into the 1 before it
static_assert(PaintInUnit(0x1234, UnitLayoutOf(3), 0, 0x1FF) == 0xFF34);
static_assert(FullUnit(UnitLayoutOf(0), 1) == 0xFFFF && FullUnit(UnitLayoutOf(2), 0x13) == 0x3333);

}  // namespace cvt

// How the short-cut of colour diffusion reads a pixel: by the band's depth alone, whatever the source says of
// its colours.
#pragma once

#include <cstdint>

#include "cvt/records.h"
#include "frame/ints.h"
#include "frame/words.h"

namespace cvt {

// Every byte is an index into the source's palette.
struct BytePixel {
  static constexpr std::uint32_t kBytes = 1;
  const IRGB* palette;

  static BytePixel Of(const tagIGFD* source) { return {source->palette}; }
  IRGB Color(const std::uint8_t* at) const { return palette[*at]; }
};

// A channel of `width` bits in the top of a byte, its top bits repeated below: white stays white. Channels
// wider than a byte have no place in 16 bits and read as black.
constexpr std::uint8_t SpreadChannel(std::uint32_t value, std::uint32_t width) {
  if (width > 8) return 0;
  const std::uint8_t top = Low8((value & ((1U << width) - 1)) << (8 - width));
  return Low8(top | std::uint32_t{top} >> width);
}

// Three channels of a third of the source's depth, blue lowest; bits above them are not looked at.
struct WordPixel {
  static constexpr std::uint32_t kBytes = 2;
  std::uint32_t width;  // bits in a channel

  static constexpr WordPixel Of(const tagIGFD* source) { return {source->bitsPerPixel / 3U}; }
  constexpr IRGB Color(const std::uint8_t* at) const {
    if (width > 8) return {0, 0, 0};
    const std::uint32_t value = GetLow16(at);
    return {SpreadChannel(value >> 2 * width, width), SpreadChannel(value >> width, width),
            SpreadChannel(value, width)};
  }
};

// A byte each of blue, green and red, and one that is not looked at.
struct LongPixel {
  static constexpr std::uint32_t kBytes = 4;

  static constexpr LongPixel Of(const tagIGFD*) { return {}; }
  constexpr IRGB Color(const std::uint8_t* at) const { return {at[2], at[1], at[0]}; }
};

static_assert(SpreadChannel(31, 5) == 255 && SpreadChannel(16, 5) == 132 && SpreadChannel(0x3F, 5) == 255);
static_assert(SpreadChannel(1, 1) == 192 && SpreadChannel(5, 0) == 0 && SpreadChannel(0x1AB, 8) == 0xAB);

}  // namespace cvt

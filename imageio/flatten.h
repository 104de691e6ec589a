// Pixels of more than eight bits or with transparency, made opaque eight-bit samples.
#pragma once

#include <cstdint>

#include "cvt/records.h"
#include "pipeline/image.h"

namespace cvt::imageio {

/// What a row of samples is and what lies under it.
struct Flatten {
  std::int32_t width = 0;
  IRGB background{255, 255, 255};
  bool hasKey = false;        // pixels of exactly this colour are transparent
  std::uint16_t key[3] = {};  // as many as the row has colour samples, unscaled
};

/// The samples of a pixel.
struct PixelShape {
  std::int32_t sampleBytes;  // 1, or 2 with the high byte first
  std::int32_t colors;       // 1: gray, 3: red, green, blue
  bool alpha;                // a sample for opacity follows the colour
  bool multiplied = false;   // the colour is already multiplied by its opacity
};

using FlattenRow = void (*)(const Flatten& how, const std::uint8_t* samples, std::uint8_t* row);

/// Settles what such pixels become, 256 grays or 24-bit colour (grays over a coloured background are
/// colours), in image->depth and palette. Answers the function that flattens their rows, null where rows
/// are already as they shall be.
FlattenRow ChooseFlatten(const PixelShape& shape, const Flatten& how, pipeline::Image* image);

/// A sample over the background, rounded to the nearest of 256 levels: alpha and sample of 0 to kMost.
template <std::uint64_t kMost>
constexpr std::uint8_t Over(std::uint64_t sample, std::uint64_t alpha, std::uint64_t background) {
  constexpr std::uint64_t kStep = kMost / 255;  // from one of 256 levels to the next
  constexpr std::uint64_t kWhole = kMost * kStep;
  // kWhole is odd: no value lies half-way between two levels.
  return static_cast<std::uint8_t>((sample * alpha + background * kStep * (kMost - alpha) + kWhole / 2) / kWhole);
}
static_assert(Over<255>(10, 255, 200) == 10 && Over<255>(10, 0, 200) == 200 && Over<255>(0, 128, 255) == 127);
static_assert(Over<65535>(128, 65535, 0) == 0 && Over<65535>(129, 65535, 0) == 1);

/// The same for a sample that is already multiplied by alpha; none is larger than its alpha.
template <std::uint64_t kMost>
constexpr std::uint8_t OverMultiplied(std::uint64_t sample, std::uint64_t alpha, std::uint64_t background) {
  constexpr std::uint64_t kStep = kMost / 255;
  constexpr std::uint64_t kWhole = kMost * kStep;
  const std::uint64_t covered = (sample < alpha ? sample : alpha) * kMost;
  return static_cast<std::uint8_t>((covered + background * kStep * (kMost - alpha) + kWhole / 2) / kWhole);
}
static_assert(OverMultiplied<255>(5, 128, 255) == 132 && OverMultiplied<255>(9, 0, 200) == 200);
static_assert(OverMultiplied<65535>(129, 65535, 9) == 1 && OverMultiplied<65535>(0x8000, 0x8000, 255) == 255);

}  // namespace cvt::imageio

// Small pictures for the pipeline's tests, pixel by pixel, and what a conversion made of them.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "pipeline/convert.h"

namespace cvt::test {

// One value a pixel: a palette index, or 0xRRGGBB for direct colour.
struct Picture {
  pipeline::Image image;
  std::vector<std::uint32_t> pixels;
};

std::uint32_t At(const Picture& picture, std::int32_t x, std::int32_t y);
IRGB ColorAt(const Picture& picture, std::int32_t x, std::int32_t y);
std::int32_t Rgb(IRGB color);  // 0xRRGGBB
std::int32_t RgbAt(const Picture& picture, std::int32_t x, std::int32_t y);

// (30 red + 59 green + 11 blue) / 100 of a pixel's colour.
std::int32_t GrayAt(const Picture& picture, std::int32_t x, std::int32_t y);

// Colours far apart, none of them gray.
std::vector<IRGB> Distinct(std::size_t count);

// A picture of the pixel values at each x and y.
Picture Painted(const pipeline::Image& image,
                const std::function<std::int32_t(std::int32_t, std::int32_t)>& value);

// Pixels that all differ from their neighbours, from a seed.
Picture NoisePicture(const pipeline::Image& image, std::uint32_t seed);

struct Rows {
  pipeline::Image image;
  std::vector<std::uint8_t> bytes;
};

// The rows of a picture as a source delivers them, and back.
Rows RowsOf(const Picture& picture);
Picture PictureOf(const Rows& rows);

// Run a conversion that must succeed.
Rows Convert(const Rows& rows, const pipeline::Settings& settings, bool packed = false);
Picture Convert(const Picture& picture, const pipeline::Settings& settings);

}  // namespace cvt::test

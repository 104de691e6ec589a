// Small pictures for the pipeline's tests, pixel by pixel, and what a conversion made of them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pipeline/convert.h"

namespace cvt::test {

// One value a pixel: a palette index, or 0xRRGGBB for direct colour.
struct Picture {
  pipeline::Image image;
  std::vector<std::uint32_t> pixels;
};

std::uint32_t At(const Picture& picture, std::int32_t x, std::int32_t y);

// Pixels that all differ from their neighbours, from a seed.
Picture NoisePicture(const pipeline::Image& image, std::uint32_t seed);

// The rows of a picture as a source delivers them, and back.
std::vector<std::uint8_t> RowsOf(const Picture& picture);
Picture PictureOf(const pipeline::Image& image, const std::vector<std::uint8_t>& rows);

// Runs a conversion that must succeed.
Picture Convert(const Picture& picture, const pipeline::Settings& settings);

// The message of a conversion that must not succeed.
std::string Refusal(const Picture& picture, const pipeline::Settings& settings);

// (30 red + 59 green + 11 blue) / 100 of a pixel's colour.
std::int32_t GrayAt(const Picture& picture, std::int32_t x, std::int32_t y);

}  // namespace cvt::test

// Values of options, made of the words that the user gave; nothing where a word does not make sense.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "cvt/records.h"
#include "pipeline/convert.h"

namespace cvt::app {

/// --size as given: a width, a height, both, or a percentage; 0 for what is left open.
struct SizeWish {
  std::int32_t width = 0, height = 0, percent = 0;
};

std::optional<std::int64_t> ParseWhole(std::string_view word, std::int64_t least, std::int64_t most);

/// 1 to 8, 15, 16, 24 or 32.
std::optional<std::int64_t> ParseDepth(std::string_view word);

/// 0.1 to 10.
std::optional<double> ParseGamma(std::string_view word);

/// black, white, #rgb or #rrggbb.
std::optional<IRGB> ParseColor(std::string_view word);

/// --transparent as given: an index, or a colour where that is -1.
struct PixelWish {
  std::int32_t index = -1;
  IRGB color{0, 0, 0};
};

/// A colour as above, or a number from 0 to 255.
std::optional<PixelWish> ParsePixel(std::string_view word);

/// WxH+X+Y
std::optional<pipeline::Crop> ParseCrop(std::string_view word);

/// WxH, W, xH or N%
std::optional<SizeWish> ParseSize(std::string_view word);

/// --shard as given: the `index`th of `count` parts, from 1 up.
struct Shard {
  std::int64_t index = 1, count = 1;
};

/// I/N
std::optional<Shard> ParseShard(std::string_view word);

struct Extent {
  std::int32_t width, height;
};

/// The size of what is left of an image to be scaled.
Extent Clipped(const std::optional<pipeline::Crop>& crop, Extent image);

/// The size that an image gets: one wish keeps the aspect ratio, rounded to the nearest pixel, at least 1.
Extent NewSize(const SizeWish& wish, Extent image);

}  // namespace cvt::app

#include "app/words.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "imageio/palette_file.h"

namespace cvt::app {

namespace {

constexpr std::int64_t kMostSide = 65535;
constexpr std::int64_t kMostPercent = 100000;

template <class Value>
std::optional<Value> ParseNumber(std::string_view word, Value least, Value most) {
  Value value{};
  const char* end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, value);
  const bool inside = value >= least && value <= most;  // a number that is none lies nowhere
  if (error != std::errc() || stop != end || !inside) return std::nullopt;
  return value;
}

// A side of an image or rectangle; 0 where the word is none.
std::int32_t Side(std::string_view word) {
  return static_cast<std::int32_t>(ParseWhole(word, 1, kMostSide).value_or(0));
}

// Takes what stands before `mark`, and the mark; nothing where there is no mark.
std::optional<std::string_view> TakeUntil(char mark, std::string_view* word) {
  const std::size_t at = word->find(mark);
  if (at == std::string_view::npos) return std::nullopt;
  const std::string_view before = word->substr(0, at);
  word->remove_prefix(at + 1);
  return before;
}

// value * part / whole to the nearest, at least 1.
std::int32_t Scaled(std::int64_t value, std::int64_t part, std::int64_t whole) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::clamp<std::int64_t>((2 * value * part + whole) / (2 * whole), 1, kMost));
}

}  // namespace

std::optional<std::int64_t> ParseWhole(std::string_view word, std::int64_t least, std::int64_t most) {
  return ParseNumber(word, least, most);
}

std::optional<std::int64_t> ParseDepth(std::string_view word) {
  for (const std::int64_t direct : {15, 16, 24, 32}) {
    if (ParseWhole(word, direct, direct)) return direct;
  }
  return ParseWhole(word, 1, 8);
}

std::optional<double> ParseGamma(std::string_view word) { return ParseNumber(word, 0.1, 10.0); }

std::optional<IRGB> ParseColor(std::string_view word) {
  if (word == "black") return IRGB{0, 0, 0};
  if (word == "white") return IRGB{255, 255, 255};
  if (word.empty() || word.front() != '#') return std::nullopt;
  word.remove_prefix(1);
  if (word.size() != 3) return imageio::HexColor(word);
  const char twice[] = {word[0], word[0], word[1], word[1], word[2], word[2]};
  return imageio::HexColor({twice, sizeof twice});
}

std::optional<PixelWish> ParsePixel(std::string_view word) {
  if (const auto index = ParseWhole(word, 0, 255)) return PixelWish{static_cast<std::int32_t>(*index)};
  const auto color = ParseColor(word);
  return color ? std::optional(PixelWish{-1, *color}) : std::nullopt;
}

std::optional<pipeline::Crop> ParseCrop(std::string_view word) {
  const auto width = TakeUntil('x', &word);
  const auto height = TakeUntil('+', &word);
  const auto left = TakeUntil('+', &word);
  if (!width || !height || !left) return std::nullopt;
  const auto x = ParseWhole(*left, 0, kMostSide);
  const auto y = ParseWhole(word, 0, kMostSide);
  const pipeline::Crop crop{static_cast<std::int32_t>(x.value_or(0)), static_cast<std::int32_t>(y.value_or(0)),
                            Side(*width), Side(*height)};
  if (!x || !y || crop.width == 0 || crop.height == 0) return std::nullopt;
  return crop;
}

std::optional<SizeWish> ParseSize(std::string_view word) {
  if (word.ends_with('%')) {
    word.remove_suffix(1);
    const auto percent = ParseWhole(word, 1, kMostPercent);
    return percent ? std::optional(SizeWish{0, 0, static_cast<std::int32_t>(*percent)}) : std::nullopt;
  }
  const auto width = TakeUntil('x', &word);
  if (!width) return Side(word) > 0 ? std::optional(SizeWish{Side(word), 0, 0}) : std::nullopt;
  const SizeWish wish{width->empty() ? 0 : Side(*width), Side(word), 0};
  const bool whole = wish.height > 0 && (width->empty() || wish.width > 0);
  return whole ? std::optional(wish) : std::nullopt;
}

std::optional<Shard> ParseShard(std::string_view word) {
  constexpr std::int64_t kMostShards = 1000000;
  const std::size_t slash = word.find('/');
  if (slash == std::string_view::npos) return std::nullopt;
  const auto count = ParseWhole(word.substr(slash + 1), 1, kMostShards);
  const auto index = count ? ParseWhole(word.substr(0, slash), 1, *count) : std::nullopt;
  return index ? std::optional(Shard{*index, *count}) : std::nullopt;
}

Extent Clipped(const std::optional<pipeline::Crop>& crop, Extent image) {
  return crop ? Extent{crop->width, crop->height} : image;
}

Extent NewSize(const SizeWish& wish, Extent image) {
  if (wish.percent > 0) {
    return {Scaled(image.width, wish.percent, 100), Scaled(image.height, wish.percent, 100)};
  }
  return {wish.width > 0 ? wish.width : Scaled(image.width, wish.height, image.height),
          wish.height > 0 ? wish.height : Scaled(image.height, wish.width, image.width)};
}

}  // namespace cvt::app

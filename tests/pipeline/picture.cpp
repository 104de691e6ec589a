#include "tests/pipeline/picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>

namespace cvt::test {

using namespace cvt::pipeline;

namespace {

std::size_t Index(const Image& image, std::int32_t x, std::int32_t y) {
  return static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) + static_cast<std::size_t>(x);
}

// Which bit of its row bit k of a pixel is, the leftmost being 0.
std::size_t BitOf(const Image& image, std::size_t x, std::size_t k) {
  if (image.layout == Layout::Planes) return (static_cast<std::size_t>(image.width) + 7) / 8 * 8 * k + x;
  return (x + 1) * static_cast<std::size_t>(StoredBits(image.depth)) - 1 - k;
}

// Calls each(value, bit k of it, byte of the rows, bit of that byte) for all bits of all pixels.
template <class Values, class Bytes, class Each>
void ForEachBit(const Image& image, Values& pixels, Bytes& rows, Each each) {
  const auto width = static_cast<std::size_t>(image.width), depth = static_cast<std::size_t>(image.depth);
  for (std::size_t i = 0; i < pixels.size(); ++i)
    for (std::size_t k = 0; k < depth; ++k) {
      const std::size_t bit = BitOf(image, i % width, k);
      each(pixels[i], k, rows[i / width * RowBytes(image) + bit / 8], 7 - bit % 8);
    }
}

}  // namespace

std::uint32_t At(const Picture& picture, std::int32_t x, std::int32_t y) {
  return picture.pixels[Index(picture.image, x, y)];
}

IRGB ColorAt(const Picture& picture, std::int32_t x, std::int32_t y) {
  const std::uint32_t value = At(picture, x, y);
  if (picture.image.depth != kDirectDepth) return picture.image.palette[value];
  return {static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8),
          static_cast<std::uint8_t>(value)};
}

std::int32_t Rgb(IRGB color) { return color.red << 16 | color.green << 8 | color.blue; }

std::int32_t RgbAt(const Picture& picture, std::int32_t x, std::int32_t y) { return Rgb(ColorAt(picture, x, y)); }

std::int32_t GrayAt(const Picture& picture, std::int32_t x, std::int32_t y) {
  const IRGB color = ColorAt(picture, x, y);
  return (30 * color.red + 59 * color.green + 11 * color.blue) / 100;
}

std::vector<IRGB> Distinct(std::size_t count) {
  std::vector<IRGB> colors;
  for (std::size_t i = 0; i < count; ++i)
    colors.push_back({static_cast<std::uint8_t>(i * 37), static_cast<std::uint8_t>(255 - i * 11 % 256),
                      static_cast<std::uint8_t>(i * i % 251)});
  return colors;
}

Picture Painted(const Image& image, const std::function<std::int32_t(std::int32_t, std::int32_t)>& value) {
  Picture picture{image, {}};
  for (std::int32_t y = 0; y < image.height; ++y)
    for (std::int32_t x = 0; x < image.width; ++x)
      picture.pixels.push_back(static_cast<std::uint32_t>(value(x, y)));
  return picture;
}

Picture NoisePicture(const Image& image, std::uint32_t seed) {
  std::mt19937 random(seed);
  const std::size_t values = image.depth == kDirectDepth ? 1U << 24 : image.palette.size();
  return Painted(image, [&](auto, auto) { return static_cast<std::int32_t>(random() % values); });
}

Rows RowsOf(const Picture& picture) {
  const std::size_t height = static_cast<std::size_t>(picture.image.height);
  Rows rows{picture.image, std::vector<std::uint8_t>(RowBytes(picture.image) * height)};
  ForEachBit(picture.image, picture.pixels, rows.bytes,
             [](std::uint32_t value, std::size_t k, std::uint8_t& byte, std::size_t bit) {
               byte |= static_cast<std::uint8_t>((value >> k & 1) << bit);
             });
  return rows;
}

Picture PictureOf(const Rows& rows) {
  Picture picture{rows.image, std::vector<std::uint32_t>(Index(rows.image, 0, rows.image.height))};
  ForEachBit(rows.image, picture.pixels, rows.bytes,
             [](std::uint32_t& value, std::size_t k, std::uint32_t byte, std::size_t bit) {
               value |= (byte >> bit & 1) << k;
             });
  return picture;
}

Rows Convert(const Rows& rows, const Settings& settings, bool packed) {
  constexpr std::size_t kGap = 3;  // bytes between two rows
  const std::size_t rowBytes = RowBytes(rows.image);
  std::vector<std::uint8_t> apart;
  for (std::size_t at = 0; at < rows.bytes.size(); at += rowBytes) {
    const auto row = rows.bytes.begin() + static_cast<std::ptrdiff_t>(at);
    apart.insert(apart.end(), row, row + static_cast<std::ptrdiff_t>(rowBytes));
    apart.resize(apart.size() + kGap);
  }
  RowSource source = ReadMemory(rows.image, apart.data(), rowBytes + kGap);
  Rows written;
  int ends = 0;
  RowSink sink = WriteMemory(&written.image, &written.bytes);
  sink.end = [&ends] {
    ++ends;
    return Ok();
  };
  if (packed) sink = PackRows(sink);
  const Status status = pipeline::Convert(source, settings, sink);
  if (Failed(status)) throw std::runtime_error(status.message);
  EXPECT_EQ(ends, 1);
  return written;
}

Picture Convert(const Picture& picture, const Settings& settings) {
  return PictureOf(Convert(RowsOf(picture), settings));
}

}  // namespace cvt::test

#include "tests/pipeline/picture.h"

#include <gtest/gtest.h>

#include <random>

namespace cvt::test {

using namespace cvt::pipeline;

namespace {

std::size_t Index(const Image& image, std::int32_t x, std::int32_t y) {
  return static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) + static_cast<std::size_t>(x);
}

// Bit k of a value is bit `bit` of byte `byte` of its row; direct colour has whole bytes.
struct BitPlace {
  std::size_t byte;
  int bit;
};

BitPlace PlaceOf(const Image& image, std::int32_t x, std::int32_t k) {
  if (image.layout == Layout::Planes) {
    const std::size_t planeBytes = (static_cast<std::size_t>(image.width) + 7) / 8;
    return {planeBytes * static_cast<std::size_t>(k) + static_cast<std::size_t>(x / 8), 7 - x % 8};
  }
  const std::int32_t stored = StoredBits(image.depth);
  const std::int32_t first = x * stored;
  if (image.depth == kDirectDepth) return {static_cast<std::size_t>(first / 8 + (23 - k) / 8), k % 8};
  return {static_cast<std::size_t>(first / 8), 8 - first % 8 - stored + k};
}

}  // namespace

std::uint32_t At(const Picture& picture, std::int32_t x, std::int32_t y) {
  return picture.pixels[Index(picture.image, x, y)];
}

Picture NoisePicture(const Image& image, std::uint32_t seed) {
  std::mt19937 random(seed);
  const std::uint32_t values =
      image.depth == kDirectDepth ? 1U << 24 : static_cast<std::uint32_t>(image.palette.size());
  Picture picture{image, std::vector<std::uint32_t>(Index(image, 0, image.height))};
  for (std::uint32_t& pixel : picture.pixels) pixel = static_cast<std::uint32_t>(random() % values);
  return picture;
}

std::vector<std::uint8_t> RowsOf(const Picture& picture) {
  const Image& image = picture.image;
  const std::size_t rowBytes = RowBytes(image);
  std::vector<std::uint8_t> rows(rowBytes * static_cast<std::size_t>(image.height));
  for (std::int32_t y = 0; y < image.height; ++y)
    for (std::int32_t x = 0; x < image.width; ++x)
      for (std::int32_t k = 0; k < image.depth; ++k) {
        const BitPlace place = PlaceOf(image, x, k);
        const std::uint32_t bit = At(picture, x, y) >> k & 1;
        rows[rowBytes * static_cast<std::size_t>(y) + place.byte] |= static_cast<std::uint8_t>(bit << place.bit);
      }
  return rows;
}

Picture PictureOf(const Image& image, const std::vector<std::uint8_t>& rows) {
  Picture picture{image, std::vector<std::uint32_t>(Index(image, 0, image.height))};
  for (std::int32_t y = 0; y < image.height; ++y)
    for (std::int32_t x = 0; x < image.width; ++x)
      for (std::int32_t k = 0; k < image.depth; ++k) {
        const BitPlace place = PlaceOf(image, x, k);
        const std::uint32_t byte = rows[RowBytes(image) * static_cast<std::size_t>(y) + place.byte];
        picture.pixels[Index(image, x, y)] |= (byte >> place.bit & 1) << k;
      }
  return picture;
}

Picture Convert(const Picture& picture, const Settings& settings) {
  const std::vector<std::uint8_t> rows = RowsOf(picture);
  RowSource source = ReadMemory(picture.image, rows.data(), RowBytes(picture.image));
  Image written;
  std::vector<std::uint8_t> out;
  RowSink sink = WriteMemory(&written, &out);
  const Status status = pipeline::Convert(source, settings, sink);
  EXPECT_EQ(status.code, Code::Ok) << status.message;
  if (Failed(status)) return {{settings.palette.empty() ? Image{} : Image{1, 1, 1, settings.palette}}, {0}};
  return PictureOf(written, out);
}

std::string Refusal(const Picture& picture, const Settings& settings) {
  RowSource source{picture.image, [](std::uint8_t*) {
                     ADD_FAILURE() << "a row was read";
                     return Ok();
                   }};
  RowSink sink{[](const Image&) {
                 ADD_FAILURE() << "the sink was opened";
                 return Ok();
               },
               {},
               {}};
  const Status status = pipeline::Convert(source, settings, sink);
  EXPECT_NE(status.code, Code::Ok);
  return status.message;
}

std::int32_t GrayAt(const Picture& picture, std::int32_t x, std::int32_t y) {
  const std::uint32_t value = At(picture, x, y);
  IRGB color{static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8),
             static_cast<std::uint8_t>(value)};
  if (picture.image.depth != kDirectDepth) color = picture.image.palette[value];
  return (30 * color.red + 59 * color.green + 11 * color.blue) / 100;
}

}  // namespace cvt::test

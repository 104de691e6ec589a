// A whole chain in one call: a band is clipped, scaled and reduced to a palette by a single Cvtr2r, and comes
// out as if each step had been taken on the whole image by itself.

#include <gtest/gtest.h>

#include <cstring>

#include "cvt/cvtr2r.h"
#include "host/conversion.h"
#include "pipeline/band.h"
#include "tests/pipeline/picture.h"

namespace cvt::test {
namespace {

using namespace cvt::pipeline;

constexpr Crop kCrop{16, 8, 40, 24};

struct Collected {
  std::vector<std::uint32_t> pixels;
};

// Notes the pixels of finished packed bands of 8 bits.
std::int16_t Collect(void* user, tagRasterPacked* band) {
  auto* collected = static_cast<Collected*>(user);
  const std::size_t stride = static_cast<std::size_t>(BandLineBytes(Layout::Packed, band->width, 8));
  for (std::size_t y = 0; y < band->lineCount; ++y)
    for (std::size_t x = 0; x < band->width; ++x) collected->pixels.push_back(PixelsOf(band)[y * stride + x]);
  return 0;
}

tagIGFD Describe(const Image& image, std::vector<IRGB>* colors) {
  tagIGFD descriptor{};
  descriptor.progressProc = [](std::uint32_t) -> std::int16_t { return 0; };
  descriptor.rasterKind = image.layout == Layout::Planes ? kPlaneKind : kPackedKind;
  descriptor.imageWidth = image.width;
  descriptor.imageHeight = image.height;
  descriptor.bitsPerPixel = static_cast<std::uint8_t>(image.depth);
  descriptor.colorFlags = kIndexedColor;
  descriptor.palette = colors->data();
  return descriptor;
}

// Lines `top` to `top + lines` of a picture as a band.
OwnedBand BandOf(const Picture& picture, std::int32_t top, std::int32_t lines) {
  const Image& image = picture.image;
  const std::int32_t bytes = BandLineBytes(image.layout, image.width, image.depth) * lines;
  OwnedBand band = NewBand(bytes);
  LabelBand(image.layout, bytes, band.get());
  band->top = static_cast<std::uint16_t>(top);
  band->width = static_cast<std::uint16_t>(image.width);
  band->lineCount = static_cast<std::uint16_t>(lines);
  band->bitsPerPixel = static_cast<std::uint16_t>(image.depth);
  const std::size_t plane = static_cast<std::size_t>(BandLineBytes(Layout::Planes, image.width, 1) * lines);
  band->planeBytes = static_cast<std::uint16_t>(plane);
  std::memset(PixelsOf(band.get()), 0, static_cast<std::size_t>(bytes));
  const std::size_t row = static_cast<std::size_t>(
      BandLineBytes(image.layout, image.width, image.layout == Layout::Planes ? 1 : image.depth));
  for (std::int32_t y = 0; y < lines; ++y)
    for (std::int32_t x = 0; x < image.width; ++x)
      for (std::int32_t k = 0; k < image.depth; ++k) {
        if ((At(picture, x, top + y) >> k & 1) == 0) continue;
        const std::size_t line = static_cast<std::size_t>(y) * row;
        if (image.layout == Layout::Planes)
          PixelsOf(band.get())[static_cast<std::size_t>(k) * plane + line + static_cast<std::size_t>(x / 8)] |=
              static_cast<std::uint8_t>(0x80 >> x % 8);
        else
          PixelsOf(band.get())[line + static_cast<std::size_t>(x)] |= static_cast<std::uint8_t>(1 << k);
      }
  return band;
}

std::vector<std::uint32_t> InOneCallPerBand(const Picture& picture, const Image& output, std::int32_t lines,
                                            std::uint8_t method) {
  std::vector<IRGB> from = picture.image.palette, to = output.palette;
  tagIGFD source = Describe(picture.image, &from), destination = Describe(output, &to);
  source.options = kClipOption;
  source.clipX0 = kCrop.x;
  source.clipY0 = kCrop.y;
  source.clipX1 = kCrop.x + kCrop.width;
  source.clipY1 = kCrop.y + kCrop.height;
  Collected collected;
  host::ConversionSetup setup;
  setup.source = &source;
  setup.destination = &destination;
  setup.lineCapacity = 200;
  setup.next = Collect;
  setup.user = &collected;
  setup.halftoneMethod = method;
  setup.scaleDownMethod = kDecimate;
  tagCRLA* context = host::OpenConversion(setup);
  for (std::int32_t top = 0; top < picture.image.height; top += lines) {
    OwnedBand band = BandOf(picture, top, std::min(lines, picture.image.height - top));
    tagRasterPacked* slot = band.get();
    EXPECT_EQ(Cvtr2r(&slot, &source, &destination, context), kCvtOk);
  }
  host::CloseConversion(context);
  return collected.pixels;
}

std::vector<std::uint32_t> StepByStep(const Picture& picture, const Image& output, Halftone halftone) {
  Settings same{.depth = 8, .palette = picture.image.palette, .layout = picture.image.layout, .crop = kCrop};
  const Picture cut = Convert(picture, same);
  same.crop = {};
  same.width = output.width;
  same.height = output.height;
  same.reduce = Reduce::Decimate;
  const Picture scaled = Convert(cut, same);
  return Convert(scaled, {.depth = 8, .palette = output.palette, .halftone = halftone}).pixels;
}

TEST(Chain, ClipsScalesAndReducesInOneCallPerBand) {
  std::vector<IRGB> colors(256), wanted(256);
  for (std::size_t i = 0; i < 256; ++i) {
    colors[i] = {static_cast<std::uint8_t>(i * 7), static_cast<std::uint8_t>(i * 29),
                 static_cast<std::uint8_t>(255 - i)};
    wanted[i] = {static_cast<std::uint8_t>(i % 8 * 36), static_cast<std::uint8_t>(i / 8 % 8 * 36),
                 static_cast<std::uint8_t>(i / 64 * 85)};
  }
  for (const Layout layout : {Layout::Packed, Layout::Planes})
    for (const auto& [width, height] : {std::pair{20, 12}, {20, 48}, {120, 24}})
      for (const std::int32_t lines : {60, 8}) {
        const Picture picture = NoisePicture({90, 60, 8, colors, layout}, 41);
        const Image output{width, height, 8, wanted};
        EXPECT_EQ(InOneCallPerBand(picture, output, lines, kNearest),
                  StepByStep(picture, output, Halftone::Nearest))
            << width << " x " << height << ", bands of " << lines;
        EXPECT_EQ(InOneCallPerBand(picture, output, lines, kDiffusion),
                  StepByStep(picture, output, Halftone::Diffusion))
            << width << " x " << height << " diffused, bands of " << lines;
      }
}

}  // namespace
}  // namespace cvt::test

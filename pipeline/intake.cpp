#include "pipeline/intake.h"

#include <cstring>

#include "pipeline/band.h"

namespace cvt::pipeline {
namespace {

void WidenRow(const std::uint8_t* row, std::size_t width, std::uint8_t* indices) {
  for (std::size_t x = 0; x < width; ++x) indices[x] = row[x / 8] >> (7 - x % 8) & 1;
}

void GrayRow(const std::uint8_t* rgb, std::size_t width, std::uint8_t* grays) {
  for (std::size_t x = 0; x < width; ++x) {
    const std::uint8_t* pixel = rgb + 3 * x;
    grays[x] = static_cast<std::uint8_t>((30U * pixel[0] + 59U * pixel[1] + 11U * pixel[2]) / 100U);
  }
}

void WordRow(const std::uint8_t* rgb, std::size_t width, std::uint8_t* words) {
  for (std::size_t x = 0; x < width; ++x) {
    const std::uint8_t* pixel = rgb + 3 * x;
    words[4 * x] = pixel[2];
    words[4 * x + 1] = pixel[1];
    words[4 * x + 2] = pixel[0];
    words[4 * x + 3] = 0;
  }
}

void ScatterPlanes(const Image& image, const std::uint8_t* row, tagRasterPacked* band, std::int32_t line) {
  const std::size_t bytes = PlaneRowBytes(image.width);
  const auto stride = static_cast<std::size_t>(BandLineBytes(Layout::Planes, image.width, 1));
  for (std::size_t plane = 0; plane < static_cast<std::size_t>(image.depth); ++plane)
    std::memcpy(PixelsOf(band) + plane * band->planeBytes + static_cast<std::size_t>(line) * stride,
                row + plane * bytes, bytes);
}

}  // namespace

std::int32_t IntakeDepth(Intake intake, const Image& image) {
  if (intake == Intake::WidenBits || intake == Intake::GrayLevels) return 8;
  return image.layout == Layout::Planes ? image.depth : StoredBits(image.depth);
}

Layout IntakeLayout(Intake intake, const Image& image) {
  return intake == Intake::AsStored ? image.layout : Layout::Packed;
}

std::vector<IRGB> IntakePalette(Intake intake, const Image& image) {
  if (intake == Intake::DirectWords) return {};
  if (intake == Intake::GrayLevels) return GrayRamp(8);
  std::vector<IRGB> palette = image.palette;
  palette.resize(std::size_t{1} << IntakeDepth(intake, image), palette.front());
  return palette;
}

void TakeRow(Intake intake, const Image& image, const std::uint8_t* row, tagRasterPacked* band,
             std::int32_t line) {
  if (IntakeLayout(intake, image) == Layout::Planes) return ScatterPlanes(image, row, band, line);
  const std::int32_t depth = IntakeDepth(intake, image);
  const std::int32_t stride = BandLineBytes(Layout::Packed, image.width, BandBits(Layout::Packed, depth));
  std::uint8_t* pixels = PixelsOf(band) + static_cast<std::size_t>(line) * static_cast<std::size_t>(stride);
  const auto width = static_cast<std::size_t>(image.width);
  switch (intake) {
    case Intake::AsStored:
      std::memcpy(pixels, row, RowBytes(image));
      break;
    case Intake::WidenBits:
      WidenRow(row, width, pixels);
      break;
    case Intake::GrayLevels:
      GrayRow(row, width, pixels);
      break;
    case Intake::DirectWords:
      WordRow(row, width, pixels);
      break;
  }
}

}  // namespace cvt::pipeline

#include "pipeline/intake.h"

#include <cstring>

#include "pipeline/band.h"

namespace cvt::pipeline {
namespace {

std::uint8_t GrayOf(IRGB color) {
  return static_cast<std::uint8_t>((30U * color.red + 59U * color.green + 11U * color.blue) / 100U);
}

std::uint32_t WordOf(IRGB color) {
  return std::uint32_t{color.red} << 16 | std::uint32_t{color.green} << 8 | color.blue;
}

IRGB Toned(IRGB color, const ToneCurve& tone) { return {tone[color.red], tone[color.green], tone[color.blue]}; }

// ---- Palette indices, a byte each ----

template <unsigned kBits>
void UnpackBits(const std::uint8_t* row, std::size_t width, std::uint8_t* indices) {
  constexpr std::size_t kPerByte = 8 / kBits;
  for (std::size_t x = 0; x < width; ++x)
    indices[x] = row[x / kPerByte] >> (8 - kBits - x % kPerByte * kBits) & ((1U << kBits) - 1);
}

void UnpackPlanes(const Image& image, const std::uint8_t* row, std::uint8_t* indices) {
  const std::size_t bytes = PlaneRowBytes(image.width);
  for (std::size_t x = 0; x < static_cast<std::size_t>(image.width); ++x) {
    std::uint32_t index = 0;
    for (std::size_t k = 0; k < static_cast<std::size_t>(image.depth); ++k)
      index |= (row[k * bytes + x / 8] >> (7 - x % 8) & 1U) << k;
    indices[x] = static_cast<std::uint8_t>(index);
  }
}

// ---- Bands ----

void StoreWord(std::uint8_t* at, std::uint32_t word) {  // low byte first, on every machine
  at[0] = static_cast<std::uint8_t>(word);
  at[1] = static_cast<std::uint8_t>(word >> 8);
  at[2] = static_cast<std::uint8_t>(word >> 16);
  at[3] = 0;
}

void TakeColors(const Entry& entry, const std::uint8_t* rgb, std::uint8_t* line) {
  const ToneCurve& tone = entry.tone;
  const auto width = static_cast<std::size_t>(entry.image.width);
  if (entry.intake == Intake::GrayLevels)
    for (std::size_t x = 0; x < width; ++x, rgb += 3) line[x] = GrayOf({tone[rgb[0]], tone[rgb[1]], tone[rgb[2]]});
  else
    for (std::size_t x = 0; x < width; ++x, rgb += 3)
      StoreWord(line + 4 * x, WordOf({tone[rgb[0]], tone[rgb[1]], tone[rgb[2]]}));
}

void TakeIndices(const Entry& entry, const std::uint8_t* row, std::vector<std::uint8_t>* indices,
                 std::uint8_t* line) {
  if (entry.intake == Intake::Widened) return UnpackIndices(entry.image, row, line);
  const auto width = static_cast<std::size_t>(entry.image.width);
  indices->resize(width);
  UnpackIndices(entry.image, row, indices->data());
  const std::uint8_t* from = indices->data();
  if (entry.intake == Intake::GrayLevels)
    for (std::size_t x = 0; x < width; ++x) line[x] = static_cast<std::uint8_t>(entry.values[from[x]]);
  else
    for (std::size_t x = 0; x < width; ++x) StoreWord(line + 4 * x, entry.values[from[x]]);
}

void ScatterPlanes(const Image& image, const std::uint8_t* row, tagRasterPacked* band, std::int32_t line) {
  const std::size_t bytes = PlaneRowBytes(image.width);
  const auto stride = static_cast<std::size_t>(BandLineBytes(Layout::Planes, image.width, 1));
  for (std::size_t plane = 0; plane < static_cast<std::size_t>(image.depth); ++plane)
    std::memcpy(PixelsOf(band) + plane * band->planeBytes + static_cast<std::size_t>(line) * stride,
                row + plane * bytes, bytes);
}

std::vector<IRGB> PaddedPalette(const Image& image, std::int32_t depth, const ToneCurve& tone) {
  std::vector<IRGB> colors;
  for (const IRGB color : image.palette) colors.push_back(Toned(color, tone));
  colors.resize(std::size_t{1} << depth, colors.front());
  return colors;
}

}  // namespace

void UnpackIndices(const Image& image, const std::uint8_t* row, std::uint8_t* indices) {
  const auto width = static_cast<std::size_t>(image.width);
  if (image.layout == Layout::Planes) return UnpackPlanes(image, row, indices);
  switch (StoredBits(image.depth)) {
    case 1:
      return UnpackBits<1>(row, width, indices);
    case 2:
      return UnpackBits<2>(row, width, indices);
    case 4:
      return UnpackBits<4>(row, width, indices);
    default:
      std::memcpy(indices, row, width);
  }
}

Entry MakeEntry(Intake intake, const Image& image, const ToneCurve& tone) {
  Entry entry{intake, image, tone, {}, {}};
  if (intake == Intake::AsStored || intake == Intake::Widened)
    entry.colors = PaddedPalette(image, BandDepth(entry), tone);
  if (intake == Intake::GrayLevels) entry.colors = GrayRamp(8);
  if (intake == Intake::AsStored || intake == Intake::Widened || image.depth == kDirectDepth) return entry;
  for (const IRGB color : PaddedPalette(image, 8, tone))
    entry.values.push_back(intake == Intake::GrayLevels ? GrayOf(color) : WordOf(color));
  return entry;
}

std::int32_t BandDepth(const Entry& entry) {
  if (entry.intake == Intake::DirectWords) return kDirectDepth;
  if (entry.intake != Intake::AsStored) return 8;
  return entry.image.layout == Layout::Planes ? entry.image.depth : StoredBits(entry.image.depth);
}

Layout BandLayout(const Entry& entry) {
  return entry.intake == Intake::AsStored ? entry.image.layout : Layout::Packed;
}

std::int32_t BandLine(const Entry& entry) {
  const Layout layout = BandLayout(entry);
  return BandLineBytes(layout, entry.image.width, BandBits(layout, BandDepth(entry)));
}

void TakeRow(const Entry& entry, const std::uint8_t* row, std::vector<std::uint8_t>* indices,
             tagRasterPacked* band, std::int32_t line) {
  const Image& image = entry.image;
  if (BandLayout(entry) == Layout::Planes) return ScatterPlanes(image, row, band, line);
  const auto stride = static_cast<std::size_t>(BandLine(entry));
  std::uint8_t* to = PixelsOf(band) + static_cast<std::size_t>(line) * stride;
  if (entry.intake == Intake::AsStored) {
    std::memcpy(to, row, RowBytes(image));
  } else if (image.depth == kDirectDepth) {
    TakeColors(entry, row, to);
  } else {
    TakeIndices(entry, row, indices, to);
  }
}

}  // namespace cvt::pipeline

// Twins of the ordered dithers, to one bit and to palettes, and of the dither index service.
#include "tests/reference/band.h"

namespace cvt::test {

namespace {

std::int64_t ThresholdAt(const tagCRLA& context, std::uint16_t column, std::uint16_t line) {
  if (context.halftoneMethod == 3) return context.ditherMatrix[(line & 7) * 8 + (column & 7)];
  return context.ditherMatrix[line % context.ditherHeight * context.ditherWidth + column % context.ditherWidth];
}

std::uint16_t DitherGray(const tagCRLA& context, const IRGB& color, std::uint16_t column, std::uint16_t line) {
  const std::int64_t d = ThresholdAt(context, column, line) - 126, gray = RefGray(color);
  const std::int64_t index = context.searchTable[gray];
  const std::int64_t step = context.ditherSteps[2 * index + (d >= 0 ? 0 : 1)];
  return context.searchTable[RefClampChannel(gray + (step * d >> 7))];
}

std::int64_t CellOf(std::int64_t red, std::int64_t green, std::int64_t blue) {
  return (red >> 3) * 1024 + (green >> 3) * 32 + (blue >> 3);
}

std::uint16_t DitherColor(const tagCRLA& context, const IRGB& color, std::uint16_t column, std::uint16_t line) {
  bool redHigh = color.red >= 128, greenHigh = color.green >= 128, blueHigh = color.blue >= 128;
  std::int64_t d = ThresholdAt(context, column, line) - 126;
  if (d < 0) {
    redHigh = !redHigh;
    greenHigh = !greenHigh;
    blueHigh = !blueHigh;
  }
  if ((redHigh + greenHigh + blueHigh) % 2 == 0) d = -d;
  std::int64_t direction = 4 * redHigh + 2 * greenHigh + blueHigh;
  if (d < 0) direction = direction ^ 7;
  const std::int64_t index = context.searchTable[CellOf(color.red, color.green, color.blue)];
  const std::int64_t step = context.ditherSteps[8 * index + direction] * d >> 7;
  const std::int64_t red = RefClampChannel(redHigh ? color.red + step : color.red - step);
  const std::int64_t green = RefClampChannel(greenHigh ? color.green + step : color.green - step);
  const std::int64_t blue = RefClampChannel(blueHigh ? color.blue + step : color.blue - step);
  return context.searchTable[CellOf(red, green, blue)];
}

std::int64_t LevelOf(std::int64_t levels, std::int64_t value) {
  if (levels == 2) return value < 128 ? 1 : 0;
  if (levels == 3) return value >= 191 ? 0 : value >= 63 ? 1 : 2;
  if (levels == 4) return value >= 212 ? 0 : value >= 127 ? 1 : value >= 42 ? 2 : 3;
  if (levels == 5) return value >= 223 ? 0 : value >= 159 ? 1 : value >= 95 ? 2 : value >= 31 ? 3 : 4;
  return value >= 231 ? 0 : value >= 180 ? 1 : value >= 129 ? 2 : value >= 78 ? 3 : value >= 27 ? 4 : 5;
}

// The column picks the row of the matrix, and the line its column.
std::uint16_t DitherCube(const tagCRLA& context, std::int64_t levels, const IRGB& color, std::uint16_t column,
                         std::uint16_t line) {
  const std::uint8_t t =
      context.ditherMatrix[column % context.ditherHeight * context.ditherWidth + line % context.ditherWidth];
  const std::int64_t d = levels == 2 ? static_cast<std::int8_t>(t) : (t - 126) / (levels - 1);
  const std::int64_t red = LevelOf(levels, RefClampChannel(color.red + d));
  const std::int64_t green = LevelOf(levels, RefClampChannel(color.green + d));
  const std::int64_t blue = LevelOf(levels, RefClampChannel(color.blue + d));
  return context.cubeTable[red + levels * green + levels * levels * blue];
}

std::int64_t CubeLevels(const tagCRLA& context, std::uint8_t depth) {
  if (context.cubeTable == nullptr || depth < 3 || depth > 8) return 0;
  return depth == 3 ? 2 : depth - 2;
}

// Calls `pixel` with colour, column and line of every pixel of a line, and writes what it answers.
template <class Pixel>
CvtStatus DitherLine(const RefSource& from, RefCursor in, RefCursor out, tagCRLA* context, std::uint16_t y,
                     Pixel pixel) {
  RefReadLine(in, context, y);
  std::uint16_t x = out.Left();
  for (std::uint32_t r = 0; r < context->runCount; ++r) {
    const IRGB color = from.ColorOf(context, context->values[r]);
    for (std::uint32_t n = 0; n < context->runLengths[r]; ++n, ++x) RefWritePixel(out, x, y, pixel(color, x, y));
  }
  return kCvtOk;
}

}  // namespace

CvtStatus RefMonoDither(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                        tagCRLA* context) {
  const RefSource from = RefSourceOf(*source, *context, true);  // lowest channel as red in both layouts
  RefInks inks{};
  const auto ink = [&](const IRGB& color, std::uint16_t x, std::uint16_t y) {
    const std::int64_t row = y % context->ditherHeight * context->ditherWidth;
    return context->ditherMatrix[row + x % context->ditherWidth] < RefGray(color) ? inks.white : inks.black;
  };
  RefJob job = RefPaletteJob(which, PlaneSize::Full, **band, *source, *destination);
  job.releasesWithoutMemory = which.fromPlanes && !which.toPlanes;
  job.releasesWhenRefused = false;
  job.opened = [&] { inks = RefInksOf(destination); };
  job.convertLine = [&](RefCursor in, RefCursor out, std::uint16_t y) {
    return DitherLine(from, in, out, context, y, ink);
  };
  return RefRunJob(job, *band, source, destination, context);
}

CvtStatus RefColorDither(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                         tagCRLA* context) {
  const bool gray = context->grayPalette == 1;
  const std::int64_t levels = CubeLevels(*context, destination->bitsPerPixel);
  const RefSource from = RefSourceOf(*source, *context, which.fromPlanes);
  const auto index = [&](const IRGB& color, std::uint16_t x, std::uint16_t y) {
    const auto column = static_cast<std::uint16_t>(x + 1);
    if (gray) return DitherGray(*context, color, column, y);
    if (levels != 0) return DitherCube(*context, levels, color, column, y);
    return DitherColor(*context, color, column, y);
  };
  RefJob job = RefPaletteJob(which, PlaneSize::Full, **band, *source, *destination);
  job.convertLine = [&](RefCursor in, RefCursor out, std::uint16_t y) {
    return DitherLine(from, in, out, context, y, index);
  };
  return RefRunJob(job, *band, source, destination, context);
}

std::uint16_t RefDitherIndex(const tagCRLA& context, std::int16_t column, std::int16_t line, const IRGB& color) {
  const auto x = static_cast<std::uint16_t>(column), y = static_cast<std::uint16_t>(line);
  return context.grayPalette == 1 ? DitherGray(context, color, x, y) : DitherColor(context, color, x, y);
}

}  // namespace cvt::test

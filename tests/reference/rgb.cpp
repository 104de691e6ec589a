// Twin of the four conversions to direct colour.
#include "tests/reference/band.h"

namespace cvt::test {

namespace {

// The last piece is never larger than the others.
Pieces CutEvenly(std::int64_t outBits, std::int64_t inBits, std::uint32_t lines) {
  if (outBits == 0) return {0, 0};
  auto count = static_cast<std::uint32_t>(outBits / inBits);
  if (count * inBits != outBits) count = count + 1;
  if (lines % count != 0) count = count + 1;
  std::uint32_t each = lines / count;
  if (each == 0) each = 1;
  while (each < lines - (count - 1) * each) {
    count = count + 1;
    if (count == 0 || lines / count == 0) return {lines, 1};
    each = lines / count;
  }
  return {count, each};
}

}  // namespace

// On a failure nothing is given back.
CvtStatus RefRGB(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  const std::int64_t in = source->bitsPerPixel, wanted = destination->bitsPerPixel;
  const bool adjusts = context->colorAdjust1 != 0 || context->colorAdjust2 != 0 || context->gammaActive != 0;
  if (which.fromPlanes == which.toPlanes && in == wanted && !adjusts) {
    tagIGFD* copy = CvtDupIGFD(source);
    if (copy == nullptr) return kCvtNoDescriptor;
    copy->rasterKind = 0;
    const CvtStatus status = context->convertProc(band, copy, destination, context);
    CvtDisposeIGFD(copy);
    return status;
  }
  const auto rounded = static_cast<std::uint8_t>((static_cast<std::uint8_t>(wanted + 15) >> 3 & 0xFE) << 3);
  const std::int64_t outBits = which.toPlanes ? wanted : static_cast<std::int8_t>(rounded);
  const tagRasterPacked& input = **band;
  Pieces pieces = CutEvenly(outBits, in, input.lineCount);
  if (!which.fromPlanes && !which.toPlanes && in > 8 && wanted >= 24)
    pieces = in >= 24 ? Pieces{1, input.lineCount} : Pieces{2, (input.lineCount + 1) / 2};
  const auto create = [&](std::int64_t first, std::int64_t lines) {
    if (which.toPlanes) return RefCreateBand(which, PlaneSize::Full, input, outBits, first, lines);
    const std::int64_t size = ((input.width * outBits + 15) >> 3 & 0xFFFE) * lines;
    return RefNewBand(false, size, {input.left, input.top + first, input.width, lines, outBits, 0});
  };

  const std::uint32_t d = destination->bitsPerPixel / 3 > 8 ? 8 : destination->bitsPerPixel / 3;
  RefSource from = RefSourceOf(*source, *context, which.fromPlanes);
  from.indexMask = 0xFFFFFFFF;
  const auto convert = [&](RefCursor reader, RefCursor out, std::uint16_t y) {
    RefReadLine(reader, context, y);
    for (std::uint32_t r = 0; r < context->runCount; ++r) {
      const IRGB color = from.ColorOf(context, context->values[r]);
      const std::uint32_t red = color.red >> (8 - d), green = color.green >> (8 - d), blue = color.blue >> (8 - d);
      context->values[r] =
          which.toPlanes ? (((blue << d) | green) << d) | red : (((red << d) | green) << d) | blue;
    }
    RefWriteLine(out, context, y);
    return kCvtOk;
  };
  return RefRunJob({which, pieces, create, false, false, [] {}, convert}, *band, source, destination, context);
}

}  // namespace cvt::test

// Twin of the two clipping routines.
#include "tests/reference/band.h"

namespace cvt::test {

namespace {

struct Range {
  std::int64_t first, end;
};

// The lines that band and rectangle share. Line numbers beyond 32767 come back negative.
Range SharedLines(const tagRasterPacked& band, std::uint16_t clipTop, std::uint16_t clipHeight, tagIGFD* copy) {
  const std::int64_t clipEnd = std::int64_t{clipHeight} + clipTop,
                     bandEnd = std::int64_t{band.top} + band.lineCount;
  const std::uint16_t larger = clipTop > static_cast<std::int16_t>(band.top) ? clipTop : band.top;
  Range range{static_cast<std::int16_t>(larger), bandEnd};
  if (clipEnd <= bandEnd) {
    range.end = static_cast<std::int16_t>(clipTop) + static_cast<std::int16_t>(clipHeight);
    copy->clipComplete = 1;
  }
  return range;
}

std::int64_t RowBytes(std::int64_t width) { return (width + 15) >> 3 & 0xFFFE; }

void Compact(tagRasterPacked* band, const tagPlaneData& old) {
  const std::int64_t rowBytes = RowBytes(band->width);
  const std::int64_t oldRowBytes = RowBytes(static_cast<std::uint16_t>(old.right - old.left));
  band->planeBytes = static_cast<std::uint16_t>(rowBytes * band->lineCount);
  std::uint8_t* to = old.data;
  for (std::int64_t plane = 0; plane < band->bitsPerPixel; ++plane)
    for (std::int64_t row = 0; row < band->lineCount; ++row) {
      const std::uint8_t* from = old.data + (band->top - old.top + row) * oldRowBytes + plane * old.planeBytes;
      for (std::int64_t i = 0; i < rowBytes; ++i) *to++ = from[i];
    }
}

CvtStatus CutBand(bool planes, tagRasterPacked* band, tagIGFD* copy, tagCRLA* context, std::uint16_t clipTop,
                  std::uint16_t clipWidth, std::uint16_t clipHeight) {
  const auto left = static_cast<std::uint16_t>(copy->originX);
  const RefCursor in = RefOpen(planes, band);
  if (in.Missing()) return kCvtNoMemory;
  RefCursor out;
  if (planes) {  // opened with the new left and nothing else that is new
    band->left = left;
    out = RefOpen(planes, band);
    if (out.Missing()) return kCvtNoMemory;
  }
  const Range lines = SharedLines(*band, clipTop, clipHeight, copy);
  band->top = static_cast<std::uint16_t>(lines.first);
  band->left = left;
  band->width = clipWidth;
  band->lineCount = static_cast<std::uint16_t>(lines.end - lines.first);
  if (!planes) out = RefOpen(planes, band);
  if (out.Missing()) return kCvtNoMemory;
  for (std::int64_t line = lines.first; line < lines.end; ++line) {
    const auto y = static_cast<std::uint16_t>(line);
    RefReadPixels(in, context, clipWidth, left, y);
    RefWriteLine(out, context, y);
  }
  if (planes) Compact(band, *in.planes);
  RefClose(out);
  RefClose(in);
  return kCvtOk;
}

}  // namespace

CvtStatus RefClip(bool planes, tagRasterPacked** slot, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  copy->options = static_cast<std::uint16_t>(copy->options & ~0x80);
  copy->originX = source->clipX0;
  copy->originY = source->clipY0;
  copy->imageWidth = source->clipX1 - source->clipX0;
  copy->imageHeight = source->clipY1 - source->clipY0;

  tagRasterPacked* band = *slot;
  const auto clipTop = static_cast<std::uint16_t>(copy->originY);
  const auto clipWidth = static_cast<std::uint16_t>(copy->imageWidth);
  const auto clipHeight = static_cast<std::uint16_t>(copy->imageHeight);
  const std::int64_t clipEnd = std::int64_t{clipHeight} + clipTop;
  const std::int64_t fullEnd = std::int64_t{band->top} + band->lineCount, end = fullEnd & 0xFFFF;
  const bool sameColumns = band->left == static_cast<std::uint16_t>(source->clipX0) && band->width == clipWidth;
  if (band->top >= clipTop && sameColumns && (planes ? fullEnd : end) <= clipEnd) {
    // nothing to cut off
  } else if (end < clipTop) {
    band->lineCount = 0;
  } else if (band->top > clipEnd) {
    copy->clipComplete = 1;
    band->lineCount = 0;
  } else if (CutBand(planes, band, copy, context, clipTop, clipWidth, clipHeight) != kCvtOk) {
    return kCvtNoMemory;
  }
  const CvtStatus status = context->convertProc(slot, copy, destination, context);
  CvtDisposeIGFD(copy);
  return status;
}

}  // namespace cvt::test

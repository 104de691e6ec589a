// Translucent line writers: the context's line over a band, sparing the pixels whose value is transparent.
//
// The line's start alone is held against the band; runs are not cut at its edge. Whole bytes and units are
// painted at once in the order in which their pixels come, so runs that overlap a band's own planes leave
// what one pixel after another would.

#include <cstddef>

#include "convert/translucent_rule.h"
#include "cvt/cvtr2r.h"
#include "frame/words.h"

namespace cvt {
namespace {

template <class Cursor>
bool StartsInside(const Cursor* cursor, std::uint16_t x, std::uint16_t y) {
  return x >= cursor->left && x < cursor->right && y >= cursor->top && y < cursor->bottom;
}

// Calls `paint` with (pixel, pixels, value) for every run, pixels counted from `pixel` on, and answers the
// number of pixels that the runs cover.
template <class Paint>
std::uint16_t ForEachRun(const tagCRLA* context, std::uint32_t pixel, Paint paint) {
  const std::uint32_t start = pixel;
  for (std::uint32_t run = 0; run < context->runCount; ++run) {
    paint(pixel, context->runLengths[run], context->values[run]);
    pixel += context->runLengths[run];
  }
  return Low16(pixel - start);
}

// Pixels of a line in the planes, from `pixel` of the row on.
void PaintPlanes(const tagPlaneData* cursor, std::uint8_t* row, std::uint32_t pixel, std::uint32_t pixels,
                 std::uint32_t value) {
  const std::int32_t planes = Signed32(cursor->planeCount);
  while (pixels > 0) {
    const std::uint32_t first = pixel % 8;
    const std::uint32_t here = pixels < 8 - first ? pixels : 8 - first;
    const std::uint8_t mask = PixelMask(first, here);
    std::uint8_t* byte = row + pixel / 8;
    for (std::int32_t plane = 0; plane < planes; ++plane, byte += cursor->planeBytes)
      *byte = PaintPlaneByte(*byte, mask, plane < 32 && (value >> plane & 1) != 0);
    pixel += here;
    pixels -= here;
  }
}

// Pixels of up to 8 bits: single ones up to a unit's edge, whole units, single ones.
void PaintUnits(UnitLayout layout, std::uint8_t* row, std::uint32_t pixel, std::uint32_t pixels,
                std::uint32_t value) {
  const std::uint32_t whole = pixels < layout.pixels ? 0 : FullUnit(layout, value);
  while (pixels > 0) {
    const std::uint32_t first = pixel % layout.pixels;
    std::uint8_t* at = row + pixel / layout.pixels * 2;
    const bool paintsAll = first == 0 && pixels >= layout.pixels;
    PutHigh16(at, paintsAll ? whole : PaintInUnit(GetHigh16(at), layout, first, value));
    const std::uint32_t done = paintsAll ? layout.pixels : 1;
    pixel += done;
    pixels -= done;
  }
}

// The line's first pixel where pixels are whole words of `bytes` bytes. The start may lie outside the band.
std::uint8_t* WordAt(const tagPackedData* cursor, std::uint16_t x, std::uint16_t y, std::ptrdiff_t bytes) {
  const std::ptrdiff_t row = y - cursor->top;
  return cursor->data + bytes * (row * cursor->rowUnits - cursor->left + x);
}

}  // namespace
}  // namespace cvt

using cvt::ForEachRun;

std::uint16_t CVT_CALL CvtWritePlaneTranslucentLine(tagPlaneData* cursor, tagCRLA* context, std::uint16_t x,
                                                    std::uint16_t y, std::uint8_t* transparent) {
  if (!cvt::StartsInside(cursor, x, y)) return 0;
  const std::uint32_t line = cvt::Low16(cvt::Unsigned32(y - cursor->top));
  std::uint8_t* row = cursor->data + std::size_t{line} * cursor->rowBytes;
  const std::uint32_t start = cvt::Low16(cvt::Unsigned32(x - cursor->left));
  return ForEachRun(context, start, [&](std::uint32_t pixel, std::uint32_t pixels, std::uint32_t value) {
    if (transparent[value] == 0) cvt::PaintPlanes(cursor, row, pixel, pixels, value);
  });
}

std::uint16_t CVT_CALL CvtWritePackedTranslucentLine(tagPackedData* cursor, tagCRLA* context, std::uint16_t x,
                                                     std::uint16_t y, std::uint8_t* transparent) {
  if (!cvt::StartsInside(cursor, x, y)) return 0;
  if (cursor->depthClass == 4) return CvtWritePackedTransluceLineWord(cursor, context, x, y, transparent);
  if (cursor->depthClass == 5) return CvtWritePackedTransluceLineLong(cursor, context, x, y, transparent);
  const cvt::UnitLayout layout = cvt::UnitLayoutOf(cursor->depthClass);
  const std::uint32_t line = cvt::Low16(cvt::Unsigned32(y - cursor->top));
  std::uint8_t* row = cursor->data + std::size_t{line} * cursor->rowUnits * 2;
  const std::uint32_t start = cvt::Low16(cvt::Unsigned32(x - cursor->left));
  return ForEachRun(context, start, [&](std::uint32_t pixel, std::uint32_t pixels, std::uint32_t wide) {
    const std::uint16_t value = cvt::Low16(wide);
    if (transparent[value] == 0) cvt::PaintUnits(layout, row, pixel, pixels, value);
  });
}

std::uint16_t CVT_CALL CvtWritePackedTransluceLineWord(tagPackedData* cursor, tagCRLA* context, std::uint16_t x,
                                                       std::uint16_t y, std::uint8_t* transparent) {
  std::uint8_t* first = cvt::WordAt(cursor, x, y, 2);
  return ForEachRun(context, 0, [&](std::uint32_t pixel, std::uint32_t pixels, std::uint32_t wide) {
    const std::uint16_t value = cvt::Low16(wide);
    if (transparent[value] != 0) return;
    for (std::uint32_t i = pixel; i < pixel + pixels; ++i) cvt::PutLow16(first + std::size_t{i} * 2, value);
  });
}

std::uint16_t CVT_CALL CvtWritePackedTransluceLineLong(tagPackedData* cursor, tagCRLA* context, std::uint16_t x,
                                                       std::uint16_t y, std::uint8_t* transparent) {
  std::uint8_t* first = cvt::WordAt(cursor, x, y, 4);
  return ForEachRun(context, 0, [&](std::uint32_t pixel, std::uint32_t pixels, std::uint32_t value) {
    if (transparent[value] != 0) return;
    for (std::uint32_t i = pixel; i < pixel + pixels; ++i) cvt::PutLow32(first + std::size_t{i} * 4, value);
  });
}

// Twins of the translucent line writers, one pixel at a time.
#include "tests/reference/band.h"

namespace cvt::test {

namespace {

template <class Cursor>
bool Outside(const Cursor& c, std::uint16_t x, std::uint16_t y) {
  return x < c.left || x >= c.right || y < c.top || y >= c.bottom;
}

// Calls `paint` with the number and the value of every pixel that is not spared; answers the line's pixels.
template <class Paint>
std::uint16_t PaintLine(const tagCRLA& context, std::uint32_t mask, const std::uint8_t* transparent, Paint paint) {
  std::int64_t pixel = 0;
  for (std::uint32_t r = 0; r < context.runCount; ++r) {
    const std::uint32_t value = context.values[r] & mask;
    const bool paints = context.runLengths[r] != 0 && transparent[value] == 0;
    for (std::uint32_t n = 0; n < context.runLengths[r]; ++n, ++pixel)
      if (paints) paint(pixel, value);
  }
  return static_cast<std::uint16_t>(pixel);
}

}  // namespace

std::uint16_t RefTranslucentPlanes(tagPlaneData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y,
                                   const std::uint8_t* transparent) {
  if (Outside(*cursor, x, y)) return 0;
  return PaintLine(*context, 0xFFFFFFFF, transparent, [&](std::int64_t i, std::uint32_t value) {
    const std::int64_t pos = x - cursor->left + i;
    for (std::uint32_t j = 0; j < cursor->planeCount; ++j) {
      std::uint8_t* byte = cursor->data + (y - cursor->top) * cursor->rowBytes + j * cursor->planeBytes + pos / 8;
      const int bit = 0x80 >> (pos & 7);
      *byte = static_cast<std::uint8_t>((value >> j & 1) != 0 ? *byte | bit : *byte & ~bit);
    }
  });
}

std::uint16_t RefTranslucentStored(int pixelBytes, tagPackedData* cursor, tagCRLA* context, std::uint16_t x,
                                   std::uint16_t y, const std::uint8_t* transparent) {
  const std::int64_t first = static_cast<std::int64_t>(y - cursor->top) * cursor->rowUnits - cursor->left + x;
  const std::uint32_t mask = pixelBytes == 2 ? 0xFFFF : 0xFFFFFFFF;
  return PaintLine(*context, mask, transparent, [&](std::int64_t i, std::uint32_t value) {
    for (int k = 0; k < pixelBytes; ++k)
      cursor->data[(first + i) * pixelBytes + k] = static_cast<std::uint8_t>(value >> 8 * k);
  });
}

std::uint16_t RefTranslucentPacked(tagPackedData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y,
                                   const std::uint8_t* transparent) {
  if (Outside(*cursor, x, y)) return 0;
  const int c = cursor->depthClass;
  if (c >= 4) return RefTranslucentStored(c == 4 ? 2 : 4, cursor, context, x, y, transparent);
  const std::uint32_t bits = 1u << c, mask = (1u << bits) - 1;
  return PaintLine(*context, 0xFFFF, transparent, [&](std::int64_t i, std::uint32_t value) {
    const std::int64_t pos = x - cursor->left + i;
    std::uint8_t* bytes = cursor->data + 2 * ((pos >> (4 - c)) + (y - cursor->top) * cursor->rowUnits);
    const auto shift = static_cast<std::uint32_t>((16 - bits) - ((pos << c) & 15));
    const std::uint32_t word = ((bytes[0] * 256u + bytes[1]) & ~(mask << shift)) | value << shift;
    bytes[0] = static_cast<std::uint8_t>(word >> 8);
    bytes[1] = static_cast<std::uint8_t>(word);
  });
}

}  // namespace cvt::test

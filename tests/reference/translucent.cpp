// Twins of the translucent line writers, one pixel at a time.
#include "tests/reference/color.h"

namespace cvt::test {

namespace {

template <class Cursor>
bool Outside(const Cursor& c, std::uint16_t x, std::uint16_t y) {
  return x < c.left || x >= c.right || y < c.top || y >= c.bottom;
}

}  // namespace

std::uint16_t RefTranslucentPlanes(tagPlaneData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y,
                                   const std::uint8_t* transparent) {
  if (Outside(*cursor, x, y)) return 0;
  const std::int64_t start = x - cursor->left;
  std::int64_t pos = start;
  for (std::uint32_t r = 0; r < context->runCount; ++r) {
    const std::uint32_t value = context->values[r];
    const bool paints = context->runLengths[r] != 0 && transparent[value] == 0;
    for (std::uint32_t n = 0; n < context->runLengths[r]; ++n, ++pos)
      for (std::uint32_t j = 0; paints && j < cursor->planeCount; ++j) {
        std::uint8_t* byte =
            cursor->data + (y - cursor->top) * cursor->rowBytes + j * cursor->planeBytes + pos / 8;
        const int bit = 0x80 >> (pos & 7);
        *byte = static_cast<std::uint8_t>((value >> j & 1) != 0 ? *byte | bit : *byte & ~bit);
      }
  }
  return static_cast<std::uint16_t>(pos - start);
}

std::uint16_t RefTranslucentStored(int pixelBytes, tagPackedData* cursor, tagCRLA* context, std::uint16_t x,
                                   std::uint16_t y, const std::uint8_t* transparent) {
  std::int64_t pixel = static_cast<std::int64_t>(y - cursor->top) * cursor->rowUnits - cursor->left + x;
  std::uint32_t sum = 0;
  for (std::uint32_t r = 0; r < context->runCount; ++r) {
    const std::uint32_t value = pixelBytes == 2 ? context->values[r] & 0xFFFF : context->values[r];
    const bool paints = context->runLengths[r] != 0 && transparent[value] == 0;
    for (std::uint32_t n = 0; n < context->runLengths[r]; ++n, ++pixel)
      for (int i = 0; paints && i < pixelBytes; ++i)
        cursor->data[pixel * pixelBytes + i] = static_cast<std::uint8_t>(value >> 8 * i);
    sum += context->runLengths[r];
  }
  return static_cast<std::uint16_t>(sum);
}

std::uint16_t RefTranslucentPacked(tagPackedData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y,
                                   const std::uint8_t* transparent) {
  if (Outside(*cursor, x, y)) return 0;
  const int c = cursor->depthClass;
  if (c == 4) return RefTranslucentStored(2, cursor, context, x, y, transparent);
  if (c == 5) return RefTranslucentStored(4, cursor, context, x, y, transparent);
  const std::int64_t start = x - cursor->left;
  std::int64_t pos = start;
  const std::uint32_t bits = 1u << c, mask = (1u << bits) - 1;
  for (std::uint32_t r = 0; r < context->runCount; ++r) {
    const std::uint32_t value = context->values[r] & 0xFFFF;
    const bool paints = context->runLengths[r] != 0 && transparent[value] == 0;
    for (std::uint32_t n = 0; n < context->runLengths[r]; ++n, ++pos) {
      if (!paints) continue;
      const std::int64_t unit = (pos >> (4 - c)) + (y - cursor->top) * cursor->rowUnits;
      std::uint8_t* bytes = cursor->data + 2 * unit;
      const auto shift = static_cast<std::uint32_t>((16 - bits) - ((pos << c) & 15));
      const std::uint32_t word = ((bytes[0] * 256u + bytes[1]) & ~(mask << shift)) | value << shift;
      bytes[0] = static_cast<std::uint8_t>(word >> 8);
      bytes[1] = static_cast<std::uint8_t>(word);
    }
  }
  return static_cast<std::uint16_t>(pos - start);
}

}  // namespace cvt::test

// Twins of cursors and bit inversion.
#include "tests/reference/reference.h"
#include "tests/scripted/prefix.h"

namespace cvt::test {

namespace {

template <class Cursor, class Band>
Cursor* Open(Band* band) {
  auto* cursor = static_cast<Cursor*>(SioAllocSMem(sizeof(Cursor)));
  if (cursor == nullptr) return nullptr;
  cursor->left = band->left;
  cursor->top = band->top;
  cursor->right = static_cast<std::uint16_t>(band->left + band->width);
  cursor->bottom = static_cast<std::uint16_t>(band->top + band->lineCount);
  cursor->data = reinterpret_cast<std::uint8_t*>(band) + 12;
  return cursor;
}

}  // namespace

tagPlaneData* RefOpenPlane(tagRasterPlane* band) {
  auto* cursor = Open<tagPlaneData>(band);
  if (cursor == nullptr) return nullptr;
  cursor->rowBytes = static_cast<std::uint16_t>((band->width + 15) >> 3 & 0xFFFE);
  cursor->planeCount = band->bitsPerPixel;
  cursor->planeBytes = band->planeBytes;
  return cursor;
}

tagPackedData* RefOpenPacked(tagRasterPacked* band) {
  auto* cursor = Open<tagPackedData>(band);
  if (cursor == nullptr) return nullptr;
  const std::int64_t b = band->bitsPerPixel;
  std::int64_t p = b;
  while (p != 0 && (p & (p - 1)) != 0) ++p;
  std::int64_t units = ((p * band->width + 15) >> 3 & 0xFFFF) >> 1;
  static constexpr int kClasses[] = {5, 0, 1, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 4, 4, 4, 4};
  const int depthClass = b > 16 ? 5 : kClasses[b];
  if (depthClass == 5) units = units >> 1;
  cursor->rowUnits = static_cast<std::uint16_t>(units);
  cursor->depthClass = static_cast<std::uint16_t>(depthClass);
  return cursor;
}

void RefFlipBits(tagRasterPlane* band) {
  auto* header = reinterpret_cast<std::uint8_t*>(band);
  const std::uint32_t words = (PrefixOf(band).size - 12u) >> 1;
  for (std::uint32_t i = 0; i < 2 * words; ++i) header[12 + i] = static_cast<std::uint8_t>(~header[12 + i]);
}

}  // namespace cvt::test

// Pixel cursors: a band's geometry cached for the host's line readers and writers.

#include "cvt/cvtr2r.h"
#include "frame/ints.h"
#include "frame/layout.h"

namespace cvt {
namespace {

template <class Cursor, class Band>
void SetRectangle(Cursor* cursor, Band* band) {
  cursor->left = band->left;
  cursor->top = band->top;
  cursor->right = Low16(std::uint32_t{band->left} + band->width);
  cursor->bottom = Low16(std::uint32_t{band->top} + band->lineCount);
  cursor->data = PixelsOf(band);
}

constexpr std::uint16_t DepthClass(std::uint32_t bits) {
  if (bits == 0 || bits > 16) return 5;
  return bits > 8 ? 4 : bits > 4 ? 3 : bits > 2 ? 2 : bits == 2 ? 1 : 0;
}

// Row length in 16-bit units, in 32-bit units where pixels are that wide.
constexpr std::uint16_t RowUnits(std::uint32_t width, std::uint32_t bits) {
  const std::uint16_t bytes = Low16((PowerOfTwoFrom(bits) * width + 15) >> 3);
  return Low16(std::uint32_t{bytes} >> (DepthClass(bits) == 5 ? 2 : 1));
}

static_assert(RowUnits(3, 24) == 3 && RowUnits(5, 4) == 2 && RowUnits(5, 3) == 2 && RowUnits(9, 0) == 0);

}  // namespace
}  // namespace cvt

tagPlaneData* CVT_CALL CvtOpenPlanePixel(tagRasterPlane* band) {
  auto* cursor = static_cast<tagPlaneData*>(SioAllocSMem(sizeof(tagPlaneData)));
  if (cursor == nullptr) return nullptr;
  cvt::SetRectangle(cursor, band);
  cursor->rowBytes = cvt::Low16(cvt::RowBytes(band->width, 1));
  cursor->planeCount = band->bitsPerPixel;
  cursor->planeBytes = band->planeBytes;
  return cursor;
}

tagPackedData* CVT_CALL CvtOpenPackedPixel(tagRasterPacked* band) {
  auto* cursor = static_cast<tagPackedData*>(SioAllocSMem(sizeof(tagPackedData)));
  if (cursor == nullptr) return nullptr;
  cvt::SetRectangle(cursor, band);
  cursor->rowUnits = cvt::RowUnits(band->width, band->bitsPerPixel);
  cursor->depthClass = cvt::DepthClass(band->bitsPerPixel);
  return cursor;
}

void CVT_CALL CvtClosePlanePixel(tagPlaneData* cursor) { SioFreeSMem(cursor); }

void CVT_CALL CvtClosePackedPixel(tagPackedData* cursor) { SioFreeSMem(cursor); }

void CVT_CALL CvtFlipBits(tagRasterPlane* band) {
  const std::uint32_t words = (cvt::BlockSizeOf(band) - kBandHeaderBytes) >> 1;
  std::uint8_t* pixels = cvt::PixelsOf(band);
  for (std::uint32_t i = 0; i < 2 * words; ++i) pixels[i] = cvt::Low8(~std::uint32_t{pixels[i]});
}

// Twins of cursors, context and bit inversion.
#include "tests/reference/reference.h"
#include "tests/scripted/prefix.h"

namespace cvt::test {

tagPlaneData* RefOpenPlane(tagRasterPlane* band) {
  auto* cursor = static_cast<tagPlaneData*>(SioAllocSMem(sizeof(tagPlaneData)));
  if (cursor == nullptr) return nullptr;
  cursor->rowBytes = static_cast<std::uint16_t>((band->width + 15) >> 3 & 0xFFFE);
  cursor->left = band->left;
  cursor->top = band->top;
  cursor->right = static_cast<std::uint16_t>(band->left + band->width);
  cursor->bottom = static_cast<std::uint16_t>(band->top + band->lineCount);
  cursor->data = reinterpret_cast<std::uint8_t*>(band) + 12;
  cursor->planeCount = band->bitsPerPixel;
  cursor->planeBytes = band->planeBytes;
  return cursor;
}

tagPackedData* RefOpenPacked(tagRasterPacked* band) {
  auto* cursor = static_cast<tagPackedData*>(SioAllocSMem(sizeof(tagPackedData)));
  if (cursor == nullptr) return nullptr;
  const std::int64_t b = band->bitsPerPixel;
  std::int64_t p = b;
  while (p != 0 && (p & (p - 1)) != 0) ++p;
  std::int64_t units = ((p * band->width + 15) >> 3 & 0xFFFF) >> 1;
  int depthClass = 5;
  if (b == 1) depthClass = 0;
  if (b == 2) depthClass = 1;
  if (b == 3 || b == 4) depthClass = 2;
  if (b >= 5 && b <= 8) depthClass = 3;
  if (b >= 9 && b <= 16) depthClass = 4;
  if (depthClass == 5) units = units >> 1;
  cursor->rowUnits = static_cast<std::uint16_t>(units);
  cursor->left = band->left;
  cursor->top = band->top;
  cursor->right = static_cast<std::uint16_t>(band->left + band->width);
  cursor->bottom = static_cast<std::uint16_t>(band->top + band->lineCount);
  cursor->data = reinterpret_cast<std::uint8_t*>(band) + 12;
  cursor->depthClass = static_cast<std::uint16_t>(depthClass);
  return cursor;
}

CvtStatus RefCreateContext(tagCRLA** context, std::uint16_t capacity) {
  *context = static_cast<tagCRLA*>(SioAllocSMem(sizeof(tagCRLA)));
  if (*context == nullptr) return kCvtNoContext;
  (*context)->runLengths = static_cast<std::uint16_t*>(SioAllocSMem(capacity * 2u));
  if ((*context)->runLengths == nullptr) return kCvtNoRunArrays;
  (*context)->values = static_cast<std::uint32_t*>(SioAllocSMem(capacity * 4u));
  if ((*context)->values == nullptr) return kCvtNoRunArrays;
  (*context)->runCount = capacity;
  return kCvtOk;
}

CvtStatus RefDestroyContext(tagCRLA* context) {
  if (context->runLengths != nullptr) SioFreeSMem(context->runLengths);
  if (context->values != nullptr) SioFreeSMem(context->values);
  if (context->errorRow != nullptr) SioFreeSMem(context->errorRow);
  if (context->ownedBuffer2 != nullptr) SioFreeSMem(context->ownedBuffer2);
  if (context->ownedBuffer1 != nullptr) SioFreeSMem(context->ownedBuffer1);
  return SioFreeSMem(context);
}

void RefFlipBits(tagRasterPlane* band) {
  auto* header = reinterpret_cast<std::uint8_t*>(band);
  const std::uint32_t words = (PrefixOf(band).size - 12u) >> 1;
  for (std::uint32_t i = 0; i < 2 * words; ++i) header[12 + i] = static_cast<std::uint8_t>(~header[12 + i]);
}

}  // namespace cvt::test

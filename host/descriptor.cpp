// Descriptors: copies that routines may edit, and questions about their colours.

#include <cstring>

#include "cvt/host.h"
#include "host/tables.h"

using namespace cvt::host;

tagIGFD* CVT_CALL CvtDupIGFD(tagIGFD* descriptor) {
  auto* copy = static_cast<tagIGFD*>(SioAllocSMem(sizeof(tagIGFD)));
  if (copy != nullptr) std::memcpy(copy, descriptor, sizeof(tagIGFD));
  return copy;
}

void CVT_CALL CvtDisposeIGFD(tagIGFD* copy) { SioFreeSMem(copy); }

std::uint16_t CVT_CALL CvtIsGray(tagIGFD* descriptor, std::int32_t /*mode*/) {
  return IsIndexed(descriptor) && AllGray(PaletteOf(descriptor)) ? 1 : 0;
}

std::int32_t CVT_CALL CvtClosestRGB(IRGB* color, tagIGFD* descriptor) {
  return static_cast<std::int32_t>(NearestEntry(PaletteOf(descriptor), *color));
}

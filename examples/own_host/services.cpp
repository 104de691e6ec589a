// Memory, operation lists, descriptors, colours and the next stage.

#include <cstdlib>
#include <cstring>

#include "cvt/host.h"
#include "host.h"

// ---- Heap: blocks that know their size ----

namespace {

struct alignas(std::max_align_t) BlockHeader {
  std::uint32_t size;
};

}  // namespace

void* CVT_CALL SioAllocSMem(std::uint32_t size) {
  auto* header = static_cast<BlockHeader*>(std::malloc(sizeof(BlockHeader) + std::size_t{size}));
  if (header == nullptr) return nullptr;
  header->size = size;
  return header + 1;
}

std::uint32_t CVT_CALL SioSizeSMem(void* block) { return (static_cast<BlockHeader*>(block) - 1)->size; }

std::int16_t CVT_CALL SioFreeSMem(void* block) {
  if (block != nullptr) std::free(static_cast<BlockHeader*>(block) - 1);
  return 0;
}

// ---- Operations: this host has no lists, so that nothing can be put on one and nothing fails ----

void* CVT_CALL SioCreateOp(std::uint32_t code, std::uint32_t size) {
  if (size > 0xFFFF) return nullptr;  // the prefix has no room for more
  auto* block = static_cast<std::uint8_t*>(SioAllocSMem(size + kBandPrefixBytes));
  if (block == nullptr) return nullptr;
  const std::uint16_t prefix[2] = {static_cast<std::uint16_t>(code), static_cast<std::uint16_t>(size)};
  std::memcpy(block, prefix, sizeof prefix);
  return block + kBandPrefixBytes;
}

std::uint32_t CVT_CALL SioPutOp(tagOpList* /*list*/, void** /*operation*/) { return 1; }

std::int16_t CVT_CALL SioGetOpError(tagOpList* /*list*/) { return kCvtOk; }

// ---- Descriptors ----

tagIGFD* CVT_CALL CvtDupIGFD(tagIGFD* descriptor) {
  auto* copy = static_cast<tagIGFD*>(SioAllocSMem(sizeof(tagIGFD)));
  if (copy != nullptr) std::memcpy(copy, descriptor, sizeof(tagIGFD));
  return copy;
}

void CVT_CALL CvtDisposeIGFD(tagIGFD* copy) { SioFreeSMem(copy); }

// ---- Colours ----

std::int32_t CVT_CALL CvtClosestRGB(IRGB* color, tagIGFD* descriptor) {
  std::int32_t nearest = 0, least = INT32_MAX;
  for (std::int32_t i = 0; i < 1 << descriptor->bitsPerPixel; ++i) {
    const IRGB entry = descriptor->palette[i];
    const std::int32_t red = entry.red - color->red, green = entry.green - color->green,
                       blue = entry.blue - color->blue;
    const std::int32_t distance = red * red + green * green + blue * blue;
    if (distance < least) {
      least = distance;
      nearest = i;
    }
  }
  return nearest;
}

std::uint16_t CVT_CALL CvtIsGray(tagIGFD* descriptor, std::int32_t /*mode*/) {
  if ((descriptor->colorFlags & kIndexedColor) == 0) return 0;
  for (std::int32_t i = 0; i < 1 << descriptor->bitsPerPixel; ++i) {
    const IRGB entry = descriptor->palette[i];
    if (entry.red != entry.green || entry.green != entry.blue) return 0;
  }
  return 1;
}

// Called where the context's gammaActive is not 0: this host has no tone curve.
std::uint32_t CVT_CALL CvtAdjustGammaValue(tagCRLA* /*context*/, IRGB* /*color*/) { return 0; }

// Called for nearest colours. A host in a hurry keeps the answers in a table.
void CVT_CALL CvtSnap(tagCRLA* context) {
  auto* host = static_cast<Host*>(context->core);
  for (std::size_t i = 0; i < context->runCount; ++i) {
    IRGB color = host->source.palette[context->values[i]];
    context->values[i] = static_cast<std::uint32_t>(CvtClosestRGB(&color, &host->destination));
  }
}

// Called where colours become a palette's; the host makes the table that the context's searchTable points at.
std::uint16_t CVT_CALL CvtSearchRGBCube(std::uint8_t* table, WRGB* color) {
  return table[(color->red >> 3) * 1024 + (color->green >> 3) * 32 + (color->blue >> 3)];
}

// ---- The next stage ----

void CVT_CALL CvtAssignRasterStatus(tagRasterPacked* /*band*/, tagIGFD* /*source*/, std::uint16_t /*mode*/) {}

std::int16_t CVT_CALL CvtExecuteNextFunction(execute* next) {
  return static_cast<const Host*>(next->core)->takeBand(*next->rasterSlot);
}

// A convenience for hosts that drive conversions through it; the library never calls these two.
tagCRLA* CVT_CALL CvtOpenr2r(tagIGFD* /*source*/, tagIGFD* /*destination*/) { return nullptr; }

void CVT_CALL CvtCloser2r(tagCRLA* /*context*/) {}

#include "tests/reference/band.h"

#include <algorithm>

namespace cvt::test {

RefCursor RefOpen(bool planes, tagRasterPacked* band) {
  RefCursor cursor;
  if (planes)
    cursor.planes = RefOpenPlane(reinterpret_cast<tagRasterPlane*>(band));
  else
    cursor.packed = RefOpenPacked(band);
  return cursor;
}

void RefClose(RefCursor cursor) {
  if (cursor.planes != nullptr)
    SioFreeSMem(cursor.planes);
  else
    SioFreeSMem(cursor.packed);
}

void RefFreeBand(tagRasterPacked* band) { SioFreeSMem(reinterpret_cast<std::uint8_t*>(band) - kBandPrefixBytes); }

void RefReadLine(RefCursor in, tagCRLA* context, std::uint16_t y) {
  context->runCount = static_cast<std::uint16_t>(in.Right() - in.Left());
  if (in.planes != nullptr)
    context->runCount = CvtReadPlaneLine(in.planes, context, in.Left(), y);
  else
    context->runCount = CvtReadPackedLine(in.packed, context, in.Left(), y);
}

std::int64_t DepthClass(std::int64_t depth) {
  if (depth > 8) return 16;
  if (depth > 4) return 8;
  if (depth > 2) return 4;
  if (depth == 2) return 2;
  return 1;
}

Pieces CutLines(std::int64_t outBits, std::int64_t inBits, std::int64_t lines) {
  if (outBits == 0) return {0, 0};
  std::int64_t count = outBits / inBits;
  if (count * inBits != outBits) count = count + 1;
  const std::int64_t each = lines / count;
  if (each * count != lines) count = count + 1;
  return {count, each};
}

std::int64_t OutputBits(Sibling which, const tagIGFD& destination) {
  if (which.toPlanes) return destination.bitsPerPixel;
  if (which.fromPlanes) return DepthClass(static_cast<std::int8_t>(destination.bitsPerPixel));
  return DepthClass(destination.bitsPerPixel);
}

std::int64_t SourceBits(Sibling which, const tagIGFD& source) {
  const bool bothPacked = !which.fromPlanes && !which.toPlanes;
  return bothPacked ? DepthClass(source.bitsPerPixel) : source.bitsPerPixel;
}

tagRasterPacked* RefCreateBand(Sibling which, PlaneSize planeSize, const tagRasterPacked& input,
                               std::int64_t outBits, std::int64_t firstLine, std::int64_t lines) {
  const std::int64_t width = input.width;
  std::int64_t size = 0, planeBytes = 0;
  if (which.toPlanes) {
    planeBytes = ((width + 15) >> 3 & ~std::int64_t{1}) * lines;
    size = (planeSize == PlaneSize::SignedWord ? static_cast<std::int16_t>(planeBytes) : planeBytes) * outBits;
  } else {
    size = ((width * outBits + 15) >> 3 & ~std::int64_t{1}) * lines;
    if (!which.fromPlanes) size = size & 0xFFFF;
  }
  void* body = SioCreateOp(which.toPlanes ? kPlaneBand : kPackedBand, static_cast<std::uint32_t>(size + 12));
  if (body == nullptr) return nullptr;
  auto* band = static_cast<tagRasterPacked*>(body);
  band->left = input.left;
  band->top = static_cast<std::uint16_t>(input.top + firstLine);
  band->width = input.width;
  band->bitsPerPixel = static_cast<std::uint16_t>(outBits);
  band->lineCount = static_cast<std::uint16_t>(lines);
  if (which.toPlanes) band->planeBytes = static_cast<std::uint16_t>(planeBytes);
  return band;
}

Channels ChannelsOf(const tagIGFD& source) {
  const std::uint32_t width = std::min(source.bitsPerPixel / 3u, 8u);
  return {width, (1u << width) - 1, 8 - width};
}

}  // namespace cvt::test

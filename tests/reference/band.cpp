#include "tests/reference/band.h"

#include <algorithm>

namespace cvt::test {

RefCursor RefOpen(bool planes, tagRasterPacked* band) {
  if (planes) return {RefOpenPlane(reinterpret_cast<tagRasterPlane*>(band)), nullptr};
  return {nullptr, RefOpenPacked(band)};
}

void RefClose(RefCursor cursor) {
  if (cursor.planes != nullptr)
    SioFreeSMem(cursor.planes);
  else
    SioFreeSMem(cursor.packed);
}

void RefFreeBand(tagRasterPacked* band) { SioFreeSMem(reinterpret_cast<std::uint8_t*>(band) - kBandPrefixBytes); }

void RefReadPixels(RefCursor in, tagCRLA* context, std::uint16_t pixels, std::uint16_t x, std::uint16_t y) {
  context->runCount = pixels;
  if (in.planes != nullptr)
    context->runCount = CvtReadPlaneLine(in.planes, context, x, y);
  else
    context->runCount = CvtReadPackedLine(in.packed, context, x, y);
}

void RefReadLine(RefCursor in, tagCRLA* context, std::uint16_t y) {
  RefReadPixels(in, context, static_cast<std::uint16_t>(in.Right() - in.Left()), in.Left(), y);
}

void RefWriteLine(RefCursor out, tagCRLA* context, std::uint16_t y) {
  if (out.planes != nullptr)
    CvtWritePlaneLine(out.planes, context, out.Left(), y);
  else
    CvtWritePackedLine(out.packed, context, out.Left(), y);
}

void RefWritePixel(RefCursor out, std::int64_t x, std::uint16_t y, std::uint32_t value) {
  if (out.planes != nullptr)
    CvtWritePlanePixel(out.planes, static_cast<std::uint16_t>(x), y, value);
  else
    CvtWritePackedPixel(out.packed, static_cast<std::uint16_t>(x), y, value);
}

Channels ChannelsOf(const tagIGFD& source) {
  const std::uint32_t width = std::min(source.bitsPerPixel / 3u, 8u);
  return {width, (1u << width) - 1, 8 - width};
}

std::int64_t RefGray(const IRGB& color) { return (59 * color.green + 11 * color.blue + 30 * color.red) / 100; }

std::int64_t RefClampChannel(std::int64_t value) {
  const std::int64_t word = value & 0xFFFF;
  if ((word & 0xFF00) == 0) return word;
  return (word & 0x8000) != 0 ? 0 : 255;
}

RefSource RefSourceOf(const tagIGFD& source, const tagCRLA& context, bool redLowest) {
  const bool indexed = (source.colorFlags & 0x80) != 0;
  return {source.palette, indexed, !indexed && context.gammaActive != 0, redLowest, 0xFFFF, ChannelsOf(source)};
}

IRGB RefSource::ColorOf(tagCRLA* context, std::uint32_t value) const {
  if (indexed) return palette[value & indexMask];
  const std::uint8_t lowest = channels.Of(value, 0), middle = channels.Of(value, 1),
                     highest = channels.Of(value, 2);
  IRGB color = {highest, middle, lowest};
  if (redLowest) color = {lowest, middle, highest};
  if (gamma) CvtAdjustGammaValue(context, &color);
  return color;
}

RefInks RefInksOf(tagIGFD* destination) {
  IRGB black = {0, 0, 0}, white = {255, 255, 255};
  const auto blackEntry = static_cast<std::uint16_t>(CvtClosestRGB(&black, destination));
  return {blackEntry, static_cast<std::uint16_t>(CvtClosestRGB(&white, destination))};
}

tagRasterPacked* RefNewBand(bool planes, std::int64_t dataBytes, const RefHeader& header) {
  const auto size = static_cast<std::uint32_t>(dataBytes + 12);
  auto* band = static_cast<tagRasterPacked*>(SioCreateOp(planes ? kPlaneBand : kPackedBand, size));
  if (band == nullptr) return nullptr;
  band->left = static_cast<std::uint16_t>(header.left);
  band->top = static_cast<std::uint16_t>(header.top);
  band->width = static_cast<std::uint16_t>(header.width);
  band->lineCount = static_cast<std::uint16_t>(header.lines);
  band->bitsPerPixel = static_cast<std::uint16_t>(header.depth);
  if (planes) band->planeBytes = static_cast<std::uint16_t>(header.planeBytes);
  return band;
}

tagRasterPacked* RefCreateBand(Sibling which, PlaneSize planeSize, const tagRasterPacked& input,
                               std::int64_t outBits, std::int64_t firstLine, std::int64_t lines) {
  const std::int64_t width = input.width, planeBytes = ((width + 15) >> 3 & ~std::int64_t{1}) * lines;
  std::int64_t size = ((width * outBits + 15) >> 3 & ~std::int64_t{1}) * lines;
  if (!which.fromPlanes) size = size & 0xFFFF;
  if (which.toPlanes)
    size = (planeSize == PlaneSize::SignedWord ? static_cast<std::int16_t>(planeBytes) : planeBytes) * outBits;
  return RefNewBand(which.toPlanes, size, {input.left, input.top + firstLine, width, lines, outBits, planeBytes});
}

namespace {

// Depth class of a packed band: the stored depths 1, 2, 4, 8 and 16.
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

}  // namespace

RefJob RefPaletteJob(Sibling which, PlaneSize planeSize, const tagRasterPacked& input, const tagIGFD& source,
                     const tagIGFD& destination) {
  const bool bothPacked = !which.fromPlanes && !which.toPlanes;
  const std::int64_t inBits = bothPacked ? DepthClass(source.bitsPerPixel) : source.bitsPerPixel;
  const std::int64_t outBits = OutputBits(which, destination);
  RefJob job{};
  job.which = which;
  job.pieces = CutLines(outBits, inBits, input.lineCount);
  job.create = [which, planeSize, outBits, &input](std::int64_t first, std::int64_t lines) {
    return RefCreateBand(which, planeSize, input, outBits, first, lines);
  };
  job.releasesWithoutMemory = job.releasesWhenRefused = true;
  job.opened = [] {};
  return job;
}

CvtStatus RefRunJob(const RefJob& job, tagRasterPacked* band, tagIGFD* source, tagIGFD* destination,
                    tagCRLA* context) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  copy->rasterKind = 0;
  const RefCursor in = RefOpen(job.which.fromPlanes, band);
  if (in.Missing()) {
    if (job.releasesWithoutMemory) CvtDisposeIGFD(copy);
    return kCvtNoMemory;
  }
  job.opened();
  CvtStatus status = kCvtOk;
  for (std::int64_t i = 0; i < job.pieces.count && status == kCvtOk; ++i) {
    const std::int64_t first = i * job.pieces.lines;
    tagRasterPacked* piece =
        job.create(first, i == job.pieces.count - 1 ? band->lineCount - first : job.pieces.lines);
    const RefCursor out = piece == nullptr ? RefCursor{} : RefOpen(job.which.toPlanes, piece);
    if (out.Missing()) {
      status = kCvtNoMemory;
      if (!job.releasesWithoutMemory) return status;
    } else {
      for (std::uint16_t y = out.Top(); y < out.Bottom() && status == kCvtOk; ++y)
        status = job.convertLine(in, out, y);
      RefClose(out);
      if (status == kCvtOk) {
        status = context->convertProc(&piece, copy, destination, context);
        if (status != kCvtOk && !job.releasesWhenRefused) return status;
      }
    }
    if (piece != nullptr) RefFreeBand(piece);
  }
  RefClose(in);
  CvtDisposeIGFD(copy);
  return status;
}

}  // namespace cvt::test

// What the colour twins do alike, and the dispatch that runs them.
#include "tests/reference/color.h"

namespace cvt::test {

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

std::int64_t RefClampChannel(std::int64_t value) {
  const std::int64_t word = value & 0xFFFF;
  if ((word & 0xFF00) == 0) return word;
  return (word & 0x8000) != 0 ? 0 : 255;
}

void RefWritePixel(RefCursor out, std::int64_t x, std::uint16_t y, std::uint32_t value) {
  if (out.planes != nullptr)
    CvtWritePlanePixel(out.planes, static_cast<std::uint16_t>(x), y, value);
  else
    CvtWritePackedPixel(out.packed, static_cast<std::uint16_t>(x), y, value);
}

RefJob RefPaletteJob(Sibling which, const tagRasterPacked& input, const tagIGFD& source,
                     const tagIGFD& destination) {
  const std::int64_t outBits = OutputBits(which, destination);
  RefJob job{};
  job.which = which;
  job.pieces = CutLines(outBits, SourceBits(which, source), input.lineCount);
  job.create = [which, outBits, &input](std::int64_t first, std::int64_t lines) {
    return RefCreateBand(which, PlaneSize::Full, input, outBits, first, lines);
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

CvtStatus CVT_CALL RefColorCvtr2r(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                  tagCRLA* context) {
  static constexpr Sibling kMembers[] = {{true, false}, {false, true}, {true, true}, {false, false}};
  static constexpr Sibling kRGBMembers[] = {{true, false}, {false, false}, {true, true}, {false, true}};
  const Due due = DueRoutine(0, (*band)->lineCount, *source, *destination, *context);
  const auto member = [due](Due first) { return static_cast<int>(due) - static_cast<int>(first); };
  const bool clips = due == Due::ClipPlane || due == Due::ClipPacked;
  const bool directs = due >= Due::BitRGBPacked && due <= Due::ByteRGBPlane;
  const bool reduces = due >= Due::MonoDitherBitByte && due <= Due::ColorDitherByteByte;
  if (!clips && !directs && !reduces) return RefCvtr2r(band, source, destination, context);
  if (source->progressProc(source->progressData) != 0) return kCvtStopped;
  if (clips) return RefClip(due == Due::ClipPlane, band, source, destination, context);
  if (directs) return RefRGB(kRGBMembers[member(Due::BitRGBPacked)], band, source, destination, context);
  if (due <= Due::MonoDitherByteByte)
    return RefMonoDither(kMembers[member(Due::MonoDitherBitByte)], band, source, destination, context);
  if (due <= Due::ColorDiffusionByteByte)
    return RefColorDiffusion(kMembers[member(Due::ColorDiffusionBitByte)], band, source, destination, context);
  return RefColorDither(kMembers[member(Due::ColorDitherBitByte)], band, source, destination, context);
}

}  // namespace cvt::test

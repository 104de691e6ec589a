// Twin of the dispatcher: the order of decisions, and the chain run with the twins as the routines.
#include "tests/reference/reference.h"

namespace cvt::test {

namespace {

std::int32_t Sum32(std::int16_t origin, std::int32_t size) {
  return static_cast<std::int32_t>(static_cast<std::int64_t>(origin) + size);
}

// The four members of a family stand one after another: bit-byte, byte-bit, bit-bit, byte-byte.
Due Member(Due first, int member) { return static_cast<Due>(static_cast<int>(first) + member); }

Due ByMethod(const tagCRLA& context, int member, Due nearest, Due diffusion, Due dither) {
  if (context.halftoneMethod == 1) return Member(nearest, member);
  if (context.halftoneMethod == 2) return Member(diffusion, member);
  return Member(dither, member);
}

Due MonochromeTable(const tagIGFD& src, const tagIGFD& dst, const tagCRLA& context) {
  const bool srcPlane = (src.rasterKind & 4) != 0, srcPacked = (src.rasterKind & 8) != 0;
  const bool dstPlane = (dst.rasterKind & 4) != 0, dstPacked = (dst.rasterKind & 8) != 0;
  const bool nothingToDo = context.sameColorMap != 0 && context.invertMono == 0;
  int member = -1;
  if (src.bitsPerPixel == 1 && src.rasterKind != 0 && (dstPlane || dstPacked)) return Due::Relabel;
  if (srcPlane && dstPacked)
    member = 0;
  else if (srcPacked && dstPlane)
    member = 1;
  else if (srcPlane && dstPlane && !nothingToDo)
    member = 2;
  else if (srcPacked && dstPacked && !nothingToDo)
    member = 3;
  else
    return Due::PassThrough;
  return ByMethod(context, member, Due::NearestBitByte, Due::MonoDiffusionBitByte, Due::MonoDitherBitByte);
}

Due ColorTable(const tagIGFD& src, const tagIGFD& dst, const tagCRLA& context) {
  const bool srcPlane = (src.rasterKind & 4) != 0, srcPacked = (src.rasterKind & 8) != 0;
  const bool dstPlane = (dst.rasterKind & 4) != 0, dstPacked = (dst.rasterKind & 8) != 0;
  int member = -1;
  if (srcPlane && dstPacked)
    member = 0;
  else if (srcPacked && dstPlane)
    member = 1;
  else if (srcPlane && dstPlane && context.sameColorMap == 0)
    member = 2;
  else if (srcPacked && dstPacked && context.sameColorMap == 0)
    member = 3;
  else
    return Due::PassThrough;
  return ByMethod(context, member, Due::NearestBitByte, Due::ColorDiffusionBitByte, Due::ColorDitherBitByte);
}

CvtStatus PassThrough(tagRasterPacked* band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  if ((destination->rasterKind & 12) != 0) CvtAssignRasterStatus(band, source, 2);
  *context->next->rasterSlot = band;
  const std::int16_t answer = CvtExecuteNextFunction(context->next);
  if (answer != 0) return answer;
  if (SioGetOpError(destination->opList) == -254) return -1034;
  if (SioGetOpError(destination->opList) == -1008) return -1034;
  if (SioGetOpError(destination->opList) == -256) return -1034;
  return SioGetOpError(destination->opList);
}

}  // namespace

Due DueRoutine(std::int16_t progressAnswer, std::uint16_t lineCount, const tagIGFD& src, const tagIGFD& dst,
               const tagCRLA& context) {
  const bool srcPlane = (src.rasterKind & 4) != 0, srcPacked = (src.rasterKind & 8) != 0;
  if (progressAnswer != 0) return Due::Stop;
  if (lineCount == 0) return Due::EmptyBand;
  if ((src.options & 0x80) != 0 && srcPlane) return Due::ClipPlane;
  if ((src.options & 0x80) != 0 && srcPacked) return Due::ClipPacked;
  if ((src.options & 0x40) != 0) {
    if (Sum32(src.originX, src.imageWidth) != Sum32(dst.originX, dst.imageWidth)) return Due::ScaleSmooth;
    if (Sum32(src.originY, src.imageHeight) != Sum32(dst.originY, dst.imageHeight)) return Due::ScaleSmooth;
  }
  if (src.imageWidth > dst.imageWidth) return Due::ScaleDownWidth;
  if (src.imageWidth == dst.imageWidth && src.originX != dst.originX) return Due::ScaleDownWidth;
  if (src.imageHeight > dst.imageHeight) return Due::ScaleDownHeight;
  if (src.imageHeight == dst.imageHeight && src.originY != dst.originY) return Due::ScaleDownHeight;
  if (src.imageWidth < dst.imageWidth) return Due::ScaleUpWidth;
  if (src.imageHeight < dst.imageHeight) return Due::ScaleUpHeight;
  if ((dst.colorFlags & 0x80) == 0) {
    if ((dst.rasterKind & 8) != 0 && srcPlane) return Due::BitRGBPacked;
    if ((dst.rasterKind & 8) != 0 && srcPacked) return Due::ByteRGBPacked;
    if ((dst.rasterKind & 4) != 0 && srcPlane) return Due::BitRGBPlane;
    if ((dst.rasterKind & 4) != 0 && srcPacked) return Due::ByteRGBPlane;
  }
  return dst.bitsPerPixel == 1 ? MonochromeTable(src, dst, context) : ColorTable(src, dst, context);
}

bool HasTwin(Due due) {
  return due <= Due::EmptyBand || due == Due::PassThrough ||
         (due >= Due::Relabel && due <= Due::MonoDiffusionByteByte);
}

CvtStatus CVT_CALL RefCvtr2r(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  static constexpr Sibling kMembers[] = {{true, false}, {false, true}, {true, true}, {false, false}};
  const std::int16_t progress = source->progressProc(source->progressData);
  const Due due = DueRoutine(progress, (*band)->lineCount, *source, *destination, *context);
  if (!HasTwin(due)) return kNoTwin;
  if (due == Due::Stop) return kCvtStopped;
  if (due == Due::EmptyBand) return kCvtOk;
  if (due == Due::PassThrough) return PassThrough(*band, source, destination, context);
  if (due == Due::Relabel) return RefRelabel(band, source, destination, context);
  const bool diffusion = due >= Due::MonoDiffusionBitByte;
  const int member =
      static_cast<int>(due) - static_cast<int>(diffusion ? Due::MonoDiffusionBitByte : Due::NearestBitByte);
  const auto routine = diffusion ? RefMonoDiffusion : RefNearest;
  return routine(kMembers[member], band, source, destination, context);
}

}  // namespace cvt::test

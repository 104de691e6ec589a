// Twin of the dispatcher: the order of decisions, with the twins as the routines.
#include "tests/reference/reference.h"

namespace cvt::test {

namespace {

bool EndsDiffer(std::int16_t origin, std::int32_t size, std::int16_t otherOrigin, std::int32_t otherSize) {
  return std::int64_t{origin} + size != std::int64_t{otherOrigin} + otherSize;
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

CvtStatus CVT_CALL RefWholeCvtr2r(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                  tagCRLA* context) {
  const tagIGFD &src = *source, &dst = *destination;
  const auto run = [&](auto routine, auto... first) {
    return routine(first..., band, source, destination, context);
  };
  if (source->progressProc(source->progressData) != 0) return kCvtStopped;
  if ((*band)->lineCount == 0) return kCvtOk;

  const bool srcPlane = (src.rasterKind & 4) != 0, srcPacked = (src.rasterKind & 8) != 0;
  if ((src.options & 0x80) != 0 && (srcPlane || srcPacked)) return run(RefClip, srcPlane);
  if ((src.options & 0x40) != 0) {
    if (EndsDiffer(src.originX, src.imageWidth, dst.originX, dst.imageWidth)) return run(RefScaleSmooth);
    if (EndsDiffer(src.originY, src.imageHeight, dst.originY, dst.imageHeight)) return run(RefScaleSmooth);
  }
  if (src.imageWidth > dst.imageWidth) return run(RefScaleDown, Along::Width);
  if (src.imageWidth == dst.imageWidth && src.originX != dst.originX) return run(RefScaleDown, Along::Width);
  if (src.imageHeight > dst.imageHeight) return run(RefScaleDown, Along::Height);
  if (src.imageHeight == dst.imageHeight && src.originY != dst.originY) return run(RefScaleDown, Along::Height);
  if (src.imageWidth < dst.imageWidth) return run(RefScaleUp, Along::Width);
  if (src.imageHeight < dst.imageHeight) return run(RefScaleUp, Along::Height);

  const bool dstPlane = (dst.rasterKind & 4) != 0, dstPacked = (dst.rasterKind & 8) != 0;
  if ((dst.colorFlags & 0x80) == 0) {
    if (dstPacked && (srcPlane || srcPacked)) return run(RefRGB, Sibling{srcPlane, false});
    if (dstPlane && (srcPlane || srcPacked)) return run(RefRGB, Sibling{srcPlane, true});
  }
  const bool mono = dst.bitsPerPixel == 1;
  if (mono && src.bitsPerPixel == 1 && src.rasterKind != 0 && (dstPlane || dstPacked)) return run(RefRelabel);

  Sibling which{};
  const bool sameLayoutToo = context->sameColorMap == 0 || (mono && context->invertMono != 0);
  if (srcPlane && dstPacked)
    which = {true, false};
  else if (srcPacked && dstPlane)
    which = {false, true};
  else if (srcPlane && dstPlane && sameLayoutToo)
    which = {true, true};
  else if (srcPacked && dstPacked && sameLayoutToo)
    which = {false, false};
  else
    return PassThrough(*band, source, destination, context);
  if (context->halftoneMethod == 1) return run(RefNearest, which);
  if (context->halftoneMethod == 2) return run(mono ? RefMonoDiffusion : RefColorDiffusion, which);
  return run(mono ? RefMonoDither : RefColorDither, which);
}

}  // namespace cvt::test

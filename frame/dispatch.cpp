// The library's entry: one step of the chain for one band.

#include <initializer_list>

#include "cvt/cvtr2r.h"
#include "frame/decision.h"
#include "frame/layout.h"

namespace cvt {
namespace {

// Hands a band that needs nothing more to the next stage. The operation list is read afresh for every
// comparison: hosts count on the number of reads.
CvtStatus PassThrough(tagRasterPacked* band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  if (IsPlanes(*destination) || IsPacked(*destination)) CvtAssignRasterStatus(band, source, 2);
  PutBand(context->next->rasterSlot, band);
  if (const CvtStatus status = CvtExecuteNextFunction(context->next); status != kCvtOk) return status;
  for (const CvtStatus full : {kSioListClosed, kSioListFull, kSioListNoMemory})
    if (SioGetOpError(destination->opList) == full) return kCvtNextStageFull;
  return SioGetOpError(destination->opList);
}

// The slot as the routines for plane bands take it.
tagRasterPlane** AsPlanes(tagRasterPacked** band) { return reinterpret_cast<tagRasterPlane**>(band); }

CvtStatus Perform(Step step, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  tagRasterPlane** planes = AsPlanes(band);
  switch (step) {
    case Step::ClipPlane:
      return CvtClipPlane(planes, source, destination, context);
    case Step::ClipPacked:
      return CvtClipPacked(band, source, destination, context);
    case Step::BitRGBPacked:
      return CvtBitRGBPacked(planes, source, destination, context);
    case Step::ByteRGBPacked:
      return CvtByteRGBPacked(band, source, destination, context);
    case Step::BitRGBPlane:
      return CvtBitRGBPlane(planes, source, destination, context);
    case Step::ByteRGBPlane:
      return CvtByteRGBPlane(band, source, destination, context);
    case Step::ScaleSmooth:
      return CvtScaleSmooth(band, source, destination, context);
    case Step::ScaleDownWidth:
      return CvtScaleDownWidth(band, source, destination, context);
    case Step::ScaleDownHeight:
      return CvtScaleDownHeight(band, source, destination, context);
    case Step::ScaleUpWidth:
      return CvtScaleUpWidth(band, source, destination, context);
    case Step::ScaleUpHeight:
      return CvtScaleUpHeight(band, source, destination, context);
    case Step::Relabel:
      return Cvt1Bit1Byte(band, source, destination, context);
    case Step::NearestBitByte:
      return CvtBitByte(planes, source, destination, context);
    case Step::NearestByteBit:
      return CvtByteBit(band, source, destination, context);
    case Step::NearestBitBit:
      return CvtBitBit(planes, source, destination, context);
    case Step::NearestByteByte:
      return CvtByteByte(band, source, destination, context);
    case Step::MonoDiffusionBitByte:
      return CvtMonochromeDiffusionBitByte(planes, source, destination, context);
    case Step::MonoDiffusionByteBit:
      return CvtMonochromeDiffusionByteBit(band, source, destination, context);
    case Step::MonoDiffusionBitBit:
      return CvtMonochromeDiffusionBitBit(planes, source, destination, context);
    case Step::MonoDiffusionByteByte:
      return CvtMonochromeDiffusionByteByte(band, source, destination, context);
    case Step::MonoDitherBitByte:
      return CvtMonochromeDitherBitByte(planes, source, destination, context);
    case Step::MonoDitherByteBit:
      return CvtMonochromeDitherByteBit(band, source, destination, context);
    case Step::MonoDitherBitBit:
      return CvtMonochromeDitherBitBit(planes, source, destination, context);
    case Step::MonoDitherByteByte:
      return CvtMonochromeDitherByteByte(band, source, destination, context);
    case Step::ColorDiffusionBitByte:
      return CvtColorDiffusionBitByte(planes, source, destination, context);
    case Step::ColorDiffusionByteBit:
      return CvtColorDiffusionByteBit(band, source, destination, context);
    case Step::ColorDiffusionBitBit:
      return CvtColorDiffusionBitBit(planes, source, destination, context);
    case Step::ColorDiffusionByteByte:
      return CvtColorDiffusionByteByte(band, source, destination, context);
    case Step::ColorDitherBitByte:
      return CvtColorDitherBitByte(planes, source, destination, context);
    case Step::ColorDitherByteBit:
      return CvtColorDitherByteBit(band, source, destination, context);
    case Step::ColorDitherBitBit:
      return CvtColorDitherBitBit(planes, source, destination, context);
    case Step::ColorDitherByteByte:
      return CvtColorDitherByteByte(band, source, destination, context);
    case Step::PassThrough:
      break;
  }
  return PassThrough(BandAt<tagRasterPacked>(band), source, destination, context);
}

}  // namespace
}  // namespace cvt

CvtStatus CVT_CALL Cvtr2r(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  if (source->progressProc(source->progressData) != 0) return kCvtStopped;
  if (cvt::BandAt<tagRasterPacked>(band)->lineCount == 0) return kCvtOk;
  return cvt::Perform(cvt::Decide(*source, *destination, *context), band, source, destination, context);
}

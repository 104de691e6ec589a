// A band of one bit a pixel becomes the other kind in place: one plane and one-bit pixels have the same rows.

#include "cvt/cvtr2r.h"
#include "frame/layout.h"

CvtStatus CVT_CALL Cvt1Bit1Byte(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  copy->rasterKind = 0;

  auto* relabelled = cvt::BandAt<tagRasterPacked>(band);
  cvt::SetOperation(relabelled, (destination->rasterKind & kPlaneKind) != 0 ? kPlaneBand : kPackedBand);

  // Colour maps that differ swap black and white, and so does a request for inversion.
  const std::uint32_t sameColors = context->sameColorMap;
  const std::uint32_t invert = context->invertMono;
  auto* bits = cvt::BandAt<tagRasterPlane>(band);
  if (sameColors == 0 && invert == 0) CvtFlipBits(bits);
  if ((sameColors & invert) != 0) CvtFlipBits(bits);

  const CvtStatus status = context->convertProc(&relabelled, copy, destination, context);
  if (status != kCvtOk) return status;  // the copy stays allocated
  CvtDisposeIGFD(copy);
  return kCvtOk;
}

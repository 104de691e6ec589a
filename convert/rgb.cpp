// Conversion to direct colour.

#include "convert/rgb_rule.h"
#include "cvt/cvtr2r.h"
#include "frame/convert_band.h"

namespace cvt {
namespace {

// A band that keeps its layout needs no work when its depth fits and nothing is to be adjusted. Depths alone
// are compared, so palette indices pass as well.
bool FitsAlready(const tagIGFD* source, const tagIGFD* destination, const tagCRLA* context) {
  return source->bitsPerPixel == destination->bitsPerPixel && context->colorAdjust1 == 0 &&
         context->colorAdjust2 == 0 && context->gammaActive == 0;
}

template <class Band>
CvtStatus HandOnUnchanged(Band** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  copy->rasterKind = 0;
  const CvtStatus status =
      context->convertProc(reinterpret_cast<tagRasterPacked**>(band), copy, destination, context);
  CvtDisposeIGFD(copy);
  return status;
}

template <class From, class To>
CvtStatus ColorBand(typename From::Band** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  if constexpr (std::is_same_v<From, To>)
    if (FitsAlready(source, destination, context)) return HandOnUnchanged(band, source, destination, context);
  return ConvertBand<kDirectColor, ToDirectColor<From, To>, From, To>(band, source, destination, context);
}

}  // namespace
}  // namespace cvt

using cvt::ColorBand, cvt::Packed, cvt::Planes;

CvtStatus CVT_CALL CvtBitRGBPacked(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                   tagCRLA* context) {
  return ColorBand<Planes, Packed>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtByteRGBPacked(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                    tagCRLA* context) {
  return ColorBand<Packed, Packed>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtBitRGBPlane(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return ColorBand<Planes, Planes>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtByteRGBPlane(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                   tagCRLA* context) {
  return ColorBand<Packed, Planes>(band, source, destination, context);
}

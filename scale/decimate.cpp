// Reduction by plain sampling, as exported workers.

#include "scale/decimate.h"

#include "cvt/cvtr2r.h"

using cvt::Packed, cvt::Planes;

tagRasterPlane* CVT_CALL CvtDecimateWidthBit(tagRasterPlane** band, std::int32_t srcWidth, std::int32_t dstWidth,
                                             tagCRLA* context) {
  return cvt::DecimateWidth<Planes>(band, {srcWidth, dstWidth}, context);
}
tagRasterPacked* CVT_CALL CvtDecimateWidthByte(tagRasterPacked** band, std::int32_t srcWidth,
                                               std::int32_t dstWidth, tagCRLA* context) {
  return cvt::DecimateWidth<Packed>(band, {srcWidth, dstWidth}, context);
}
tagRasterPlane* CVT_CALL CvtDecimateHeightBit(tagRasterPlane** band, std::int32_t srcHeight,
                                              std::int32_t dstHeight, tagCRLA* context) {
  return cvt::DecimateHeight<Planes>(band, {srcHeight, dstHeight}, context);
}
tagRasterPacked* CVT_CALL CvtDecimateHeightByte(tagRasterPacked** band, std::int32_t srcHeight,
                                                std::int32_t dstHeight, tagCRLA* context) {
  return cvt::DecimateHeight<Packed>(band, {srcHeight, dstHeight}, context);
}

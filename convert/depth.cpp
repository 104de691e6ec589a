// Depth and layout conversion by nearest colour.

#include "convert/depth_rule.h"
#include "cvt/cvtr2r.h"
#include "frame/convert_band.h"

namespace cvt {
namespace {

template <class From, class To>
CvtStatus MapBand(typename From::Band** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  constexpr ChannelOrder kOrder =
      std::is_same_v<From, Planes> ? ChannelOrder::RedLowest : ChannelOrder::BlueLowest;
  return ConvertBand<kNearestColor, NearestColor<kOrder>, From, To>(band, source, destination, context);
}

}  // namespace
}  // namespace cvt

using cvt::MapBand, cvt::Packed, cvt::Planes;

CvtStatus CVT_CALL CvtBitByte(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return MapBand<Planes, Packed>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtByteBit(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return MapBand<Packed, Planes>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtBitBit(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return MapBand<Planes, Planes>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtByteByte(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return MapBand<Packed, Packed>(band, source, destination, context);
}

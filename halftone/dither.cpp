// Ordered dither to one bit a pixel.

#include "cvt/cvtr2r.h"
#include "frame/convert_band.h"
#include "frame/thresholds.h"
#include "halftone/dither_rule.h"
#include "halftone/mono.h"

namespace cvt {
namespace {

struct DitherMono {
  using Values = MonoValues;

  static Values Prepare(const tagIGFD* source, tagIGFD* destination, const tagCRLA* context) {
    return PrepareMono(source, destination, context);
  }

  template <class Input, class Output>
  static void ConvertLine(const Values& values, Input*, Output* output, tagCRLA* context, std::uint16_t y) {
    WithDecoding(values.source, [&](auto decode) { DitherLine<decltype(decode)>(values, output, context, y); });
  }

 private:
  template <class Decode, class Output>
  [[gnu::flatten, gnu::noinline]] static void DitherLine(const Values& values, Output* output, tagCRLA* context,
                                                         std::uint16_t y) {
    const std::uint32_t runs = context->runCount;
    const std::uint16_t* lengths = context->runLengths;
    const std::uint32_t* colors = context->values;
    const std::uint32_t black = values.black;
    const std::uint32_t white = values.white;
    std::uint16_t x = output->left;
    ThresholdWalk walk = WalkFrom(MatrixRow(context, y), x);
    for (std::uint32_t run = 0; run < runs; ++run) {
      const std::uint8_t gray = GrayLevel<Decode>(values, colors[run], context);
      for (std::uint32_t n = lengths[run]; n > 0; --n, ++x)
        WritePixel(output, x, y, Choose(IsWhite(TakeThreshold(&walk), gray), white, black));
    }
  }
};

template <Family kFamily, class From, class To>
CvtStatus DitherBand(typename From::Band** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return ConvertBand<kFamily, DitherMono, From, To>(band, source, destination, context);
}

}  // namespace
}  // namespace cvt

using cvt::DitherBand, cvt::kMonoDither, cvt::kMonoDitherBitByte, cvt::Packed, cvt::Planes;

CvtStatus CVT_CALL CvtMonochromeDitherBitByte(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                              tagCRLA* context) {
  return DitherBand<kMonoDitherBitByte, Planes, Packed>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtMonochromeDitherByteBit(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                              tagCRLA* context) {
  return DitherBand<kMonoDither, Packed, Planes>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtMonochromeDitherBitBit(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                             tagCRLA* context) {
  return DitherBand<kMonoDither, Planes, Planes>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtMonochromeDitherByteByte(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                               tagCRLA* context) {
  return DitherBand<kMonoDither, Packed, Packed>(band, source, destination, context);
}

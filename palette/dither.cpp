// Ordered dither to a palette.

#include <type_traits>

#include "cvt/cvtr2r.h"
#include "frame/color.h"
#include "frame/convert_band.h"
#include "palette/dither_rule.h"

namespace cvt {
namespace {

template <class Dither, class From>
struct DitherPixels {
  using Values = Source;

  static Values Prepare(const tagIGFD* source, const tagIGFD*, const tagCRLA* context) {
    return SourceOf(source, context);
  }

  template <class Output>
  static void ConvertLine(const Values& source, typename From::Cursor* input, Output* output, tagCRLA* context,
                          std::uint16_t y) {
    WithDecoding(source,
                 [&](auto decode) { DitherLine<decltype(decode)>(source, input->left, output, context, y); });
  }

 private:
  static constexpr ChannelOrder kOrder =
      std::is_same_v<From, Planes> ? ChannelOrder::RedLowest : ChannelOrder::BlueLowest;

  // The pattern lies one column to the left of the image: a pixel has the next column's threshold.
  template <class Decode, class Output>
  [[gnu::flatten, gnu::noinline]] static void DitherLine(const Source& source, std::uint16_t x, Output* output,
                                                         tagCRLA* context, std::uint16_t y) {
    const std::uint32_t runs = context->runCount;
    const std::uint16_t* lengths = context->runLengths;
    const std::uint32_t* colors = context->values;
    const DitherTables tables = DitherTablesOf(context);
    ThresholdWalk walk = WalkFrom(Dither::Along(context, y), Low16(x + 1U));
    for (std::uint32_t run = 0; run < runs; ++run) {
      const IRGB color = Decode::template Color<kOrder>(source, colors[run], context);
      for (std::uint32_t n = lengths[run]; n > 0; --n, ++x)
        WritePixel(output, x, y, Dither::Index(tables, color, TakeThreshold(&walk)));
    }
  }
};

// The function is settled before anything else is done.
template <class From, class To>
CvtStatus DitherBand(typename From::Band** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return WithDither(context, destination->bitsPerPixel, [&](auto dither) {
    return ConvertBand<kColorDither, DitherPixels<decltype(dither), From>, From, To>(band, source, destination,
                                                                                     context);
  });
}

}  // namespace
}  // namespace cvt

using cvt::DitherBand, cvt::Packed, cvt::Planes;

CvtStatus CVT_CALL CvtColorDitherBitByte(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                         tagCRLA* context) {
  return DitherBand<Planes, Packed>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtColorDitherByteBit(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                         tagCRLA* context) {
  return DitherBand<Packed, Planes>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtColorDitherBitBit(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                        tagCRLA* context) {
  return DitherBand<Planes, Planes>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtColorDitherByteByte(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                          tagCRLA* context) {
  return DitherBand<Packed, Packed>(band, source, destination, context);
}

std::uint16_t CVT_CALL CvtGetDitherIndex(tagIGFD*, tagIGFD*, tagCRLA* context, std::int16_t column,
                                         std::int16_t line, IRGB* color) {
  return cvt::WithGeneralDither(context, [&](auto dither) {
    using Dither = decltype(dither);
    const std::uint16_t y = cvt::Low16(cvt::Unsigned32(line));
    cvt::ThresholdWalk walk = cvt::WalkFrom(Dither::Along(context, y), cvt::Low16(cvt::Unsigned32(column)));
    return Dither::Index(cvt::DitherTablesOf(context), *color, cvt::TakeThreshold(&walk));
  });
}

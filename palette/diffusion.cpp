// Error diffusion to a palette, line by line through runs.

#include <type_traits>

#include "cvt/cvtr2r.h"
#include "frame/color.h"
#include "frame/convert_band.h"
#include "frame/search.h"
#include "palette/diffusion_rule.h"

namespace cvt {
namespace {

template <class From, class To>
struct DiffuseColor {
  struct Values {
    Source source;
    SearchBy search;
    const IRGB* palette;
    std::int16_t* errorRow;
  };

  static Values Prepare(const tagIGFD* source, const tagIGFD* destination, const tagCRLA* context) {
    return {SourceOf(source, context), SearchOf(context), destination->palette, context->errorRow};
  }

  static void ConvertLine(const Values& values, typename From::Cursor* input, typename To::Cursor* output,
                          tagCRLA* context, std::uint16_t y) {
    WithSearch(values.search, [&](auto search) {
      WithDecoding(values.source, [&](auto decode) {
        DiffuseLine<decltype(search), decltype(decode)>(values, input->left, output, context, y);
      });
    });
  }

 private:
  static constexpr ChannelOrder kOrder =
      std::is_same_v<From, Planes> ? ChannelOrder::RedLowest : ChannelOrder::BlueLowest;

  template <class Search, class Decode>
  [[gnu::flatten, gnu::noinline]] static void DiffuseLine(const Values& values, std::uint16_t left,
                                                          typename To::Cursor* output, tagCRLA* context,
                                                          std::uint16_t y) {
    const std::uint32_t runs = context->runCount;
    const std::uint16_t* lengths = context->runLengths;
    const std::uint32_t* colors = context->values;
    const PaletteTables tables{values.palette, context->searchTable};
    std::uint32_t pixel = 0;
    Carry carry{};
    for (std::uint32_t run = 0; run < runs; ++run) {
      const IRGB color = Decode::template Color<kOrder>(values.source, colors[run], context);
      for (std::uint32_t n = lengths[run]; n > 0; --n, ++pixel) {
        const auto show = [&](std::uint16_t index) { WritePixel(output, Low16(left + pixel), y, index); };
        std::int16_t* entry = values.errorRow + std::size_t{3} * pixel;
        carry = DiffusePixel<Search>(tables, entry, pixel == 0, color, carry, show);
      }
    }
  }
};

template <class From, class To>
CvtStatus DiffuseBand(typename From::Band** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return ConvertBand<kErrorDiffusion, DiffuseColor<From, To>, From, To>(band, source, destination, context);
}

}  // namespace
}  // namespace cvt

using cvt::DiffuseBand, cvt::Packed, cvt::Planes;

CvtStatus CVT_CALL CvtColorDiffusionBitByte(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                            tagCRLA* context) {
  return DiffuseBand<Planes, Packed>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtColorDiffusionByteBit(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                            tagCRLA* context) {
  return DiffuseBand<Packed, Planes>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtColorDiffusionBitBit(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                           tagCRLA* context) {
  return DiffuseBand<Planes, Planes>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtColorDiffusionByteByte(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                             tagCRLA* context) {
  if (CvtCanShortCutDiffusion(band, source, destination, context) != 0)
    return CvtShortCutDiffusion(band, source, destination, context);
  return DiffuseBand<Packed, Packed>(band, source, destination, context);
}

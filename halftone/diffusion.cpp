// Error diffusion to one bit a pixel.

#include <type_traits>

#include "cvt/cvtr2r.h"
#include "frame/convert_band.h"
#include "halftone/diffusion_rule.h"
#include "halftone/mono.h"

namespace cvt {
namespace {

template <class From, class To>
struct DiffuseMono {
  using Values = MonoValues;

  static Values Prepare(const tagIGFD* source, tagIGFD* destination, const tagCRLA* context) {
    return PrepareMono(source, destination, context);
  }

  static void ConvertLine(const Values& values, typename From::Cursor* input, typename To::Cursor* output,
                          tagCRLA* context, std::uint16_t y) {
    WithDecoding(values.source, [&](auto decode) {
      DiffuseLine<decltype(decode)>(values, FirstEntry(input), output, context, y);
    });
  }

 private:
  // From planes to packed pixels the error row is indexed by image column, and the output column counts
  // from the band's left once more. Pipelines have lived with that; they send bands that start at column 0.
  static std::uint32_t FirstEntry(const typename From::Cursor* input) {
    return std::is_same_v<From, Planes> && std::is_same_v<To, Packed> ? input->left : 0;
  }

  template <class Decode>
  static void DiffuseLine(const Values& values, std::uint32_t entry, typename To::Cursor* output, tagCRLA* context,
                          std::uint16_t y) {
    const std::uint32_t runs = context->runCount;
    const std::uint16_t* lengths = context->runLengths;
    const std::uint32_t* colors = context->values;
    const std::uint32_t left = output->left;
    // The test that takes white off the error compares indices: where black and white are one entry,
    // nothing is ever taken off.
    const std::int32_t whiteShown = values.white != values.black ? kWhiteLevel : 0;
    std::int16_t* row = context->errorRow;
    std::int16_t error = 0;  // of the pixel to the left

    for (std::uint32_t run = 0; run < runs; ++run) {
      const std::uint8_t gray = GrayLevel<Decode>(values.source, colors[run], context);
      for (std::uint32_t n = lengths[run]; n > 0; --n, ++entry) {
        const std::int16_t wanted = WantedLevel(gray, error, row[entry]);
        const bool white = IsWhite(wanted);
        const std::int16_t before = error;
        error = ErrorLeft(wanted, white ? whiteShown : 0);
        if (entry > 0) row[entry - 1] = Wrap16(row[entry - 1] + BelowLeftShare(error));
        row[entry] = BelowShare(error);
        WritePixel(output, Low16(entry + left), y, white ? values.white : values.black);
        row[entry] = Wrap16(row[entry] + BelowRightShare(before));
      }
    }
  }
};

template <class From, class To>
CvtStatus DiffuseBand(typename From::Band** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return ConvertBand<kErrorDiffusion, DiffuseMono<From, To>, From, To>(band, source, destination, context);
}

}  // namespace
}  // namespace cvt

using cvt::DiffuseBand, cvt::Packed, cvt::Planes;

CvtStatus CVT_CALL CvtMonochromeDiffusionBitByte(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                                 tagCRLA* context) {
  return DiffuseBand<Planes, Packed>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtMonochromeDiffusionByteBit(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                                 tagCRLA* context) {
  return DiffuseBand<Packed, Planes>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtMonochromeDiffusionBitBit(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination,
                                                tagCRLA* context) {
  return DiffuseBand<Planes, Planes>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtMonochromeDiffusionByteByte(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                                  tagCRLA* context) {
  return DiffuseBand<Packed, Packed>(band, source, destination, context);
}

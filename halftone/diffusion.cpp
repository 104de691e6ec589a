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
      if (values.black != values.white)
        DiffuseLine<decltype(decode), TwoInks>(values, FirstEntry(input), output, context, y);
      else
        DiffuseLine<decltype(decode), OneInk>(values, FirstEntry(input), output, context, y);
    });
  }

 private:
  // From planes to packed pixels the error row is indexed by image column, and the output column counts
  // from the band's left once more. Pipelines have lived with that; they send bands that start at column 0.
  static std::uint32_t FirstEntry(const typename From::Cursor* input) {
    return std::is_same_v<From, Planes> && std::is_same_v<To, Packed> ? input->left : 0;
  }

  // Runs of one pixel that a line begins with, a block at a time: all of them, where readers deliver pixels.
  static std::uint32_t LeadingSingles(const std::uint16_t* lengths, std::uint32_t runs) {
    constexpr std::uint32_t kBlock = 64;
    std::uint32_t singles = 0;
    for (; singles + kBlock <= runs; singles += kBlock) {
      std::uint32_t others = 0;
      for (std::uint32_t i = 0; i < kBlock; ++i) others |= lengths[singles + i] ^ 1U;
      if (others != 0) break;
    }
    return singles;
  }

  // Where a line stands. What the entry to the left holds is kept here, and stored once the pixel to its
  // right has added its share, or earlier where the host is called in between.
  struct Walk {
    std::uint32_t x;
    std::int16_t* at;
    std::int16_t* toLeft;
    std::int16_t held;
    Spread before;  // of the pixel to the left
  };

  template <class Inks>
  static void DiffusePixel(std::uint8_t gray, std::uint32_t black, std::uint32_t white, Walk* walk,
                           typename To::Cursor* output, std::uint16_t y) {
    const std::int32_t wanted = gray + *walk->at + walk->before.right;
    const Spread spread = Inks::Of(wanted);
    *walk->toLeft = Wrap16(walk->held + BelowLeftShare(spread.error));
    *walk->at = BelowShare(spread.error);
    WritePixel(output, Low16(walk->x++), y, Choose(IsWhite(Wrap16(wanted)), white, black));
    walk->held = Wrap16(BelowShare(spread.error) + BelowRightShare(walk->before.error));
    walk->toLeft = walk->at++;
    walk->before = spread;
  }

  // Flattened: where the host is compiled in as well, its pixel writer becomes part of the loop.
  template <class Decode, class Inks>
  [[gnu::flatten, gnu::noinline]] static void DiffuseLine(const Values& values, std::uint32_t entry,
                                                          typename To::Cursor* output, tagCRLA* context,
                                                          std::uint16_t y) {
    const std::uint32_t runs = context->runCount;
    const std::uint16_t* lengths = context->runLengths;
    const std::uint32_t* colors = context->values;
    const std::uint32_t black = values.black;
    const std::uint32_t white = values.white;
    std::int16_t dropped = 0;  // the share below left of the image's first column
    std::int16_t* at = context->errorRow + entry;
    std::int16_t* toLeft = entry > 0 ? at - 1 : &dropped;
    Walk walk{entry + output->left, at, toLeft, *toLeft, {0, 0}};

    const std::uint32_t singles = LeadingSingles(lengths, runs);
    for (std::uint32_t run = 0; run < singles; ++run) {
      const std::uint8_t gray = GrayLevel<Decode>(values, colors[run], context);
      DiffusePixel<Inks>(gray, black, white, &walk, output, y);
      if constexpr (std::is_same_v<Decode, DecodeWithGamma>) *walk.toLeft = walk.held;
    }
    *walk.toLeft = walk.held;
    for (std::uint32_t run = singles; run < runs; ++run) {
      const std::uint8_t gray = GrayLevel<Decode>(values, colors[run], context);
      for (std::uint32_t n = lengths[run]; n > 0; --n) DiffusePixel<Inks>(gray, black, white, &walk, output, y);
      *walk.toLeft = walk.held;
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

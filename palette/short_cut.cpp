// The short-cut of colour diffusion: packed pixels become 8-bit indices in place, over their own bytes.
//
// No sub-bands, no cursors, no runs, no call for every pixel but the search. An index takes no more room than
// the pixel it stands for and a row of indices ends no later than the row it came from, so nothing that is
// still to be read is written over. Error row and pixel rule are those of the general path; an image may
// change from one to the other between bands.

#include <cstddef>

#include "cvt/cvtr2r.h"
#include "frame/layout.h"
#include "frame/search.h"
#include "palette/diffusion_rule.h"
#include "palette/short_cut_rule.h"

namespace cvt {
namespace {

template <class Pixel>
void DiffuseInPlace(tagRasterPacked* band, const Pixel& pixel, const PaletteTables& tables,
                    std::int16_t* errorRow) {
  const std::uint32_t width = band->width;
  const std::uint32_t lines = band->lineCount;
  const std::uint32_t pad = width % 2;  // rows of bytes are padded to 16 bits; the padding stays as it is
  const std::uint8_t* from = PixelsOf(band);
  std::uint8_t* to = PixelsOf(band);
  for (std::uint32_t line = 0; line < lines; ++line) {
    std::int16_t* entry = errorRow;
    Carry carry{};
    for (std::uint32_t x = 0; x < width; ++x, entry += 3, from += Pixel::kBytes) {
      std::uint16_t index = 0;
      carry = DiffusePixel<SearchCube>(tables, entry, x == 0, pixel.Color(from), carry,
                                       [&index](std::uint16_t shown) { index = shown; });
      *to++ = Low8(index);
    }
    to += pad;
    if (Pixel::kBytes == 1) from += pad;
  }
}

template <class Pixel>
CvtStatus DiffuseBandInPlace(tagRasterPacked** slot, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  copy->rasterKind = 0;

  auto* band = BandAt<tagRasterPacked>(slot);
  DiffuseInPlace(band, Pixel::Of(source), {destination->palette, context->searchTable}, context->errorRow);
  band->bitsPerPixel = 8;

  const CvtStatus status = context->convertProc(slot, copy, destination, context);
  CvtDisposeIGFD(copy);
  return status;
}

}  // namespace
}  // namespace cvt

std::uint16_t CVT_CALL CvtCanShortCutDiffusion(tagRasterPacked** band, tagIGFD*, tagIGFD* destination,
                                               tagCRLA* context) {
  if ((context->diffusionFlags & kShortCutLatch) != 0) return 1;
  if (cvt::BandAt<tagRasterPacked>(band)->bitsPerPixel < 5) return 0;
  if (destination->bitsPerPixel > 8 || destination->bitsPerPixel < 5) return 0;
  if (context->gammaActive != 0 || context->grayPalette != 0 || context->invertMono != 0) return 0;
  if (context->halftoneMethod != kDiffusion) return 0;
  context->diffusionFlags = cvt::Low16(context->diffusionFlags | std::uint32_t{kShortCutLatch});
  return 1;
}

CvtStatus CVT_CALL CvtShortCutDiffusion(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                        tagCRLA* context) {
  const std::uint32_t bits = cvt::BandAt<tagRasterPacked>(band)->bitsPerPixel;
  if (bits > 16) return CvtShortCutDiffusionLong(band, source, destination, context);
  if (bits > 8) return CvtShortCutDiffusionWord(band, source, destination, context);
  if (bits > 4) return CvtShortCutDiffusionByte(band, source, destination, context);
  return kCvtWrongDepth;
}

CvtStatus CVT_CALL CvtShortCutDiffusionByte(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                            tagCRLA* context) {
  return cvt::DiffuseBandInPlace<cvt::BytePixel>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtShortCutDiffusionWord(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                            tagCRLA* context) {
  return cvt::DiffuseBandInPlace<cvt::WordPixel>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtShortCutDiffusionLong(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                            tagCRLA* context) {
  return cvt::DiffuseBandInPlace<cvt::LongPixel>(band, source, destination, context);
}

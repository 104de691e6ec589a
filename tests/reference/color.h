// Twins of what makes, reduces and clips colours: direct colour, translucent lines, clipping, both ordered
// dithers, diffusion to a palette and its short-cut. Slow and obvious, as their siblings of reference.h.
#pragma once

#include <functional>

#include "tests/reference/band.h"

namespace cvt::test {

CvtStatus RefRGB(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context);
CvtStatus RefClip(bool planes, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context);
CvtStatus RefMonoDither(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                        tagCRLA* context);
CvtStatus RefColorDiffusion(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                            tagCRLA* context);
CvtStatus RefColorDither(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                         tagCRLA* context);
std::uint16_t RefDitherIndex(const tagCRLA& context, std::int16_t column, std::int16_t line, const IRGB& color);

/// The short-cut: whether it is taken, by the band's depth, and by the bytes that a pixel is stored in.
std::uint16_t RefCanShortCut(const tagRasterPacked& band, const tagIGFD& destination, tagCRLA* context);
CvtStatus RefShortCut(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context);
CvtStatus RefShortCutStored(int pixelBytes, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                            tagCRLA* context);

std::uint16_t RefTranslucentPlanes(tagPlaneData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y,
                                   const std::uint8_t* transparent);
std::uint16_t RefTranslucentPacked(tagPackedData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y,
                                   const std::uint8_t* transparent);
/// Pixels of 2 or 4 bytes, wherever they are.
std::uint16_t RefTranslucentStored(int pixelBytes, tagPackedData* cursor, tagCRLA* context, std::uint16_t x,
                                   std::uint16_t y, const std::uint8_t* transparent);

/// Dispatch with these twins as the routines, and with those of RefCvtr2r for what is not here.
CvtStatus CVT_CALL RefColorCvtr2r(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context);

/// Decoding of source values, settled once a call.
struct RefSource {
  const IRGB* palette;
  bool indexed, gamma, redLowest;
  std::uint32_t indexMask;
  Channels channels;
  IRGB ColorOf(tagCRLA* context, std::uint32_t value) const;
};
RefSource RefSourceOf(const tagIGFD& source, const tagCRLA& context, bool redLowest);
std::int64_t RefClampChannel(std::int64_t value);
void RefWritePixel(RefCursor out, std::int64_t x, std::uint16_t y, std::uint32_t value);

/// One band's conversion: its pieces, how a line is converted, and what a failure gives back.
struct RefJob {
  Sibling which;
  Pieces pieces;
  std::function<tagRasterPacked*(std::int64_t firstLine, std::int64_t lines)> create;
  bool releasesWithoutMemory, releasesWhenRefused;
  std::function<void()> opened;  // once the input cursor is open
  std::function<CvtStatus(RefCursor in, RefCursor out, std::uint16_t y)> convertLine;
};
RefJob RefPaletteJob(Sibling which, const tagRasterPacked& input, const tagIGFD& source,
                     const tagIGFD& destination);
CvtStatus RefRunJob(const RefJob& job, tagRasterPacked* band, tagIGFD* source, tagIGFD* destination,
                    tagCRLA* context);

}  // namespace cvt::test

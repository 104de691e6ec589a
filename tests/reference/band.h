// What the twins of the band routines do alike: a cursor of either kind, one line, colours out of values, output
// bands, and one band's conversion from piece to piece.
#pragma once

#include <functional>

#include "tests/reference/reference.h"

namespace cvt::test {

/// A cursor of one kind or the other; both null when it could not be had.
struct RefCursor {
  tagPlaneData* planes = nullptr;
  tagPackedData* packed = nullptr;

  bool Missing() const { return planes == nullptr && packed == nullptr; }
  std::uint16_t Left() const { return planes != nullptr ? planes->left : packed->left; }
  std::uint16_t Right() const { return planes != nullptr ? planes->right : packed->right; }
  std::uint16_t Top() const { return planes != nullptr ? planes->top : packed->top; }
  std::uint16_t Bottom() const { return planes != nullptr ? planes->bottom : packed->bottom; }
};

RefCursor RefOpen(bool planes, tagRasterPacked* band);
void RefClose(RefCursor cursor);
void RefFreeBand(tagRasterPacked* band);
void RefReadPixels(RefCursor in, tagCRLA* context, std::uint16_t pixels, std::uint16_t x, std::uint16_t y);
void RefReadLine(RefCursor in, tagCRLA* context, std::uint16_t y);
void RefWriteLine(RefCursor out, tagCRLA* context, std::uint16_t y);
void RefWritePixel(RefCursor out, std::int64_t x, std::uint16_t y, std::uint32_t value);

/// Widths of the channels of a direct-colour value.
struct Channels {
  std::uint32_t width, mask, shift;
  std::uint8_t Of(std::uint32_t value, std::uint32_t channel) const {
    return static_cast<std::uint8_t>((value >> channel * width & mask) << shift);
  }
};
Channels ChannelsOf(const tagIGFD& source);
std::int64_t RefGray(const IRGB& color);
std::int64_t RefClampChannel(std::int64_t value);

/// Decoding of source values, settled once a call.
struct RefSource {
  const IRGB* palette;
  bool indexed, gamma, redLowest;
  std::uint32_t indexMask;
  Channels channels;
  IRGB ColorOf(tagCRLA* context, std::uint32_t value) const;
};
RefSource RefSourceOf(const tagIGFD& source, const tagCRLA& context, bool redLowest);

/// The destination's entries for black and white.
struct RefInks {
  std::uint16_t black, white;
};
RefInks RefInksOf(tagIGFD* destination);

/// A new band with its header; planeBytes is written into bands of planes only. Null when it cannot be had.
struct RefHeader {
  std::int64_t left, top, width, lines, depth, planeBytes;
};
tagRasterPacked* RefNewBand(bool planes, std::int64_t dataBytes, const RefHeader& header);

/// The pieces that a band's lines are cut into: count pieces, all but the last of `lines` lines.
struct Pieces {
  std::int64_t count, lines;
};

/// Where sizes are cut: planes to a signed word before they are multiplied, or not at all.
enum class PlaneSize : std::uint8_t { SignedWord, Full };
tagRasterPacked* RefCreateBand(Sibling which, PlaneSize planeSize, const tagRasterPacked& input,
                               std::int64_t outBits, std::int64_t firstLine, std::int64_t lines);

/// One band's conversion: its pieces, how a line is converted, and what a failure gives back.
struct RefJob {
  Sibling which;
  Pieces pieces;
  std::function<tagRasterPacked*(std::int64_t firstLine, std::int64_t lines)> create;
  bool releasesWithoutMemory, releasesWhenRefused;
  std::function<void()> opened;  // once the input cursor is open
  std::function<CvtStatus(RefCursor in, RefCursor out, std::uint16_t y)> convertLine;
};
RefJob RefPaletteJob(Sibling which, PlaneSize planeSize, const tagRasterPacked& input, const tagIGFD& source,
                     const tagIGFD& destination);
CvtStatus RefRunJob(const RefJob& job, tagRasterPacked* band, tagIGFD* source, tagIGFD* destination,
                    tagCRLA* context);

}  // namespace cvt::test

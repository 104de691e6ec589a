// What the twins of the band routines do alike: a cursor of either kind, one line, one output band.
#pragma once

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
void RefReadLine(RefCursor in, tagCRLA* context, std::uint16_t y);

/// Depth class of a packed band: the stored depths 1, 2, 4, 8 and 16.
std::int64_t DepthClass(std::int64_t depth);

/// The pieces that a band's lines are cut into: count pieces, all but the last of `lines` lines.
struct Pieces {
  std::int64_t count, lines;
};
Pieces CutLines(std::int64_t outBits, std::int64_t inBits, std::int64_t lines);

/// Bits of the output and of the source, as far as the number of pieces depends on them.
std::int64_t OutputBits(Sibling which, const tagIGFD& destination);
std::int64_t SourceBits(Sibling which, const tagIGFD& source);

/// Where sizes are cut: planes to a signed word before they are multiplied, or not at all.
enum class PlaneSize : std::uint8_t { SignedWord, Full };

/// Creates an output band with its header; null when it could not be had.
tagRasterPacked* RefCreateBand(Sibling which, PlaneSize planeSize, const tagRasterPacked& input,
                               std::int64_t outBits, std::int64_t firstLine, std::int64_t lines);

/// Widths of the channels of a direct-colour value.
struct Channels {
  std::uint32_t width, mask, shift;
  std::uint8_t Of(std::uint32_t value, std::uint32_t channel) const {
    return static_cast<std::uint8_t>((value >> channel * width & mask) << shift);
  }
};
Channels ChannelsOf(const tagIGFD& source);

}  // namespace cvt::test

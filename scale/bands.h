// What all scaling workers do around their rule: output bands, cursors and the loop over lines. Knows
// nothing of how pixels or lines are chosen.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/access.h"
#include "frame/ints.h"
#include "frame/layout.h"
#include "frame/new_band.h"

namespace cvt {

// The image's size along the direction that is scaled, before and after. A source size of 0 must not come
// here: everything is divided by it.
struct Ratio {
  std::int32_t from;
  std::int32_t to;
};

// Where a source position lands in the output, toward zero. The product wraps at 32 bits, sign and all.
constexpr std::int32_t Rescale(std::int32_t position, Ratio ratio) {
  return DivTrunc(MulWrap32(position, ratio.to), ratio.from);
}

static_assert(Rescale(6, {10, 4}) == 2 && Rescale(-3, {2, 1}) == -1 && Rescale(65536, {1, 65536}) == 0);

// Bytes of pixels of an output band. Packed rows are cut to 16 bits; bands that this would hurt never come
// from a careful host.
template <class To>
constexpr std::uint32_t BytesFor(const BandShape& shape) {
  const std::uint32_t row = RowBytes(shape.width, To::BitsInRow(shape.depth));
  return std::is_same_v<To, Planes> ? row * shape.lines * shape.depth : Low16(row) * shape.lines;
}

template <class To>
struct Output {
  typename To::Band* band;
  typename To::Cursor* cursor;  // null: the band, or this cursor on it, could not be had
};

template <class To>
Output<To> MakeOutput(const BandShape& shape) {
  auto* band = CreateBand<To>(shape, BytesFor<To>(shape));
  return {band, band == nullptr ? nullptr : OpenCursor(band)};
}

// Packed bands are relabelled in place with the depth that their pixels are stored in. The caller sees it.
inline void RoundDepth(tagRasterPlane*) {}
inline void RoundDepth(tagRasterPacked* band) { band->bitsPerPixel = Low16(PowerOfTwoFrom(band->bitsPerPixel)); }

// Reads each of the output's lines from the same line of the input, has `change` rework the runs, and
// writes them.
template <class From, class To, class Change>
void CopyLines(From* input, To* output, tagCRLA* context, std::uint16_t pixels, Change change) {
  const std::uint32_t end = output->bottom;
  for (std::uint32_t y = output->top; y < end; ++y) {
    ReadPixels(input, context, pixels, input->left, Low16(y));
    change();
    WriteLine(output, context, Low16(y));
  }
}

}  // namespace cvt

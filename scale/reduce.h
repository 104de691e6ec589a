// The frame of both reductions in width: one output band of as many lines, every line's runs rescaled.
#pragma once

#include <cstdint>

#include "scale/bands.h"
#include "scale/runs.h"

namespace cvt {

// Width that the rows of reduced bands are made for.
template <class Layout>
constexpr std::uint32_t ReducedWidth(std::uint16_t width, Ratio ratio) {
  const std::uint32_t reduced = Unsigned32(Rescale(width, ratio));
  return std::is_same_v<Layout, Planes> ? Low16(reduced) : reduced;
}

template <class Layout, class RescaleRuns>
typename Layout::Band* ReduceWidth(void* slot, Ratio ratio, tagCRLA* context, RescaleRuns rescaleRuns) {
  auto* band = BandAt<typename Layout::Band>(slot);
  RoundDepth(band);
  auto* input = OpenCursor(band);
  if (input == nullptr) return nullptr;
  const std::uint32_t left = Unsigned32(Rescale(SignExtend16(band->left), ratio));
  const Output<Layout> output = MakeOutput<Layout>(
      {left, band->top, ReducedWidth<Layout>(band->width, ratio), band->lineCount, band->bitsPerPixel});
  if (output.cursor == nullptr) return nullptr;

  CopyLines(input, output.cursor, context, band->width, [&] { rescaleRuns(); });
  CloseCursor(output.cursor);
  CloseCursor(input);
  return output.band;
}

// Where a band's output lines start, and how many begin within it. The ends are cut to 16 bits before they
// are subtracted.
struct ReducedLines {
  std::uint32_t top;
  std::uint32_t count;
};

constexpr ReducedLines ReducedLinesOf(std::uint16_t bandTop, std::uint16_t bandLines, Ratio ratio) {
  const std::int32_t top = SignExtend16(bandTop);
  const std::uint32_t first = Unsigned32(Rescale(top, ratio));
  const std::uint32_t end = Unsigned32(Rescale(top + bandLines, ratio));
  return {first, std::uint32_t{Low16(end)} - Low16(first)};
}

static_assert(ReducedLinesOf(2, 3, {5, 2}).count == 2 && ReducedLinesOf(0, 2, {5, 2}).count == 0);

}  // namespace cvt

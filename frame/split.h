// How a band's lines are shared out among the sub-bands of its output.
#pragma once

#include <cstdint>

#include "frame/ints.h"

namespace cvt {

// All sub-bands but the last have `lines` lines, the last takes the rest.
struct SubBands {
  std::uint32_t count;
  std::uint32_t lines;
};

constexpr std::uint32_t FirstLineOf(SubBands parts, std::uint32_t index) { return index * parts.lines; }

constexpr std::uint32_t LinesOf(SubBands parts, std::uint32_t index, std::uint32_t bandLines) {
  return index + 1 == parts.count ? bandLines - FirstLineOf(parts, index) : parts.lines;
}

// Palette and halftone output: as many sub-bands as the output is deeper, one more for a remainder. With
// fewer lines than sub-bands all but the last are empty; the pipeline passes those over.
constexpr SubBands SplitByDepth(std::uint32_t bandLines, std::uint32_t outBits, std::uint32_t inBits) {
  const std::uint32_t count = CeilDiv(outBits, inBits);
  if (count == 0) return {0, 0};
  const std::uint32_t lines = bandLines / count;
  return {lines * count == bandLines ? count : count + 1, lines};
}

// Direct-colour output: as by depth, then more and smaller sub-bands until the last is no larger than the
// others. Where that does not work out, every line gets a sub-band of its own.
constexpr SubBands SplitEvenly(std::uint32_t bandLines, std::uint32_t outBits, std::uint32_t inBits) {
  SubBands parts{CeilDiv(outBits, inBits), 1};
  if (parts.count == 0) return {0, 0};
  if (bandLines % parts.count != 0) ++parts.count;
  if (bandLines >= parts.count) parts.lines = bandLines / parts.count;
  while (parts.lines < bandLines - FirstLineOf(parts, parts.count - 1)) {  // unsigned: less than none is many
    ++parts.count;
    parts.lines = bandLines / parts.count;
    if (parts.lines == 0) return {bandLines, 1};
  }
  return parts;
}

// Output that is larger than its input by any factor: as many sub-bands as it takes for none to exceed
// `limit` bytes; a band without lines is one without lines. None where lines have no pixels, or where a single
// line exceeds the limit.
constexpr SubBands SplitByBytes(std::uint32_t bandLines, std::uint32_t lineBytes, std::uint32_t limit) {
  if (bandLines == 0) return {1, 0};
  const std::uint32_t total = lineBytes * bandLines;
  if (total == 0 || lineBytes > limit) return {0, 0};
  std::uint32_t count = Low16(total / limit);
  if (count * limit < total) ++count;
  const std::uint32_t lines = Low16(total / count / lineBytes);
  while ((bandLines - (count - 1) * lines) * lineBytes > limit) ++count;
  return {count, lines};
}

static_assert(SplitByBytes(100, 1000, 65000).count == 2 && SplitByBytes(100, 1000, 65000).lines == 50);
static_assert(SplitByBytes(7, 30000, 65000).count == 6 && SplitByBytes(7, 30000, 65000).lines == 1);
static_assert(SplitByBytes(1, 65001, 65000).count == 0 && SplitByBytes(0, 8, 65000).count == 1);

static_assert(SplitEvenly(10, 4, 1).count == 5 && SplitEvenly(10, 4, 1).lines == 2);
static_assert(SplitEvenly(7, 16, 8).count == 7 && SplitEvenly(7, 16, 8).lines == 1);
static_assert(SplitEvenly(10, 32, 3).count == 10 && SplitEvenly(0, 8, 4).count == 0);

static_assert(SplitByDepth(10, 8, 4).count == 2 && SplitByDepth(10, 8, 4).lines == 5);
static_assert(SplitByDepth(10, 3, 1).count == 4 && LinesOf(SplitByDepth(10, 3, 1), 3, 10) == 1);
static_assert(SplitByDepth(2, 4, 1).count == 5 && LinesOf(SplitByDepth(2, 4, 1), 4, 2) == 2);

}  // namespace cvt

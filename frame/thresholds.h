// The thresholds of ordered dither, one after another along a line.
//
// A matrix is anchored at image position (0, 0) and repeats in both directions. Column numbers are 16 bits:
// behind column 65535 stands column 0, and there the matrix starts over whatever its width.
#pragma once

#include <cstdint>

#include "cvt/records.h"
#include "frame/ints.h"

namespace cvt {

// The thresholds that a line meets, over and over.
struct Thresholds {
  const std::uint8_t* first;  // of column 0
  std::uint32_t stride;       // bytes from one column's to the next
  std::uint32_t period;       // columns after which they repeat
};

inline Thresholds MatrixRow(const tagCRLA* context, std::uint16_t line) {
  const std::uint32_t width = context->ditherWidth;
  return {context->ditherMatrix + line % context->ditherHeight * width, 1, width};
}

// The matrix turned over: image columns go down its rows.
inline Thresholds MatrixColumn(const tagCRLA* context, std::uint16_t line) {
  const std::uint32_t width = context->ditherWidth;
  return {context->ditherMatrix + line % width, width, context->ditherHeight};
}

// The first 64 bytes as 8 rows of 8, whatever size the matrix is said to have.
inline Thresholds BlockRow(const tagCRLA* context, std::uint16_t line) {
  return {context->ditherMatrix + (line & 7U) * 8, 1, 8};
}

// A place in a line. Counting down to the column where the thresholds start over takes the place of a modulo
// for every pixel.
struct ThresholdWalk {
  Thresholds along;
  std::uint32_t offset;  // of the column's threshold from the first
  std::uint32_t left;    // columns until they start over
  std::uint32_t end;     // the column where they do, 65536 included
};

inline constexpr std::uint32_t kColumns = 65536;

constexpr std::uint32_t Smaller(std::uint32_t a, std::uint32_t b) { return a < b ? a : b; }

// At a column whose threshold stands `phase` columns after the first.
constexpr ThresholdWalk WalkAt(Thresholds along, std::uint32_t phase, std::uint16_t column) {
  const std::uint32_t left = Smaller(along.period - phase, kColumns - column);
  return {along, phase * along.stride, left, column + left};
}

constexpr ThresholdWalk WalkFrom(Thresholds along, std::uint16_t column) {
  return WalkAt(along, column % along.period, column);
}

// The column's threshold; moves on to the next column.
constexpr std::uint8_t TakeThreshold(ThresholdWalk* walk) {
  const std::uint8_t threshold = walk->along.first[walk->offset];
  walk->offset += walk->along.stride;
  if (--walk->left == 0) *walk = WalkAt(walk->along, 0, Low16(walk->end));
  return threshold;
}

inline constexpr std::uint8_t kFiveColumns[] = {10, 11, 12, 13, 14};

constexpr std::uint8_t ThresholdAfter(std::uint32_t steps, std::uint16_t column) {
  ThresholdWalk walk = WalkFrom({kFiveColumns, 1, 5}, column);
  for (std::uint32_t i = 0; i < steps; ++i) TakeThreshold(&walk);
  return TakeThreshold(&walk);
}
static_assert(ThresholdAfter(0, 7) == 12 && ThresholdAfter(3, 7) == 10 && ThresholdAfter(11, 2) == 13);
static_assert(ThresholdAfter(0, 65534) == 14 && ThresholdAfter(1, 65534) == 10 && ThresholdAfter(2, 65534) == 10);
static_assert(ThresholdAfter(1, 65532) == 13 && ThresholdAfter(4, 65532) == 10);  // 65533, then 0

}  // namespace cvt

// What line readers and writers share: where a line lies in a band, and how runs are taken apart.
//
// Knows the cursors' geometry, not how a pixel is stored.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "cvt/records.h"
#include "host/bits.h"

namespace cvt::host {

// The two cursors are packed records with the same names for their geometry; everything is taken by value.

/// Pixels in the cursor's lines. Coordinates are 16-bit and wrap: so do the distances between them.
template <class Cursor>
std::uint32_t WidthOf(const Cursor* cursor) {
  return Low16(std::uint32_t{cursor->right} - cursor->left);
}

/// Pixel number within its row; WidthOf or more for a column that lies outside.
template <class Cursor>
std::uint32_t ColumnOf(const Cursor* cursor, std::uint16_t x) {
  return Low16(std::uint32_t{x} - cursor->left);
}

template <class Cursor>
std::uint32_t RowOf(const Cursor* cursor, std::uint16_t y) {
  return Low16(std::uint32_t{y} - cursor->top);
}

/// Whether a row and a column, as above, both lie inside; one test, because single pixels ask it.
template <class Cursor>
bool Inside(const Cursor* cursor, std::uint32_t column, std::uint32_t row) {
  const std::uint32_t lines = Low16(std::uint32_t{cursor->bottom} - cursor->top);
  return static_cast<unsigned>(column < WidthOf(cursor)) & static_cast<unsigned>(row < lines);
}

/// Pixels `first` to before `end` of a row.
struct Span {
  std::size_t first, end;
};

constexpr bool IsEmpty(Span span) { return span.first == span.end; }

/// The pixels from (x, y) on to the cursor's right edge, `most` at most; empty when (x, y) lies outside.
template <class Cursor>
Span SpanFrom(const Cursor* cursor, std::uint16_t x, std::uint16_t y, std::uint32_t most) {
  const std::uint32_t column = ColumnOf(cursor, x);
  if (!Inside(cursor, column, RowOf(cursor, y))) return {0, 0};
  return {column, column + std::min(WidthOf(cursor) - column, most)};
}

inline std::size_t RowBytesOf(const tagPackedData* cursor) {
  return std::size_t{cursor->rowUnits} * (cursor->depthClass == 5 ? 4 : 2);
}

/// Planes that a 32-bit value can fill.
inline unsigned PlanesOf(const tagPlaneData* cursor) {
  const std::uint32_t planes = cursor->planeCount;
  return std::min(planes, std::uint32_t{32});
}

/// Pixels that are unpacked to bytes at a time: narrow pixels pass through bytes on their way to and from
/// values, because bytes are what the compiler can widen, narrow and gather many at once.
inline constexpr std::size_t kChunkPixels = 256;

/// Bits of the row byte `byte` that pixels first to end of one bit each occupy.
constexpr std::uint32_t CoverOf(std::size_t byte, Span span) {
  std::uint32_t cover = 0xFF;
  if (span.first > byte * 8) cover &= 0xFFU >> (span.first - byte * 8);
  if (span.end < byte * 8 + 8) cover &= 0xFF00U >> (span.end - byte * 8);
  return cover;
}
static_assert(CoverOf(1, {0, 16}) == 0xFF && CoverOf(0, {3, 5}) == 0x18);

}  // namespace cvt::host

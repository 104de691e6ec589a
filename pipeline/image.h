// Images as an application sees them: rows that come from somewhere and rows that go somewhere.
//
// Knows nothing of bands, descriptors or the library; the pipeline translates.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "cvt/records.h"
#include "pipeline/status.h"

namespace cvt::pipeline {

enum class Layout : std::uint8_t { Packed, Planes };

/// Pixels an inch; 0: not known.
struct Resolution {
  double x = 0, y = 0;
};

/// What the rows of an image are.
///
/// depth 1 to 8: palette indices, `palette` holds 1 to 1 << depth colours; grays are a palette as well.
///   Packed: pixels take StoredBits(depth) bits, leftmost in the top bits of the first byte.
///   Planes: `depth` planes of (width + 7) / 8 bytes each, the lowest bit's plane first.
/// Direct colour, always Packed and without a palette:
///   depth 24: a pixel is three bytes, red first.
///   depth 15, 16: little-endian words of 5 bits a channel, blue lowest, the top bit 0. Output only.
///   depth 32: little-endian words of 8 bits a channel, blue lowest, the top byte 0. Output only.
/// A row is RowBytes(image) bytes; bits behind the last pixel are undefined.
struct Image {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t depth = 0;
  std::vector<IRGB> palette = {};
  Layout layout = Layout::Packed;
  Resolution resolution = {};
};

constexpr std::int32_t kDirectDepth = 24;

constexpr bool IsDirect(std::int32_t depth) { return depth > 8; }

/// Bits that a packed pixel of a row takes.
constexpr std::int32_t StoredBits(std::int32_t depth) {
  if (depth > 24) return 32;
  if (depth > 16) return 24;
  return depth > 8 ? 16 : depth > 4 ? 8 : depth > 2 ? 4 : depth;
}

constexpr std::size_t PlaneRowBytes(std::int32_t width) { return (static_cast<std::size_t>(width) + 7) / 8; }

inline std::size_t RowBytes(const Image& image) {
  if (image.layout == Layout::Planes) return PlaneRowBytes(image.width) * static_cast<std::size_t>(image.depth);
  return (static_cast<std::size_t>(image.width) * static_cast<std::size_t>(StoredBits(image.depth)) + 7) / 8;
}

/// Where rows come from. `read` fills one row, top to bottom, and is called at most image.height times.
struct RowSource {
  Image image;
  std::function<Status(std::uint8_t* row)> read;
};

/// Where rows go. `begin` is called once before the first row with what the rows will be, `write` once for
/// each row with y rising from 0, `end` once when all rows are written. When a conversion fails, `end`
/// is not called: a sink that is destroyed before its end leaves nothing behind.
struct RowSink {
  std::function<Status(const Image& image)> begin;
  std::function<Status(std::int32_t y, const std::uint8_t* row)> write;
  std::function<Status()> end;
};

/// A source over rows in memory, `strideBytes` apart; the rows must outlive it.
RowSource ReadMemory(Image image, const std::uint8_t* rows, std::size_t strideBytes);

/// A sink that fills `image` and `rows` (resized, RowBytes apart); both must outlive it.
RowSink WriteMemory(Image* image, std::vector<std::uint8_t>* rows);

/// A sink for rows of planes that passes them on, packed, to a sink that takes no planes.
RowSink PackRows(RowSink sink);

/// The gray ramp of a depth of 1 to 8 bits: black first, white last, evenly spaced.
std::vector<IRGB> GrayRamp(std::int32_t depth);

}  // namespace cvt::pipeline

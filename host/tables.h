// The tables by which colours find their palette entries, made once when a conversion is set up.
//
// A palette of two entries is monochrome: there black and white are told by a threshold on the gray level
// instead of by distance, because a scan has a right threshold but no meaningful middle colour.
// Everywhere else the nearest entry is taken, the lowest index of equals.
#pragma once

#include <cstddef>
#include <cstdint>

#include "cvt/records.h"

namespace cvt::host {

inline constexpr std::size_t kGrayLevels = 256;   // of a gray table
inline constexpr std::size_t kCubeCells = 32768;  // of a search cube: 5 bits each of red, green and blue
inline constexpr std::size_t kMostEntries = 256;  // a byte names no more

/// The colours of a descriptor. `count` is 1 to kMostEntries for tables.
struct Palette {
  const IRGB* colors;
  std::size_t count;
};

/// How a monochrome destination is told; palettes of more than two entries do not look at it.
struct MonoRule {
  std::int32_t threshold;  // white from this gray level up, 0 to 256
  bool invert;             // then swap black and white
};

/// Whether pixel values are indices of a palette.
inline bool IsIndexed(const tagIGFD* image) { return (image->colorFlags & kIndexedColor) != 0; }

/// The colours of an indexed descriptor, 1 << bitsPerPixel of them.
Palette PaletteOf(const tagIGFD* descriptor);

/// (30 red + 59 green + 11 blue) / 100: 0 black to 255 white.
std::int32_t GrayLevel(IRGB color);

/// Whether red, green and blue agree in every entry.
bool AllGray(Palette palette);

/// Index of a monochrome palette's white: the lighter entry, entry 1 when both are equally light.
std::uint8_t WhiteOf(Palette mono);

/// Index of the entry at the least squared distance, the lowest of equals. Takes any number of entries.
std::size_t NearestEntry(Palette palette, IRGB color);

/// The cell of a search cube in which a colour lies: red most significant.
std::size_t CubeCell(std::uint32_t red, std::uint32_t green, std::uint32_t blue);

/// Fills a gray table: byte v is the entry for gray level v.
void BuildGrayTable(Palette destination, MonoRule rule, std::uint8_t* table);

/// Fills a search cube.
///
/// A cell is judged by its 5-bit channels widened to 8 bits by repeating their top bits, so that black,
/// white and the primaries are exact. A cell in which palette colours lie belongs to the one of them
/// nearest to that colour: a palette colour finds itself unless another one shares its cell.
void BuildCube(Palette destination, MonoRule rule, std::uint8_t* table);

/// Fills `map`, one byte a source entry, with the destination entries to use for them. A destination of
/// grays alone is searched by gray level, any other by distance.
void BuildSnapMap(Palette source, Palette destination, MonoRule rule, std::uint8_t* map);

/// Fills a tone curve of 256 bytes: round(255 * (v / 255) ^ (1 / gamma)), the same on every machine.
/// gamma  in  above 0, finite
void BuildGamma(double gamma, std::uint8_t* table);

}  // namespace cvt::host

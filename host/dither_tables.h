// What ordered dither reads besides the search tables: the steps of palette entries and limits of thresholds.
//
// A colour is pushed by the step of its entry times (threshold - 126) / 128, so by about one whole step up or
// down, and then looked up again. A step is therefore the way from an entry to the border of the colours that
// it is nearest to, half of the way to the neighbour beyond: a colour half-way between two entries is
// pushed across the border by half of the thresholds, and a colour of the palette by none, it stays flat.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/tables.h"

namespace cvt::host {

inline constexpr std::size_t kGraySteps = 2;   // of an entry of a gray ramp: up, down
inline constexpr std::size_t kColorSteps = 8;  // of any other: 4 red up + 2 green up + 1 blue up

/// Fills `steps`, kGraySteps bytes an entry when AllGray, otherwise kColorSteps bytes an entry.
///
/// A step is the greatest number x, at most 255, such that entry p moved by x in its direction is still nearer to
/// p than to any other entry; gray levels move up or down, colours by x in every channel, red, green
/// and blue each up or down as the direction says. With v the way to another entry and v * d its sum of
/// channels, signed by the direction, entries with v * d > 0 are met at x = v * v / (2 v * d); the one met first
/// is the neighbour. 0 when none is met, because there is nothing to mix p with.
void BuildDitherSteps(Palette palette, std::uint8_t* steps);

/// Bounds thresholds for the dither of a uniform cube, so that the colours of the cube stay flat.
///
/// That dither's offsets, (threshold - 126) / (levels - 1) or for two levels the signed byte, reach past the
/// border of a level by one at their ends: white would gain gray dots, or black light ones.
/// levels  in  2 to 6
void BoundThresholds(std::uint32_t levels, std::uint8_t* thresholds, std::size_t count);

}  // namespace cvt::host

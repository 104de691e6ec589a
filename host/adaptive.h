// Palettes made for an image: its colours are counted first, then the ones that serve it best are chosen.
//
// Whole numbers throughout, and sums that do not depend on the order of pixels: the same image gives the same
// palette on every machine, however its rows are handed in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "cvt/records.h"

namespace cvt::host {

/// The pixels of one cell of the colour box, and the sums of their channels.
struct ColorCell {
  std::uint64_t pixels, red, green, blue;
};

/// A histogram with 6 bits of each channel, 8 megabytes. Start with an empty one.
struct ColorCounts {
  std::vector<ColorCell> cells;
};

/// Counts a row of colours.
void CountColors(ColorCounts& counts, const IRGB* colors, std::size_t pixels);

/// Chooses at most `howMany` colours, 1 to 256, for the colours counted.
///
/// Cells are parted where that takes most from the sum of squared errors, until there are enough groups; then
/// cells move to the group nearest to them and groups to the mean of their pixels, a few times. Colours that
/// occur come back exactly when they are no more than howMany and no two share the top 6 bits of all channels.
/// Fewer than howMany come back when fewer cells are occupied, none when nothing was counted.
/// The colours are sorted by 30 red + 59 green + 11 blue, darkest first, then by red, then by green.
std::vector<IRGB> ChoosePalette(const ColorCounts& counts, std::size_t howMany);

}  // namespace cvt::host

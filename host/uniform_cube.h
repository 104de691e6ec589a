// Uniform cube palettes: n evenly spaced levels of red, green and blue, and every combination of them.
//
// Entry l_r + n * l_g + n * n * l_b has the channel levels l_r, l_g and l_b, 0 the brightest: entry 0 is
// white, the last one black.
#pragma once

#include <cstdint>
#include <vector>

#include "cvt/records.h"
#include "host/tables.h"

namespace cvt::host {

/// The levels of the largest cube that ordered dither knows for a palette of so many bits: 2 for 3 or 4 bits,
/// 3 for 5, 4 for 6, 5 for 7, 6 for 8; 0 for any other number.
std::uint32_t CubeLevels(std::uint32_t bitsPerPixel);

/// The value of a channel's level: 255 down to 0, rounded.
/// level  in  below `levels`, which is 2 or more
std::uint8_t CubeChannel(std::uint32_t level, std::uint32_t levels);

/// The levels^3 colours of a cube.
std::vector<IRGB> UniformCube(std::uint32_t levels);

/// Whether a palette begins with the colours of UniformCube; what follows them does not matter.
bool StartsWithCube(Palette palette, std::uint32_t levels);

}  // namespace cvt::host

// Rows of pixels: packed into bytes and taken apart again.
#pragma once

#include <array>
#include <cstdint>

#include "pipeline/image.h"

namespace cvt::imageio {

/// One byte a pixel from pixels of 1, 2, 4 or 8 bits, each looked up in `table`.
void UnpackRow(const std::uint8_t* row, std::int32_t width, std::int32_t bits,
               const std::array<std::uint8_t, 256>& table, std::uint8_t* pixels);

/// Pixels of 1, 2, 4 or 8 bits from one byte a pixel, none larger than fits. Bits past the width are 0.
void PackRow(const std::uint8_t* pixels, std::int32_t width, std::int32_t bits, std::uint8_t* row);

/// Clears the bits past the last pixel, so that equal pixels make equal files.
void ClearTail(std::int32_t width, std::int32_t bits, std::uint8_t* row);

/// Clears all bits of a row of `image` that are no pixels: behind the last one, or the last one of each plane.
void ClearTails(const pipeline::Image& image, std::uint8_t* row);

/// The table that leaves every value as it is.
std::array<std::uint8_t, 256> SameValues();

}  // namespace cvt::imageio

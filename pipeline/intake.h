// How rows of an image are brought into bands: stored as they are, or in another form that the routines
// ahead get right results from.
#pragma once

#include <cstdint>
#include <vector>

#include "pipeline/image.h"

namespace cvt::pipeline {

enum class Intake : std::uint8_t {
  AsStored,     // palette indices, the row's bytes as they are, packed or in planes
  WidenBits,    // indices of 1 bit become 8: a band of 1 bit would only be relabelled, its colours not looked at
  GrayLevels,   // direct colour becomes one of 256 grays: the gray search looks at the red channel alone
  DirectWords,  // direct colour becomes 32-bit words, blue lowest
};

/// Depth in bits of the pixels that the band's descriptor names. Packed pixels fill the bits they are stored
/// in: a value that a 3-bit image has no colour for is in the palette all the same.
std::int32_t IntakeDepth(Intake intake, const Image& image);

/// Layout of the band.
Layout IntakeLayout(Intake intake, const Image& image);

/// Colours of the band's pixel values, 1 << depth of them; empty for direct colour.
std::vector<IRGB> IntakePalette(Intake intake, const Image& image);

/// Writes one row of the image, as its source delivered it, to line `line` of the band, counted from 0.
/// A band of planes takes its plane size from its header.
void TakeRow(Intake intake, const Image& image, const std::uint8_t* row, tagRasterPacked* band, std::int32_t line);

}  // namespace cvt::pipeline

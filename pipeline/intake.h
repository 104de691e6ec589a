// How rows of an image are brought into bands: stored as they are, or in another form that the routines
// ahead get right results from.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "pipeline/image.h"

namespace cvt::pipeline {

enum class Intake : std::uint8_t {
  AsStored,     // palette indices, the row's bytes as they are, packed or in planes
  Widened,      // palette indices in 8 bits: for bands of 1 bit, whose colours are not looked at otherwise,
                // and for bands that would outgrow a block when they become deeper
  GrayLevels,   // one of 256 grays: the gray search looks at the red channel alone, and averages need grays
  DirectWords,  // direct colour in 32-bit words, blue lowest
};

/// What becomes of each channel value on its way in.
using ToneCurve = std::array<std::uint8_t, 256>;

/// Everything about how rows enter, worked out once.
struct Entry {
  Intake intake = Intake::AsStored;
  Image image;  // what the source delivers
  ToneCurve tone = {};
  std::vector<IRGB> colors;           // of the band's values, one for each; empty for direct colour
  std::vector<std::uint32_t> values;  // GrayLevels, DirectWords of an indexed image: band value of each index
};

/// The palette indices of a row, a byte each.
void UnpackIndices(const Image& image, const std::uint8_t* row, std::uint8_t* indices);

Entry MakeEntry(Intake intake, const Image& image, const ToneCurve& tone);

/// Depth in bits of the pixels that the band's descriptor names. Packed pixels fill the bits they are stored
/// in: a value that a 3-bit image has no colour for is in the palette all the same.
std::int32_t BandDepth(const Entry& entry);

/// Layout of the band.
Layout BandLayout(const Entry& entry);

/// Bytes of one line of the band, all its planes together.
std::int32_t BandLine(const Entry& entry);

/// Writes one row of the image, as its source delivered it, to line `line` of the band, counted from 0.
/// A band of planes takes its plane size from its header. `indices` is scratch memory of a row.
void TakeRow(const Entry& entry, const std::uint8_t* row, std::vector<std::uint8_t>* indices,
             tagRasterPacked* band, std::int32_t line);

}  // namespace cvt::pipeline

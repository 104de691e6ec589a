// What a page of a TIFF holds, by its tags.
#pragma once

#include <tiffio.h>

#include <cstdint>
#include <vector>

#include "pipeline/image.h"
#include "pipeline/status.h"

namespace cvt::imageio {

struct TiffPage {
  std::uint32_t width = 0, height = 0;
  std::uint16_t bits = 1;     // of a sample
  std::uint16_t samples = 1;  // of a pixel
  std::uint16_t colors = 1;   // samples at its start: 1: gray or index, 3: red, green, blue
  std::uint16_t alpha = 0;    // the sample that tells opacity, 0: none
  bool multiplied = false;    // the colour is already multiplied by it
  bool planes = false;        // every sample has a plane of its own
  std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
  std::uint16_t compression = COMPRESSION_NONE;
  std::uint16_t sampleFormat = SAMPLEFORMAT_UINT;
  std::uint16_t orientation = ORIENTATION_TOPLEFT;
};

TiffPage TagsOf(TIFF* tiff);

/// Bytes of so many pixels of a row as it is stored, or of one plane of it.
constexpr std::int64_t StoredBytes(const TiffPage& page, std::int64_t pixels) {
  return (pixels * page.bits * (page.planes ? 1 : page.samples) + 7) / 8;
}

/// Code::Input for a page of a kind that is not read.
pipeline::Status CheckKind(const TiffPage& page);

/// The colours of a page of indices; empty where they are missing.
std::vector<IRGB> PaletteOf(TIFF* tiff, const TiffPage& page);

pipeline::Resolution ResolutionOf(TIFF* tiff);

}  // namespace cvt::imageio

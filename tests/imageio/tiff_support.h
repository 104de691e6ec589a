// TIFFs of every make, written with libtiff itself.
#pragma once

#include <tiffio.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace cvt::imageio::test {

/// What the pixels are and how they lie in the file.
struct TiffParts {
  std::uint32_t width = 1, height = 1;
  int bits = 8, samples = 1, photometric = PHOTOMETRIC_MINISBLACK;
  std::vector<std::uint16_t> extra = {};  // the kinds of samples behind the colour
  const char* mode = "wl";
  std::vector<std::pair<int, int>> tags = {};  // further tags that have one number
  double x = 0, y = 0;                         // resolution, 0: none
  int compression = COMPRESSION_NONE;
  std::uint32_t stripRows = 0;  // 0: tiles of 16 x 16
  int pages = 1;
  int colorStep = 257;  // from one level of a palette to the next
  bool planes = false;
};

/// Values of samples, pixel by pixel.
using Samples = std::vector<std::uint16_t>;

/// Every page has samples of its own. Indexed ones have the colours (7 i, 255 - i, i), times `colorStep`.
void WriteTiffFile(const std::string& path, const TiffParts& parts, const Samples& samples);

/// Samples of these bits one after another, the first in the highest; of 16 in the order of this machine.
std::string PackedBits(const Samples& samples, int bits);

/// Samples that differ from their neighbours.
Samples Scrambled(const TiffParts& parts);

}  // namespace cvt::imageio::test

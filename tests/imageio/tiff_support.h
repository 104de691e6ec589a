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
  int compression = COMPRESSION_NONE;
  const char* mode = "wl";
  std::uint32_t stripRows = 0;  // 0: tiles of 16 x 16
  bool planes = false;
  std::vector<std::pair<int, int>> tags = {};  // further tags that have one number
  int pages = 1;
};

/// Values of samples, pixel by pixel.
using Samples = std::vector<std::uint16_t>;

/// Indexed pages have the colours (7 i, 255 - i, i), of 16 bits each: times 257.
void WriteTiffFile(const std::string& path, const TiffParts& parts, const Samples& samples);

/// Samples that differ from their neighbours.
Samples Scrambled(const TiffParts& parts);

}  // namespace cvt::imageio::test

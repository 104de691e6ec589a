// Uniform cube palettes.

#include "host/uniform_cube.h"

#include "host/bits.h"

namespace cvt::host {
namespace {

IRGB CubeColor(std::uint32_t entry, std::uint32_t levels) {
  return {CubeChannel(entry % levels, levels), CubeChannel(entry / levels % levels, levels),
          CubeChannel(entry / levels / levels, levels)};
}

}  // namespace

std::uint32_t CubeLevels(std::uint32_t bitsPerPixel) {
  constexpr std::uint8_t kLevels[] = {0, 0, 0, 2, 2, 3, 4, 5, 6};
  return bitsPerPixel < std::size(kLevels) ? kLevels[bitsPerPixel] : 0;
}

std::uint8_t CubeChannel(std::uint32_t level, std::uint32_t levels) {
  const std::uint32_t steps = levels - 1;
  return Low8((255 * (steps - level) + steps / 2) / steps);
}

std::vector<IRGB> UniformCube(std::uint32_t levels) {
  std::vector<IRGB> colors(std::size_t{levels} * levels * levels);
  for (std::uint32_t i = 0; i < colors.size(); ++i) colors[i] = CubeColor(i, levels);
  return colors;
}

bool StartsWithCube(Palette palette, std::uint32_t levels) {
  const std::uint32_t entries = levels * levels * levels;
  if (entries == 0 || palette.count < entries) return false;
  for (std::uint32_t i = 0; i < entries; ++i) {
    const IRGB color = palette.colors[i], wanted = CubeColor(i, levels);
    if (color.red != wanted.red || color.green != wanted.green || color.blue != wanted.blue) return false;
  }
  return true;
}

}  // namespace cvt::host

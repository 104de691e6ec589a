// Twins of the palette searches.
#include "tests/reference/reference.h"

namespace cvt::test {

std::int32_t RefDistance(const WRGB& color, const IRGB& entry) {
  const std::int64_t r = color.red - entry.red, g = color.green - entry.green, b = color.blue - entry.blue;
  return static_cast<std::int32_t>(r * r + g * g + b * b);
}

template <class EntryAt>
static std::int64_t Nearest(const WRGB& color, const tagIGFD& descriptor, std::int64_t entries, EntryAt entryAt) {
  std::int32_t best = 4000000;
  std::int64_t result = 0;
  for (std::int64_t i = 0; i < entries; ++i) {
    const std::int32_t d = RefDistance(color, descriptor.palette[entryAt(i)]);
    if (d >= best) continue;
    best = d;
    result = entryAt(i);
  }
  return result;
}

std::int16_t RefClosest(const WRGB& color, const tagIGFD& descriptor) {
  const int shift = descriptor.bitsPerPixel % 32;
  const std::int64_t entries = shift == 31 ? 0 : std::int64_t{1} << shift;
  return static_cast<std::int16_t>(Nearest(color, descriptor, entries, [](std::int64_t i) { return i; }));
}

std::uint16_t RefSearchGray(const std::uint8_t* table, const WRGB& color) {
  if (color.red < 0) return table[0];
  if (color.red > 255) return table[255];
  return table[color.red];
}

std::uint16_t RefSearchOctree(const tagIGFD& descriptor, const OCTtag* root, const WRGB& color) {
  const OCTtag* node = root;
  while (node->children[0] != nullptr) {
    int child = 0;
    if (color.red >= node->splitR) child += 4;
    if (color.green >= node->splitG) child += 2;
    if (color.blue >= node->splitB) child += 1;
    node = node->children[child];
  }
  if (node->separator != nullptr) {
    const OCTseparator& plane = *node->separator;
    const std::int64_t sum = std::int64_t{color.red} * plane.a0 + std::int64_t{color.green} * plane.a1 +
                             std::int64_t{color.blue} * plane.a2;
    return static_cast<std::int32_t>(sum) > plane.threshold ? plane.indexAbove : plane.indexBelow;
  }
  if (node->candidates != nullptr)
    return static_cast<std::uint16_t>(
        Nearest(color, descriptor, node->count, [node](std::int64_t i) { return node->candidates[i]; }));
  return static_cast<std::uint16_t>(node->count);
}

}  // namespace cvt::test

// Palette searches: exhaustive, by gray table, and by octree.

#include "cvt/cvtr2r.h"
#include "frame/ints.h"

namespace {

constexpr std::int32_t kFarthest = 4'000'000;  // an entry this far off, squared, is never chosen

constexpr std::int32_t SquaredGap(std::int16_t wanted, std::uint8_t entry) {
  const std::int32_t gap = wanted - entry;
  return cvt::MulWrap32(gap, gap);
}

// The entry nearest to a colour among `count` candidates, the earliest of equals; 0 when all are too far.
template <class IndexAt>
std::int32_t Nearest(WRGB* color, IRGB* palette, std::int32_t count, IndexAt indexAt) {
  std::int32_t best = kFarthest;
  std::int32_t nearest = 0;
  for (std::int32_t i = 0; i < count; ++i) {
    const std::int32_t index = indexAt(i);
    const std::int32_t distance = CvtDistExtendedRGB(color, palette + index);
    if (distance < best) {
      best = distance;
      nearest = index;
    }
  }
  return nearest;
}

constexpr int ChildOf(const OCTtag& node, WRGB color) {
  return (color.red >= node.splitR ? 4 : 0) + (color.green >= node.splitG ? 2 : 0) +
         (color.blue >= node.splitB ? 1 : 0);
}

constexpr std::uint16_t SideOf(const OCTseparator& plane, WRGB color) {
  const std::int32_t redGreen = cvt::AddWrap32(color.red * plane.a0, color.green * plane.a1);
  const std::int32_t sum = cvt::AddWrap32(redGreen, color.blue * plane.a2);
  return sum > plane.threshold ? plane.indexAbove : plane.indexBelow;
}

}  // namespace

std::int32_t CVT_CALL CvtDistExtendedRGB(WRGB* color, IRGB* entry) {
  const std::int32_t redGreen =
      cvt::AddWrap32(SquaredGap(color->red, entry->red), SquaredGap(color->green, entry->green));
  return cvt::AddWrap32(redGreen, SquaredGap(color->blue, entry->blue));
}

std::int16_t CVT_CALL CvtClosestExtendedRGB(WRGB* color, tagIGFD* descriptor) {
  const std::int32_t count = cvt::Signed32(1U << (descriptor->bitsPerPixel % 32U));
  return cvt::Wrap16(Nearest(color, descriptor->palette, count, [](std::int32_t i) { return i; }));
}

std::uint16_t CVT_CALL CvtSearchGrayArray(std::uint8_t* table, WRGB* color) {
  const std::int32_t level = color->red;
  return table[level < 0 ? 0 : level > 255 ? 255 : level];
}

std::uint16_t CVT_CALL CvtSearchOctree(tagIGFD* descriptor, OCTtag* root, WRGB* color) {
  const OCTtag* node = root;
  while (node->children[0] != nullptr) node = node->children[ChildOf(*node, *color)];
  if (node->separator != nullptr) return SideOf(*node->separator, *color);
  if (node->candidates == nullptr) return cvt::Low16(cvt::Unsigned32(node->count));
  const std::uint8_t* candidates = node->candidates;
  return cvt::Low16(cvt::Unsigned32(Nearest(color, descriptor->palette, node->count, [candidates](std::int32_t i) {
    return std::int32_t{candidates[i]};
  })));
}

// Steps and bounds of ordered dither.

#include "host/dither_tables.h"

#include <algorithm>

#include "host/bits.h"

namespace cvt::host {
namespace {

constexpr std::int32_t kFarthest = 255;

// The greatest x with 2 * x * along < length: a neighbour's way has that squared length, and goes so far along
// the direction.
constexpr std::int32_t StepTo(std::int32_t squaredLength, std::int32_t along) {
  return (squaredLength - 1) / (2 * along);
}
static_assert(StepTo(85 * 85, 85) == 42 && StepTo(86 * 86, 86) == 42);

void BuildGraySteps(Palette palette, std::size_t entry, std::uint8_t* steps) {
  std::int32_t up = kFarthest + 1, down = kFarthest + 1;
  for (std::size_t i = 0; i < palette.count; ++i) {
    const std::int32_t away = palette.colors[i].red - palette.colors[entry].red;
    if (away > 0) up = std::min(up, away);
    if (away < 0) down = std::min(down, -away);
  }
  steps[0] = up > kFarthest ? 0 : Low8(static_cast<std::uint32_t>(StepTo(up * up, up)));
  steps[1] = down > kFarthest ? 0 : Low8(static_cast<std::uint32_t>(StepTo(down * down, down)));
}

// Divisions are few: a way is compared with the best so far by products.
struct Way {
  std::int32_t squaredLength, along;
};

constexpr bool IsMetSooner(Way a, Way b) { return a.squaredLength * b.along < b.squaredLength * a.along; }
constexpr Way kNeverMet{3 * 255 * 255, 0};

void NoteWay(IRGB from, IRGB to, Way* first) {
  const std::int32_t red = to.red - from.red, green = to.green - from.green, blue = to.blue - from.blue;
  const std::int32_t length = red * red + green * green + blue * blue;
  for (std::uint32_t o = 0; o < kColorSteps; ++o) {
    const std::int32_t along =
        ((o & 4) != 0 ? red : -red) + ((o & 2) != 0 ? green : -green) + ((o & 1) != 0 ? blue : -blue);
    const Way way{length, along};
    if (along > 0 && IsMetSooner(way, first[o])) first[o] = way;
  }
}

void BuildColorSteps(Palette palette, std::size_t entry, std::uint8_t* steps) {
  Way first[kColorSteps];
  std::fill_n(first, kColorSteps, kNeverMet);
  for (std::size_t i = 0; i < palette.count; ++i) NoteWay(palette.colors[entry], palette.colors[i], first);
  for (std::size_t o = 0; o < kColorSteps; ++o) {
    if (first[o].along == 0) {
      steps[o] = 0;
      continue;
    }
    const std::int32_t step = std::min(kFarthest, StepTo(first[o].squaredLength, first[o].along));
    steps[o] = Low8(static_cast<std::uint32_t>(step));
  }
}

}  // namespace

void BuildDitherSteps(Palette palette, std::uint8_t* steps) {
  const bool gray = AllGray(palette);
  for (std::size_t i = 0; i < palette.count; ++i) {
    if (gray)
      BuildGraySteps(palette, i, steps + kGraySteps * i);
    else
      BuildColorSteps(palette, i, steps + kColorSteps * i);
  }
}

void BoundThresholds(std::uint32_t levels, std::uint8_t* thresholds, std::size_t count) {
  struct Bounds {
    std::uint8_t lowest, highest;
  };
  constexpr Bounds kBounds[] = {{0, 251}, {0, 251}, {0, 249}, {2, 255}};  // of 3 to 6 levels
  for (std::size_t i = 0; i < count; ++i) {
    std::uint8_t* threshold = thresholds + i;
    if (levels == 2)
      *threshold = *threshold == 128 ? 129 : *threshold;
    else
      *threshold = std::clamp(*threshold, kBounds[levels - 3].lowest, kBounds[levels - 3].highest);
  }
}

}  // namespace cvt::host

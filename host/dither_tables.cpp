// Steps and bounds of ordered dither.

#include "host/dither_tables.h"

#include <algorithm>
#include <cstdlib>

#include "host/bits.h"

namespace cvt::host {
namespace {

constexpr std::int32_t kFarthest = 255;

// The way to another entry: its squared length, and how far it goes along a direction, 0 or more.
struct Way {
  std::int32_t squaredLength, along;
};

constexpr Way kNeverMet{3 * 255 * 255, 0};

// Divisions are few: a way is compared with the best so far by products.
constexpr bool IsMetSooner(Way a, Way b) { return a.squaredLength * b.along < b.squaredLength * a.along; }

// The greatest x with 2 * x * along < squaredLength.
constexpr std::uint8_t StepOf(Way way) {
  if (way.along == 0) return 0;
  return Low8(static_cast<std::uint32_t>(std::min(kFarthest, (way.squaredLength - 1) / (2 * way.along))));
}
static_assert(StepOf({85 * 85, 85}) == 42 && StepOf({86 * 86, 86}) == 42 && StepOf(kNeverMet) == 0);

void BuildGraySteps(Palette palette, std::size_t entry, std::uint8_t* steps) {
  Way up = kNeverMet, down = kNeverMet;
  for (std::size_t i = 0; i < palette.count; ++i) {
    const std::int32_t away = palette.colors[i].red - palette.colors[entry].red;
    const Way way{away * away, std::abs(away)};
    if (away > 0 && IsMetSooner(way, up)) up = way;
    if (away < 0 && IsMetSooner(way, down)) down = way;
  }
  steps[0] = StepOf(up);
  steps[1] = StepOf(down);
}

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
  for (std::size_t o = 0; o < kColorSteps; ++o) steps[o] = StepOf(first[o]);
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

// Steps of ordered dither: against a walk pixel value by pixel value, and figures worked by hand. What is made
// of them is looked at in the tests of the pipeline.

#include "host/dither_tables.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "setups.h"

namespace cvt::host {
namespace {

using Steps = std::vector<std::uint8_t>;

struct Point {
  int red, green, blue;
};

Point Moved(IRGB from, std::size_t direction, int by) {
  return {from.red + ((direction & 4) != 0 ? by : -by), from.green + ((direction & 2) != 0 ? by : -by),
          from.blue + ((direction & 1) != 0 ? by : -by)};
}

bool IsNearestTo(const Colors& colors, IRGB own, Point at) {
  return std::all_of(colors.begin(), colors.end(),
                     [&](IRGB other) { return other == own || Away(at, own) < Away(at, other); });
}

// Walks until the entry is nearest no more. Who has not left it after 100,000 steps never will.
int StepByWalking(const Colors& colors, IRGB own, std::size_t direction) {
  if (IsNearestTo(colors, own, Moved(own, direction, 100'000))) return 0;
  int by = 0;
  while (by < 255 && IsNearestTo(colors, own, Moved(own, direction, by + 1))) ++by;
  return by;
}

TEST(DitherSteps, ReachToTheBorderOfTheEntry) {
  std::mt19937 generator(11);
  const Colors palettes[] = {{{0, 0, 0}, {255, 255, 255}, {255, 0, 0}, {255, 0, 0}},
                             {{10, 20, 30}, {10, 20, 31}},
                             {{1, 2, 3}, {1, 2, 3}},
                             RandomColors(generator, 24, 256),
                             RandomColors(generator, 24, 9)};
  for (const Colors& colors : palettes) {
    Steps steps(kColorSteps * colors.size());
    BuildDitherSteps(Of(colors), steps.data());
    for (std::size_t i = 0; i < steps.size(); ++i)
      EXPECT_EQ(steps[i], StepByWalking(colors, colors[i / 8], i % 8)) << "entry " << i / 8 << " to " << i % 8;
  }
}

TEST(DitherSteps, OfGrayRampsGoHalfWayToTheNextLevels) {
  const Colors ramp = {{255, 255, 255}, {0, 0, 0}, {100, 100, 100}, {0, 0, 0}, {101, 101, 101}};
  Steps steps(kGraySteps * ramp.size());
  BuildDitherSteps(Of(ramp), steps.data());
  EXPECT_EQ(steps, (Steps{0, 76, 49, 0, 0, 49, 49, 0, 76, 0}));
}

}  // namespace
}  // namespace cvt::host

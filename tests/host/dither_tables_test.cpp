// Steps and thresholds of ordered dither: against a walk pixel value by pixel value, and by the mixtures that
// the library makes of them.

#include "host/dither_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <vector>

#include "host/conversion.h"
#include "host/matrices.h"
#include "host/uniform_cube.h"

namespace cvt::host {
namespace {

using Colors = std::vector<IRGB>;
using Steps = std::vector<std::uint8_t>;

struct Point {
  int red, green, blue;
};

std::int64_t Away(Point from, IRGB to) {
  const std::int64_t red = from.red - to.red, green = from.green - to.green, blue = from.blue - to.blue;
  return red * red + green * green + blue * blue;
}

bool Same(IRGB a, IRGB b) { return a.red == b.red && a.green == b.green && a.blue == b.blue; }

Point Moved(IRGB from, std::size_t direction, int by) {
  return {from.red + ((direction & 4) != 0 ? by : -by), from.green + ((direction & 2) != 0 ? by : -by),
          from.blue + ((direction & 1) != 0 ? by : -by)};
}

bool IsNearestTo(const Colors& colors, IRGB own, Point at) {
  return std::all_of(colors.begin(), colors.end(),
                     [&](IRGB other) { return Same(other, own) || Away(at, own) < Away(at, other); });
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
  std::vector<Colors> palettes = {{{0, 0, 0}, {255, 255, 255}, {255, 0, 0}, {255, 0, 0}},
                                  {{10, 20, 30}, {10, 20, 31}},
                                  {{1, 2, 3}, {1, 2, 3}}};
  for (unsigned spread : {256U, 9U}) {
    palettes.emplace_back();
    for (int i = 0; i < 24; ++i)
      palettes.back().push_back({static_cast<std::uint8_t>(generator() % spread),
                                 static_cast<std::uint8_t>(generator() % spread),
                                 static_cast<std::uint8_t>(generator() % spread)});
  }
  for (const Colors& colors : palettes) {
    Steps steps(kColorSteps * colors.size());
    BuildDitherSteps({colors.data(), colors.size()}, steps.data());
    for (std::size_t i = 0; i < steps.size(); ++i)
      EXPECT_EQ(steps[i], StepByWalking(colors, colors[i / 8], i % 8)) << "entry " << i / 8 << " to " << i % 8;
  }
}

TEST(DitherSteps, OfGrayRampsGoHalfWayToTheNextLevels) {
  const Colors ramp = {{255, 255, 255}, {0, 0, 0}, {100, 100, 100}, {0, 0, 0}, {101, 101, 101}};
  Steps steps(kGraySteps * ramp.size());
  BuildDitherSteps({ramp.data(), ramp.size()}, steps.data());
  EXPECT_EQ(steps, (Steps{0, 76, 49, 0, 0, 49, 49, 0, 76, 0}));
}

TEST(DitherSteps, OfACubeAreHalfItsSpacing) {
  const Colors cube = UniformCube(6);
  Steps steps(kColorSteps * cube.size());
  BuildDitherSteps({cube.data(), cube.size()}, steps.data());
  for (std::size_t o = 0; o < 8; ++o) EXPECT_EQ(steps[kColorSteps * (2 + 6 * 3 + 36 * 2) + o], 25) << o;
  EXPECT_EQ(steps[7], 0);   // nothing is brighter than white
  EXPECT_EQ(steps[0], 25);  // and everything is darker
}

// ---- What the library makes of them ----

constexpr int kSide = 16;
using Tally = std::array<int, 256>;  // pixels of each value

std::int16_t CVT_CALL GoOn(std::uint32_t) { return 0; }

std::int16_t Count(void* user, tagRasterPacked* band) {
  auto& tally = *static_cast<Tally*>(user);
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(band + 1);
  const unsigned bits = band->bitsPerPixel > 4 ? 8 : band->bitsPerPixel > 2 ? 4 : 2;
  const unsigned pixels = kSide * unsigned{band->lineCount};
  for (unsigned at = 0; at < pixels * bits; at += bits)
    ++tally[bytes[at / 8] >> (8 - bits - at % 8) & ((1U << bits) - 1)];
  return 0;
}

// Dithers a square of one colour, by 24-bit pixels, to a palette of so many bits.
Tally Dithered(IRGB color, Colors palette, std::uint8_t bits, const Matrix& matrix) {
  palette.resize(std::size_t{1} << bits, palette.back());
  tagIGFD source{};
  source.progressProc = GoOn;
  source.rasterKind = kPackedKind;
  source.imageWidth = source.imageHeight = kSide;
  source.bitsPerPixel = 24;
  tagIGFD destination = source;
  destination.bitsPerPixel = bits;
  destination.colorFlags = kIndexedColor;
  destination.palette = palette.data();
  Tally tally{};
  ConversionSetup setup;
  setup.source = &source;
  setup.destination = &destination;
  setup.lineCapacity = kSide;
  setup.next = Count;
  setup.user = &tally;
  setup.halftoneMethod = 0;
  setup.ditherMatrix = matrix.values.data();
  setup.ditherWidth = matrix.width;
  setup.ditherHeight = matrix.height;
  tagCRLA* context = OpenConversion(setup);
  auto* band = static_cast<tagRasterPacked*>(SioCreateOp(kPackedBand, kBandHeaderBytes + kSide * kSide * 4));
  *band = {0, 0, kSide, kSide, 24, 0};
  auto* bytes = reinterpret_cast<std::uint8_t*>(band + 1);
  for (int i = 0; i < kSide * kSide; ++i) {
    const std::uint8_t pixel[4] = {color.blue, color.green, color.red, 0};
    std::memcpy(bytes + 4 * i, pixel, sizeof pixel);
  }
  EXPECT_EQ(Cvtr2r(&band, &source, &destination, context), kCvtOk);
  SioFreeSMem(reinterpret_cast<std::uint8_t*>(band) - kBandPrefixBytes);
  CloseConversion(context);
  return tally;
}

double MeanRed(const Tally& tally, const Colors& palette) {
  int sum = 0;
  for (std::size_t i = 0; i < palette.size(); ++i) sum += tally[i] * palette[i].red;
  return sum / double{kSide * kSide};
}

TEST(OrderedDither, LeavesTheColorsOfAUniformCubeFlat) {
  Matrix every{16, 16, {}};  // every threshold there is
  for (int i = 0; i < 256; ++i) every.values.push_back(static_cast<std::uint8_t>(i));
  for (std::uint8_t bits = 3; bits <= 8; ++bits) {
    const Colors cube = UniformCube(CubeLevels(bits));
    for (std::size_t i = 0; i < cube.size(); ++i)
      EXPECT_EQ(Dithered(cube[i], cube, bits, every)[i], kSide * kSide) << +bits << " bits, entry " << i;
  }
}

TEST(OrderedDither, MixesGraysToTheLevelAskedFor) {
  const Matrix bayer = MatrixNamed("bayer16").value();
  const struct {
    const char* what;
    Colors palette;
    std::uint8_t bits;
    double within;
  } cases[] = {{"four grays", {{0, 0, 0}, {85, 85, 85}, {170, 170, 170}, {255, 255, 255}}, 2, 3},
               {"uneven grays", {{255, 255, 255}, {20, 20, 20}, {0, 0, 0}, {140, 140, 140}}, 2, 3},
               {"cube of 2 levels", UniformCube(2), 3, 3},
               {"cube of 3 levels", UniformCube(3), 5, 4},
               {"cube of 6 levels", UniformCube(6), 8, 3}};
  for (const auto& c : cases)
    for (int gray = 0; gray <= 255; gray += 5) {
      const auto level = static_cast<std::uint8_t>(gray);
      const Tally tally = Dithered({level, level, level}, c.palette, c.bits, bayer);
      EXPECT_NEAR(MeanRed(tally, c.palette), gray, c.within) << c.what << " at " << gray;
    }
}

}  // namespace
}  // namespace cvt::host

// Tables from palettes: against naive searches that try every entry, and against figures worked by hand.

#include "host/tables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "cvt/cvtr2r.h"

namespace cvt::host {
namespace {

using Colors = std::vector<IRGB>;
using Table = std::vector<std::uint8_t>;

constexpr MonoRule kMiddle{128, false};

Palette Of(const Colors& colors) { return {colors.data(), colors.size()}; }

Colors RandomColors(std::mt19937& generator, std::size_t count, unsigned spread) {
  const auto channel = [&] { return static_cast<std::uint8_t>(generator() % spread); };
  Colors colors;
  for (std::size_t i = 0; i < count; ++i) colors.push_back({channel(), channel(), channel()});
  return colors;
}

int Away(IRGB a, IRGB b) {
  const int red = a.red - b.red, green = a.green - b.green, blue = a.blue - b.blue;
  return red * red + green * green + blue * blue;
}

// The entry of `colors` nearest to a cell's colour, of those that lie in the cell if any do.
std::size_t CubeEntry(const Colors& colors, int red, int green, int blue) {
  const auto widen = [](int v) { return static_cast<std::uint8_t>(v * 8 + v / 4); };
  const IRGB center{widen(red), widen(green), widen(blue)};
  const auto inCell = [&](IRGB c) { return c.red / 8 == red && c.green / 8 == green && c.blue / 8 == blue; };
  bool found = false;
  for (IRGB c : colors) found |= inCell(c);
  std::size_t best = colors.size();
  for (std::size_t i = 0; i < colors.size(); ++i)
    if (!found || inCell(colors[i]))
      if (best == colors.size() || Away(colors[i], center) < Away(colors[best], center)) best = i;
  return best;
}

TEST(Cube, HoldsWhatANaiveSearchFinds) {
  std::mt19937 generator(7);
  for (std::size_t count : {1U, 3U, 4U, 16U, 61U, 255U, 256U})
    for (unsigned spread : {256U, 20U}) {  // a small spread crowds many entries into few cells
      const Colors colors = RandomColors(generator, count, spread);
      Table cube(kCubeCells);
      BuildCube(Of(colors), kMiddle, cube.data());
      for (std::size_t cell = 0; cell < kCubeCells; ++cell) {
        const int red = static_cast<int>(cell / 1024), green = static_cast<int>(cell / 32 % 32),
                  blue = static_cast<int>(cell % 32);
        ASSERT_EQ(cube[cell], CubeEntry(colors, red, green, blue)) << count << " of " << spread << ", " << cell;
      }
    }
}

TEST(Cube, FindsPaletteColorsAndTheLowestOfEquals) {
  // 6 and 1 share a cell with black; the others have one of their own.
  const Colors colors = {{255, 0, 0}, {0, 0, 0},    {9, 200, 31}, {255, 255, 255},
                         {255, 0, 0}, {16, 16, 16}, {7, 0, 0}};
  Table cube(kCubeCells);
  BuildCube(Of(colors), kMiddle, cube.data());
  const std::size_t found[] = {0, 1, 2, 3, 0, 5, 1};
  for (std::size_t i = 0; i < colors.size(); ++i) {
    WRGB color{colors[i].red, colors[i].green, colors[i].blue};
    EXPECT_EQ(CvtSearchRGBCube(cube.data(), &color), found[i]) << "color " << i;
  }
}

struct MonoCase {
  const char* what;
  Colors colors;
  MonoRule rule;
  std::uint8_t below, from;  // entries for gray 199 and gray 200
};
const Colors kBlackWhite = {{0, 0, 0}, {255, 255, 255}}, kWhiteBlack = {{255, 255, 255}, {0, 0, 0}},
             kRedNavy = {{255, 0, 0}, {0, 0, 80}};
const MonoCase kMonoCases[] = {{"black, white", kBlackWhite, {200, false}, 0, 1},
                               {"white, black", kWhiteBlack, {200, false}, 1, 0},
                               {"inverted", kBlackWhite, {200, true}, 1, 0},
                               {"white first, inverted", kWhiteBlack, {200, true}, 0, 1},
                               {"the lighter of two colors is white", kRedNavy, {200, false}, 1, 0},
                               {"threshold 0 leaves no black", kBlackWhite, {0, false}, 1, 1},
                               {"threshold 256 leaves no white", kBlackWhite, {256, false}, 0, 0}};

TEST(Monochrome, GoesByThresholdAndInversionInEveryTable) {
  const Colors source = {{199, 199, 199}, {200, 200, 200}};
  for (const MonoCase& c : kMonoCases) {
    Table gray(kGrayLevels), cube(kCubeCells), map(2);
    BuildGrayTable(Of(c.colors), c.rule, gray.data());
    BuildCube(Of(c.colors), c.rule, cube.data());
    BuildSnapMap(Of(source), Of(c.colors), c.rule, map.data());
    EXPECT_EQ(gray[199], c.below) << c.what;
    EXPECT_EQ(gray[200], c.from) << c.what;
    EXPECT_EQ(map, (Table{c.below, c.from})) << c.what;
    EXPECT_EQ(cube[CubeCell(199, 199, 199)], c.below) << c.what;
    EXPECT_EQ(cube[CubeCell(200, 200, 200)], c.from) << c.what;
  }
}

TEST(Monochrome, WeighsChannelsByHowBrightTheyLook) {
  // Green is the one primary above the middle: 59 of 100 parts of 255 is 150.
  const Colors primaries = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 0, 255}, {255, 255, 0}};
  Table map(5), cube(kCubeCells);
  BuildSnapMap(Of(primaries), Of(kBlackWhite), kMiddle, map.data());
  EXPECT_EQ(map, (Table{0, 1, 0, 0, 1}));
  BuildCube(Of(kBlackWhite), kMiddle, cube.data());
  for (std::size_t i = 0; i < 5; ++i)
    EXPECT_EQ(cube[CubeCell(primaries[i].red, primaries[i].green, primaries[i].blue)], map[i]) << i;
}

TEST(GrayTable, TakesTheNearestLevelAndTheLowestOfEquals) {
  const Colors ramp = {{200, 200, 200}, {0, 0, 0}, {100, 100, 100}, {0, 0, 0}};
  Table table(kGrayLevels);
  BuildGrayTable(Of(ramp), kMiddle, table.data());
  const struct {
    std::size_t level;
    std::uint8_t entry;
  } cases[] = {{0, 1}, {49, 1}, {50, 1}, {51, 2}, {149, 2}, {150, 0}, {151, 0}, {255, 0}};
  for (const auto& c : cases) EXPECT_EQ(table[c.level], c.entry) << "level " << c.level;
}

TEST(SnapMap, GoesByGrayLevelForGraysAndByDistanceForColors) {
  const Colors source = {{0, 255, 0}, {255, 0, 0}, {80, 80, 80}, {10, 20, 30}};
  const Colors grays = {{0, 0, 0}, {80, 80, 80}, {150, 150, 150}, {255, 255, 255}};
  const Colors colors = {{0, 0, 0}, {250, 10, 10}, {10, 20, 30}, {80, 80, 81}, {0, 200, 0}, {10, 20, 30}};
  Table map(4);
  BuildSnapMap(Of(source), Of(grays), kMiddle, map.data());
  EXPECT_EQ(map, (Table{2, 1, 1, 0}));  // levels 150, 76, 80 and 18
  BuildSnapMap(Of(source), Of(colors), kMiddle, map.data());
  EXPECT_EQ(map, (Table{4, 1, 3, 2}));
}

TEST(Gamma, RoundsThePowerOfEveryLevel) {
  const struct {
    double gamma;
    std::size_t level;
    int result;
  } cases[] = {{2.0, 64, 128}, {2.0, 1, 16}, {0.5, 128, 64}, {2.2, 128, 186},
               {1.0, 77, 77},  {9.0, 0, 0},  {0.1, 255, 255}};
  for (const auto& c : cases) {
    Table table(kGrayLevels);
    BuildGamma(c.gamma, table.data());
    EXPECT_EQ(table[c.level], c.result) << c.gamma << " at " << c.level;
  }
  for (double gamma : {0.1, 0.45, 1.0 / 3, 1.0, 1.4, 1.8, 2.2, 2.4, 10.0}) {
    Table table(kGrayLevels);
    BuildGamma(gamma, table.data());
    for (std::size_t v = 0; v < kGrayLevels; ++v)
      EXPECT_EQ(table[v], std::lround(255 * std::pow(static_cast<double>(v) / 255, 1 / gamma)))
          << gamma << " " << v;
  }
}

struct DescriptorCase {
  const char* what;
  Colors colors;
  std::uint8_t bits, flags;
  bool gray;
  std::int32_t nearestToWhite;
};
const DescriptorCase kDescriptorCases[] = {
    {"a gray ramp", {{0, 0, 0}, {85, 85, 85}, {170, 170, 170}, {250, 250, 250}}, 2, kIndexedColor, true, 3},
    {"one color among grays",
     {{255, 255, 255}, {85, 85, 85}, {170, 170, 171}, {255, 255, 255}},
     2,
     kIndexedColor,
     false,
     0},
    {"entries behind the last are not looked at",
     {{1, 1, 1}, {9, 9, 9}, {255, 255, 254}},
     1,
     kIndexedColor,
     true,
     1},
    {"direct color is not gray", {{0, 0, 0}, {1, 1, 1}}, 1, 0, false, 1}};

TEST(Descriptor, AnswersForItsColors) {
  for (DescriptorCase c : kDescriptorCases) {
    tagIGFD image{};
    image.bitsPerPixel = c.bits;
    image.colorFlags = c.flags;
    image.palette = c.colors.data();
    IRGB white{255, 255, 255};
    EXPECT_EQ(CvtIsGray(&image, 0) != 0, c.gray) << c.what;
    EXPECT_EQ(CvtClosestRGB(&white, &image), c.nearestToWhite) << c.what;
  }
}

}  // namespace
}  // namespace cvt::host

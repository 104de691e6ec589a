// Tables from palettes: against naive searches that try every entry, and against figures worked by hand.

#include "host/tables.h"

#include <gtest/gtest.h>

#include <cmath>

#include "setups.h"

namespace cvt::host {
namespace {

using Table = std::vector<std::uint8_t>;

constexpr MonoRule kMiddle{128, false};

// The entry of `colors` nearest to a cell's colour, of those that lie in the cell if any do.
std::size_t CubeEntry(const Colors& colors, int red, int green, int blue) {
  const auto widen = [](int v) { return static_cast<std::uint8_t>(v * 8 + v / 4); };
  const IRGB center{widen(red), widen(green), widen(blue)};
  const auto inCell = [&](IRGB c) { return c.red / 8 == red && c.green / 8 == green && c.blue / 8 == blue; };
  bool found = false;
  for (const IRGB c : colors) found |= inCell(c);
  std::size_t best = colors.size();
  for (std::size_t i = 0; i < colors.size(); ++i)
    if (!found || inCell(colors[i]))
      if (best == colors.size() || Away(colors[i], center) < Away(colors[best], center)) best = i;
  return best;
}

TEST(Cube, HoldsWhatANaiveSearchFinds) {
  std::mt19937 generator(7);
  for (const std::size_t count : {1U, 3U, 4U, 16U, 61U, 255U, 256U})
    for (const unsigned spread : {256U, 20U}) {  // a small spread crowds many entries into few cells
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

TEST(Monochrome, GoesByThresholdAndInversionInEveryTable) {
  const Colors redNavy = {{255, 0, 0}, {0, 0, 80}}, equal = {{1, 1, 1}, {1, 1, 1}};
  const struct {
    const char* what;
    Colors colors;
    MonoRule rule;
    std::uint8_t below, from;  // entries for gray 199 and gray 200
  } cases[] = {{"black, white", blackWhite, {200, false}, 0, 1},
               {"white, black", whiteBlack, {200, false}, 1, 0},
               {"inverted", blackWhite, {200, true}, 1, 0},
               {"white first, inverted", whiteBlack, {200, true}, 0, 1},
               {"the lighter of two colors is white", redNavy, {200, false}, 1, 0},
               {"the second of equals is white", equal, {200, false}, 0, 1},
               {"threshold 0 leaves no black", blackWhite, {0, false}, 1, 1},
               {"threshold 256 leaves no white", blackWhite, {256, false}, 0, 0}};
  const Colors source = {{199, 199, 199}, {200, 200, 200}};
  for (const auto& c : cases) {
    Table gray(kGrayLevels), cube(kCubeCells), map(2);
    BuildGrayTable(Of(c.colors), c.rule, gray.data());
    BuildCube(Of(c.colors), c.rule, cube.data());
    BuildSnapMap(Of(source), Of(c.colors), c.rule, map.data());
    const Table expected = {c.below, c.from};
    EXPECT_EQ((Table{gray[199], gray[200]}), expected) << c.what;
    EXPECT_EQ(map, expected) << c.what;
    EXPECT_EQ((Table{cube[CubeCell(199, 199, 199)], cube[CubeCell(200, 200, 200)]}), expected) << c.what;
  }
}

TEST(Monochrome, WeighsChannelsByHowBrightTheyLook) {
  // Green is the one primary above the middle: 59 of 100 parts of 255 is 150.
  const Colors primaries = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 0, 255}, {255, 255, 0}};
  const std::int32_t levels[] = {76, 150, 28, 104, 226};
  Table map(5), cube(kCubeCells);
  BuildSnapMap(Of(primaries), Of(blackWhite), kMiddle, map.data());
  EXPECT_EQ(map, (Table{0, 1, 0, 0, 1}));
  BuildCube(Of(blackWhite), kMiddle, cube.data());
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(GrayLevel(primaries[i]), levels[i]) << i;
    EXPECT_EQ(cube[CubeCell(primaries[i].red, primaries[i].green, primaries[i].blue)], map[i]) << i;
  }
}

TEST(GrayTable, TakesTheNearestLevelAndTheLowestOfEquals) {
  const Colors ramp = {{200, 200, 200}, {0, 0, 0}, {100, 100, 100}, {0, 0, 0}};
  Table table(kGrayLevels), found;
  BuildGrayTable(Of(ramp), kMiddle, table.data());
  for (const std::size_t level : {0U, 49U, 50U, 51U, 149U, 150U, 151U, 255U}) found.push_back(table[level]);
  EXPECT_EQ(found, (Table{1, 1, 1, 2, 2, 0, 0, 0}));
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
  for (const double gamma : {0.1, 0.45, 1.0 / 3, 1.0, 1.4, 1.8, 2.2, 2.4, 10.0}) {
    Table table(kGrayLevels);
    BuildGamma(gamma, table.data());
    for (std::size_t v = 0; v < kGrayLevels; ++v)
      EXPECT_EQ(table[v], std::lround(255 * std::pow(static_cast<double>(v) / 255, 1 / gamma)))
          << gamma << " " << v;
  }
}

TEST(Descriptor, AnswersForItsColors) {
  const struct {
    const char* what;
    Colors colors;
    std::uint8_t bits, flags;
    bool gray;
    std::int32_t nearestToWhite;
  } cases[] = {
      {"a gray ramp", {{0, 0, 0}, {85, 85, 85}, {90, 90, 90}, {250, 250, 250}}, 2, kIndexedColor, true, 3},
      {"a color among grays", {{99, 99, 99}, {9, 9, 9}, {90, 90, 91}, {99, 99, 99}}, 2, kIndexedColor, false, 0},
      {"what lies behind the last entry", {{1, 1, 1}, {9, 9, 9}, {255, 255, 254}}, 1, kIndexedColor, true, 1},
      {"direct color is not gray", {{0, 0, 0}, {1, 1, 1}}, 1, 0, false, 1}};
  for (const auto& c : cases) {
    tagIGFD image = Image(c.colors, c.bits, c.flags);
    IRGB white{255, 255, 255};
    EXPECT_EQ(CvtIsGray(&image, 0) != 0, c.gray) << c.what;
    EXPECT_EQ(CvtClosestRGB(&white, &image), c.nearestToWhite) << c.what;
  }
}

}  // namespace
}  // namespace cvt::host

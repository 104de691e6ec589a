// Palettes made for an image: exact where they can be, good where they cannot, the same whatever the order.

#include "host/adaptive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>

#include "host/uniform_cube.h"
#include "setups.h"

namespace cvt::host {
namespace {

ColorCounts CountsOf(const Colors& picture) {
  constexpr std::size_t kPiece = 100;  // bands
  ColorCounts counts;
  for (std::size_t first = 0; first < picture.size(); first += kPiece)
    CountColors(counts, picture.data() + first, std::min(kPiece, picture.size() - first));
  return counts;
}

Colors PaletteFor(const Colors& picture, std::size_t howMany) { return ChoosePalette(CountsOf(picture), howMany); }

// ---- Pictures ----

std::uint8_t Byte(int v) { return static_cast<std::uint8_t>(std::clamp(v, 0, 255)); }

Colors Picture(const std::function<IRGB(int x, int y)>& color) {
  Colors picture;
  for (int i = 0; i < 64 * 64; ++i) picture.push_back(color(i % 64, i / 64));
  return picture;
}

Colors Sweep() {
  return Picture([](int x, int y) { return IRGB{Byte(4 * x), Byte(4 * y), Byte(255 - 2 * (x + y))}; });
}

Colors Clouds() {
  std::mt19937 generator(1);
  const Colors centers = RandomColors(generator, 12, 256);
  const auto near = [&generator](int v) { return Byte(v + static_cast<int>(generator() % 31) - 15); };
  return Picture([&](int x, int y) {
    const IRGB center = centers[static_cast<std::size_t>(x * y / 200 % 12)];
    return IRGB{near(center.red), near(center.green), near(center.blue)};
  });
}

// Dark almost everywhere, with few bright spots of many colours.
Colors Night() {
  std::mt19937 generator(5);
  return Picture([&](int, int) { return RandomColors(generator, 1, generator() % 16 == 0 ? 256 : 32).front(); });
}

double ErrorOf(const Colors& picture, const Colors& palette) {
  double sum = 0;
  for (const IRGB color : picture) {
    std::int64_t best = std::numeric_limits<std::int64_t>::max();
    for (const IRGB entry : palette) best = std::min(best, Away(color, entry));
    sum += static_cast<double>(best);
  }
  return sum / static_cast<double>(picture.size());
}

// ---- Tests ----

TEST(Adaptive, FindsThePalettesWorkedByHand) {
  const Colors sorted = {{0, 0, 0},     {0, 0, 255},   {3, 200, 3},    {4, 200, 3},
                         {90, 180, 77}, {255, 255, 0}, {255, 255, 255}};
  Colors picture;
  for (std::size_t i = 0; i < 50; ++i) picture.push_back(sorted[i * 3 % 7]);
  // 59 * 30 = 30 * 59 and 11 * 30 = 30 * 11: all weigh 59 * 110 above black.
  const Colors level = {{0, 110, 0}, {59, 80, 0}, {118, 50, 0}, {177, 20, 0}};
  // Joining the two dark ones costs 2000 * 3 * 4 * 4, joining white with one of them more than 180000.
  Colors dark(1000, IRGB{0, 0, 0});
  dark.insert(dark.end(), 1000, IRGB{8, 8, 8});
  dark.push_back({255, 255, 255});
  const struct {
    const char* what;
    Colors picture;
    std::size_t howMany;
    Colors palette;
  } cases[] = {
      {"no pixels", {}, 16, {}},
      {"few colors, darkest first", picture, 7, sorted},
      {"fewer colors than asked for", picture, 256, sorted},
      {"one gray level, by red", {level[2], level[0], level[3], level[1]}, 4, level},
      {"weighed by pixels", dark, 2, {{4, 4, 4}, {255, 255, 255}}},
      {"the mean of all", dark, 1, {{4, 4, 4}}},
      {"rounded means", {{0, 0, 0}, {1, 3, 5}}, 1, {{1, 2, 3}}},
      {"the darker of equal cuts", {{0, 0, 0}, {64, 64, 64}, {128, 128, 128}}, 2, {{0, 0, 0}, {96, 96, 96}}}};
  for (const auto& c : cases) EXPECT_EQ(PaletteFor(c.picture, c.howMany), c.palette) << c.what;
}

TEST(Adaptive, CountsImagesOfAnySize) {
  const Colors picture = Night();
  ColorCounts counts = CountsOf(picture);
  const Colors palette = ChoosePalette(counts, 16);
  for (ColorCell& cell : counts.cells)
    for (std::uint64_t* sum : {&cell.pixels, &cell.red, &cell.green, &cell.blue}) *sum <<= 20;  // 2^32 pixels
  EXPECT_LE(ErrorOf(picture, ChoosePalette(counts, 16)), 1.05 * ErrorOf(picture, palette));

  counts = CountsOf({{0, 0, 0}, {255, 255, 255}, {255, 255, 0}});
  counts.cells.front().pixels <<= 30;  // two pixels beside 2^30 black ones still count
  EXPECT_EQ(ChoosePalette(counts, 2), (Colors{{0, 0, 0}, {255, 255, 128}}));
}

TEST(Adaptive, ServesPicturesBetterThanCubes) {
  const struct {
    const char* what;
    Colors picture;
    double shares[4];  // of the error that the largest cube with no more colours leaves
  } cases[] = {{"sweep", Sweep(), {.093, .045, .117, .084}},
               {"clouds", Clouds(), {.0432, .0111, .0342, .0341}},
               {"night", Night(), {.275, .164, .0897, .0216}}};
  const std::size_t sizes[] = {8, 16, 64, 256};
  const std::uint32_t levels[] = {2, 2, 4, 6};
  for (const auto& c : cases)
    for (std::size_t i = 0; i < 4; ++i) {
      const Colors palette = PaletteFor(c.picture, sizes[i]);
      EXPECT_EQ(palette.size(), sizes[i]) << c.what;
      EXPECT_LE(ErrorOf(c.picture, palette), c.shares[i] * ErrorOf(c.picture, UniformCube(levels[i])))
          << c.what << ", " << sizes[i];
    }
}

TEST(Adaptive, DoesNotDependOnTheOrderOfPixels) {
  Colors picture = Clouds();
  const Colors palette = PaletteFor(picture, 32);
  std::shuffle(picture.begin(), picture.end(), std::mt19937(9));
  EXPECT_EQ(PaletteFor(picture, 32), palette);
}

}  // namespace
}  // namespace cvt::host

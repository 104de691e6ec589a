// Palettes made for an image: exact where they can be, good where they cannot, the same whatever the order.

#include "host/adaptive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "host/uniform_cube.h"

namespace cvt::host {
namespace {

using Colors = std::vector<IRGB>;

std::uint8_t Byte(int v) { return static_cast<std::uint8_t>(std::clamp(v, 0, 255)); }

bool operator==(IRGB a, IRGB b) { return a.red == b.red && a.green == b.green && a.blue == b.blue; }

bool AreEqual(const Colors& a, const Colors& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](IRGB c, IRGB d) { return c == d; });
}

Colors PaletteFor(const Colors& picture, std::size_t howMany) {
  ColorCounts counts;
  CountColors(counts, picture.data(), picture.size());
  return ChoosePalette(counts, howMany);
}

// ---- Pictures ----

constexpr int kSide = 64;

Colors Picture(const std::function<IRGB(int x, int y)>& color) {
  Colors picture;
  for (int y = 0; y < kSide; ++y)
    for (int x = 0; x < kSide; ++x) picture.push_back(color(x, y));
  return picture;
}

Colors Sweep() {
  return Picture([](int x, int y) { return IRGB{Byte(4 * x), Byte(4 * y), Byte(255 - 2 * (x + y))}; });
}

Colors Clouds(unsigned seed) {
  std::mt19937 generator(seed);
  Colors centers;
  const auto channel = [&generator] { return static_cast<std::uint8_t>(generator() % 256); };
  for (int i = 0; i < 12; ++i) centers.push_back({channel(), channel(), channel()});
  const auto near = [&generator](int v) { return Byte(v + static_cast<int>(generator() % 31) - 15); };
  return Picture([&](int x, int y) {
    const IRGB center = centers[static_cast<std::size_t>(x * y / 200 % 12)];
    return IRGB{near(center.red), near(center.green), near(center.blue)};
  });
}

// Dark almost everywhere, with few bright spots of many colours.
Colors Night() {
  std::mt19937 generator(5);
  return Picture([&](int, int) {
    const auto channel = [&](unsigned below) { return static_cast<std::uint8_t>(generator() % below); };
    return generator() % 16 == 0 ? IRGB{channel(256), channel(256), channel(256)}
                                 : IRGB{channel(24), channel(24), channel(48)};
  });
}

double ErrorOf(const Colors& picture, const Colors& palette) {
  double sum = 0;
  for (IRGB color : picture) {
    int best = std::numeric_limits<int>::max();
    for (IRGB entry : palette) {
      const int red = color.red - entry.red, green = color.green - entry.green, blue = color.blue - entry.blue;
      best = std::min(best, red * red + green * green + blue * blue);
    }
    sum += best;
  }
  return sum / static_cast<double>(picture.size());
}

// ---- The plain method to compare with: the longest box is cut at the median of its longest side ----

using Channel = std::uint8_t IRGB::*;
constexpr Channel kChannels[] = {&IRGB::red, &IRGB::green, &IRGB::blue};

int SpreadOf(const Colors& box, std::size_t channel) {
  const auto [least, most] = std::minmax_element(
      box.begin(), box.end(), [&](IRGB a, IRGB b) { return a.*kChannels[channel] < b.*kChannels[channel]; });
  return (*most).*kChannels[channel] - (*least).*kChannels[channel];
}

std::size_t LongestSide(const Colors& box) {
  std::size_t longest = 0;
  for (std::size_t c = 1; c < 3; ++c)
    if (SpreadOf(box, c) > SpreadOf(box, longest)) longest = c;
  return longest;
}

IRGB MeanOf(const Colors& box) {
  std::size_t sums[3] = {};
  for (IRGB color : box)
    for (std::size_t c = 0; c < 3; ++c) sums[c] += color.*kChannels[c];
  const auto mean = [&](std::size_t c) {
    return static_cast<std::uint8_t>((sums[c] + box.size() / 2) / box.size());
  };
  return {mean(0), mean(1), mean(2)};
}

Colors MedianCut(const Colors& picture, std::size_t howMany) {
  std::vector<Colors> boxes{picture};
  while (boxes.size() < howMany) {
    const auto length = [](const Colors& box) { return SpreadOf(box, LongestSide(box)); };
    const auto longest = std::max_element(boxes.begin(), boxes.end(),
                                          [&](const Colors& a, const Colors& b) { return length(a) < length(b); });
    const Channel side = kChannels[LongestSide(*longest)];
    std::sort(longest->begin(), longest->end(), [side](IRGB a, IRGB b) { return a.*side < b.*side; });
    const auto middle = longest->begin() + static_cast<std::ptrdiff_t>(longest->size() / 2);
    Colors upper(middle, longest->end());
    longest->erase(middle, longest->end());
    boxes.push_back(upper);
  }
  Colors palette;
  for (const Colors& box : boxes) palette.push_back(MeanOf(box));
  return palette;
}

// ---- Tests ----

TEST(Adaptive, GivesFewColorsBackExactlyDarkestFirst) {
  const Colors sorted = {{0, 0, 0},     {0, 0, 255},   {7, 200, 3},    {8, 200, 3},
                         {90, 180, 77}, {255, 255, 0}, {255, 255, 255}};
  Colors picture;
  for (std::size_t i = 0; i < 50; ++i) picture.push_back(sorted[i * 3 % 7]);
  for (std::size_t howMany : {7U, 8U, 256U})
    EXPECT_TRUE(AreEqual(PaletteFor(picture, howMany), sorted)) << howMany;
  EXPECT_TRUE(ChoosePalette({}, 16).empty());
}

TEST(Adaptive, OrdersColorsOfOneGrayLevelByRedThenGreen) {
  // 59 * 30 = 30 * 59 and 11 * 30 = 30 * 11: all weigh 59 * 110 above black.
  const Colors sorted = {{0, 110, 0}, {59, 80, 0}, {118, 50, 0}, {177, 20, 0}};
  EXPECT_TRUE(AreEqual(PaletteFor({sorted[2], sorted[0], sorted[3], sorted[1]}, 4), sorted));
}

TEST(Adaptive, WeighsColorsByTheirPixels) {
  // Joining the two dark ones costs 2000 * 3 * 4 * 4, joining white with one of them more than 180000.
  Colors picture(1000, IRGB{0, 0, 0});
  picture.insert(picture.end(), 1000, IRGB{8, 8, 8});
  picture.push_back({255, 255, 255});
  EXPECT_TRUE(AreEqual(PaletteFor(picture, 2), {{4, 4, 4}, {255, 255, 255}}));
  EXPECT_TRUE(AreEqual(PaletteFor(picture, 1), {{4, 4, 4}}));
}

TEST(Adaptive, RoundsMeansAndPartsAtTheDarkerOfEqualPlaces) {
  EXPECT_TRUE(AreEqual(PaletteFor({{0, 0, 0}, {1, 3, 5}}, 1), {{1, 2, 3}}));
  const Colors evenly = {{0, 0, 0}, {64, 64, 64}, {128, 128, 128}};
  EXPECT_TRUE(AreEqual(PaletteFor(evenly, 2), {{0, 0, 0}, {96, 96, 96}}));
}

TEST(Adaptive, CountsImagesOfAnySize) {
  const Colors picture = Night();
  ColorCounts counts;
  CountColors(counts, picture.data(), picture.size());
  const Colors palette = ChoosePalette(counts, 16);
  for (ColorCell& cell : counts.cells)
    for (std::uint64_t* sum : {&cell.pixels, &cell.red, &cell.green, &cell.blue}) *sum <<= 20;  // 2^32 pixels
  EXPECT_LE(ErrorOf(picture, ChoosePalette(counts, 16)), 1.05 * ErrorOf(picture, palette));
}

TEST(Adaptive, ServesPicturesBetterThanPlainMethods) {
  const struct {
    const char* what;
    Colors picture;
    double share;  // of the plain method's error
  } cases[] = {{"a flat square, which medians part into equal squares", Sweep(), 1.1},
               {"clouds", Clouds(1), 0.75},
               {"other clouds", Clouds(2), 0.75},
               {"night", Night(), 0.75}};
  const struct {
    std::size_t howMany;
    std::uint32_t levels;  // of the largest cube with no more colours
  } sizes[] = {{8, 2}, {16, 2}, {64, 4}, {256, 6}};
  for (const auto& c : cases)
    for (const auto& s : sizes) {
      const Colors palette = PaletteFor(c.picture, s.howMany);
      EXPECT_EQ(palette.size(), s.howMany) << c.what;
      const double error = ErrorOf(c.picture, palette);
      EXPECT_LE(error, c.share * ErrorOf(c.picture, MedianCut(c.picture, s.howMany)))
          << c.what << ", " << s.howMany;
      EXPECT_LE(error, c.share * ErrorOf(c.picture, UniformCube(s.levels))) << c.what << ", " << s.howMany;
    }
}

TEST(Adaptive, DoesNotDependOnTheOrderOfPixels) {
  Colors picture = Clouds(3);
  const Colors palette = PaletteFor(picture, 32);
  std::shuffle(picture.begin(), picture.end(), std::mt19937(9));
  ColorCounts counts;
  for (std::size_t first = 0; first < picture.size(); first += 100)
    CountColors(counts, picture.data() + first, std::min<std::size_t>(100, picture.size() - first));
  EXPECT_TRUE(AreEqual(ChoosePalette(counts, 32), palette));
}

}  // namespace
}  // namespace cvt::host

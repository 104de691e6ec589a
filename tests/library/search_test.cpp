// Palette searches: hand-worked rows, and random colours against the twins.
#include "tests/library/sweep.h"

namespace cvt::test {

namespace {

struct DistanceCase {
  WRGB color;
  IRGB entry;
  std::int32_t squared;
};
constexpr DistanceCase kDistances[] = {{{0, 0, 0}, {255, 255, 255}, 195075},
                                       {{-1, 256, 100}, {0, 255, 103}, 11},
                                       {{-32768, -32768, 0}, {0, 0, 0}, -2147483647 - 1},  // 2^31 wraps
                                       {{-32768, -32768, -32768}, {255, 255, 255}, -1023411709}};

TEST(Search, DistanceWrapsInThirtyTwoBits) {
  for (DistanceCase c : kDistances) EXPECT_EQ(CvtDistExtendedRGB(&c.color, &c.entry), c.squared);
}

struct ClosestCase {
  const char* what;
  std::vector<IRGB> palette;
  std::uint8_t depth;
  WRGB color;
  int entry;
};

// A palette of 131072 entries, all white but one.
std::vector<IRGB> OneDark(std::size_t entry) {
  std::vector<IRGB> palette(131072, IRGB{255, 255, 255});
  palette[entry] = {10, 10, 10};
  return palette;
}

TEST(Search, ClosestTriesTheWholePalette) {
  const std::vector<IRGB> four = {{0, 0, 0}, {100, 100, 100}, {102, 100, 100}, {100, 100, 100}};
  const std::vector<IRGB> lightAndDark = {{255, 255, 255}, {0, 0, 0}};
  for (ClosestCase c : {ClosestCase{"lowest of equals", four, 2, {100, 100, 100}, 1},
                        {"a tie keeps the lower", four, 2, {101, 100, 100}, 1},
                        {"the nearest", four, 2, {103, 100, 100}, 2},
                        {"only as many entries as the depth says", four, 1, {103, 100, 100}, 1},
                        {"2000 squared is not nearer than 4,000,000", lightAndDark, 1, {-2000, 0, 0}, 0},
                        {"1999 squared is", lightAndDark, 1, {-1999, 0, 0}, 1},
                        {"no entry is looked at", {}, 31, {1, 1, 1}, 0},
                        {"the depth counts modulo 32", {{9, 9, 9}, {1, 1, 1}}, 33, {1, 1, 1}, 1},
                        {"a wrapped distance is the nearest", {{0, 0, 0}, {255, 0, 0}}, 1, {-32768, -32768, 0}, 0},
                        {"indices are signed", OneDark(40000), 17, {10, 10, 10}, 40000 - 65536},
                        {"indices are cut", OneDark(65541), 17, {10, 10, 10}, 5}}) {
    tagIGFD descriptor{};
    descriptor.bitsPerPixel = c.depth;
    descriptor.palette = c.palette.data();
    EXPECT_EQ(CvtClosestExtendedRGB(&c.color, &descriptor), c.entry) << c.what;
  }
}

TEST(Search, GrayLooksAtRedAlone) {
  for (const auto& [red, held] : {std::pair{-32768, 0}, {-1, 0}, {0, 0}, {127, 127}, {255, 255}, {256, 255}}) {
    WRGB color = {static_cast<std::int16_t>(red), -300, 999};
    EXPECT_EQ(CvtSearchGrayArray(SharedTable(), &color), SharedTable()[held]) << red;
  }
}

// A root with eight leaves; leaf 5 decides by a plane, leaf 2 by candidates, the others by their count.
struct Tree {
  OCTtag root{}, leaves[8]{};
  OCTseparator plane{2, -1, 0, 193, 0xFFFE, 77};
  std::uint8_t candidates[3] = {9, 4, 4};

  Tree() {
    root.splitR = 128;
    root.splitG = 64;
    root.splitB = 255;
    for (std::int16_t k = 0; k < 8; ++k) {
      root.children[k] = &leaves[k];
      leaves[k].count = static_cast<std::int16_t>(100 + k);
    }
    leaves[5].separator = &plane;
    leaves[5].candidates = candidates;
    leaves[2].candidates = candidates;
    leaves[2].count = 3;
    leaves[7].count = -2;
  }
};

struct OctreeCase {
  const char* what;
  WRGB color;
  std::uint16_t index;
};
constexpr OctreeCase kOctree[] = {{"negative is lower", {-1, -1, -1}, 100},
                                  {"blue at its threshold", {0, 0, 255}, 101},
                                  {"red and green at their thresholds", {128, 64, 254}, 106},
                                  {"above 255 is upper; a negative count is the index", {300, 300, 300}, 0xFFFE},
                                  {"red and blue: above the plane", {129, 63, 255}, 0xFFFE},
                                  {"on the plane is below", {128, 63, 255}, 77},  // 2 * 128 - 63 = 193
                                  {"candidate 9 is nearer", {20, 64, 0}, 9},
                                  {"candidate 4 is nearer", {90, 90, 90}, 4},
                                  {"equal candidates: the first in the list", {50, 64, 0}, 9},
                                  {"no candidate within the starting distance", {-2000, 2000, 0}, 0}};

TEST(Search, OctreeDescendsAndDecides) {
  Tree tree;
  std::vector<IRGB> palette(16, IRGB{0, 0, 0});
  palette[9] = {0, 64, 0};
  palette[4] = {100, 64, 0};
  tagIGFD descriptor{};
  descriptor.palette = palette.data();
  for (OctreeCase c : kOctree) EXPECT_EQ(CvtSearchOctree(&descriptor, &tree.root, &c.color), c.index) << c.what;
  for (const std::int16_t count : std::initializer_list<std::int16_t>{0, -3}) {  // an empty list
    tree.leaves[2].count = count;
    WRGB listed = {20, 64, 0};
    EXPECT_EQ(CvtSearchOctree(&descriptor, &tree.root, &listed), 0) << count;
  }
  tree.leaves[7].separator = &tree.plane;
  tree.plane = {32767, 32767, 32767, 0, 1, 77};
  WRGB farthest = {32767, 32767, 32767};  // three times 1073676289 is -1073938429: below
  EXPECT_EQ(CvtSearchOctree(&descriptor, &tree.root, &farthest), 77);
}

TEST(Search, AgreesWithTheTwins) {
  Tree tree;
  tagIGFD descriptor{};
  descriptor.palette = SharedPalette();
  Sweep(3000, [&](Dice& dice) {
    const int spread = dice.Of({300, 3000, 32767});
    const auto channel = [&] { return static_cast<std::int16_t>(dice.Between(-spread, spread)); };
    WRGB color = {channel(), channel(), channel()};
    IRGB* entry = SharedPalette() + dice.Between(0, 255);
    tree.plane = {channel(), channel(), channel(), dice.Between(-100000, 100000), 1, 2};
    descriptor.bitsPerPixel = Byte(dice.Between(0, 8));
    EXPECT_EQ(CvtClosestExtendedRGB(&color, &descriptor), RefClosest(color, descriptor));
    EXPECT_EQ(CvtDistExtendedRGB(&color, entry), RefDistance(color, *entry));
    EXPECT_EQ(CvtSearchGrayArray(SharedTable(), &color), RefSearchGray(SharedTable(), color));
    EXPECT_EQ(CvtSearchOctree(&descriptor, &tree.root, &color), RefSearchOctree(descriptor, &tree.root, color));
  });
}

}  // namespace

}  // namespace cvt::test

// Palette searches: hand-worked rows, and random colours against the twins.
#include <gtest/gtest.h>

#include "tests/library/harness.h"

namespace cvt::test {

namespace {

struct DistanceCase {
  WRGB color;
  IRGB entry;
  std::int32_t squared;
};
constexpr DistanceCase kDistances[] = {{{10, 20, 30}, {10, 20, 30}, 0},
                                       {{0, 0, 0}, {255, 255, 255}, 195075},
                                       {{-1, 256, 100}, {0, 255, 103}, 11},
                                       {{-32768, 0, 0}, {0, 0, 0}, 1073741824},
                                       {{-32768, 0, 0}, {255, 0, 0}, 1090518529},
                                       {{-32768, -32768, 0}, {0, 0, 0}, -2147483647 - 1},  // 2^31 wraps
                                       {{-32768, -32768, -32768}, {0, 0, 0}, -1073741824},
                                       {{-32768, -32768, -32768}, {255, 255, 255}, -1023411709}};

TEST(Search, DistanceWrapsInThirtyTwoBits) {
  for (DistanceCase c : kDistances) EXPECT_EQ(CvtDistExtendedRGB(&c.color, &c.entry), c.squared);
}

std::int16_t Closest(std::vector<IRGB> palette, std::uint8_t depth, WRGB color) {
  tagIGFD descriptor{};
  descriptor.bitsPerPixel = depth;
  descriptor.palette = palette.data();
  return CvtClosestExtendedRGB(&color, &descriptor);
}

TEST(Search, ClosestTriesTheWholePalette) {
  const std::vector<IRGB> four = {{0, 0, 0}, {100, 100, 100}, {102, 100, 100}, {100, 100, 100}};
  EXPECT_EQ(Closest(four, 2, {100, 100, 100}), 1) << "lowest of equals";
  EXPECT_EQ(Closest(four, 2, {101, 100, 100}), 1) << "a tie keeps the lower";
  EXPECT_EQ(Closest(four, 2, {103, 100, 100}), 2);
  EXPECT_EQ(Closest(four, 1, {103, 100, 100}), 1) << "only as many entries as the depth says";
  EXPECT_EQ(Closest(four, 2, {2000, 2000, 2000}), 0) << "nothing nearer than 4,000,000";
  EXPECT_EQ(Closest({{9, 9, 9}}, 0, {1, 1, 1}), 0);
  EXPECT_EQ(Closest({}, 31, {1, 1, 1}), 0) << "no entry is looked at";
  EXPECT_EQ(Closest({{9, 9, 9}}, 32, {1, 1, 1}), 0) << "the depth counts modulo 32";
  EXPECT_EQ(Closest({{9, 9, 9}, {1, 1, 1}}, 33, {1, 1, 1}), 1);
  EXPECT_EQ(Closest({{0, 0, 0}, {255, 0, 0}}, 1, {-32768, -32768, 0}), 0) << "a wrapped distance is the nearest";
}

TEST(Search, ClosestCutsTheIndexToSixteenBits) {
  std::vector<IRGB> palette(131072, IRGB{255, 255, 255});
  palette[40000] = {10, 10, 10};
  EXPECT_EQ(Closest(palette, 17, {10, 10, 10}), 40000 - 65536);
  palette[40000] = {255, 255, 255};
  palette[65541] = {10, 10, 10};
  EXPECT_EQ(Closest(palette, 17, {10, 10, 10}), 5);
}

// Every choice sits on the edge of the starting distance: 2000² + 0² + 0² is 4,000,000.
TEST(Search, ClosestStartsFromFourMillion) {
  EXPECT_EQ(Closest({{255, 255, 255}, {0, 0, 0}}, 1, {-2000, 0, 0}), 0);
  EXPECT_EQ(Closest({{255, 255, 255}, {0, 0, 0}}, 1, {-1999, 0, 0}), 1);
}

TEST(Search, GrayLooksAtRedAlone) {
  for (int red : {-32768, -5, -1, 0, 1, 127, 254, 255, 256, 300, 32767}) {
    WRGB color = {static_cast<std::int16_t>(red), -300, 999};
    const int held = std::min(std::max(red, 0), 255);
    EXPECT_EQ(CvtSearchGrayArray(SharedTable(), &color), SharedTable()[held]) << red;
  }
}

// A root with eight leaves; leaf 5 decides by a plane, leaf 2 by candidates, the others by their count.
struct Tree {
  OCTtag root{}, leaves[8]{};
  OCTseparator plane{2, -1, 0, 100, 0xFFFE, 77};
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
  }
};

struct OctreeCase {
  const char* what;
  WRGB color;
  std::uint16_t index;
};
constexpr OctreeCase kOctree[] = {{"all lower", {127, 63, 254}, 100},
                                  {"negative is lower", {-1, -1, -1}, 100},
                                  {"blue at its threshold", {0, 0, 255}, 101},
                                  {"above 255 is upper", {300, 300, 300}, 107},
                                  {"red and green at their thresholds", {128, 64, 0}, 106},
                                  {"red and blue: above the plane", {200, 50, 255}, 0xFFFE},
                                  {"on the plane is below", {128, 156, 0}, 106},
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
  WRGB onPlane = {128, 63, 255};  // 2 * 128 - 63 = 193
  tree.plane.threshold = 193;
  EXPECT_EQ(CvtSearchOctree(&descriptor, &tree.root, &onPlane), 77) << "on the plane is below";
  tree.leaves[2].count = 0;
  WRGB listed = {20, 64, 0};
  EXPECT_EQ(CvtSearchOctree(&descriptor, &tree.root, &listed), 0) << "an empty list";
  tree.leaves[2].count = -3;
  EXPECT_EQ(CvtSearchOctree(&descriptor, &tree.root, &listed), 0) << "a negative list";
  tree.leaves[0].count = -2;
  WRGB dark = {0, 0, 0};
  EXPECT_EQ(CvtSearchOctree(&descriptor, &tree.root, &dark), 0xFFFE) << "the count is the index";
}

TEST(Search, AgreesWithTheTwins) {
  Dice dice(4);
  Tree tree;
  tagIGFD descriptor{};
  descriptor.palette = SharedPalette();
  for (int i = 0; i < Rounds(3000); ++i) {
    const int spread = dice.Of({300, 3000, 32767});
    const auto channel = [&] { return static_cast<std::int16_t>(dice.Between(-spread, spread)); };
    WRGB color = {channel(), channel(), channel()};
    tree.plane = {channel(), channel(), channel(), dice.Between(-100000, 100000), 1, 2};
    descriptor.bitsPerPixel = static_cast<std::uint8_t>(dice.Between(0, 8));
    EXPECT_EQ(CvtClosestExtendedRGB(&color, &descriptor), RefClosest(color, descriptor));
    EXPECT_EQ(CvtDistExtendedRGB(&color, SharedPalette() + i % 256), RefDistance(color, SharedPalette()[i % 256]));
    EXPECT_EQ(CvtSearchGrayArray(SharedTable(), &color), RefSearchGray(SharedTable(), color));
    EXPECT_EQ(CvtSearchOctree(&descriptor, &tree.root, &color), RefSearchOctree(descriptor, &tree.root, color));
  }
}

}  // namespace

}  // namespace cvt::test

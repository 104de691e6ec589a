// Monochrome error diffusion, against figures worked out by hand with pencil and the weights 7 3 5 1.
#include <gtest/gtest.h>

#include "tests/library/harness.h"

namespace cvt::test {

namespace {

using Row = std::vector<std::int16_t>;
using Values = std::vector<std::uint32_t>;

Case GrayCase(const Member& member, std::size_t width, const Values& grays, const Row& row) {
  Case what = PlainCase(member.which.fromPlanes, 8, 1, static_cast<int>(width), 0);
  what.bands = {BandOf(member.which.fromPlanes, 8, width, grays)};
  what.source.palette = GrayRamp();
  what.errorRow = row;
  return what;
}

std::vector<int> Written(const Outcome& outcome, const Member& member, std::size_t which) {
  return outcome.Args(member.which.toPlanes ? Call::PlanePixel : Call::PackedPixel, which);
}

struct DiffusionCase {
  const char* what;
  Row before;    // as wide as a line
  Values grays;  // line by line
  std::int32_t black, white;
  std::vector<int> ink;
  Row after;
};
const DiffusionCase kCases[] = {
    {"mid gray alternates", {0, 0, 0, 0}, {127, 127, 127, 127}, 0, 1, {0, 1, 0, 1}, {25, 1, 7, -22}},
    {"errors from above", {25, 1, 7, -22}, {127, 127, 127, 127}, 0, 1, {1, 0, 1, 0}, {-17, 2, -10, 14}},
    {"black loses no dot, white gains none", {0, 0}, {0, 0, 255, 255}, 0, 1, {0, 0, 1, 1}, {0, 0}},
    {"127 is black", {0}, {127}, 0, 1, {0}, {39}},
    {"128 is white, shares round down", {0}, {128}, 0, 1, {1}, {-40}},
    {"carried from above", {100}, {28}, 0, 1, {1}, {-40}},
    {"the lowest error", {-32768}, {0}, 0, 1, {0}, {-10240}},
    {"the sum wraps", {32767}, {255}, 0, 1, {0}, {-10161}},
    {"one entry for black and white", {0, 0}, {255, 255}, 7, 7, {7, 7}, {147, 129}},
    {"entries are told apart by 16 bits", {0}, {255}, 0x10007, 0x20007, {7}, {79}},
    {"entries fill 16 bits", {0, 0}, {255, 0}, -1, 70000, {4464, 65535}, {0, 0}},
};

TEST(MonoDiffusion, GivesTheSameInkInEveryLayout) {
  for (const DiffusionCase& c : kCases)
    for (const Member& member : kMonoDiffusionFamily)
      for (const Runs runs : {Runs::PerPixel, Runs::Merged, Runs::WithEmpty}) {
        Case what = GrayCase(member, c.before.size(), c.grays, c.before);
        what.script.runs = runs;
        what.script.black = c.black;
        what.script.white = c.white;
        what.capacity = Word(what.capacity + 4);
        const Outcome outcome = RunCase(what, member.library);
        EXPECT_EQ(Written(outcome, member, 4), c.ink) << c.what << ", " << member.name;
        EXPECT_EQ(outcome.errorRow, c.after) << c.what << ", " << member.name;
      }
}

TEST(MonoDiffusion, PlacesPixelsOfAnOffsetBand) {
  for (const Member& member : kMonoDiffusionFamily) {
    const bool byImageColumn = member.which.fromPlanes && !member.which.toPlanes;
    Case what = GrayCase(member, 2, {127, 127}, Row(7, 0));
    what.bands[0].left = 5;
    const Outcome outcome = RunCase(what, member.library);
    EXPECT_EQ(Written(outcome, member, 2), (byImageColumn ? std::vector{10, 11} : std::vector{5, 6}))
        << member.name;
    const Row doubled = {0, 0, 0, 0, 23, 25, -16}, plain = {25, -16, 0, 0, 0, 0, 0};
    EXPECT_EQ(outcome.errorRow, byImageColumn ? doubled : plain) << member.name;
  }
}

struct GrayLevelCase {
  const char* what;
  std::uint8_t depth;
  std::uint8_t colorFlags;
  std::uint32_t value;
  std::int16_t share;  // what a single pixel leaves in the error row: its gray level seen through 5/16
};
constexpr GrayLevelCase kGrayLevels[] = {
    {"lowest channel weighs 30", 24, 0, 0x0000FF, 23},       // 76: black, error 75
    {"middle channel weighs 59", 24, 0, 0x00FF00, -33},      // 150: white, error -104
    {"highest channel weighs 11", 24, 0, 0xFF0000, 8},       // 28: black, error 27
    {"five bits are shifted up", 16, 0, 21, 15},             // 168: gray 50, error 49
    {"two bits have no channels", 2, 0, 3, 0},               // gray 0, error 1
    {"index of 16 bits", 24, kIndexedColor, 0x010080, -40},  // entry 128
};

TEST(MonoDiffusion, WeighsChannelsAlikeInBothLayouts) {
  for (const GrayLevelCase& c : kGrayLevels)
    for (const Member& member : kMonoDiffusionFamily) {
      Case what = GrayCase(member, 1, {0}, Row(1, 0));
      what.bands = {BandOf(member.which.fromPlanes, c.depth, 1, {c.value})};
      what.source.bitsPerPixel = c.depth;
      what.source.colorFlags = c.colorFlags;
      EXPECT_EQ(RunCase(what, member.library).errorRow, Row{c.share}) << c.what << ", " << member.name;
    }
}

}  // namespace

}  // namespace cvt::test

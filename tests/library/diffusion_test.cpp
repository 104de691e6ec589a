// Monochrome error diffusion, against figures worked out by hand with pencil and the weights 7 3 5 1.
#include <gtest/gtest.h>

#include "tests/library/harness.h"

namespace cvt::test {

namespace {

using Grays = std::vector<int>;
using Row = std::vector<std::int16_t>;

// Palette entry n is gray n: (30 n + 59 n + 11 n) / 100 = n.
IRGB* GrayRamp() {
  static std::vector<IRGB> ramp = [] {
    std::vector<IRGB> made;
    for (int n = 0; n < 256; ++n) {
      const auto level = static_cast<std::uint8_t>(n);
      made.push_back({level, level, level});
    }
    return made;
  }();
  return ramp.data();
}

// Lines of gray levels, 8 bits a pixel, in either layout.
BandPlan GrayBand(bool planes, std::uint16_t left, std::uint16_t top, const std::vector<Grays>& lines) {
  const std::size_t width = lines[0].size();
  BandPlan band{planes, left, top, static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(lines.size()),
                8,      {}};
  band.pixels.resize(PixelBytes(planes, band.width, band.lineCount, 8));
  const std::size_t rowBytes = band.pixels.size() / lines.size() / (planes ? 8 : 1);
  for (std::size_t y = 0; y < lines.size(); ++y)
    for (std::size_t x = 0; x < width; ++x) {
      const auto gray = static_cast<unsigned>(lines[y][x]);
      if (!planes) band.pixels[y * rowBytes + x] = static_cast<std::uint8_t>(gray);
      for (std::size_t k = 0; planes && k < 8; ++k)
        if ((gray >> k & 1) != 0) {
          auto& byte = band.pixels[(k * lines.size() + y) * rowBytes + x / 8];
          byte = static_cast<std::uint8_t>(byte | 0x80 >> x % 8);
        }
    }
  return band;
}

Case GrayCase(const Member& member, std::uint16_t left, const std::vector<Grays>& lines, const Row& row) {
  Case what = PlainCase(member.which.fromPlanes, 8, 1, static_cast<std::uint16_t>(lines[0].size()), 1);
  what.bands = {GrayBand(member.which.fromPlanes, left, 0, lines)};
  what.source.palette = GrayRamp();
  what.errorRow = row;
  return what;
}

std::vector<Entry> PixelsOf(const Outcome& outcome, const Member& member) {
  return outcome.Calls(member.which.toPlanes ? Call::PlanePixel : Call::PackedPixel);
}

std::string InkOf(const Outcome& outcome, const Member& member) {
  std::string ink;
  for (const Entry& pixel : PixelsOf(outcome, member)) ink += std::to_string(pixel.args[4]);
  return ink;
}

struct DiffusionCase {
  const char* what;
  Row before;
  std::vector<Grays> lines;
  std::int32_t black, white;
  const char* ink;
  Row after;
};
const DiffusionCase kCases[] = {
    {"mid gray alternates", {0, 0, 0, 0}, {{127, 127, 127, 127}}, 0, 1, "0101", {25, 1, 7, -22}},
    {"the second line starts from the first's errors",
     {25, 1, 7, -22},
     {{127, 127, 127, 127}},
     0,
     1,
     "1010",
     {-17, 2, -10, 14}},
    {"two lines at once",
     {0, 0, 0, 0},
     {{127, 127, 127, 127}, {127, 127, 127, 127}},
     0,
     1,
     "01011010",
     {-17, 2, -10, 14}},
    {"black loses no dot", {0, 0, 0}, {{0, 0, 0}}, 0, 1, "000", {0, 0, 0}},
    {"white gains no dot", {0, 0, 0}, {{255, 255, 255}}, 0, 1, "111", {0, 0, 0}},
    {"127 is black", {0}, {{127}}, 0, 1, "0", {39}},
    {"128 is white, shares round down", {0}, {{128}}, 0, 1, "1", {-40}},
    {"carried from above", {100}, {{28}}, 0, 1, "1", {-40}},
    {"the lowest error", {-32768}, {{0}}, 0, 1, "0", {-10240}},
    {"the sum wraps", {32767}, {{255}}, 0, 1, "0", {-10161}},
    {"one entry for black and white", {0, 0}, {{255, 255}}, 7, 7, "77", {147, 129}},
    {"entries are told apart by 16 bits", {0}, {{255}}, 0x10007, 0x20007, "7", {79}},
    {"entries fill 16 bits", {0, 0}, {{255, 0}}, -1, 70000, "446465535", {0, 0}},
};

TEST(MonoDiffusion, GivesTheSameInkInEveryLayout) {
  for (const DiffusionCase& c : kCases)
    for (const Member& member : kMonoDiffusionFamily)
      for (const Runs runs : {Runs::PerPixel, Runs::Merged, Runs::WithEmpty}) {
        Case what = GrayCase(member, 0, c.lines, c.before);
        what.script.runs = runs;
        what.script.black = c.black;
        what.script.white = c.white;
        what.capacity = static_cast<std::uint16_t>(what.capacity + 4);
        const Outcome outcome = RunCase(what, member.library);
        EXPECT_EQ(InkOf(outcome, member), c.ink) << c.what << ", " << member.name;
        EXPECT_EQ(outcome.errorRow, c.after) << c.what << ", " << member.name;
      }
}

TEST(MonoDiffusion, CarriesErrorsFromBandToBand) {
  for (const Member& member : kMonoDiffusionFamily) {
    Case what = GrayCase(member, 0, {{127, 127, 127, 127}}, {0, 0, 0, 0});
    what.bands.push_back(GrayBand(member.which.fromPlanes, 0, 1, {{127, 127, 127, 127}}));
    const Outcome outcome = RunCase(what, member.library);
    EXPECT_EQ(InkOf(outcome, member), "01011010") << member.name;
    EXPECT_EQ(outcome.errorRow, (Row{-17, 2, -10, 14})) << member.name;
  }
}

TEST(MonoDiffusion, PlacesPixelsOfAnOffsetBand) {
  for (const Member& member : kMonoDiffusionFamily) {
    const bool byImageColumn = member.which.fromPlanes && !member.which.toPlanes;
    const Outcome outcome = RunCase(GrayCase(member, 5, {{127, 127}}, Row(7, 0)), member.library);
    const std::vector<Entry> pixels = PixelsOf(outcome, member);
    ASSERT_EQ(pixels.size(), 2u) << member.name;
    EXPECT_EQ(pixels[0].args[2], byImageColumn ? 10 : 5) << member.name;
    EXPECT_EQ(pixels[1].args[2], byImageColumn ? 11 : 6) << member.name;
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
    {"32 bits use eight a channel", 32, 0, 0xFF0000FF, 23},  // as 24
    {"index of 16 bits", 24, kIndexedColor, 0x010080, -40},  // entry 128
};

TEST(MonoDiffusion, WeighsChannelsAlikeInBothLayouts) {
  for (const GrayLevelCase& c : kGrayLevels)
    for (const Member& member : kMonoDiffusionFamily) {
      Case what = PlainCase(member.which.fromPlanes, c.depth, 1, 1, 1);
      what.source.colorFlags = c.colorFlags;
      what.source.palette = GrayRamp();
      auto& bytes = what.bands[0].pixels;
      for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(member.which.fromPlanes
                                                 ? ((c.value >> i / 2 & 1) != 0 ? 0x80 : 0)
                                                 : (c.depth < 8 ? c.value << (8 - c.depth) : c.value >> 8 * i));
      const Outcome outcome = RunCase(what, member.library);
      EXPECT_EQ(outcome.errorRow, Row{c.share}) << c.what << ", " << member.name;
    }
}

TEST(MonoDiffusion, DecodesOncePerEntryAlsoEmptyOnes) {
  for (const Member& member : kMonoDiffusionFamily) {
    Case what = GrayCase(member, 0, {{0x15, 0x15, 0x15, 0x15}}, Row(4, 0));
    what.source.colorFlags = 0;
    what.gammaActive = 1;
    what.script.runs = Runs::WithEmpty;
    const Outcome outcome = RunCase(what, member.library);
    EXPECT_EQ(outcome.Calls(Call::Gamma).size(), 2u) << member.name;
    EXPECT_EQ(PixelsOf(outcome, member).size(), 4u) << member.name;
  }
}

TEST(MonoDiffusion, AsksAfterEachLineWhetherToGoOn) {
  for (const Member& member : kMonoDiffusionFamily) {
    Case what = GrayCase(member, 0, {{9, 9, 9}, {9, 9, 9}, {9, 9, 9}}, Row(3, 0));
    what.script.stopAt = 2;
    what.script.stopAnswer = 256;
    const Outcome outcome = RunCase(what, member.library);
    EXPECT_EQ(outcome.statuses, std::vector<std::int16_t>{kCvtStopped}) << member.name;
    EXPECT_EQ(InkOf(outcome, member), "000") << member.name;
    EXPECT_TRUE(outcome.handedOn.empty() && outcome.leftAllocated.empty()) << member.name;
    const std::size_t last = outcome.log.size();
    const std::vector<Call> expected = {member.which.fromPlanes ? Call::ReadPlane : Call::ReadPacked,
                                        Call::Progress,
                                        Call::Free,
                                        Call::Free,
                                        Call::Free,
                                        Call::Dispose};
    std::vector<Call> seen;
    for (std::size_t i = last - expected.size(); i < last; ++i) seen.push_back(outcome.log[i].call);
    EXPECT_EQ(seen, expected) << member.name;
    EXPECT_EQ(outcome.log[last - 3].args[1], static_cast<int>(BlockKind::Band)) << member.name;
  }
}

}  // namespace

}  // namespace cvt::test

// The library against its twins, on random cases in fresh worlds: every call, byte and field the same.
#include <gtest/gtest.h>

#include "tests/library/harness.h"

namespace cvt::test {

namespace {

void Compare(const Case& what, BandRoutine library, BandRoutine twin, int number) {
  const Outcome seen = RunCase(what, library);
  const std::string difference = Difference(seen, RunCase(what, twin));
  ASSERT_TRUE(seen.callersKept) << "case " << number << " of seed " << Seed() << ": " << Describe(what);
  ASSERT_EQ(difference, "") << "case " << number << " of seed " << Seed() << ": " << Describe(what);
}

void CompareFamily(const std::vector<Member>& family) {
  for (const Member& member : family) {
    SCOPED_TRACE(member.name);
    for (int i = 0; i < Rounds(400) && !::testing::Test::HasFatalFailure(); ++i) {
      Dice dice(static_cast<std::uint32_t>(i));
      Compare(RandomCase(dice, member.which), member.library, member.twin, i);
    }
  }
}

// Sizes that do not fit: plane sizes beyond a signed word, packed sizes cut to 16 bits. The bands hold less
// than their headers say.
struct HugeCase {
  std::uint16_t width, lines;
  std::uint8_t sourceDepth, destinationDepth;
};
constexpr HugeCase kHugeCases[] = {{4096, 65, 1, 1},   // planeBytes 33280: negative as a signed word
                                   {1000, 132, 8, 4},  // packed output of half a byte: 66000 bytes, 464 in 16 bits
                                   {300, 250, 8, 8},   // packed output of one byte: 75000 bytes, 9464 in 16 bits
                                   {1000, 100, 1, 16},  // sixteen pieces and more
                                   {4096, 129, 2, 1},   // planeBytes 66048: 512 in 16 bits
                                   {65535, 8, 1, 2},    // the widest rows: 8192 bytes of a plane, 16384 packed
                                   {65535, 3, 16, 255}};
constexpr std::uint32_t kPixelsOneByOne = 300000;  // more take too long where every pixel is a call

void CompareHuge(const std::vector<Member>& family, std::uint32_t pixelLimit) {
  for (const Member& member : family)
    for (const HugeCase& huge : kHugeCases) {
      if (std::uint32_t{huge.width} * huge.lines > pixelLimit) continue;
      Case what = PlainCase(member.which.fromPlanes, huge.sourceDepth, huge.destinationDepth, huge.width, 0);
      what.bands[0].lineCount = huge.lines;
      what.bands[0].pixels.assign(60000, 0x35);
      what.script.runs = Runs::Merged;
      SCOPED_TRACE(member.name);
      Compare(what, member.library, member.twin, static_cast<int>(&huge - kHugeCases));
    }
}

TEST(Differential, NearestColor) { CompareFamily(kNearestFamily); }
TEST(Differential, MonochromeDiffusion) { CompareFamily(kMonoDiffusionFamily); }
TEST(Differential, NearestColorBeyondTheSizesThatFit) { CompareHuge(kNearestFamily, ~0u); }
TEST(Differential, MonochromeDiffusionBeyondTheSizesThatFit) {
  CompareHuge(kMonoDiffusionFamily, kPixelsOneByOne);
}

TEST(Differential, RelabelingOneBit) {
  for (int i = 0; i < Rounds(400) && !HasFatalFailure(); ++i) {
    Dice dice(static_cast<std::uint32_t>(i));
    const bool planes = dice.OneIn(2);
    Case what = RandomCase(dice, {planes, dice.OneIn(2)});
    what.destination.rasterKind = dice.Of<std::uint16_t>({4, 8, 12, 0});
    Compare(what, Cvt1Bit1Byte, RefRelabel, i);
  }
}

// A whole chain: the dispatcher stands as convertProc, and the band ends in the next stage.
TEST(Differential, ChainsOfTheDispatcher) {
  int compared = 0;
  for (int i = 0; i < Rounds(1500) && !HasFatalFailure(); ++i) {
    Dice dice(static_cast<std::uint32_t>(i));
    Case what = RandomCase(dice, {dice.OneIn(2), dice.OneIn(2)});
    what.script.replacesBand = false;
    what.errorRow.resize(what.errorRow.size() + (dice.OneIn(2) ? what.bands[0].left : 0));
    if (what.bands[0].planes && what.destination.rasterKind == kPackedKind)
      what.errorRow.resize(std::size_t{what.bands[0].left} + what.bands[0].width);
    const Outcome twin = RunCase(what, RefCvtr2r, RefCvtr2r);
    if (twin.statuses.back() == kNoTwin) continue;
    ++compared;
    const std::string difference = Difference(RunCase(what, Cvtr2r, Cvtr2r), twin);
    ASSERT_EQ(difference, "") << "case " << i << " of seed " << Seed() << ": " << Describe(what);
  }
  RecordProperty("compared", compared);
  EXPECT_GT(compared, Rounds(500));
}

// Every combination of kinds, the sizes that decide and the settings that decide, one link at a time.
TEST(Differential, DecisionsOfTheDispatcher) {
  int compared = 0;
  for (int i = 0; i < Rounds(8000) && !HasFatalFailure(); ++i) {
    Dice dice(static_cast<std::uint32_t>(i));
    const bool planes = dice.OneIn(2);
    Case what = PlainCase(planes, dice.Of<std::uint8_t>({1, 1, 2, 4, 8}), dice.Of<std::uint8_t>({1, 1, 2, 8}), 9,
                          dice.OneIn(10) ? 0 : 2, 0x4B);
    what.source.rasterKind = dice.Of<std::uint16_t>({planes ? kPlaneKind : kPackedKind, 0, 1, 2, 9, 12, 0x100});
    if ((what.source.rasterKind & 4) != 0 && !planes) continue;  // read as planes, which it is not
    if (what.source.rasterKind == 9 && planes) continue;
    what.destination.rasterKind = dice.Of<std::uint16_t>({0, 1, 4, 8, 4, 8, 12, 0x300});
    what.destination.colorFlags = dice.Of<std::uint8_t>({0x80, 0x80, 0xC0, 0x7F});
    what.source.options = dice.Of<std::uint16_t>({0, 0, 0, 0x40, 0x80, 0xC0, 0x8000, 0x4000, 0x3F});
    what.source.originX = dice.Of<std::int16_t>({0, 0, 0, 0, 10, -10});
    what.source.originY = dice.Of<std::int16_t>({0, 0, 0, 0, 10, -10});
    what.source.imageWidth += dice.Of({0, 0, 0, 0, -10, 10, 2147483000});
    what.source.imageHeight += dice.Of({0, 0, 0, 0, -10, 10});
    what.halftoneMethod = dice.Of<std::uint8_t>({1, 1, 2, 2, 3, 0});
    what.sameColorMap = dice.Of<std::uint8_t>({0, 1, 255});
    what.invertMono = dice.Of<std::uint8_t>({0, 1, 2});
    what.script.stopAt = dice.OneIn(10) ? 1 : 0;
    const Outcome twin = RunCase(what, RefCvtr2r);
    if (twin.statuses.back() == kNoTwin) continue;
    ++compared;
    const std::string difference = Difference(RunCase(what, Cvtr2r), twin);
    ASSERT_EQ(difference, "") << "case " << i << " of seed " << Seed() << ": " << Describe(what);
  }
  RecordProperty("compared", compared);
  EXPECT_GT(compared, Rounds(500));
}

}  // namespace

}  // namespace cvt::test

// The band routines and the dispatcher's decisions against their twins.
#include "tests/library/scale_cases.h"
#include "tests/library/sweep.h"

namespace cvt::test {

namespace {

void Compare(const Case& what, const Member& member) {
  const Outcome seen = RunCase(what, member.library);
  ASSERT_TRUE(seen.callersKept) << Describe(what);
  Compare(what, seen, RunCase(what, member.twin));
}

void CompareFamily(const std::vector<Member>& family) {
  for (const Member& member : family) {
    SCOPED_TRACE(member.name);
    Sweep(400, [&](Dice& dice) { Compare(RandomCase(dice, member.which), member); });
  }
}

// Sizes that do not fit: plane sizes beyond a signed word, packed sizes cut to 16 bits. The bands hold less
// than their headers say.
struct HugeCase {
  int width, lines, sourceDepth, destinationDepth;
};
constexpr HugeCase kHugeCases[] = {{4096, 65, 1, 1},   // planeBytes 33280: negative as a signed word
                                   {1000, 132, 8, 4},  // packed output of half a byte: 66000 bytes, 464 in 16 bits
                                   {300, 250, 8, 8},   // packed output of one byte: 75000 bytes, 9464 in 16 bits
                                   {1000, 100, 1, 16},  // sixteen pieces and more
                                   {4096, 129, 2, 1},   // planeBytes 66048: 512 in 16 bits
                                   {65535, 8, 1, 2},    // the widest rows: 8192 bytes of a plane, 16384 packed
                                   {65535, 3, 16, 255}};
constexpr HugeCase kHugeDirectCases[] = {
    {20000, 2, 1, 24}, {65535, 1, 1, 16}, {20000, 1, 24, 32}, {300, 300, 16, 24}, {5000, 129, 2, 3}};

void CompareHuge(const Member& member, const HugeCase& huge, std::uint8_t colorFlags) {
  Case what = PlainCase(member.which.fromPlanes, huge.sourceDepth, huge.destinationDepth, huge.width, 0);
  what.bands[0].lineCount = Word(huge.lines);
  what.bands[0].pixels.assign(60000, 0x35);
  what.source.colorFlags = colorFlags;
  what.script.runs = Runs::Merged;
  SCOPED_TRACE(member.name);
  Compare(what, member);
}

TEST(Differential, BeyondTheSizesThatFit) {
  for (const HugeCase& huge : kHugeCases) {
    for (const Member& member : kNearestFamily) CompareHuge(member, huge, kIndexedColor);
    if (huge.width * huge.lines > 300000) continue;  // more take too long where every pixel is a call
    for (const Member& member : kMonoDiffusionFamily) CompareHuge(member, huge, kIndexedColor);
  }
  for (const HugeCase& huge : kHugeDirectCases)
    for (const ColorMember& member : kColorMembers)
      if (member.family == Family::Direct) CompareHuge(member, huge, 0);
}

TEST(Differential, NearestColor) { CompareFamily(kNearestFamily); }
TEST(Differential, MonochromeDiffusion) { CompareFamily(kMonoDiffusionFamily); }

TEST(Differential, ColorRoutines) {
  for (const ColorMember& member : kColorMembers) {
    SCOPED_TRACE(member.name);
    Sweep(100, [&](Dice& dice) {
      ColorCase what = RandomColorCase(dice, member.family, member.which);
      StoreAsRead(dice, member, what);
      Compare(what.base, RunColorCase(what, member.library), RunColorCase(what, member.twin));
    });
  }
}

TEST(Differential, DitherIndexAnywhere) {
  Sweep(150, [](Dice& dice) {
    ColorCase what = RandomColorCase(dice, Family::Dither, kBitBit);
    what.cube = what.matrix;  // never read
    World world(what.base.script, 1, {0});
    cvt::test::SetUp(world, what.base, ScriptedConvert);
    PutTables(world, what);
    for (int n = 0; n < 300; ++n) {
      IRGB color = {Byte(dice.Between(0, 255)), dice.Of<std::uint8_t>({0, 127, 128, 255}),
                    Byte(dice.Between(0, 255))};
      const IRGB before = color;
      const auto column = static_cast<std::int16_t>(dice.Between(-32768, 32767));
      const auto line = static_cast<std::int16_t>(dice.Between(-32768, 32767));
      ASSERT_EQ(CvtGetDitherIndex(nullptr, nullptr, &world.context, column, line, &color),
                RefDitherIndex(world.context, column, line, before))
          << "column " << column << ", line " << line;
      ASSERT_TRUE(color.red == before.red && color.green == before.green && color.blue == before.blue);
    }
    EXPECT_TRUE(world.log.empty());
  });
}

TEST(Differential, RelabelingOneBit) {
  Sweep(400, [](Dice& dice) {
    Case what = RandomCase(dice, {dice.OneIn(2), dice.OneIn(2)});
    what.destination.rasterKind = dice.Of<std::uint16_t>({4, 8, 12, 0});
    Compare(what, {"Cvt1Bit1Byte", {}, Cvt1Bit1Byte, RefRelabel});
  });
}

// Every combination of kinds, the sizes that decide and the settings that decide, one link at a time.
TEST(Differential, DecisionsOfTheDispatcher) {
  Sweep(4000, [](Dice& dice) {
    const bool planes = dice.OneIn(2);
    ColorCase color;
    Case& what = color.base;
    what = PlainCase(planes, dice.Of({1, 1, 2, 4, 8}), dice.Of({1, 1, 2, 8}), 9, dice.OneIn(10) ? 0 : 2, 0x4B);
    what.source.rasterKind = dice.Of<std::uint16_t>({planes ? kPlaneKind : kPackedKind, 0, 1, 2, 9, 12, 0x100});
    if ((what.source.rasterKind & 4) != 0 && !planes) return;  // read as planes, which it is not
    if (what.source.rasterKind == 9 && planes) return;
    what.destination.rasterKind = dice.Of<std::uint16_t>({0, 1, 4, 8, 4, 8, 12, 0x300});
    what.destination.colorFlags = dice.Of<std::uint8_t>({0x80, 0x80, 0xC0, 0x7F});
    what.source.options = dice.Of<std::uint16_t>({0, 0, 0, 0x40, 0x80, 0xC0, 0x8000, 0x4000, 0x3F});
    what.source.originX = dice.Of<std::int16_t>({0, 0, 0, 0, 10, -10});
    what.source.originY = dice.Of<std::int16_t>({0, 0, 0, 0, 10, -10});
    what.source.imageWidth += dice.Of({0, 0, 0, 0, -10, 10});
    what.source.imageHeight += dice.Of({0, 0, 0, 0, -10, 10});
    what.source.clipX1 = 5;
    what.source.clipY1 = 1;
    what.halftoneMethod = dice.Of<std::uint8_t>({1, 1, 2, 2, 3, 0});
    what.sameColorMap = dice.Of<std::uint8_t>({0, 1, 255});
    what.invertMono = dice.Of<std::uint8_t>({0, 1, 2});
    what.script.stopAt = dice.OneIn(10) ? 1 : 0;
    what.errorRow.assign(100, 0);
    color.matrix.assign(64, 99);
    color.steps.assign(2048, 77);
    what.linePixels = 700;
    Compare(what, RunFurnished(what, color, Cvtr2r), RunFurnished(what, color, RefWholeCvtr2r));
  });
}

}  // namespace

}  // namespace cvt::test

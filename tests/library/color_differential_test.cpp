// The colour routines against their twins, on random cases in fresh worlds.
#include <gtest/gtest.h>

#include <array>

#include "tests/library/color_cases.h"

namespace cvt::test {

namespace {

void Compare(const ColorCase& what, const Outcome& library, const Outcome& twin, int number) {
  ASSERT_EQ(Difference(library, twin), "")
      << "case " << number << " of seed " << Seed() << ": " << Describe(what.base);
}

TEST(ColorDifferential, EveryRoutineOnItsOwn) {
  for (const ColorMember& member : kColorMembers) {
    SCOPED_TRACE(member.name);
    for (int i = 0; i < Rounds(100) && !HasFatalFailure(); ++i) {
      Dice dice(static_cast<std::uint32_t>(i));
      ColorCase what = RandomColorCase(dice, member.family, member.which);
      StoreAsRead(dice, member, what);
      Compare(what, RunColorCase(what, member.library), RunColorCase(what, member.twin), i);
    }
  }
}

// Rows and bands beyond 16 bits. The bands hold less than their headers say.
TEST(ColorDifferential, DirectColorBeyondTheSizesThatFit) {
  for (const ColorMember& member : kColorMembers)
    for (const auto& [width, lines, from, to] : {std::array{20000, 2, 1, 24},
                                                 {65535, 1, 1, 16},
                                                 {20000, 1, 24, 32},
                                                 {300, 300, 16, 24},
                                                 {5000, 129, 2, 3}}) {
      if (member.family != Family::Direct) continue;
      ColorCase what;
      what.base = PlainCase(member.which.fromPlanes, static_cast<std::uint8_t>(from),
                            static_cast<std::uint8_t>(to), static_cast<std::uint16_t>(width), 0);
      what.base.bands[0].lineCount = static_cast<std::uint16_t>(lines);
      what.base.bands[0].pixels.assign(60000, 0x35);
      what.base.source.colorFlags = 0;
      what.steps.assign(1, 0);
      Compare(what, RunColorCase(what, member.library), RunColorCase(what, member.twin), width);
    }
}

// Clipping, then any of the conversions, with the dispatcher as convertProc.
TEST(ColorDifferential, ChainsOfTheDispatcher) {
  int compared = 0, clipped = 0;
  for (int i = 0; i < Rounds(1200) && !HasFatalFailure(); ++i) {
    Dice dice(static_cast<std::uint32_t>(i));
    const Sibling which = {dice.OneIn(2), dice.OneIn(2)};
    const bool clips = dice.OneIn(2);
    const auto family =
        dice.Of({Family::Clip, Family::Direct, Family::MonoDither, Family::Diffusion, Family::Dither});
    ColorCase what = RandomColorCase(dice, clips ? Family::Clip : family, which);
    if (family == Family::Direct && (what.base.source.colorFlags & kIndexedColor) == 0) {
      what.base.destination.colorFlags = 0;
      what.base.destination.bitsPerPixel = dice.Of<std::uint8_t>({15, 16, 24, 32});
    }
    what.base.errorRow.resize(what.base.errorRow.size() * 3 + 200);
    const Outcome twin = RunColorCase(what, RefColorCvtr2r, RefColorCvtr2r);
    if (twin.statuses.back() == kNoTwin) continue;
    ++compared;
    clipped += clips ? 1 : 0;
    Compare(what, RunColorCase(what, Cvtr2r, Cvtr2r), twin, i);
  }
  EXPECT_GT(compared, Rounds(1200) / 2);
  EXPECT_GT(clipped, Rounds(1200) / 5);
}

TEST(ColorDifferential, DitherIndexAnywhere) {
  for (int i = 0; i < Rounds(150) && !HasFatalFailure(); ++i) {
    Dice dice(static_cast<std::uint32_t>(i));
    ColorCase what = RandomColorCase(dice, Family::Dither, {true, true});
    World world(what.base.script, 1, {0});
    tagCRLA& context = world.context;
    context.ditherMatrix = what.matrix.data();
    context.ditherWidth = what.ditherWidth;
    context.ditherHeight = what.ditherHeight;
    context.ditherSteps = what.steps.data();
    context.cubeTable = what.matrix.data();  // never read
    context.halftoneMethod = what.base.halftoneMethod;
    context.grayPalette = what.base.grayPalette;
    for (int n = 0; n < 300; ++n) {
      IRGB color = {static_cast<std::uint8_t>(dice.Between(0, 255)), dice.Of<std::uint8_t>({0, 127, 128, 255}),
                    static_cast<std::uint8_t>(dice.Between(0, 255))};
      const IRGB before = color;
      const auto column = static_cast<std::int16_t>(dice.Between(-32768, 32767));
      const auto line = static_cast<std::int16_t>(dice.Between(-32768, 32767));
      ASSERT_EQ(CvtGetDitherIndex(nullptr, nullptr, &context, column, line, &color),
                RefDitherIndex(context, column, line, before))
          << "case " << i << " of seed " << Seed() << ", column " << column << ", line " << line;
      ASSERT_TRUE(color.red == before.red && color.green == before.green && color.blue == before.blue);
    }
    EXPECT_TRUE(world.log.empty());
  }
}

}  // namespace

}  // namespace cvt::test

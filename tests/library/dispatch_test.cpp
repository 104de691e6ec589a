// The dispatcher's decisions, told by what a host sees of the routine that ran.
#include <gtest/gtest.h>

#include "tests/library/harness.h"

namespace cvt::test {

namespace {

std::string Seen(const Outcome& outcome) {
  if (outcome.statuses.back() == kCvtStopped) return "stop";
  if (outcome.log.size() == 1) return "nothing";
  if (!outcome.Calls(Call::Execute).empty()) return outcome.Calls(Call::Assign).empty() ? "pass unnoted" : "pass";
  const bool fromPlanes = !outcome.Calls(Call::ReadPlane).empty();
  if (!fromPlanes && outcome.Calls(Call::ReadPacked).empty()) return "relabel";
  const bool toPlanes = outcome.Calls(Call::CreateOp).at(0).args[0] == kPlaneBand;
  return std::string(fromPlanes ? "planes" : "packed") + " to " + (toPlanes ? "planes" : "packed") +
         (outcome.Calls(Call::Closest).empty() ? "" : " diffused");
}

struct DecisionCase {
  const char* seen;
  std::uint16_t sourceKind, destinationKind;
  std::uint8_t sourceDepth, destinationDepth;
  std::uint8_t method = kNearest, sameColorMap = 0, invertMono = 0;
  std::uint16_t options = 0;
  int lines = 2, stopAt = 0;
  std::uint8_t destinationFlags = kIndexedColor;
};
constexpr std::uint16_t kPl = kPlaneKind, kPa = kPackedKind;
constexpr DecisionCase kDecisions[] = {
    {"stop", kPa, kPa, 8, 8, kNearest, 0, 0, 0, 2, 1},
    {"stop", kPa, kPa, 8, 8, kNearest, 0, 0, 0, 0, 1},
    {"nothing", kPa, kPa, 8, 8, kNearest, 0, 0, 0, 0},
    // one bit to one bit: the method is not asked
    {"relabel", kPa, kPa, 1, 1, kDiffusion, 1},
    {"relabel", 1, kPl, 1, 1},
    {"pass", 0, kPl, 1, 1},
    {"pass unnoted", kPa, 0, 1, 1},
    // monochrome destinations: a layout that stays needs colours that differ, or an inversion
    {"planes to packed", kPl, kPa, 4, 1, kNearest, 1},
    {"packed to planes diffused", kPa, kPl, 8, 1, kDiffusion},
    {"planes to planes", kPl, kPl, 4, 1, kNearest, 1, 1},
    {"planes to planes diffused", kPl, kPl, 4, 1, kDiffusion, 0, 1},
    {"pass", kPl, kPl, 4, 1, kNearest, 1, 0},
    // palettes: the inversion is not asked
    {"planes to packed", kPl, kPa, 4, 8, kNearest, 1},
    {"pass", kPl, kPl, 4, 8, kNearest, 1, 1},
    // kinds with both bits and with neither
    {"planes to packed", kPl | kPa, kPa, 4, 8},
    {"packed to planes", kPa, kPl | kPa, 8, 8, kNearest, 1},
    {"pass", 0, kPa, 8, 8},
    {"pass unnoted", 3, 0, 8, 8},
    // options: clipping takes a kind to clip; smoothing takes sizes that differ; the high byte means nothing
    {"pass", 0, kPa, 8, 8, kNearest, 0, 0, kClipOption},
    {"packed to packed", kPa, kPa, 8, 8, kNearest, 0, 0, kSmoothOption},
    {"packed to packed", kPa, kPa, 8, 8, kNearest, 0, 0, 0xFF00},
    // direct colour wants a source of a kind
    {"pass", 0, kPa, 8, 24, kNearest, 0, 0, 0, 2, 0, 0}};

TEST(Dispatch, RunsTheRoutineThatIsDue) {
  for (const DecisionCase& c : kDecisions) {
    Case what = PlainCase((c.sourceKind & kPlaneKind) != 0, c.sourceDepth, c.destinationDepth, 5, c.lines, 0x39);
    what.source.rasterKind = c.sourceKind;
    what.source.options = c.options;
    what.destination.rasterKind = c.destinationKind;
    what.destination.colorFlags = c.destinationFlags;
    what.halftoneMethod = c.method;
    what.sameColorMap = c.sameColorMap;
    what.invertMono = c.invertMono;
    what.script.stopAt = c.stopAt;
    EXPECT_EQ(Seen(RunCase(what, Cvtr2r)), c.seen) << "row " << &c - kDecisions << ": " << Describe(what);
  }
}

// 32767 + 2147483647 is -2147450882 in 32 bits: the images end at the same column, one is reduced to the other.
TEST(Dispatch, ComparesEndsIn32Bits) {
  Case what = PlainCase(false, 8, 8, 1, 1);
  what.source.options = kSmoothOption;
  what.source.originX = 32767;
  what.source.imageWidth = 2147483647;
  what.destination.imageWidth = -2147450882;
  what.scaleDownMethod = kDecimate;
  const Outcome outcome = RunCase(what, Cvtr2r);
  EXPECT_TRUE(outcome.Calls(Call::IsGray).empty());
  EXPECT_EQ(outcome.Pieces(), "0+1");
}

TEST(Dispatch, ReadsTheNextStagesListForEveryComparison) {
  Case what = PlainCase(false, 8, 8, 5, 2);
  what.source.rasterKind = 0;
  what.script.listErrors = {kSioListFull, kSioListNoMemory, kSioListClosed, 7};
  EXPECT_EQ(RunCase(what, Cvtr2r).statuses.back(), 7);
  what.script.listErrors = {0, kSioListFull};
  EXPECT_EQ(RunCase(what, Cvtr2r).statuses.back(), kCvtNextStageFull);
}

}  // namespace

}  // namespace cvt::test

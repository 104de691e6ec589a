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
  std::uint16_t options = 0, lines = 2;
  int stopAt = 0;
  std::uint8_t destinationFlags = kIndexedColor;
};
constexpr std::uint16_t kPl = kPlaneKind, kPa = kPackedKind;
constexpr DecisionCase kDecisions[] = {
    {.seen = "stop",
     .sourceKind = kPa,
     .destinationKind = kPa,
     .sourceDepth = 8,
     .destinationDepth = 8,
     .stopAt = 1},
    {.seen = "stop",
     .sourceKind = kPa,
     .destinationKind = kPa,
     .sourceDepth = 8,
     .destinationDepth = 8,
     .lines = 0,
     .stopAt = 1},
    {.seen = "nothing",
     .sourceKind = kPa,
     .destinationKind = kPa,
     .sourceDepth = 8,
     .destinationDepth = 8,
     .lines = 0},
    // one bit to one bit: the method is not asked
    {"relabel", kPl, kPa, 1, 1, kNearest},
    {"relabel", kPa, kPa, 1, 1, kDiffusion, 1},
    {"relabel", kPa, kPl, 1, 1, kFixedBlock},
    {"relabel", 1, kPl, 1, 1, kNearest},
    {"pass", 0, kPl, 1, 1, kNearest},
    {"pass unnoted", kPa, 0, 1, 1, kNearest},
    // monochrome destinations
    {"planes to packed", kPl, kPa, 4, 1, kNearest, 1},
    {"planes to packed diffused", kPl, kPa, 4, 1, kDiffusion, 1},
    {"packed to planes", kPa, kPl, 8, 1, kNearest},
    {"packed to planes diffused", kPa, kPl, 8, 1, kDiffusion},
    {"planes to planes", kPl, kPl, 4, 1, kNearest, 0, 0},
    {"planes to planes", kPl, kPl, 4, 1, kNearest, 1, 1},
    {"planes to planes diffused", kPl, kPl, 4, 1, kDiffusion, 0, 1},
    {"pass", kPl, kPl, 4, 1, kNearest, 1, 0},
    {"packed to packed", kPa, kPa, 8, 1, kNearest, 1, 1},
    {"packed to packed diffused", kPa, kPa, 8, 1, kDiffusion, 0, 0},
    {"pass", kPa, kPa, 8, 1, kDiffusion, 1, 0},
    // palettes: the inversion is not asked
    {"planes to packed", kPl, kPa, 4, 8, kNearest, 1},
    {"packed to planes", kPa, kPl, 8, 4, kNearest, 1},
    {"planes to planes", kPl, kPl, 4, 8, kNearest, 0},
    {"packed to packed", kPa, kPa, 8, 4, kNearest, 0},
    {"pass", kPl, kPl, 4, 8, kNearest, 1, 1},
    {"pass", kPa, kPa, 8, 4, kNearest, 1, 1},
    // kinds with both bits and with neither
    {"planes to packed", kPl | kPa, kPa, 4, 8, kNearest},
    {"planes to packed", kPl, kPl | kPa, 4, 8, kNearest, 1},
    {"packed to planes", kPa, kPl | kPa, 8, 8, kNearest, 1},
    {"packed to packed", 9, kPa, 8, 8, kNearest},
    {"pass", 0, kPa, 8, 8, kNearest},
    {"pass unnoted", 3, 0, 8, 8, kNearest},
    // options: clipping takes a kind to clip; smoothing takes sizes that differ; the high byte means nothing
    {"pass", 0, kPa, 8, 8, kNearest, 0, 0, kClipOption},
    {"packed to packed", kPa, kPa, 8, 8, kNearest, 0, 0, kSmoothOption},
    {"packed to packed", kPa, kPa, 8, 8, kNearest, 0, 0, 0xFF00},
    // direct colour wants a source of a kind
    {.seen = "pass",
     .sourceKind = 0,
     .destinationKind = kPa,
     .sourceDepth = 8,
     .destinationDepth = 24,
     .destinationFlags = 0}};

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

struct ListCase {
  const char* what;
  std::vector<std::int16_t> answers;
  CvtStatus status;
  std::size_t reads;
};
const ListCase kLists[] = {
    {"no error", {0, 0, 0, 0}, kCvtOk, 4},
    {"closed", {kSioListClosed}, kCvtNextStageFull, 1},
    {"full", {kSioListFull, kSioListFull}, kCvtNextStageFull, 2},
    {"no memory", {kSioListNoMemory, kSioListNoMemory, kSioListNoMemory}, kCvtNextStageFull, 3},
    {"another error", {-5, -5, -5, -5}, -5, 4},
    {"only the fourth read is answered", {9, 9, 9, -6}, -6, 4},
    {"closed too late to be mapped", {0, 0, 0, kSioListClosed}, kSioListClosed, 4},
    {"each read has its own comparison", {kSioListFull, kSioListNoMemory, kSioListClosed, 7}, 7, 4}};

TEST(Dispatch, MapsErrorsOfTheNextStagesList) {
  for (const ListCase& c : kLists) {
    Case what = PlainCase(false, 8, 8, 5, 2);
    what.source.rasterKind = 0;
    what.script.listErrors = c.answers;
    const Outcome outcome = RunCase(what, Cvtr2r);
    EXPECT_EQ(outcome.statuses.back(), c.status) << c.what;
    EXPECT_EQ(outcome.Calls(Call::OpError).size(), c.reads) << c.what;
  }
}

TEST(Dispatch, PassesTheNextStagesStatusOn) {
  Case what = PlainCase(false, 8, 8, 5, 2);
  what.source.rasterKind = 0;
  what.script.executeFailsAt = 1;
  what.script.executeAnswer = 256;
  const Outcome outcome = RunCase(what, Cvtr2r);
  EXPECT_EQ(outcome.statuses.back(), 256);
  EXPECT_TRUE(outcome.Calls(Call::OpError).empty());
}

TEST(Dispatch, NotesTheBandBeforeItStandsInTheSlot) {
  Case what = PlainCase(false, 8, 8, 5, 2);
  what.source.rasterKind = 0;
  const Entry noted = RunCase(what, Cvtr2r).Calls(Call::Assign).at(0);
  EXPECT_EQ(noted.args[2], 2);  // the mode
  EXPECT_EQ(noted.args[3], 0);  // nothing in the slot yet
}

}  // namespace

}  // namespace cvt::test

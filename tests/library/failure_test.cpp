// Whatever fails: the status, and exactly what stays allocated.
#include <gtest/gtest.h>

#include "tests/library/harness.h"

namespace cvt::test {

namespace {

using Names = std::vector<std::string>;

// What is left, without sizes: they differ from layout to layout.
Names KindsLeft(const Outcome& outcome) {
  Names kinds;
  for (const std::string& text : outcome.leftAllocated) kinds.push_back(text.substr(0, text.find(" of ")));
  return kinds;
}

const Names kNothing;
const Names kCopyOnly = {"descriptor copy"};
const Names kCopyAndCursor = {"descriptor copy", "heap block"};
const Names kCopyCursorAndBand = {"descriptor copy", "heap block", "band"};

// Two lines in two pieces: allocations are input cursor, then band and cursor of each piece.
Case TwoPieces(const Member& member) {
  Case what = PlainCase(member.which.fromPlanes, 4, 8, 6, 2, 0x5C);
  what.source.colorFlags = 0;
  return what;
}

struct FailureRow {
  const char* what;
  int failAllocAt, convertFailsAt;
  CvtStatus status;
  std::size_t handedOn;
  const Names* nearestLeaves;  // error diffusion leaves nothing, ever
};
const FailureRow kRows[] = {{"nothing fails", 0, 0, kCvtOk, 2, &kNothing},
                            {"input cursor", 1, 0, kCvtNoMemory, 0, &kCopyOnly},
                            {"first band", 2, 0, kCvtNoMemory, 0, &kCopyAndCursor},
                            {"first output cursor", 3, 0, kCvtNoMemory, 0, &kCopyCursorAndBand},
                            {"second band", 4, 0, kCvtNoMemory, 1, &kCopyAndCursor},
                            {"second output cursor", 5, 0, kCvtNoMemory, 1, &kCopyCursorAndBand},
                            {"no sixth allocation", 6, 0, kCvtOk, 2, &kNothing},
                            {"first piece refused", 0, 1, -77, 1, &kCopyCursorAndBand},
                            {"second piece refused", 0, 2, -77, 2, &kCopyCursorAndBand}};

TEST(Failures, LeaveWhatEachFamilyLeaves) {
  for (const FailureRow& row : kRows)
    for (const auto* family : {&kNearestFamily, &kMonoDiffusionFamily})
      for (const Member& member : *family)
        for (const bool replaces : {false, true}) {
          Case what = TwoPieces(member);
          what.script.failAllocAt = row.failAllocAt;
          what.script.convertFailsAt = row.convertFailsAt;
          what.script.replacesBand = replaces;
          const Outcome outcome = RunCase(what, member.library);
          const std::string where = std::string(row.what) + ", " + member.name;
          EXPECT_EQ(outcome.statuses, std::vector<std::int16_t>{row.status}) << where;
          EXPECT_EQ(outcome.handedOn.size(), row.handedOn) << where;
          EXPECT_EQ(KindsLeft(outcome), family == &kNearestFamily ? *row.nearestLeaves : kNothing) << where;
          EXPECT_TRUE(outcome.callersKept) << where;
        }
}

TEST(Failures, ReleaseTheBandThatStandsInTheSlotAfterwards) {
  for (const auto* family : {&kNearestFamily, &kMonoDiffusionFamily})
    for (const Member& member : *family) {
      Case what = TwoPieces(member);
      what.script.replacesBand = true;
      for (const Entry& entry : RunCase(what, member.library).Calls(Call::Free))
        EXPECT_GT(entry.args[0], 0) << member.name << " released what was not a block";
    }
}

TEST(Failures, StopInEveryLineLeavesNothing) {
  for (const Member& member : kMonoDiffusionFamily)
    for (int line = 1; line <= 2; ++line) {
      Case what = TwoPieces(member);
      what.script.stopAt = line;
      const Outcome outcome = RunCase(what, member.library);
      EXPECT_EQ(outcome.statuses, std::vector<std::int16_t>{kCvtStopped}) << member.name;
      EXPECT_EQ(outcome.handedOn.size(), static_cast<std::size_t>(line - 1)) << member.name;
      EXPECT_TRUE(outcome.leftAllocated.empty()) << member.name;
    }
}

TEST(Failures, ARefusedRelabelLeavesItsCopy) {
  Case what = PlainCase(true, 1, 1, 9, 2, 0x3A);
  what.script.convertFailsAt = 1;
  what.script.convertAnswer = 256;
  const Outcome outcome = RunCase(what, Cvt1Bit1Byte);
  EXPECT_EQ(outcome.statuses, std::vector<std::int16_t>{256});
  EXPECT_EQ(KindsLeft(outcome), kCopyOnly);
  EXPECT_EQ(outcome.inputs.at(0).at(0), kPackedBand);  // label and bits stay changed
  EXPECT_EQ(outcome.inputs.at(0).at(16), 0xC5);
}

}  // namespace

}  // namespace cvt::test

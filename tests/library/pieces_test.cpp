// The pieces that a band is cut into, worked out by hand.
#include <gtest/gtest.h>

#include "tests/library/color_cases.h"

namespace cvt::test {

namespace {

struct SplitCase {
  const char* what;
  const char* routine;
  int sourceDepth, destinationDepth, lines, outputDepth;
  const char* pieces;  // first line and number of lines of each
};
const SplitCase kSplits[] = {
    {"twice the depth", "CvtBitByte", 4, 8, 10, 8, "0+5 5+5"},
    {"a remainder adds a piece", "CvtMonochromeDiffusionBitByte", 3, 8, 10, 8, "0+3 3+3 6+3 9+1"},
    {"fewer lines than pieces", "CvtBitByte", 2, 8, 2, 8, "0+0 0+0 0+0 0+0 0+2"},
    {"inexact ratio", "CvtBitBit", 2, 5, 9, 5, "0+3 3+3 6+3"},
    {"packed depths are classed before the ratio", "CvtByteByte", 3, 5, 8, 8, "0+4 4+4"},
    {"no planes wanted: no piece", "CvtMonochromeDiffusionBitBit", 4, 0, 6, 0, ""},
    {"127 is deep from planes", "CvtBitByte", 16, 127, 6, 16, "0+6"},
    {"128 is negative from planes", "CvtMonochromeDiffusionBitByte", 1, 128, 6, 1, "0+6"},
    {"128 is deep from packed", "CvtMonochromeDiffusionByteByte", 16, 128, 6, 16, "0+6"},
    {"direct colour: a line each", "CvtBitRGBPacked", 3, 24, 3, 32, "0+1 1+1 2+1"},
    {"direct colour: pieces of one size", "CvtByteRGBPacked", 8, 24, 10, 32, "0+2 2+2 4+2 6+2 8+2"},
    {"direct colour: planes", "CvtByteRGBPlane", 8, 16, 3, 16, "0+1 1+1 2+1"},
    {"direct colour: 128 bits are -128", "CvtByteRGBPacked", 8, 113, 1, 0xFF80, "0+1"},
    {"deep direct colour: two halves", "CvtByteRGBPacked", 16, 24, 7, 32, "0+4 4+3"},
    {"deep direct colour: the second may be empty", "CvtByteRGBPacked", 16, 24, 1, 32, "0+1 1+0"},
    {"deepest direct colour: one piece", "CvtByteRGBPacked", 24, 32, 7, 32, "0+7"}};

TEST(Pieces, AreCutAsTheDepthsSay) {
  for (const SplitCase& c : kSplits) {
    SCOPED_TRACE(c.what);
    const Member& member = MemberNamed(c.routine);
    const Outcome outcome =
        RunCase(PlainCase(member.which.fromPlanes, c.sourceDepth, c.destinationDepth, 3, c.lines), member.library);
    EXPECT_EQ(outcome.Pieces(), c.pieces);
    for (const auto& block : outcome.handedOn) EXPECT_EQ(WordAt(block, 12), c.outputDepth);
  }
}

}  // namespace

}  // namespace cvt::test

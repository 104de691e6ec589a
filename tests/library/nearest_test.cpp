// Nearest-colour conversion and relabelling, against figures worked out by hand.
#include <gtest/gtest.h>

#include "tests/library/harness.h"

namespace cvt::test {

namespace {

constexpr int kBitByte = 0, kByteBit = 1, kBitBit = 2, kByteByte = 3;

// ---- Pieces that a band is cut into; both families of palette routines share the rule ----

struct SplitCase {
  const char* what;
  int member;
  std::uint8_t sourceDepth, destinationDepth;
  std::uint16_t lines;
  std::uint16_t outputDepth;
  const char* pieces;  // first line and number of lines of each
};
constexpr SplitCase kSplits[] = {
    {"twice the depth", kBitByte, 4, 8, 10, 8, "100+5 105+5"},
    {"a remainder adds a piece", kBitByte, 3, 8, 10, 8, "100+3 103+3 106+3 109+1"},
    {"fewer lines than pieces", kBitByte, 2, 8, 2, 8, "100+0 100+0 100+0 100+0 100+2"},
    {"smaller output is one piece", kByteByte, 24, 8, 10, 8, "100+10"},
    {"the same depth is one piece", kByteBit, 8, 8, 10, 8, "100+10"},
    {"inexact ratio", kBitBit, 2, 5, 9, 5, "100+3 103+3 106+3"},
    {"packed depths are classed before the ratio", kByteByte, 3, 5, 8, 8, "100+4 104+4"},
    {"a source of no depth counts as one bit", kByteByte, 0, 2, 4, 2, "100+2 102+2"},
    {"no lines", kByteByte, 8, 8, 0, 8, "100+0"},
    {"no planes wanted: no piece", kBitBit, 4, 0, 6, 0, ""},
    {"no planes wanted, packed source", kByteBit, 8, 0, 6, 0, ""},
    {"packed output of depth 0", kBitByte, 4, 0, 6, 1, "100+6"},
    {"127 is deep from planes", kBitByte, 16, 127, 6, 16, "100+6"},
    {"128 is negative from planes", kBitByte, 1, 128, 6, 1, "100+6"},
    {"200 is negative from planes", kBitByte, 1, 200, 6, 1, "100+6"},
    {"128 is deep from packed", kByteByte, 16, 128, 6, 16, "100+6"}};

std::string PiecesOf(const Outcome& outcome) {
  std::string text;
  for (const auto& block : outcome.handedOn)
    text += (text.empty() ? "" : " ") + std::to_string(WordAt(block, 6)) + "+" + std::to_string(WordAt(block, 10));
  return text;
}

TEST(Pieces, AreCutAsTheDepthsSay) {
  for (const SplitCase& c : kSplits)
    for (const auto* family : {&kNearestFamily, &kMonoDiffusionFamily}) {
      const Member& member = (*family)[static_cast<std::size_t>(c.member)];
      Case what = PlainCase(member.which.fromPlanes, c.sourceDepth, c.destinationDepth, 3, c.lines);
      what.bands[0].top = 100;
      const Outcome outcome = RunCase(what, member.library);
      EXPECT_EQ(PiecesOf(outcome), c.pieces) << c.what << ", " << member.name;
      EXPECT_EQ(outcome.statuses, std::vector<std::int16_t>{kCvtOk}) << c.what << ", " << member.name;
      for (const auto& block : outcome.handedOn) EXPECT_EQ(WordAt(block, 12), c.outputDepth) << c.what;
      EXPECT_TRUE(outcome.leftAllocated.empty()) << c.what << ", " << member.name;
    }
}

// ---- Channels of a direct-colour value ----

Case OnePixel(bool planes, std::uint8_t depth, std::uint32_t value) {
  Case what = PlainCase(planes, depth, 8, 1, 1);
  what.source.colorFlags = 0;
  auto& bytes = what.bands[0].pixels;
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] =
        static_cast<std::uint8_t>(planes ? ((value >> i / 2 & 1) != 0 && i % 2 == 0 ? 0x80 : 0) : value >> 8 * i);
  const int stored = depth == 3 ? 4 : depth;  // bits that a packed pixel takes
  if (!planes && stored <= 8) bytes[0] = static_cast<std::uint8_t>(value << (8 - stored));
  return what;
}

struct ChannelCase {
  const char* what;
  std::uint8_t depth;
  std::uint32_t value;
  int member;
  const char* color;
};
constexpr ChannelCase kChannels[] = {
    {"planes: red lowest", 3, 5, kBitByte, "128 0 128"},
    {"planes: red lowest, blue clear", 3, 1, kBitByte, "128 0 0"},
    {"packed: blue lowest", 3, 1, kByteBit, "0 0 128"},
    {"packed, eight bits a channel", 24, 0xFF8040, kByteByte, "255 128 64"},
    {"planes, eight bits a channel", 24, 0xFF8040, kBitBit, "64 128 255"},
    {"five bits are shifted, not repeated", 16, 21 * 1024 + 1 * 32 + 31, kByteByte, "168 8 248"},
    {"the spare bit is not red", 16, 0x8000 + 21 * 1024, kByteByte, "168 0 0"},
    {"five planes a channel", 15, 21 * 1024 + 1 * 32 + 31, kBitBit, "248 8 168"},
    {"eight bits: two a channel", 8, 0x1B, kByteByte, "64 128 192"},
    {"two bits have no channels", 2, 3, kByteByte, "0 0 0"},
    {"one plane has no channels", 1, 1, kBitByte, "0 0 0"},
    {"more than 24 bits: eight a channel", 32, 0xAA112233, kByteByte, "17 34 51"}};

std::string ColorOf(const Entry& entry, std::size_t first) {
  return std::to_string(entry.args[first]) + " " + std::to_string(entry.args[first + 1]) + " " +
         std::to_string(entry.args[first + 2]);
}

TEST(Nearest, UnpacksChannels) {
  for (const ChannelCase& c : kChannels) {
    const Member& member = kNearestFamily[static_cast<std::size_t>(c.member)];
    const Outcome outcome = RunCase(OnePixel(member.which.fromPlanes, c.depth, c.value), member.library);
    const std::vector<Entry> searches = outcome.Calls(Call::Cube);
    ASSERT_EQ(searches.size(), 1u) << c.what;
    EXPECT_EQ(ColorOf(searches[0], 1), c.color) << c.what;
    EXPECT_TRUE(outcome.Calls(Call::Gamma).empty()) << c.what;
  }
}

TEST(Nearest, SearchesWhatGammaLeaves) {
  Case what = OnePixel(true, 3, 5);
  what.gammaActive = 0x100;
  const Outcome outcome = RunCase(what, kNearestFamily[kBitByte].library);
  ASSERT_EQ(outcome.Calls(Call::Gamma).size(), 1u);
  EXPECT_EQ(ColorOf(outcome.Calls(Call::Gamma)[0], 1), "128 0 128");
  EXPECT_EQ(ColorOf(outcome.Calls(Call::Cube).at(0), 1), "127 85 129");
}

TEST(Nearest, SearchesGrayRampsByRedAlone) {
  for (const auto& [grayPalette, gray] : {std::pair{1, true}, {0, false}, {2, false}}) {
    Case what = OnePixel(true, 3, 5);
    what.grayPalette = static_cast<std::uint8_t>(grayPalette);
    const Outcome outcome = RunCase(what, kNearestFamily[kBitByte].library);
    EXPECT_EQ(outcome.Calls(Call::Cube).empty(), gray) << grayPalette;
    const int cell = gray ? 128 : 16 * 1024 + 16;
    EXPECT_EQ(outcome.handedOn.back().at(16), SharedTable()[cell]) << grayPalette;
  }
}

TEST(Nearest, KeepsSixteenBitsOfTheSearch) {
  Case what = OnePixel(false, 24, 0x000008);
  what.destination.bitsPerPixel = 16;
  what.script.cubeHighBits = 0xC300;
  const Outcome outcome = RunCase(what, kNearestFamily[kByteByte].library);
  EXPECT_EQ(WordAt(outcome.handedOn.at(0), 16), 0xC300 + SharedTable()[1]);
}

TEST(Nearest, SnapsIndicesOncePerLineAndNothingElse) {
  for (const Member& member : kNearestFamily) {
    Case what = PlainCase(member.which.fromPlanes, 8, 8, 5, 3, 0x21);
    what.gammaActive = 1;
    const Outcome outcome = RunCase(what, member.library);
    EXPECT_EQ(outcome.Calls(Call::Snap).size(), 3u) << member.name;
    EXPECT_TRUE(outcome.Calls(Call::Gamma).empty() && outcome.Calls(Call::Cube).empty()) << member.name;
  }
}

// ---- One bit to one bit: a label, and perhaps an inversion ----

struct RelabelCase {
  const char* what;
  std::uint16_t destinationKind;
  std::uint8_t sameColorMap, invertMono;
  std::uint8_t code;
  const char* bytes;  // of 0x0F F0 33 in the pixels, the last of them beyond the last whole word
};
constexpr RelabelCase kRelabels[] = {{"agreeing maps, no inversion", kPackedKind, 1, 0, 21, "0f f0 33"},
                                     {"agreeing maps, inversion", kPlaneKind, 1, 1, 20, "f0 0f 33"},
                                     {"other maps, no inversion", kPackedKind, 0, 0, 21, "f0 0f 33"},
                                     {"other maps, inversion", kPlaneKind, 0, 1, 20, "0f f0 33"},
                                     {"flags without a common bit", kPackedKind, 1, 2, 21, "0f f0 33"},
                                     {"flags with one", kPackedKind, 3, 2, 21, "f0 0f 33"},
                                     {"both kinds make planes", kPlaneKind | kPackedKind, 1, 0, 20, "0f f0 33"},
                                     {"neither kind makes packed", 0, 1, 0, 21, "0f f0 33"}};

TEST(Relabel, ChangesLabelAndBitsInPlace) {
  for (const RelabelCase& c : kRelabels) {
    Case what = PlainCase(true, 1, 1, 9, 1);
    what.bands[0].pixels = {0x0F, 0xF0, 0x33};
    what.destination.rasterKind = c.destinationKind;
    what.sameColorMap = c.sameColorMap;
    what.invertMono = c.invertMono;
    what.script.replacesBand = false;
    const Outcome outcome = RunCase(what, Cvt1Bit1Byte);
    const auto& band = outcome.inputs.at(0);
    char bytes[16];
    std::snprintf(bytes, sizeof bytes, "%02x %02x %02x", band.at(16), band.at(17), band.at(18));
    EXPECT_STREQ(bytes, c.bytes) << c.what;
    EXPECT_EQ(WordAt(band, 0), c.code) << c.what;
    EXPECT_EQ(WordAt(band, 2), 15) << c.what;
    EXPECT_EQ(outcome.handedOn, outcome.inputs) << c.what;
    EXPECT_EQ(outcome.log.size(), 3u) << c.what;  // copy, convertProc, disposal
    EXPECT_TRUE(outcome.leftAllocated.empty()) << c.what;
  }
}

}  // namespace

}  // namespace cvt::test

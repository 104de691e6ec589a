// Nearest-colour conversion and relabelling, against figures worked out by hand.
#include <gtest/gtest.h>

#include "tests/library/color_cases.h"

namespace cvt::test {

namespace {

Case OnePixel(const Member& member, int depth, std::uint32_t value) {
  Case what = PlainCase(member.which.fromPlanes, depth, 8, 1, 1);
  what.bands = {BandOf(member.which.fromPlanes, depth, 1, {value})};
  what.source.colorFlags = 0;
  return what;
}

struct ChannelCase {
  const char* what;
  int depth;
  std::uint32_t value;
  const char* routine;
  std::vector<int> color;
};
const ChannelCase kChannels[] = {
    {"planes: red lowest", 3, 5, "CvtBitByte", {128, 0, 128}},
    {"packed: blue lowest", 3, 1, "CvtByteBit", {0, 0, 128}},
    {"packed, eight bits a channel", 24, 0xFF8040, "CvtByteByte", {255, 128, 64}},
    {"planes, eight bits a channel", 24, 0xFF8040, "CvtBitBit", {64, 128, 255}},
    {"five bits are shifted, the spare one is cut", 16, 0xD43F, "CvtByteByte", {168, 8, 248}},
    {"two bits have no channels", 2, 3, "CvtByteByte", {0, 0, 0}},
    {"more than 24 bits: eight a channel", 32, 0xAA112233, "CvtByteByte", {17, 34, 51}}};

TEST(Nearest, UnpacksChannels) {
  for (const ChannelCase& c : kChannels) {
    const Member& member = MemberNamed(c.routine);
    const Outcome outcome = RunCase(OnePixel(member, c.depth, c.value), member.library);
    for (std::size_t k = 0; k < 3; ++k)
      EXPECT_EQ(outcome.Args(Call::Cube, 1 + k), std::vector{c.color[k]}) << c.what;
  }
}

// Of what gamma leaves of 128, 0, 128, gray ramps look at red alone.
TEST(Nearest, SearchesWhatGammaLeaves) {
  for (const auto& [grayPalette, cell] :
       {std::pair{1, 127}, {0, 15 * 1024 + 10 * 32 + 16}, {2, 15 * 1024 + 10 * 32 + 16}}) {
    const Member& member = MemberNamed("CvtBitByte");
    Case what = OnePixel(member, 3, 5);
    what.gammaActive = 0x100;
    what.grayPalette = Byte(grayPalette);
    EXPECT_EQ(RunCase(what, member.library).handedOn.back().at(16), SharedTable()[cell]) << grayPalette;
  }
}

struct RelabelCase {
  const char* what;
  std::uint16_t destinationKind;
  std::uint8_t sameColorMap, invertMono;
  int code;
  std::vector<std::uint8_t> pixels;  // of 0x0F F0 33 in the block, the last of them beyond the last whole word
};
const RelabelCase kRelabels[] = {
    {"agreeing maps, no inversion", kPackedKind, 1, 0, 21, {0x0F, 0xF0, 0x33}},
    {"agreeing maps, inversion", kPlaneKind, 1, 1, 20, {0xF0, 0x0F, 0x33}},
    {"other maps, no inversion", kPackedKind, 0, 0, 21, {0xF0, 0x0F, 0x33}},
    {"flags without a common bit", kPackedKind, 1, 2, 21, {0x0F, 0xF0, 0x33}},
    {"both kinds make planes", kPlaneKind | kPackedKind, 1, 0, 20, {0x0F, 0xF0, 0x33}},
    {"neither kind makes packed", 0, 1, 0, 21, {0x0F, 0xF0, 0x33}}};

TEST(Relabel, ChangesLabelAndBitsInPlace) {
  for (const RelabelCase& c : kRelabels) {
    SCOPED_TRACE(c.what);
    Case what = PlainCase(true, 1, 1, 9, 1);
    what.bands[0].pixels = {0x0F, 0xF0, 0x33};
    what.destination.rasterKind = c.destinationKind;
    what.sameColorMap = c.sameColorMap;
    what.invertMono = c.invertMono;
    const Outcome outcome = RunCase(what, Cvt1Bit1Byte);
    const auto& band = outcome.inputs.at(0);
    EXPECT_EQ(std::vector(band.begin() + 16, band.end()), c.pixels);
    EXPECT_EQ(WordAt(band, 0), c.code);
    EXPECT_EQ(outcome.handedOn, outcome.inputs);
  }
}

}  // namespace

}  // namespace cvt::test

// What readers make of well-formed files.
#include <gtest/gtest.h>

#include "support.h"

namespace cvt::imageio::test {
namespace {

constexpr IRGB kRed{255, 0, 0};
constexpr IRGB kWhite{255, 255, 255};
constexpr int kGray = 0, kRgb = 2, kIndexed = 3, kGrayAlpha = 4, kRgba = 6;

constexpr const char* kRamp1 = "000000ffffff";
constexpr const char* kRamp2 = "000000555555aaaaaaffffff";
constexpr const char* kDirect = "";
constexpr const char* kRamp3 = "0000002424244949496d6d6d929292b6b6b6dbdbdbffffff";
constexpr const char* kRamp4 =
    "000000111111222222333333444444555555666666777777888888999999aaaaaabbbbbbccccccddddddeeeeeeffffff";
constexpr const char* kRamp8 = "256 grays";

struct Expected {
  int depth;
  std::string palette;
  std::string rows;  // with blanks between them
};

void ExpectImage(const std::string& path, IRGB background, const Expected& expected) {
  ReadOptions options;
  options.background = background;
  const Loaded loaded = Load(path, options);
  ASSERT_EQ(loaded.status.message, "");
  EXPECT_EQ(loaded.image.depth, expected.depth);
  std::string all;
  for (int i = 0; i < 256; ++i) all.append(3, static_cast<char>(i));
  EXPECT_EQ(Hex(loaded.image.palette), expected.palette == kRamp8 ? Hex(all) : expected.palette);
  std::string rows;
  for (const std::string& row : loaded.rows) rows += (rows.empty() ? "" : " ") + row;
  EXPECT_EQ(rows, expected.rows);
}

struct PngCase {
  const char* what;
  int colorType, bits, width;
  std::string chunks;
  const char* row;  // as stored
  IRGB background;
  int depth;  // from here on: as delivered
  const char* palette;
  const char* pixels;
};

std::string Key(std::string_view hex) { return Chunk("tRNS", Bytes(hex)); }

const PngCase kPngCases[] = {
    {"1-bit gray", kGray, 1, 9, "", "a580", kWhite, 1, kRamp1, "a580"},
    {"2-bit gray", kGray, 2, 5, "", "1bc0", kWhite, 2, kRamp2, "1bc0"},
    {"8-bit gray", kGray, 8, 3, "", "0080ff", kWhite, 8, kRamp8, "0080ff"},
    {"16-bit gray is rounded", kGray, 16, 5, "", "0000 0080 0081 7fff ffff", kWhite, 8, kRamp8, "0000017fff"},
    {"the transparent gray is a palette entry", kGray, 2, 4, Key("0001"), "1b", kRed, 2,
     "000000ff0000aaaaaaffffff", "1b"},
    {"a transparent gray out of range meets no pixel", kGray, 2, 4, Key("0101"), "1b", kRed, 2, kRamp2, "1b"},
    {"16 bits decide what is transparent", kGray, 16, 2, Key("0001"), "0001 0002", kWhite, 8, kRamp8, "ff00"},
    {"16-bit gray over red is in colour", kGray, 16, 2, Key("0001"), "0001 ffff", kRed, 24, kDirect,
     "ff0000ffffff"},
    {"a palette is flattened, pixels stay", kIndexed, 2, 3,
     Chunk("PLTE", Bytes("010203 0a141e 070809")) + Chunk("tRNS", Bytes("0080")), "18", kWhite, 2,
     "ffffff84898e070809", "18"},
    {"a palette of one colour", kIndexed, 8, 2, Chunk("PLTE", Bytes("010203")), "0000", kWhite, 8, "010203",
     "0000"},
    {"colours as they are", kRgb, 8, 2, "", "010203 fdfeff", kWhite, 24, kDirect, "010203fdfeff"},
    {"one transparent colour", kRgb, 8, 2, Key("0001 0002 0003"), "010203 010204", kRed, 24, kDirect,
     "ff0000010204"},
    {"16-bit colours are rounded", kRgb, 16, 1, "", "0080 0081 ffff", kWhite, 24, kDirect, "0001ff"},
    {"gray with alpha", kGrayAlpha, 8, 3, "", "00ff 0000 6433", kWhite, 8, kRamp8, "00ffe0"},
    {"gray with alpha over red", kGrayAlpha, 8, 2, "", "00ff 0000", kRed, 24, kDirect, "000000ff0000"},
    {"colour with alpha", kRgba, 8, 2, "", "0a141e80 010203ff", kWhite, 24, kDirect, "84898e010203"},
    {"16-bit colour with alpha", kRgba, 16, 1, "", "ffff 0000 0000 8000", kWhite, 24, kDirect, "ff7f7f"},
    {"chunks that say nothing about pixels", kGray, 8, 1, Chunk("tEXt", "Title") + Chunk("gAMA", "zzzz"), "07",
     kWhite, 8, kRamp8, "07"}};

TEST(ReadPng, DeliversTrueDepthsOpaqueAndRounded) {
  const Folder folder;
  for (const PngCase& c : kPngCases) {
    SCOPED_TRACE(c.what);
    const std::string row = Bytes("00" + std::string(c.row));
    ExpectImage(folder.Write("a", Png({c.width, 2, c.bits, c.colorType, c.chunks, row + row})), c.background,
                {c.depth, c.palette, c.pixels + (" " + std::string(c.pixels))});
  }
}

// Of a 2 x 2 image the passes hold: first (0, 0), sixth (1, 0), seventh the lower row.
TEST(ReadPng, PutsInterlacedPixelsInTheirPlaces) {
  const Folder folder;
  const std::string gray = Png({2, 2, 8, kGray, "", Bytes("000a 000b 000c0d"), 1});
  const std::string alpha = Png({2, 2, 8, kGrayAlpha, "", Bytes("000aff 000bff 000c000dff"), 1});
  ExpectImage(folder.Write("a", gray), kWhite, {8, kRamp8, "0a0b 0c0d"});
  ExpectImage(folder.Write("a", alpha), kWhite, {8, kRamp8, "0a0b ff0d"});
}

struct PnmCase {
  const char* what;
  std::string file;
  int depth;
  const char* palette;
  const char* rows;
  IRGB background = kWhite;
};

const PnmCase kPnmCases[] = {
    {"plain bits, ink is black, blanks are free", "P1\n# a note\n3 2\n1 0 1\n010\n", 1, kRamp1, "40 a0"},
    {"bits, ninth pixel in the second byte", "P4 9 2\n" + Bytes("a580 5a00"), 1, kRamp1, "5a00 a580"},
    {"plain gray of one bit", "P2 2 1 1 0 1", 1, kRamp1, "40"},
    {"plain gray of four bits", "P2\n3 1\n15\n0 7\n15", 4, kRamp4, "07f0"},
    {"gray of three bits", "P5 3 1 7\n" + Bytes("000507"), 3, kRamp3, "0570"},
    {"gray of eight bits", "P5 3 1 255\n" + Bytes("0a0b0c"), 8, kRamp8, "0a0b0c"},
    {"gray to 100 is scaled", "P2 3 1 100 0 50 100", 8, kRamp8, "0080ff"},
    {"gray of 16 bits is rounded", "P5 3 1 65535\n" + Bytes("0080 0081 ffff"), 8, kRamp8, "0001ff"},
    {"gray to 1000 is rounded", "P5 2 1 1000\n" + Bytes("01f4 03e8"), 8, kRamp8, "80ff"},
    {"plain colour to 1", "P3 1 2 1  1 0 1  0 1 0", 24, kDirect, "ff00ff 00ff00"},
    {"colour", "P6 2 1 255\n" + Bytes("010203 040506"), 24, kDirect, "010203040506"},
    {"colour to 31", "P6 1 1 31\n" + Bytes("00101f"), 24, kDirect, "0084ff"},
    {"colour of 16 bits", "P6 1 1 65535\n" + Bytes("0080 0081 ffff"), 24, kDirect, "0001ff"},
    {"a note before the data", "P5 1 1 # one\n255# two\nA", 8, kRamp8, "41"},
    {"data that looks like a note", "P5 2 1 255\n# ", 8, kRamp8, "2320"},
    {"notes between plain samples", "P2 2 1 255 1 # 9 9\n2", 8, kRamp8, "0102"},
    {"PAM of bits, 1 is white", Pam(3, 1, 1, "BLACKANDWHITE", "010001"), 1, kRamp1, "a0"},
    {"PAM of two bits", Pam(3, 1, 3, "GRAYSCALE", "000103"), 2, kRamp2, "1c"},
    {"PAM to 1000 is rounded", Pam(2, 1, 1000, "GRAYSCALE", "01f4 03e8"), 8, kRamp8, "80ff"},
    {"PAM of colours", Pam(2, 3, 255, "RGB", "010203 040506"), 24, kDirect, "010203040506"},
    {"PAM of colours to 31", Pam(1, 3, 31, "RGB", "00101f"), 24, kDirect, "0084ff"},
    {"PAM of three samples that nobody knows", Pam(1, 3, 255, "CIELAB", "010203"), 24, kDirect, "010203"},
    {"PAM without a type, in another order",
     "P7\n# a note\nMAXVAL 255\r\n\nDEPTH 1\n  HEIGHT\t2\nWIDTH 1 \nENDHDR\n" + Bytes("230a"), 8, kRamp8, "23 0a"},
    {"PAM with a type of two lines",
     "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 1\nMAXVAL 3\nTUPLTYPE RGB\nTUPLTYPE too\nENDHDR\n\2", 2, kRamp2, "80"},
    {"gray with alpha", Pam(3, 2, 255, "GRAYSCALE_ALPHA", "00ff 0000 6433"), 8, kRamp8, "00ffe0"},
    {"two thirds of white, a third of it opaque", Pam(1, 2, 15, "GRAYSCALE_ALPHA", "0a05"), 8, kRamp8, "e3"},
    {"bits over red", Pam(3, 2, 1, "BLACKANDWHITE_ALPHA", "0001 0100 0101"), 24, kDirect, "000000ff0000ffffff",
     kRed},
    {"colour with alpha", Pam(2, 4, 255, "RGB_ALPHA", "0a141e80 010203ff"), 24, kDirect, "84898e010203"},
    {"colour with alpha to 1000", Pam(1, 4, 1000, "RGB_ALPHA", "01f4 0000 03e8 00fa"), 24, kDirect, "dfbfff"},
    {"colour with alpha of 16 bits", Pam(1, 4, 65535, "", "ffff 0000 0000 8000"), 24, kDirect, "ff7f7f"}};

TEST(ReadPnm, DeliversSmallRampsAsTheyAreAndScalesTheRest) {
  const Folder folder;
  for (const PnmCase& c : kPnmCases) {
    SCOPED_TRACE(c.what);
    ExpectImage(folder.Write("a", c.file), c.background, {c.depth, c.palette, c.rows});
  }
}

}  // namespace
}  // namespace cvt::imageio::test

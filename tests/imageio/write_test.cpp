// What writers make of images.
#include <gtest/gtest.h>

#include "support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::Code;
using pipeline::GrayRamp;
using pipeline::Image;

const std::vector<IRGB> kDirect;
const std::vector<IRGB> kInkFirst = Colors("000000 ffffff");
const std::vector<IRGB> kPaperFirst = Colors("ffffff 000000");
const std::vector<IRGB> kFlag = Colors("ff0000 ffffff 0000ff");
const std::vector<IRGB> kThreeGrays = Colors("808080 0a0a0a ffffff");
const std::vector<IRGB> kOneColor = Colors("123456");
const std::vector<IRGB> kRamp[] = {{}, GrayRamp(1), GrayRamp(2), GrayRamp(3), GrayRamp(4),
                                   {}, {},          {},          GrayRamp(8)};

struct PnmCase {
  const char* what;
  std::int32_t width, depth;
  const std::vector<IRGB>* palette;
  const char* row;
  Format format;
  std::string header;
  const char* data;
};

const PnmCase kPnmCases[] = {
    {"black is ink; bits past the width are 0", 9, 1, &kInkFirst, "a5ff", Format::Pbm, "P4\n9 1\n", "5a00"},
    {"white first", 9, 1, &kPaperFirst, "a5ff", Format::Pbm, "P4\n9 1\n", "a580"},
    {"a ramp keeps its values", 3, 2, &kRamp[2], "18", Format::Pgm, "P5\n3 1\n3\n", "000102"},
    {"so does a ramp of three bits", 3, 3, &kRamp[3], "0570", Format::Pgm, "P5\n3 1\n7\n", "000507"},
    {"other grays become levels", 3, 2, &kThreeGrays, "18", Format::Pgm, "P5\n3 1\n255\n", "800aff"},
    {"white first is no ramp", 2, 1, &kPaperFirst, "40", Format::Pgm, "P5\n2 1\n255\n", "ff00"},
    {"colours", 3, 2, &kFlag, "18", Format::Ppm, "P6\n3 1\n255\n", "ff0000ffffff0000ff"},
    {"direct colours", 2, 24, &kDirect, "010203040506", Format::Ppm, "P6\n2 1\n255\n", "010203040506"},
    {"smallest of bits", 8, 1, &kPaperFirst, "a5", Format::Pnm, "P4\n8 1\n", "a5"},
    {"smallest of grays", 1, 8, &kRamp[8], "41", Format::Pnm, "P5\n1 1\n255\n", "41"},
    {"smallest of colours", 1, 2, &kFlag, "80", Format::Pnm, "P6\n1 1\n255\n", "0000ff"},
    {"PAM of bits, white is 1", 3, 1, &kInkFirst, "bf", Format::Pam, Pam(3, 1, 1, "BLACKANDWHITE", ""), "010001"},
    {"PAM of bits, white first", 3, 1, &kPaperFirst, "bf", Format::Pam, Pam(3, 1, 1, "BLACKANDWHITE", ""),
     "000100"},
    {"PAM of a ramp", 3, 2, &kRamp[2], "18", Format::Pam, Pam(3, 1, 3, "GRAYSCALE", ""), "000102"},
    {"PAM of other grays", 3, 2, &kThreeGrays, "18", Format::Pam, Pam(3, 1, 255, "GRAYSCALE", ""), "800aff"},
    {"PAM of colours", 3, 2, &kFlag, "18", Format::Pam, Pam(3, 3, 255, "RGB", ""), "ff0000ffffff0000ff"}};

TEST(WritePnm, WritesExactlyTheseBytes) {
  const Folder folder;
  for (const PnmCase& c : kPnmCases) {
    const WriteOptions options{c.format, Existing::Replace};
    const Image image{c.width, 1, c.depth, *c.palette};
    ASSERT_EQ(Save(folder.Path("a"), options, image, {c.row}).message, "") << c.what;
    EXPECT_EQ(Hex(folder.Read("a")), Hex(c.header) + c.data) << c.what;
  }
}

TEST(WritePnm, RefusesColoursThatTheFormatLacks) {
  const Folder folder;
  const std::vector<IRGB> red = Colors("000000 ff0000");
  for (const Image& image : {Image{1, 1, 1, red}, Image{1, 1, 2, GrayRamp(2)}, Image{1, 1, 24, {}},
                             Image{1, 1, 1, Colors("000000")}, Image{1, 1, 1, Colors("000000 000000")}}) {
    EXPECT_EQ(Save(folder.Path("a.pbm"), {}, image, {"000000"}).code, Code::Usage);
  }
  for (const Image& image : {Image{1, 1, 1, red}, Image{1, 1, 24, {}}}) {
    EXPECT_EQ(Save(folder.Path("a.pgm"), {}, image, {"000000"}).code, Code::Usage);
  }
  EXPECT_TRUE(folder.Names().empty());
}

struct PngCase {
  const char* what;
  std::int32_t width, depth;
  const std::vector<IRGB>* palette;
  const char* row;
  const char* kind;  // bit depth and colour type: 00 gray, 02 colour, 03 indexed
};

const PngCase kPngCases[] = {{"1-bit gray", 9, 1, &kRamp[1], "a580", "0100"},
                             {"2-bit gray", 3, 2, &kRamp[2], "18", "0200"},
                             {"4-bit gray", 3, 4, &kRamp[4], "07f0", "0400"},
                             {"8-bit gray", 3, 8, &kRamp[8], "0080ff", "0800"},
                             {"white first", 9, 1, &kPaperFirst, "a580", "0103"},
                             {"a ramp of three bits is no ramp of four", 3, 3, &kRamp[3], "0570", "0403"},
                             {"a 4-bit ramp in 8 bits", 2, 8, &kRamp[4], "0f01", "0803"},
                             {"three colours", 3, 2, &kFlag, "18", "0203"},
                             {"one colour", 3, 1, &kOneColor, "00", "0103"},
                             {"five bits", 3, 5, &kFlag, "000201", "0803"},
                             {"direct colours", 2, 24, &kDirect, "010203040506", "0802"}};

// The names of the chunks, one after another.
std::string ChunkNames(const std::string& png) {
  std::string names;
  for (std::size_t at = 8; at + 8 <= png.size();) {
    const std::size_t size = std::stoul(Hex(png.substr(at, 4)), nullptr, 16);
    names += png.substr(at + 4, 4);
    at += size + 12;
  }
  return names;
}

TEST(WritePng, KeepsDepthPaletteAndPixels) {
  const Folder folder;
  for (const PngCase& c : kPngCases) {
    const WriteOptions options{Format::Png, Existing::Replace};
    const Image image{c.width, 1, c.depth, *c.palette};
    ASSERT_EQ(Save(folder.Path("a"), options, image, {c.row}).message, "") << c.what;
    const std::string file = folder.Read("a");
    EXPECT_EQ(Hex(file.substr(24, 2)), c.kind) << c.what;
    EXPECT_EQ(ChunkNames(file), std::string(c.kind).ends_with("3") ? "IHDRPLTEIDATIEND" : "IHDRIDATIEND")
        << c.what;
    const Loaded loaded = Load(folder.Path("a"));
    EXPECT_EQ(loaded.rows, std::vector<std::string>{c.row}) << c.what;
    EXPECT_EQ(Hex(loaded.image.palette), Hex(*c.palette)) << c.what;
  }
}

struct Dots {
  const char* what;
  const char* stored;  // in a pHYs chunk, empty: there is none
  double x, y;         // dots an inch, 0: not known
};

const Dots kDots[] = {{"no resolution", "", 0, 0},
                      {"300 and 100 dpi", "00002e23 00000f61 01", 299.9994, 99.9998},
                      {"one a metre", "00000001 00000001 01", 0.0254, 0.0254},
                      {"as many as can be", "7fffffff 7ffffffe 01", 54546084.6338, 54546084.6084},
                      {"a shape, not a size", "00002e23 00002e23 00", 0, 0},
                      {"none across", "00000000 00002e23 01", 0, 299.9994}};

TEST(RoundTrip, APngKeepsItsPixelsAMetreExactly) {
  const Folder folder;
  for (const Dots& c : kDots) {
    const std::string chunk = *c.stored == 0 ? "" : Chunk("pHYs", Bytes(c.stored));
    const Image image = Load(folder.Write("a", Png({1, 1, 8, 0, chunk, Bytes("0041")}))).image;
    EXPECT_NEAR(image.resolution.x, c.x, 1e-6) << c.what;
    EXPECT_NEAR(image.resolution.y, c.y, 1e-6) << c.what;
    ASSERT_EQ(Save(folder.Path("b"), {Format::Png, Existing::Replace}, image, {"41"}).message, "") << c.what;
    const bool told = c.x != 0 && c.y != 0;
    EXPECT_EQ(ChunkNames(folder.Read("b")), told ? "IHDRpHYsIDATIEND" : "IHDRIDATIEND") << c.what;
    EXPECT_EQ(told, told && folder.Read("b").find(chunk) != std::string::npos) << c.what;
  }
}

TEST(WritePng, BitsPastTheWidthDoNotChangeTheFile) {
  const Folder folder;
  ASSERT_EQ(Save(folder.Path("a.png"), {}, {9, 1, 1, kInkFirst}, {"a580"}).message, "");
  ASSERT_EQ(Save(folder.Path("b.png"), {}, {9, 1, 1, kInkFirst}, {"a5ff"}).message, "");
  EXPECT_EQ(folder.Read("a.png"), folder.Read("b.png"));
}

// Odd widths at every depth, with pixels that all differ from their neighbours.
TEST(RoundTrip, EveryDepthAndWidthComesBack) {
  const Folder folder;
  for (const int depth : {1, 2, 4, 8}) {
    for (const int width : {1, 3, 4, 5, 7, 8, 9, 17}) {
      const Image image{width, 3, depth, GrayRamp(depth)};
      std::vector<std::string> rows;
      for (int y = 0; y < 3; ++y) {
        std::string row(pipeline::RowBytes(image), '\0');
        for (int x = 0; x < width; ++x) {
          const int value = (x * 7 + y * 3 + 1) & ((1 << depth) - 1);
          char& byte = row[static_cast<std::size_t>(x * depth / 8)];
          byte = static_cast<char>(byte | value << (8 - depth - x * depth % 8));
        }
        rows.push_back(Hex(row));
      }
      for (const Format format : {Format::Png, Format::Pgm, Format::Pnm, Format::Pam}) {
        ASSERT_EQ(Save(folder.Path("a"), {format, Existing::Replace}, image, rows).message, "");
        const Loaded loaded = Load(folder.Path("a"));
        EXPECT_EQ(loaded.image.depth, depth) << width;
        EXPECT_EQ(loaded.rows, rows) << depth << " bits, width " << width;
      }
    }
  }
}

}  // namespace
}  // namespace cvt::imageio::test

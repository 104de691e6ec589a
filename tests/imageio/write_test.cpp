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
const std::vector<IRGB> kBlackAndRed = Colors("000000 ff0000");
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
    SCOPED_TRACE(c.what);
    const Image image{c.width, 1, c.depth, *c.palette};
    ASSERT_EQ(Save(folder.Path("a"), {c.format, Existing::Replace}, image, {c.row}).message, "");
    EXPECT_EQ(Hex(folder.Read("a")), Hex(c.header) + c.data);
  }
}

struct Refused {
  const char* name;
  Image image;
  Compression compression = Compression::Default;
};

const Refused kRefused[] = {{"a.pbm", {1, 1, 1, kBlackAndRed}},
                            {"a.pbm", {1, 1, 2, GrayRamp(2)}},
                            {"a.pbm", {1, 1, 24}},
                            {"a.pbm", {1, 1, 1, Colors("000000")}},
                            {"a.pbm", {1, 1, 1, Colors("000000 000000")}},
                            {"a.pgm", {1, 1, 1, kBlackAndRed}},
                            {"a.pgm", {1, 1, 24}},
                            {"a.png", {1, 1, 15}},
                            {"a.ppm", {1, 1, 16}},
                            {"a.pam", {1, 1, 32}},
                            {"a.tif", {1, 1, 16}},
                            {"a.tif", {1, 1, 8, GrayRamp(8)}, Compression::G4},
                            {"a.tif", {1, 1, 1, kBlackAndRed}, Compression::G4},
                            {"a.tif", {1, 1, 24}, Compression::G4},
                            {"a.tif", {1, 1, 1, Colors("000000")}, Compression::G4},
                            {"a.png", {1, 1, 1, GrayRamp(1)}, Compression::Lzw},
                            {"a.pbm", {1, 1, 1, GrayRamp(1)}, Compression::Lzw},
                            {"a.raw", {1, 1, 1, GrayRamp(1)}, Compression::Lzw}};

TEST(Write, RefusesWhatTheFormatLacks) {
  const Folder folder;
  for (const Refused& c : kRefused) {
    WriteOptions options;
    options.compression = c.compression;
    EXPECT_EQ(Save(folder.Path(c.name), options, c.image, {"00000000"}).code, Code::Usage)
        << c.name << " of " << c.image.depth << " bits";
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
    SCOPED_TRACE(c.what);
    const Image image{c.width, 1, c.depth, *c.palette};
    ASSERT_EQ(Save(folder.Path("a"), {Format::Png, Existing::Replace}, image, {c.row}).message, "");
    const std::string file = folder.Read("a");
    EXPECT_EQ(Hex(file.substr(24, 2)), c.kind);
    EXPECT_EQ(ChunkNames(file), std::string(c.kind).ends_with("3") ? "IHDRPLTEIDATIEND" : "IHDRIDATIEND");
    const Loaded loaded = Load(folder.Path("a"));
    EXPECT_EQ(loaded.rows, std::vector<std::string>{c.row});
    EXPECT_EQ(Hex(loaded.image.palette), Hex(*c.palette));
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
    SCOPED_TRACE(c.what);
    const std::string chunk = *c.stored == 0 ? "" : Chunk("pHYs", Bytes(c.stored));
    const Image image = Load(folder.Write("a", Png({1, 1, 8, 0, chunk, Bytes("0041")}))).image;
    EXPECT_NEAR(image.resolution.x, c.x, 1e-6);
    EXPECT_NEAR(image.resolution.y, c.y, 1e-6);
    ASSERT_EQ(Save(folder.Path("b"), {Format::Png, Existing::Replace}, image, {"41"}).message, "");
    const bool told = c.x != 0 && c.y != 0;
    EXPECT_EQ(ChunkNames(folder.Read("b")), told ? "IHDRpHYsIDATIEND" : "IHDRIDATIEND");
    EXPECT_EQ(told, told && folder.Read("b").find(chunk) != std::string::npos);
  }
}

TEST(Write, BitsPastTheWidthDoNotChangeTheFile) {
  const Folder folder;
  for (const Format format : WrittenFormats()) {
    const WriteOptions options{format, Existing::Replace};
    ASSERT_EQ(Save(folder.Path("a"), options, {9, 1, 1, kInkFirst}, {"a580"}).message, "");
    const std::string file = folder.Read("a");
    ASSERT_EQ(Save(folder.Path("a"), options, {9, 1, 1, kInkFirst}, {"a5ff"}).message, "");
    EXPECT_EQ(Hex(folder.Read("a")), Hex(file));
  }
}

// Odd widths at every depth, with pixels that all differ from their neighbours.
TEST(RoundTrip, EveryDepthAndWidthComesBack) {
  const Folder folder;
  for (const int depth : {1, 2, 4, 8}) {
    for (const int width : {1, 3, 4, 5, 7, 8, 9, 17}) {
      const Image image{width, 3, depth, GrayRamp(depth)};
      std::vector<std::string> rows;
      for (std::size_t y = 0; y < 3; ++y) {
        std::string row;
        for (std::size_t i = 0; i < pipeline::RowBytes(image); ++i)
          row += static_cast<char>(0xb1 + 75 * i * i + y);
        row.back() = static_cast<char>(row.back() & 0xff00 >> ((width * depth - 1) % 8 + 1));
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

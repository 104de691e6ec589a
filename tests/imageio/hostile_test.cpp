// Files that are damaged, cut short, too large or not images at all.
#include <gtest/gtest.h>

#include <tuple>

#include "imageio/matrix_file.h"
#include "imageio/palette_file.h"
#include "support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::Code;

const std::string kPalette = Chunk("PLTE", Bytes("010203 040506 070809"));

struct Whole {
  std::string what;
  std::string file;
};
const Whole kWhole[] = {
    {"indexed PNG", Png({3, 2, 2, 3, kPalette + Chunk("tRNS", Bytes("80")), Bytes("0018 0024")})},
    {"PNG with alpha", Png({1, 2, 8, 6, "", Bytes("00 01020304 00 05060708")})},
    {"interlaced PNG", Png({2, 2, 8, 0, "", Bytes("000a 000b 000c0d"), 1})},
    {"plain bits", "P1 2 2 1001"},
    {"plain gray", "P2 2 2 9 1 2 3 4"},
    {"plain colour", "P3 1 1 9 1 2 3"},
    {"bits", "P4 9 2\n" + Bytes("a580 5a00")},
    {"gray", "P5 2 2 255\n" + Bytes("01020304")},
    {"16-bit colour", "P6 1 1 65535\n" + Bytes("010203040506")},
    {"PAM with alpha", Pam(2, 4, 300, "RGB_ALPHA", "0001 0002 0003 0004 0005 0006 0007 0008")},
    {"PAM of bits", Pam(9, 1, 1, "BLACKANDWHITE", "010001000100010001")}};

TEST(Hostile, FilesCutShortAreErrorsWhereverTheyEnd) {
  const Folder folder;
  for (const Whole& whole : kWhole) {
    ASSERT_EQ(Load(folder.Write("a", whole.file)).status.message, "") << whole.what;
    for (std::size_t size = 0; size < whole.file.size(); ++size) {
      SCOPED_TRACE(whole.what + std::to_string(size));
      ExpectRefusal(Load(folder.Write("a", whole.file.substr(0, size))).status, Code::Input, "");
    }
  }
}

// Check sums find every changed byte of a PNG. Other files may well be another image then; whatever they are, they
// come to an end in good order.
TEST(Hostile, AChangedByteIsOneClearLineOrAnImageThatIsNoPng) {
  const Folder folder;
  for (const Whole& whole : kWhole) {
    for (std::size_t at = 0; at < whole.file.size(); ++at) {
      SCOPED_TRACE(whole.what + std::to_string(at));
      for (const int bits : {0x01, 0x08, 0x10, 0x41, 0x80}) {
        const pipeline::Status status = Load(folder.Write("a", Changed(whole.file, at, bits))).status;
        ExpectSuccessOrOneClearLine(status);
        EXPECT_TRUE(whole.file.front() == 'P' || Failed(status));
      }
    }
  }
}

struct BadFile {
  const char* what;
  const char* says;
  std::string file;
  Code code = Code::Input;
};

const BadFile kBadFiles[] = {
    {"empty", "empty", ""},
    {"text", "known format", "Hello"},
    {"one byte", "known format", "P"},
    {"P8", "known format", "P8 1 1 255\n"},
    {"thumbnail that starts like a PAM", "P7 alone", "P7 332\n1 1 255\nA"},
    {"PNG signature with line ends changed", "damaged", Bytes("89504e470a1a0a00")},
    {"PNG without pixels", "", Png({1, 0, 8, 0, "", "0"})},
    {"PNG as wide as libpng takes with 32 bits", "1000000", Png({0x1fffff80, 1, 8, 0, "", "0"}), Code::Limit},
    {"PNG of too many pixels", "--max-pixels", Png({1000000, 0x7fffffff, 1, 0, "", "0"}), Code::Limit},
    {"interlaced PNG of too many bytes", "limit is 256 MiB (raise it with --max-memory",
     Png({100000, 10000, 8, 0, "", "0", 1}), Code::Limit},
    {"PNG of a negative width", "damaged", Png({-1, 1, 8, 0, "", "0"})},
    {"PNG of 3 bits", "damaged", Png({1, 1, 3, 0, "", "0"})},
    {"PNG with a chunk as long as can be", "early", Png({1, 1, 8, 0, Bytes("7fffffff") + "zTXt", "0"})},
    {"PNG with a chunk longer than can be", "damaged", Png({1, 1, 8, 0, Bytes("ffffffff") + "zTXt", "0"})},
    {"PNG with an unknown chunk that matters", "damaged", Png({1, 1, 8, 0, Chunk("ABCD", "?"), "0"})},
    {"PNG with a wrong sum of a chunk that does not", "CRC",
     Png({1, 1, 8, 0, Bytes("00000000") + "tEXt0000", "0"})},
    {"PNG with a palette of four bytes", "damaged", Png({1, 1, 8, 3, Chunk("PLTE", "1234"), "0"})},
    {"PNG with a palette of 257 colours", "damaged", Png({1, 1, 8, 3, Chunk("PLTE", std::string(771, '0')), "0"})},
    {"PNG of pixels that are no pixels", "damaged", Png({1, 1, 8, 0, Chunk("IDAT", "????"), "0"})},
    {"indexed PNG without palette", "PLTE", Png({1, 1, 8, 3, "", Bytes("0000")})},
    {"PNG with too little data", "damaged", Png({1, 2, 8, 0, "", Bytes("0000")})},
    {"PNG colour beyond the palette", "row 1 uses colour 3, the palette has 3",
     Png({3, 2, 2, 3, kPalette, Bytes("0018 0034")})},
    {"no width", "width", "P5 x 1 255\n"},
    {"negative height", "height", "P5 1 -1 255\n"},
    {"no pixels", "no pixels", "P5 0 1 255\n"},
    {"largest value 0", "largest value", "P5 1 1 0\nA"},
    {"largest value 65536", "largest value", "P5 1 1 65536\nAA"},
    {"width of 40 digits", "1000000", "P5 1" + std::string(39, '0') + " 1 255\n", Code::Limit},
    {"height of 40 digits", "2147483647", "P4 1 1" + std::string(39, '0') + "\n", Code::Limit},
    {"too many pixels", "--max-pixels", "P4 2 2147483647\n", Code::Limit},
    {"sample above the largest value", "above the largest value", "P5 2 1 9\n" + Bytes("090a")},
    {"plain sample above the largest value", "above the largest value", "P2 2 1 9 9 10"},
    {"plain sample that would wrap", "above the largest value", "P2 1 1 9 65536"},
    {"word for a sample", "no number", "P2 1 1 9 nine"},
    {"bytes cut short", "row 1 of 3", "P5 2 3 255\nabc"},
    {"numbers cut short", "row 1 of 3", "P2 2 3 255 1 2 3"},
    {"digits cut short", "row 1 of 3", "P1 2 3 10 1"},
    {"colours cut short", "row 1 of 3", "P6 1 3 255\nabcd"},
    {"digit that is no bit", "other than 0 and 1", "P1 2 1 12"},
    {"PAM without a depth", "no valid DEPTH", "P7\nWIDTH 1\nHEIGHT 1\nMAXVAL 1\nENDHDR\n1"},
    {"PAM of two widths", "WIDTH twice", "P7\nWIDTH 1\nWIDTH 1\nENDHDR\n1"},
    {"PAM of a negative height", "no valid HEIGHT", "P7\nHEIGHT -1\n"},
    {"PAM of a width in words", "no valid WIDTH", "P7\nWIDTH one\n"},
    {"PAM of a width and more", "no valid WIDTH", "P7\nWIDTH 1 1\n"},
    {"PAM of a width of 40 digits", "1000000",
     "P7\nHEIGHT 1\nDEPTH 1\nMAXVAL 1\nWIDTH 1" + std::string(39, '0') + "\nENDHDR\n", Code::Limit},
    {"PAM of largest value 65536", "largest value", Pam(1, 1, 65536, "GRAYSCALE", "0000")},
    {"PAM of no samples", "0 samples a pixel", Pam(1, 0, 255, "GRAY", "")},
    {"PAM of five samples", "5 samples a pixel", Pam(1, 5, 255, "CMYK_ALPHA", "0102030405")},
    {"PAM that contradicts itself", "RGB has 3", Pam(1, 4, 255, "RGB", "01020304")},
    {"PAM sample above the largest value", "above the largest value",
     Pam(2, 2, 9, "GRAYSCALE_ALPHA", "0909 090a")},
    {"PAM with a line of something else", "none of a PAM", "P7\nCOLORS 3\n"},
    {"PAM with an endless line", "line ends", "P7\n#" + std::string(5000, '#')}};

TEST(Hostile, BadFilesGiveOneClearLine) {
  const Folder folder;
  for (const BadFile& bad : kBadFiles) {
    SCOPED_TRACE(bad.what);
    ExpectRefusal(Load(folder.Write("a", bad.file)).status, bad.code, bad.says);
  }
}

// Chunks that are packed may unfold to gigabytes; what says nothing about pixels is never unfolded.
TEST(Hostile, APngMayCarryWhatNobodyUnfolds) {
  const Folder folder;
  const std::string bomb = Deflated(std::string(64 << 20, '\0'));
  for (const std::string type : {"zTXt", "iCCP", "iTXt"}) {
    const std::string name = type == "iTXt" ? Bytes("6e00 01000000") : Bytes("6e00 00");
    const std::string file = Png({1, 1, 8, 0, Chunk(type, name + bomb), Bytes("0041")});
    const Loaded loaded = Load(folder.Write("a", file));
    EXPECT_EQ(loaded.status.message, "") << type;
    EXPECT_EQ(loaded.rows, std::vector<std::string>{"41"}) << type;
  }
}

struct Tool {
  const char* name;
  std::string file;
};

const Tool kTools[] = {{"m.pgm", "P2 2 2 9 1 2 3 4"},
                       {"m.pgm", "P5 2 2 300\n" + Bytes("0001000200030004")},
                       {"p.gpl", "GIMP Palette\nName: a\n255 0 7 red\n"},
                       {"p.pal", "JASC-PAL\n0100\n1\n255 0 7\n"},
                       {"p.hex", "ff0000\n#00ff7f\n"},
                       {"p.png", kWhole[0].file}};

// Palettes and matrices have far less to get wrong: any of these may be good, none may do harm.
TEST(Hostile, PalettesAndMatricesSurviveCutsAndChanges) {
  const Folder folder;
  const auto check = [&folder](const char* name, const std::string& file) {
    std::vector<IRGB> palette;
    pipeline::Thresholds matrix;
    const std::string path = folder.Write(name, file);
    const pipeline::Status status = IsMatrixFile(path) ? ReadMatrix(path, &matrix) : ReadPalette(path, &palette);
    ExpectSuccessOrOneClearLine(status);
    EXPECT_LE(palette.size(), 256U);
  };
  for (const Tool& tool : kTools) {
    SCOPED_TRACE(tool.name);
    for (std::size_t at = 0; at < tool.file.size(); ++at) {
      check(tool.name, tool.file.substr(0, at));
      for (const int bits : {0x01, 0x10, 0x80, 0xff}) check(tool.name, Changed(tool.file, at, bits));
    }
    check(tool.name, tool.file + std::string(2 << 20, '\n'));
    check(tool.name, tool.file + std::string(5, '\0'));
  }
}

TEST(Hostile, FormatsLeftOutOfTheBuildAreNamed) {
  const Folder folder;
  for (const auto& [built, format, head] : {std::tuple(CVTR2R_BUILT_WITH_TIFF, "TIFF", Bytes("49492a00")),
                                            std::tuple(CVTR2R_BUILT_WITH_JPEG, "JPEG", Bytes("ffd8ffe0"))}) {
    const pipeline::Status status = Load(folder.Write("a", head)).status;
    EXPECT_EQ(status.code, built ? Code::Input : Code::Usage) << status.message;
    EXPECT_EQ(status.message.find(std::string("built without ") + format) == std::string::npos, built);
  }
  Format format = Format::FromSuffix;
  EXPECT_EQ(Failed(ChooseFormat("a.tif", Format::FromSuffix, &format)), !CVTR2R_BUILT_WITH_TIFF);
  EXPECT_EQ(Failed(ChooseFormat("-", Format::Tiff, &format)), !CVTR2R_BUILT_WITH_TIFF);
}

TEST(Hostile, LimitsAreInclusive) {
  const Folder folder;
  const std::string path = folder.Write("a", Png({2, 2, 8, 0, "", Bytes("000a 000b 000c0d"), 1}));
  const auto read = [&path](std::int64_t pixels, std::int64_t bytes) {
    ReadOptions options;
    options.maxPixels = pixels;
    options.maxBufferBytes = bytes;
    return Load(path, options).status.code;
  };
  EXPECT_EQ(read(4, 4), Code::Ok);
  EXPECT_EQ(read(3, 4), Code::Limit);
  EXPECT_EQ(read(4, 3), Code::Limit);
}

}  // namespace
}  // namespace cvt::imageio::test

// Files that are damaged, cut short, too large or not images at all.
#include <gtest/gtest.h>
#include <zlib.h>

#include "imageio/matrix_file.h"
#include "imageio/palette_file.h"
#include "support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::Code;

const std::string kPalette = Chunk("PLTE", Bytes("010203 040506 070809"));

struct Whole {
  const char* what;
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
      const Loaded loaded = Load(folder.Write("a", whole.file.substr(0, size)));
      EXPECT_EQ(loaded.status.code, Code::Input) << whole.what << ", " << size << " bytes";
      EXPECT_EQ(loaded.status.message.find('\n'), std::string::npos) << whole.what << ", " << size << " bytes";
    }
  }
}

TEST(Hostile, AnyChangedByteOfAPngIsFound) {
  const Folder folder;
  for (int i = 0; i < 3; ++i) {
    for (std::size_t at = 0; at < kWhole[i].file.size(); ++at) {
      std::string file = kWhole[i].file;
      file[at] = static_cast<char>(file[at] ^ 0x41);
      const Code code = Load(folder.Write("a", file)).status.code;
      EXPECT_TRUE(code == Code::Input || code == Code::Limit) << kWhole[i].what << ", byte " << at;
    }
  }
}

// A changed byte of other files may well be another image; whatever it is, it comes to an end in good order.
TEST(Hostile, AChangedByteOfAPnmIsAnImageOrOneClearLine) {
  const Folder folder;
  for (const Whole& whole : kWhole) {
    if (whole.file.front() != 'P') continue;
    for (std::size_t at = 0; at < whole.file.size(); ++at) {
      for (const int change : {0x01, 0x08, 0x10, 0x80}) {
        std::string file = whole.file;
        file[at] = static_cast<char>(file[at] ^ change);
        const pipeline::Status status = Load(folder.Write("a", file)).status;
        EXPECT_TRUE(status.code == Code::Ok || status.code == Code::Input || status.code == Code::Limit)
            << whole.what;
        EXPECT_EQ(status.message.find('\n'), std::string::npos) << whole.what << ", byte " << at;
      }
    }
  }
}

TEST(Hostile, APnmCutShortTellsTheRow) {
  const Folder folder;
  for (const char* file : {"P5 2 3 255\nabc", "P2 2 3 255 1 2 3", "P1 2 3 10 1", "P6 1 3 255\nabcd",
                           "P7\nWIDTH 2\nHEIGHT 3\nDEPTH 1\nMAXVAL 255\nENDHDR\nabc"}) {
    const std::string message = Load(folder.Write("a", file)).status.message;
    EXPECT_NE(message.find("row 1 of 3"), std::string::npos) << file << ": " << message;
  }
}

struct BadFile {
  const char* what;
  std::string file;
  Code code;
  const char* says;
};

const BadFile kBadFiles[] = {
    {"empty", "", Code::Input, "empty"},
    {"text", "Hello", Code::Input, "known format"},
    {"one byte", "P", Code::Input, "known format"},
    {"P8", "P8 1 1 255\n", Code::Input, "known format"},
    {"thumbnail that starts like a PAM", "P7 332\n1 1 255\nA", Code::Input, "P7 alone"},
    {"PNG signature with line ends changed", Bytes("89504e470a1a0a00"), Code::Input, "damaged"},
    {"PNG without pixels", Png({1, 0, 8, 0, "", "0"}), Code::Input, ""},
    {"PNG as wide as libpng takes with 32 bits", Png({0x1fffff80, 1, 8, 0, "", "0"}), Code::Limit, "1000000"},
    {"PNG of too many pixels", Png({1000000, 0x7fffffff, 1, 0, "", "0"}), Code::Limit, "--max-pixels"},
    {"interlaced PNG of too many bytes", Png({100000, 10000, 8, 0, "", "0", 1}), Code::Limit,
     "limit is 256 MiB (raise it with --max-memory"},
    {"PNG of a negative width", Png({-1, 1, 8, 0, "", "0"}), Code::Input, "damaged"},
    {"PNG of 3 bits", Png({1, 1, 3, 0, "", "0"}), Code::Input, "damaged"},
    {"PNG with a chunk as long as can be", Png({1, 1, 8, 0, Bytes("7fffffff") + "zTXt", "0"}), Code::Input,
     "early"},
    {"PNG with a chunk longer than can be", Png({1, 1, 8, 0, Bytes("ffffffff") + "zTXt", "0"}), Code::Input,
     "damaged"},
    {"PNG with an unknown chunk that matters", Png({1, 1, 8, 0, Chunk("ABCD", "?"), "0"}), Code::Input, "damaged"},
    {"PNG with a wrong sum of a chunk that does not", Png({1, 1, 8, 0, Bytes("00000000") + "tEXt0000", "0"}),
     Code::Input, "CRC"},
    {"PNG with a palette of four bytes", Png({1, 1, 8, 3, Chunk("PLTE", "1234"), "0"}), Code::Input, "damaged"},
    {"PNG with a palette of 257 colours", Png({1, 1, 8, 3, Chunk("PLTE", std::string(771, '0')), "0"}),
     Code::Input, "damaged"},
    {"PNG of pixels that are no pixels", Png({1, 1, 8, 0, Chunk("IDAT", "????"), "0"}), Code::Input, "damaged"},
    {"indexed PNG without palette", Png({1, 1, 8, 3, "", Bytes("0000")}), Code::Input, "PLTE"},
    {"PNG with too little data", Png({1, 2, 8, 0, "", Bytes("0000")}), Code::Input, "damaged"},
    {"PNG colour beyond the palette", Png({3, 2, 2, 3, kPalette, Bytes("0018 0034")}), Code::Input,
     "row 1 uses colour 3, the palette has 3"},
    {"no width", "P5 x 1 255\n", Code::Input, "width"},
    {"negative height", "P5 1 -1 255\n", Code::Input, "height"},
    {"no pixels", "P5 0 1 255\n", Code::Input, "no pixels"},
    {"largest value 0", "P5 1 1 0\nA", Code::Input, "largest value"},
    {"largest value 65536", "P5 1 1 65536\nAA", Code::Input, "largest value"},
    {"width of 40 digits", "P5 1" + std::string(39, '0') + " 1 255\n", Code::Limit, "1000000"},
    {"height of 40 digits", "P4 1 1" + std::string(39, '0') + "\n", Code::Limit, "2147483647"},
    {"too many pixels", "P4 2 2147483647\n", Code::Limit, "--max-pixels"},
    {"sample above the largest value", "P5 2 1 9\n" + Bytes("090a"), Code::Input, "above the largest value"},
    {"plain sample above the largest value", "P2 2 1 9 9 10", Code::Input, "above the largest value"},
    {"plain sample that would wrap", "P2 1 1 9 65536", Code::Input, "above the largest value"},
    {"word for a sample", "P2 1 1 9 nine", Code::Input, "no number"},
    {"digit that is no bit", "P1 2 1 12", Code::Input, "other than 0 and 1"},
    {"PAM without a depth", "P7\nWIDTH 1\nHEIGHT 1\nMAXVAL 1\nENDHDR\n1", Code::Input, "no valid DEPTH"},
    {"PAM of two widths", "P7\nWIDTH 1\nWIDTH 1\nENDHDR\n1", Code::Input, "WIDTH twice"},
    {"PAM of a negative height", "P7\nHEIGHT -1\n", Code::Input, "no valid HEIGHT"},
    {"PAM of a width in words", "P7\nWIDTH one\n", Code::Input, "no valid WIDTH"},
    {"PAM of a width and more", "P7\nWIDTH 1 1\n", Code::Input, "no valid WIDTH"},
    {"PAM of a width of 40 digits",
     "P7\nHEIGHT 1\nDEPTH 1\nMAXVAL 1\nWIDTH 1" + std::string(39, '0') + "\nENDHDR\n", Code::Limit, "1000000"},
    {"PAM without pixels", Pam(0, 1, 255, "GRAYSCALE", ""), Code::Input, "no pixels"},
    {"PAM of largest value 0", Pam(1, 1, 0, "GRAYSCALE", "00"), Code::Input, "largest value"},
    {"PAM of largest value 65536", Pam(1, 1, 65536, "GRAYSCALE", "0000"), Code::Input, "largest value"},
    {"PAM of no samples", Pam(1, 0, 255, "GRAY", ""), Code::Input, "0 samples a pixel"},
    {"PAM of five samples", Pam(1, 5, 255, "CMYK_ALPHA", "0102030405"), Code::Input, "5 samples a pixel"},
    {"PAM that contradicts itself", Pam(1, 4, 255, "RGB", "01020304"), Code::Input, "RGB has 3"},
    {"PAM sample above the largest value", Pam(2, 2, 9, "GRAYSCALE_ALPHA", "0909 090a"), Code::Input,
     "above the largest value"},
    {"PAM with a line of something else", "P7\nCOLORS 3\n", Code::Input, "none of a PAM"},
    {"PAM with an endless line", "P7\n#" + std::string(5000, '#'), Code::Input, "line ends"}};

TEST(Hostile, BadFilesGiveOneClearLine) {
  const Folder folder;
  for (const BadFile& bad : kBadFiles) {
    const pipeline::Status status = Load(folder.Write("a", bad.file)).status;
    EXPECT_EQ(status.code, bad.code) << bad.what << ": " << status.message;
    EXPECT_NE(status.message.find(bad.says), std::string::npos) << bad.what << ": " << status.message;
    EXPECT_TRUE(status.message.ends_with(')')) << bad.what << ": " << status.message;
  }
}

// Chunks that are packed may unfold to gigabytes; what says nothing about pixels is never unfolded.
TEST(Hostile, APngMayCarryWhatNobodyUnfolds) {
  const Folder folder;
  const std::string zeros(64 << 20, '\0');
  std::string bomb(compressBound(zeros.size()), '\0');
  uLongf size = bomb.size();
  ASSERT_EQ(compress(reinterpret_cast<Bytef*>(bomb.data()), &size, reinterpret_cast<const Bytef*>(zeros.data()),
                     zeros.size()),
            Z_OK);
  bomb.resize(size);
  for (const char* type : {"zTXt", "iCCP", "iTXt"}) {
    const std::string name = type == std::string("iTXt") ? Bytes("6e00 01000000") : Bytes("6e00 00");
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
    EXPECT_TRUE(status.code == Code::Ok || status.code == Code::Input || status.code == Code::Limit) << name;
    EXPECT_EQ(status.message.find('\n'), std::string::npos) << name << ": " << status.message;
    EXPECT_LE(palette.size(), 256U) << name;
  };
  for (const Tool& tool : kTools) {
    for (std::size_t at = 0; at < tool.file.size(); ++at) {
      check(tool.name, tool.file.substr(0, at));
      for (const int change : {0x01, 0x10, 0x80, 0xff}) {
        std::string file = tool.file;
        file[at] = static_cast<char>(file[at] ^ change);
        check(tool.name, file);
      }
    }
    check(tool.name, tool.file + std::string(2 << 20, '\n'));
    check(tool.name, tool.file + std::string(5, '\0'));
  }
}

TEST(Hostile, LimitsAreInclusive) {
  const Folder folder;
  const std::string path = folder.Write("a", Png({2, 2, 8, 0, "", Bytes("000a 000b 000c0d"), 1}));
  ReadOptions options;
  options.maxPixels = options.maxBufferBytes = 4;
  EXPECT_EQ(Load(path, options).status.code, Code::Ok);
  options.maxBufferBytes = 3;
  EXPECT_EQ(Load(path, options).status.code, Code::Limit);
  options.maxBufferBytes = 4;
  options.maxPixels = 3;
  EXPECT_EQ(Load(path, options).status.code, Code::Limit);
}

TEST(Hostile, MissingFilesAndDirectoriesAreInputErrors) {
  const Folder folder;
  EXPECT_EQ(Load(folder.Path("none")).status.code, Code::Input);
  const pipeline::Status status = Load(folder.path.string()).status;
  EXPECT_EQ(status.code, Code::Input);
  EXPECT_NE(status.message.find("directory"), std::string::npos);
}

}  // namespace
}  // namespace cvt::imageio::test

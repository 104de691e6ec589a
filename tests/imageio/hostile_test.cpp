// Files that are damaged, cut short, too large or not images at all.
#include <gtest/gtest.h>

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
    {"16-bit colour", "P6 1 1 65535\n" + Bytes("010203040506")}};

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

TEST(Hostile, APnmCutShortTellsTheRow) {
  const Folder folder;
  for (const char* file : {"P5 2 3 255\nabc", "P2 2 3 255 1 2 3", "P1 2 3 10 1", "P6 1 3 255\nabcd"}) {
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
    {"P7", "P7 1 1 255\n", Code::Input, "known format"},
    {"PNG signature with line ends changed", Bytes("89504e470a1a0a00"), Code::Input, "damaged"},
    {"PNG without pixels", Png({1, 0, 8, 0, "", "0"}), Code::Input, ""},
    {"PNG as wide as can be", Png({0x7fffffff, 1, 8, 0, "", "0"}), Code::Limit, "1000000"},
    {"PNG of too many pixels", Png({1000000, 0x7fffffff, 1, 0, "", "0"}), Code::Limit, "--max-pixels"},
    {"interlaced PNG of too many bytes", Png({100000, 10000, 8, 0, "", "0", 1}), Code::Limit, "256 MiB"},
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
    {"height of 40 digits", "P4 1 1" + std::string(39, '0') + "\n", Code::Limit, "--max-pixels"},
    {"sample above the largest value", "P5 2 1 9\n" + Bytes("090a"), Code::Input, "above the largest value"},
    {"plain sample above the largest value", "P2 2 1 9 9 10", Code::Input, "above the largest value"},
    {"plain sample that would wrap", "P2 1 1 9 65536", Code::Input, "above the largest value"},
    {"word for a sample", "P2 1 1 9 nine", Code::Input, "no number"},
    {"digit that is no bit", "P1 2 1 12", Code::Input, "other than 0 and 1"}};

TEST(Hostile, BadFilesGiveOneClearLine) {
  const Folder folder;
  for (const BadFile& bad : kBadFiles) {
    const pipeline::Status status = Load(folder.Write("a", bad.file)).status;
    EXPECT_EQ(status.code, bad.code) << bad.what << ": " << status.message;
    EXPECT_NE(status.message.find(bad.says), std::string::npos) << bad.what << ": " << status.message;
    EXPECT_TRUE(status.message.ends_with(')')) << bad.what << ": " << status.message;
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

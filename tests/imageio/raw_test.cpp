// Raw rows: the bytes of packed pixels and of planes, and who else refuses what only raw rows hold.
#include <gtest/gtest.h>

#include "support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::Code;
using pipeline::GrayRamp;
using pipeline::Image;
using pipeline::Layout;

struct Case {
  const char* what;
  Image image;
  std::vector<std::string> rows;
  const char* file;
};

const Case kCases[] = {
    {"bits, the last one alone in its byte", {9, 1, 1, GrayRamp(1)}, {"a5ff"}, "a580"},
    {"every row starts a byte", {4, 2, 1, GrayRamp(1)}, {"ff", "5f"}, "f050"},
    {"pairs of bits", {3, 1, 2, GrayRamp(2)}, {"1b"}, "18"},
    {"three bits lie in four", {3, 1, 3, GrayRamp(3)}, {"057f"}, "0570"},
    {"bytes", {3, 1, 8, GrayRamp(8)}, {"0080ff"}, "0080ff"},
    {"three planes of part of a byte", {3, 1, 3, GrayRamp(3), Layout::Planes}, {"ff5f1f"}, "e04000"},
    {"planes of a byte and a bit, twice",
     {9, 2, 2, GrayRamp(2), Layout::Planes},
     {"a5ff 5aff", "ffff 007f"},
     "a5805a80ff800000"},
    {"words of 15 bits", {2, 1, 15}, {"007c e003"}, "007ce003"},
    {"words of 16 bits", {1, 2, 16}, {"1f00", "ff7f"}, "1f00ff7f"},
    {"three bytes", {1, 1, 24}, {"010203"}, "010203"},
    {"words of 32 bits", {2, 1, 32}, {"0302 0100 ff00 0000"}, "03020100ff000000"}};

TEST(WriteRaw, WritesTheRowsAndNothingElse) {
  const Folder folder;
  for (const Case& c : kCases) {
    ASSERT_EQ(Save(folder.Path("a"), {Format::Raw, Existing::Replace, {}}, c.image, c.rows).message, "") << c.what;
    EXPECT_EQ(Hex(folder.Read("a")), c.file) << c.what;
  }
}

TEST(WriteRaw, IsChosenBySuffix) {
  const Folder folder;
  ASSERT_EQ(Save(folder.Path("a.RAW"), {}, {1, 1, 8, GrayRamp(8)}, {"41"}).message, "");
  EXPECT_EQ(folder.Read("a.RAW"), "A");
}

TEST(WriteRaw, AloneTakesItsDepths) {
  const Folder folder;
  for (const char* name : {"a.png", "a.ppm", "a.pnm", "a.pgm", "a.pbm"}) {
    for (const int depth : {15, 16, 32}) {
      EXPECT_EQ(Save(folder.Path(name), {}, {1, 1, depth}, {"00000000"}).code, Code::Usage) << name << depth;
    }
  }
  EXPECT_TRUE(folder.Names().empty());
}

}  // namespace
}  // namespace cvt::imageio::test

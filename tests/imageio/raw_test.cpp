// Raw rows and C arrays: the bytes of packed pixels and of planes, and who else refuses what only these hold.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>

#include "imageio/c_file.h"
#include "support.h"

namespace cvt::imageio::test {
namespace {

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
    {"bytes, one more than a line of C has",
     {13, 1, 8, GrayRamp(8)},
     {"0080ff030405060708090a0b0c"},
     "0080ff030405060708090a0b0c"},
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
    ASSERT_EQ(Save(folder.Path("a"), {Format::Raw, Existing::Replace}, c.image, c.rows).message, "") << c.what;
    EXPECT_EQ(Hex(folder.Read("a")), c.file) << c.what;
  }
}

// Statements of C that print sizes, pixels and palette of an array.
std::string DumpText(const std::string& name, const Image& image) {
  std::string upper = name;
  for (char& letter : upper) letter = static_cast<char>(std::toupper(letter));
  const std::string sizes = upper + "_WIDTH, " + upper + "_HEIGHT, " + upper + "_BITS, " + upper + "_ROW_BYTES";
  const std::string pixels = "fwrite(" + name + ", 1, sizeof " + name + ", stdout);\n";
  const std::string colors = "fwrite(" + name + "_palette, 3, " + upper + "_COLORS, stdout);\n";
  return "printf(\"%d %d %d %d \", " + sizes + ");\n" + pixels + (image.palette.empty() ? "" : colors);
}

std::string Dump(const Case& c) {
  const std::string bytes = Bytes(c.file);
  return std::to_string(c.image.width) + " " + std::to_string(c.image.height) + " " +
         std::to_string(c.image.depth) + " " + std::to_string(bytes.size() / c.rows.size()) + " " + bytes +
         Bytes(Hex(c.image.palette));
}

// What a compiler for microcontrollers would make of all arrays together is what raw output has.
TEST(WriteC, CompilesToTheBytesOfRawRows) {
  const Folder folder;
  std::string driver = "#include <stdio.h>\n";
  std::string dump = "int main(void) {\n";
  std::string expected;
  int number = 0;
  for (const Case& c : kCases) {
    const std::string file = "int" + std::to_string(8 << number++) + ".c";  // some of them names of their own
    ASSERT_EQ(Save(folder.Path(file), {}, c.image, c.rows).message, "") << c.what;
    driver += "#include \"" + file + "\"\n";
    dump += DumpText(CName(file), c.image);
    expected += Dump(c);
  }
  const std::string source = folder.Write("driver", driver + dump + "return 0; }\n");
  for (const char* language : {"c -std=c99", "c++ -std=c++11"}) {
    const std::string build = std::string(CVTR2R_COMPILER " -Wall -Wextra -Wpedantic -Werror -x ") + language +
                              " -o " + folder.Path("run") + " " + source;
    ASSERT_EQ(std::system(build.c_str()), 0) << language;
    ASSERT_EQ(std::system((CVTR2R_STARTER + folder.Path("run") + " >" + folder.Path("out")).c_str()), 0);
    EXPECT_EQ(Hex(folder.Read("out")), Hex(expected)) << language;
  }
}

struct Comment {
  Image image;
  const char* says;
};

const Comment kComments[] = {{{9, 2, 1, GrayRamp(1)}, "/* 9 x 2 pixels, 1 bit a pixel.\n"},
                             {{9, 2, 1, GrayRamp(1)}, "Rows from top to bottom, 2 bytes each."},
                             {{1, 1, 1, GrayRamp(1)}, "my_logo_palette: 0 is black, 1 is white."},
                             {{1, 1, 1, Colors("ffffff 000000")}, "0 is white, 1 is black."},
                             {{1, 1, 1, Colors("ff0000 000080")}, "0 is #ff0000, 1 is #000080."},
                             {{1, 1, 3, GrayRamp(3)}, "3 bits a pixel"},
                             {{1, 1, 3, GrayRamp(3)}, "each pixel in 4 bits"},
                             {{1, 1, 5, GrayRamp(5)}, "one byte a pixel"},
                             {{9, 1, 3, GrayRamp(3), Layout::Planes}, "Planes of 2 bytes, one for each bit"},
                             {{1, 1, 16}, "red in bits 14 to 10"},
                             {{1, 1, 24}, "red, green, blue."},
                             {{1, 1, 32}, "blue, green, red, 0."}};

TEST(WriteC, TellsWhatTheBytesMean) {
  const Folder folder;
  for (const Comment& c : kComments) {
    const std::vector<std::string> rows(static_cast<std::size_t>(c.image.height), "00000000");
    ASSERT_EQ(Save(folder.Path("my-logo.c"), {Format::C, Existing::Replace}, c.image, rows).message, "");
    const std::string source = folder.Read("my-logo.c");
    EXPECT_NE(source.find(c.says), std::string::npos) << c.says << " is not in:\n" << source;
  }
}

TEST(WriteC, MakesIdentifiersOfFileNames) {
  const char* const kNames[][2] = {{"-", "image"},
                                   {"dir.d/Logo2.c", "Logo2"},
                                   {"my logo-v1.2.c", "my_logo_v1_2"},
                                   {"7seg.c", "image_7seg"},
                                   {"_x.c", "image_x"},
                                   {".c", "image"},
                                   {"int.c", "image_int"},
                                   {"class.c", "image_class"},
                                   {"a__b.c", "a_b"},
                                   {"xor.C", "image_xor"},
                                   {"x*/y.c", "y"},
                                   {"\xc3\xa4rmel.c", "image_rmel"}};
  for (const auto& [path, name] : kNames) EXPECT_EQ(CName(path), name) << path;
}

}  // namespace
}  // namespace cvt::imageio::test

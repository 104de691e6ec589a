#include "imageio/palette_file.h"

#include <gtest/gtest.h>

#include "support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::Code;

std::string Times(int count, const std::string& words) {
  std::string all;
  for (int i = 0; i < count; ++i) all += words;
  return all;
}

struct Case {
  const char* what;
  const char* name;
  std::string text;
  Code code;
  std::string expected;  // hex of the colours, or what the message says
};

const Case kCases[] = {
    {"hex", "a.hex", "ff0000\n#00FF7f\n\n0000ff", Code::Ok, "ff000000ff7f0000ff"},
    {"hex with CRLF and blanks", "a.HEX", "ff0000 \r\n\r\n  00ff00\r\n", Code::Ok, "ff000000ff00"},
    {"gpl", "a.gpl", "GIMP Palette\nName: Two\nColumns: 2\n# note\n255   0 7\tRed\n  1 2\t3\n", Code::Ok,
     "ff0007010203"},
    {"gpl with CRLF", "a.gpl", "GIMP Palette\r\n1 2 3 dark\r\n\r\n", Code::Ok, "010203"},
    {"short hex", "a.hex", "ff0000\n\nff00\n", Code::Input, "line 3"},
    {"hex with a sign", "a.hex", "-f0000\n", Code::Input, "line 1"},
    {"hex with more behind", "a.hex", "ff0000 red\n", Code::Input, "line 1"},
    {"gpl without its first line", "a.gpl", "1 2 3\n", Code::Input, "line 1"},
    {"gpl with 256", "a.gpl", "GIMP Palette\n1 2 3\n1 256 3\n", Code::Input, "line 3"},
    {"gpl with two numbers", "a.gpl", "GIMP Palette\n1 2 red\n", Code::Input, "line 2"},
    {"gpl with a fraction", "a.gpl", "GIMP Palette\n1 2.5 3\n", Code::Input, "line 2"},
    {"pal", "a.pal", "JASC-PAL\r\n0100\r\n2\r\n255 0 7\r\n1 2 3\r\n", Code::Ok, "ff0007010203"},
    {"pal without its first line", "a.pal", "0100\n1\n1 2 3\n", Code::Input, "line 1"},
    {"pal of another version", "a.pal", "JASC-PAL\n0200\n1\n1 2 3\n", Code::Input, "line 2"},
    {"pal that ends early", "a.pal", "JASC-PAL\n0100\n3\n1 2 3\n", Code::Input, "line 3"},
    {"pal with 256", "a.pal", "JASC-PAL\n0100\n2\n1 2 3\n1 256 3\n", Code::Input, "line 5"},
    {"png", "a.png", Png({1, 1, 2, 3, Chunk("PLTE", Bytes("ff000000ff00010203")), Bytes("0000")}), Code::Ok,
     "ff000000ff00010203"},
    {"png with colours that are transparent", "a.png",
     Png({1, 1, 1, 3, Chunk("PLTE", Bytes("ff000000ff00")) + Chunk("tRNS", Bytes("0080")), Bytes("0000")}),
     Code::Ok, "ff000000ff00"},
    {"png of grays", "a.png", Png({1, 1, 8, 0, "", Bytes("0000")}), Code::Input, "no palette"},
    {"png of direct colours that suggests a palette", "a.png",
     Png({1, 1, 8, 2, Chunk("PLTE", Bytes("ff0000")), Bytes("00000000")}), Code::Input, "no palette"},
    {"png without its end", "a.png",
     Png({1, 1, 2, 3, Chunk("PLTE", Bytes("ff0000")), Bytes("0000")}).substr(0, 40), Code::Input, "damaged"},
    {"no png", "a.png", "GIMP Palette\n1 2 3\n", Code::Input, "no PNG"},
    {"256 colours", "a.hex", Times(256, "010203\n"), Code::Ok, Times(256, "010203")},
    {"257 colours", "a.hex", Times(257, "010203\n"), Code::Input, "line 257"},
    {"no colours", "a.hex", "\n", Code::Input, "no colours"},
    {"another suffix", "a.txt", "ff0000\n", Code::Usage, ".gpl, .hex, .pal or .png"}};

TEST(PaletteFile, GivesItsColoursOrTheLineThatIsWrong) {
  const Folder folder;
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    std::vector<IRGB> palette;
    const pipeline::Status status = ReadPalette(folder.Write(c.name, c.text), &palette);
    if (c.code != Code::Ok) {
      ExpectRefusal(status, c.code, c.expected);
      continue;
    }
    EXPECT_EQ(status.message, "");
    EXPECT_EQ(Hex(palette), c.expected);
  }
}

}  // namespace
}  // namespace cvt::imageio::test

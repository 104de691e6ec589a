// What the command refuses: one line, the right exit status, nothing left behind.
#include <gtest/gtest.h>

#include <algorithm>

#include "run.h"

namespace cvt::app::test {
namespace {

struct Case {
  const char* words;
  int status;
  const char* starts;  // the line, from its first character
};

constexpr Case kCases[] = {{"", 2, "r2r: INPUT: "},
                           {"gray", 2, "r2r: OUTPUT: "},
                           {"gray o.png more", 2, "r2r: more: "},
                           {"--no-such 3 gray o.png", 2, "r2r: --no-such: "},
                           {"gray o.png --depth", 2, "r2r: --depth: "},
                           {"gray o.png --depth 0", 2, "r2r: --depth: '0'"},
                           {"gray o.png --depth 9", 2, "r2r: --depth: '9'"},
                           {"gray o.png --depth 1x", 2, "r2r: --depth: '1x'"},
                           {"gray o.png --depth 1 --depth 2", 2, "r2r: --depth: "},
                           {"color o.png", 2, "r2r: --depth: "},
                           {"gray o.png --palette foo", 2, "r2r: --palette: 'foo'"},
                           {"gray o.png --palette '#fff,'", 2, "r2r: --palette: ''"},
                           {"gray o.png --palette '#fff,#00000g'", 2, "r2r: --palette: '#00000g'"},
                           {"gray o.png --palette '#fff,#000,#f00' --depth 1", 2, "r2r: --palette: 3 colours"},
                           {"gray o.png --palette none.gpl", 3, "r2r: none.gpl: "},
                           {"gray o.png --palette bad.hex", 3, "r2r: bad.hex: line 2 "},
                           {"gray o.png --halftone ordered", 2, "r2r: --halftone: 'ordered'"},
                           {"gray o.png --halftone diffusion", 2, "r2r: --halftone: diffusion"},
                           {"gray o.png --depth 2 --halftone diffusion", 2, "r2r: --halftone: diffusion"},
                           {"gray o.png --threshold -1", 2, "r2r: --threshold: '-1'"},
                           {"gray o.png --threshold 257", 2, "r2r: --threshold: '257'"},
                           {"gray o.png --depth 2 --threshold 9", 2, "r2r: --threshold: "},
                           {"gray o.png --halftone diffusion --threshold 9", 2, "r2r: --threshold: "},
                           {"gray o.png --background blue", 2, "r2r: --background: 'blue'"},
                           {"gray o.png --layout rows", 2, "r2r: --layout: 'rows'"},
                           {"gray o.png --format tiff", 2, "r2r: --format: 'tiff'"},
                           {"gray o.png --force=no", 2, "r2r: --force: "},
                           {"gray o.png --max-pixels 0", 2, "r2r: --max-pixels: '0'"},
                           {"gray o.png --max-pixels 3", 4, "r2r: gray: "},
                           {"gray o.jpg", 2, "r2r: o.jpg: "},
                           {"gray -", 2, "r2r: standard output: "},
                           {"color o.pbm --depth 2", 2, "r2r: o.pbm: "},
                           {"color o.pgm --palette '#f00,#00f'", 2, "r2r: o.pgm: "},
                           {"none o.png", 3, "r2r: none: "},
                           {". o.png", 3, "r2r: .: "},
                           {"empty o.png", 3, "r2r: empty: "},
                           {"- o.png", 3, "r2r: standard input: "},
                           {"bad.hex o.png", 3, "r2r: bad.hex: "},
                           {"short o.png", 3, "r2r: short: "},
                           {"short o.pbm", 3, "r2r: short: "},
                           {"wide o.png --depth 1", 4, "r2r: wide: "},
                           {"gray gray --format pgm", 5, "r2r: gray: "},
                           {"gray none/o.png", 5, "r2r: none/o.png: "},
                           {"gray . --format png --force", 5, "r2r: .: "},
                           {"gray /dev/full --format pgm", 5, "r2r: /dev/full: "},
                           {"gray - --format png >/dev/full", 5, "r2r: standard output: "},
                           {"\"$(printf 'a\\nb')\" o.png", 3, "r2r: a?b: "}};

TEST(Message, IsOneLineWithItsExitStatusAndLeavesNoFile) {
  const Workplace place;
  place.Write("gray", "P2 4 1 255  0 100 128 255");
  place.Write("color", "P3 2 1 255  250 5 5  5 250 5");
  place.Write("short", "P2 2 3 255  1 2 3");
  place.Write("wide", "P4 900000 1\n" + std::string(112500, 'a'));
  place.Write("empty", "");
  place.Write("bad.hex", "ffffff\nfffff\n");
  const std::vector<std::string> before = place.Names();
  for (const Case& c : kCases) {
    const Ended ended = place.Convert(c.words);
    EXPECT_EQ(ended.status, c.status) << c.words << ": " << ended.err;
    EXPECT_TRUE(ended.err.starts_with(c.starts)) << c.words << ": " << ended.err;
    EXPECT_TRUE(ended.err.ends_with(")\n")) << c.words << ": " << ended.err;
    EXPECT_EQ(std::count(ended.err.begin(), ended.err.end(), '\n'), 1) << c.words << ": " << ended.err;
    EXPECT_EQ(ended.out, "") << c.words;
    EXPECT_EQ(place.Names(), before) << c.words;
  }
}

TEST(Message, ComesForCommandsThatDoNotExist) {
  const Workplace place;
  EXPECT_EQ(place.Shell("\"$R2R\"").status, 2);
  const Ended ended = place.Shell("\"$R2R\" transmogrify");
  EXPECT_EQ(ended.status, 2);
  EXPECT_TRUE(ended.err.starts_with("r2r: transmogrify: ")) << ended.err;
}

TEST(Help, GoesToStandardOutputAndNamesEveryOption) {
  const Workplace place;
  const Ended ended = place.Convert("--help");
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.err, "");
  for (const char* words : {"Colour:", "Output:", "Running:", "--depth N", "--palette SPEC", "--halftone",
                            "--threshold N", "--invert", "--background COLOR", "--format", "--layout", "--force",
                            "--explain", "--max-pixels N", "-q", "Examples:"}) {
    EXPECT_NE(ended.out.find(words), std::string::npos) << words;
  }
  EXPECT_EQ(place.Shell("\"$R2R\" --help").status, 0);
  EXPECT_EQ(place.Shell("\"$R2R\" --help >/dev/full").status, 5);
  const Ended version = place.Shell("\"$R2R\" --version");
  EXPECT_EQ(version.status, 0);
  EXPECT_TRUE(version.out.starts_with("r2r ")) << version.out;
}

}  // namespace
}  // namespace cvt::app::test

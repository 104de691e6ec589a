// What the command refuses: one line, the right exit status, nothing left behind.
#include <gtest/gtest.h>

#include <algorithm>

#include "run.h"

namespace cvt::app::test {
namespace {

struct Refusal {
  const char* words;
  int status;
  const char* starts;  // the line, from its first character
};

constexpr Refusal kRefusals[] = {
    {"", 2, "r2r: INPUT: "},
    {"gray", 2, "r2r: OUTPUT: "},
    {"gray o.png more", 2, "r2r: more: "},
    {"--no-such 3 gray o.png", 2, "r2r: --no-such: "},
    {"gray o.png --depth", 2, "r2r: --depth: "},
    {"gray o.png --depth 9", 2, "r2r: --depth: '9'"},
    {"gray o.png --depth 1x", 2, "r2r: --depth: '1x'"},
    {"gray o.png --depth 1 --depth 2", 2, "r2r: --depth: "},
    {"gray o.raw --depth 17", 2, "r2r: --depth: '17'"},
    {"color o.png --depth 15", 2, "r2r: --depth: 15 bits"},
    {"color - --format ppm --depth 16", 2, "r2r: --depth: 16 bits"},
    {"color o.raw --layout planes", 2, "r2r: color: planes of direct colour"},
    {"gray o.png --transparent 0", 2, "r2r: --transparent: it belongs"},
    {"gray o.png --overlay dots --transparent 2", 2, "r2r: --transparent: the overlay's palette has no index 2"},
    {"gray o.png --overlay dots --transparent '#f00'", 2, "r2r: --transparent: the overlay's palette has no such"},
    {"gray o.png --overlay dots --transparent red", 2, "r2r: --transparent: 'red'"},
    {"gray o.png --overlay dots --transparent 256", 2, "r2r: --transparent: '256'"},
    {"gray o.png --overlay dots+2+0", 2, "r2r: --overlay: its 3 x 1 pixels at +2+0"},
    {"gray o.png --overlay dots+0+1", 2, "r2r: --overlay: its 3 x 1 pixels at +0+1"},
    {"gray o.png --overlay color", 2, "r2r: --overlay: it has direct colours"},
    {"- o.png --overlay -+1+0 <gray", 2, "r2r: --overlay: standard input"},
    {"gray o.png --overlay none+1+0", 3, "r2r: none: "},
    {"gray o.png --overlay dots+1", 3, "r2r: dots+1: "},
    {"gray o.png --overlay +1+0", 3, "r2r: +1+0: "},
    {"gray o.png --size 4x4 --overlay short", 3, "r2r: short: "},
    {"gray o.png --size 1024x1025 --overlay large --max-memory 1", 4, "r2r: large: the overlay needs"},
    {"gray o.png --palette foo", 2, "r2r: --palette: 'foo'"},
    {"gray o.png --palette '#fff,'", 2, "r2r: --palette: ''"},
    {"gray o.png --palette '#fff,#00000g'", 2, "r2r: --palette: '#00000g'"},
    {"gray o.png --palette '#fff,#000,#f00' --depth 1", 2, "r2r: --palette: 3 colours"},
    {"gray o.png --palette $(printf '#000,%.0s' $(seq 256))#000", 2, "r2r: --palette: 257 colours"},
    {"gray o.png --palette none.gpl", 3, "r2r: none.gpl: "},
    {"gray o.png --palette bad.hex", 3, "r2r: bad.hex: line 2 "},
    {"gray o.png --halftone ordered", 2, "r2r: --halftone: "},
    {"gray o.png --halftone dots", 2, "r2r: --halftone: 'dots' is not possible (give nearest|"},
    {"gray o.png --halftone diffusion", 2, "r2r: --halftone: "},
    {"gray o.png --depth 24 --halftone diffusion", 2, "r2r: --halftone: "},
    {"gray o.png --depth 24 --palette gray", 2, "r2r: --palette: "},
    {"gray o.png --depth 2 --palette cube", 2, "r2r: --palette: "},
    {"gray o.png --palette color.png", 3, "r2r: color.png: "},
    {"- o.png --palette adaptive <gray", 2, "r2r: --palette: adaptive"},
    {"- o.png --depth 4 <color", 2, "r2r: --palette: adaptive"},
    {"gray o.png --gamma 0.09", 2, "r2r: --gamma: '0.09'"},
    {"gray o.png --gamma 11", 2, "r2r: --gamma: '11'"},
    {"gray o.png --gamma nan", 2, "r2r: --gamma: 'nan'"},
    {"gray o.png --matrix bayer4", 2, "r2r: --matrix: it belongs"},
    {"gray o.png --depth 1 --halftone ordered --matrix bayer3", 2, "r2r: --matrix: 'bayer3'"},
    {"gray o.png --depth 1 --halftone ordered --matrix none.pgm", 3, "r2r: none.pgm: "},
    {"gray o.png --preset none", 2, "r2r: --preset: 'none'"},
    {"gray o.png --preset epaper-7 --depth 2", 2, "r2r: --palette: 7 colours"},
    {"gray o.png --keep-color red", 2, "r2r: --keep-color: 'red'"},
    {"gray o.png --keep-color white", 2, "r2r: --keep-color: it belongs"},
    {"gray o.png --crop 5x1+0+0", 2, "r2r: gray: "},
    {"gray o.png --crop 4x1+0+1", 2, "r2r: gray: "},
    {"gray o.png --size 65535x65535", 4, "r2r: gray: "},
    {"gray o.png --threshold 257", 2, "r2r: --threshold: '257'"},
    {"gray o.png --depth 2 --threshold 9", 2, "r2r: --threshold: "},
    {"gray o.png --halftone diffusion --threshold 9", 2, "r2r: --threshold: "},
    {"gray o.png --background blue", 2, "r2r: --background: 'blue'"},
    {"gray o.png --format bmp", 2, "r2r: --format: 'bmp'"},
    {"gray o.png --force=no", 2, "r2r: --force: "},
    {"gray o.png -j 2", 2, "r2r: -j: it is for many images"},
    {"gray o.png --shard 1/2", 2, "r2r: --shard: it is for many images"},
    {"gray --out-dir d -j 0", 2, "r2r: -j: '0'"},
    {"gray --out-dir d --shard 3/2", 2, "r2r: --shard: '3/2'"},
    {"gray --out-dir d --shard 0/2", 2, "r2r: --shard: '0/2'"},
    {"gray --out-dir d -0", 2, "r2r: -0: it belongs to --files-from"},
    {"gray --out-dir d --force --skip-existing", 2, "r2r: --skip-existing: it contradicts"},
    {"gray gray --out-dir d", 2, "r2r: gray: its output d/gray.png is that of gray too"},
    {"color.png color --out-dir d --shard 1/2", 2, "r2r: color: its output d/color.png"},
    {"- --out-dir d", 2, "r2r: -: standard input has no name"},
    {"gray/ --out-dir d", 2, "r2r: gray/: this names no file"},
    {"--out-dir d", 2, "r2r: INPUT: there is none"},
    {"--out-dir d --files-from empty", 2, "r2r: INPUT: there is none"},
    {"--out-dir d --files-from none", 3, "r2r: none: the list"},
    {"--out-dir d --files-from .", 3, "r2r: .: the list"},
    {"gray --out-dir gray", 5, "r2r: gray: the directory"},
    {"gray --out-dir d --report gray", 5, "r2r: gray: the file exists"},
    {"gray - --format pgm --report -", 2, "r2r: --report: standard output is the image"},
    {"gray o.png --report none/r", 5, "r2r: none/r: it cannot be created"},
    {"gray o.png --max-pixels 0", 2, "r2r: --max-pixels: '0'"},
    {"gray o.png --max-pixels 3", 4, "r2r: gray: "},
    {"gray o.jpg", 2, "r2r: o.jpg: "},
    {"gray png", 2, "r2r: png: "},
    {"gray -", 2, "r2r: standard output: "},
    {"color o.pbm --depth 2", 2, "r2r: o.pbm: "},
    {"color o.pgm --palette '#f00,#00f'", 2, "r2r: o.pgm: "},
    {"none o.png", 3, "r2r: none: "},
    {". o.png", 3, "r2r: .: this is a directory"},
    {"empty o.png", 3, "r2r: empty: "},
    {"- o.png", 3, "r2r: standard input: "},
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
  place.Write("dots", "P1 3 1 101");
  place.Write("short", "P2 2 3 255  1 2 3");
  place.Write("wide", "P4 900000 1\n" + std::string(112500, 'a'));
  place.Write("color.png", place.Shell("\"$R2R\" convert color - --format png").out);
  place.Write("large", "P5 1024 1025 255 " + std::string(1024 * 1025, 'a'));
  place.Write("empty", "");
  place.Write("bad.hex", "ffffff\nfffff\n");
  const std::vector<std::string> before = place.Names();
  for (const Refusal& c : kRefusals) {
    SCOPED_TRACE(c.words);
    const Ended ended = place.Convert(c.words);
    EXPECT_EQ(ended.status, c.status) << ended.err;
    EXPECT_TRUE(ended.err.starts_with(c.starts)) << ended.err;
    EXPECT_TRUE(ended.err.ends_with(")\n")) << ended.err;
    EXPECT_EQ(std::count(ended.err.begin(), ended.err.end(), '\n'), 1) << ended.err;
    EXPECT_EQ(ended.out, "");
    EXPECT_EQ(place.Names(), before);
  }
}

TEST(Message, ComesForSizesAndRectanglesThatAreNone) {
  const Workplace place;
  place.Write("gray", "P2 4 1 255  0 100 128 255");
  const std::vector<std::string> sizes = {
      "0", "-5", "x",   "3x",   "0x3",  "3x0",  "x0",  "3x4x5", "'3 x 4'", "3x4+1+1",
      "%", "0%", "-5%", "1.5%", "x50%", "50%x", "3X4", "65536", "x65536",  "99999999999999999999"};
  const std::vector<std::string> crops = {"1",      "1x1",      "1x1+0",   "0x1+0+0",   "1x0+0+0",  "x1+0+0",
                                          "1x+0+0", "1x1+-1+0", "1x1+0-1", "1x1+0+0+0", "1x1+0+0x", "1+1x0+0"};
  const auto refused = [&place](const std::string& option, const std::string& word) {
    const Ended ended = place.Convert("gray o.png " + option + "=" + word);
    EXPECT_EQ(ended.status, 2) << word << ": " << ended.err;
    EXPECT_TRUE(ended.err.starts_with("r2r: " + option + ": '")) << word << ": " << ended.err;
  };
  for (const std::string& word : sizes) refused("--size", word);
  for (const std::string& word : crops) refused("--crop", word);
}

TEST(Message, ComesForCommandsThatDoNotExist) {
  const Workplace place;
  for (const char* words : {"", "list", "list colours", "list methods more", "chart", "chart o.png --depth 1"}) {
    EXPECT_EQ(place.Shell(std::string("\"$R2R\" ") + words).status, 2) << words;
  }
  const Ended ended = place.Shell("\"$R2R\" transmogrify");
  EXPECT_EQ(ended.status, 2);
  EXPECT_TRUE(ended.err.starts_with("r2r: transmogrify: ")) << ended.err;
}

TEST(Help, GoesToStandardOutput) {
  const Workplace place;
  const Ended ended = place.Convert("--help");
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.err, "");
  for (const char* words : {"Geometry:", "--crop WxH+X+Y", "--reduce keep|", "--force", "-q", "Examples:"}) {
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

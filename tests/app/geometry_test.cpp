// Sizes, rectangles and the ways to scale, end to end.
#include <gtest/gtest.h>

#include "run.h"

namespace cvt::app::test {
namespace {

using namespace std::string_literals;

// Seven by five pixels of different grays.
std::string Steps() {
  std::string file = "P5\n7 5\n255\n";
  for (int i = 0; i < 35; ++i) file += static_cast<char>(i * 7);
  return file;
}

std::string Times(int count, const std::string& words) {
  std::string all;
  for (int i = 0; i < count; ++i) all += words;
  return all;
}

struct SizeCase {
  const char* options;
  const char* size;
};
constexpr SizeCase kSizes[] = {{"--size 14x10", "14 10"},
                               {"--size 7x9", "7 9"},
                               {"--size 3x9", "3 9"},
                               {"--size 14", "14 10"},
                               {"--size x10", "14 10"},
                               {"--size 3", "3 2"},
                               {"--size 4", "4 3"},
                               {"--size x3", "4 3"},
                               {"--size 1", "1 1"},
                               {"--size 50%", "4 3"},
                               {"--size 100%", "7 5"},
                               {"--size 1%", "1 1"},
                               {"--crop 4x2+3+1", "4 2"},
                               {"--crop 4x2+3+1 --size 200%", "8 4"},
                               {"--crop 4x2+3+1 --size x4", "8 4"}};

TEST(Size, IsWhatTheOptionsSay) {
  const Workplace place;
  place.Write("in", Steps());
  for (const SizeCase& c : kSizes) {
    for (const char* how : {"", " --reduce decimate --enlarge smooth"}) {
      const Ended ended = place.Convert(std::string(c.options) + how + " in - --format pgm");
      EXPECT_EQ(ended.status, 0) << c.options << how << ": " << ended.err;
      EXPECT_TRUE(ended.out.starts_with("P5\n" + std::string(c.size) + "\n255\n")) << c.options << how;
    }
  }
}

constexpr const char* kSix = "P2 3 2 255  1 2 3  4 5 6";

const Case kCases[] = {
    {"a rectangle inside", kSix, "--crop 2x1+1+1", "o.pgm", "P5\n2 1\n255\n\x05\x06"s},
    {"bits from the middle of a byte", "P1 12 1 001101011100", "--crop 6x1+3+0", "o.pbm", "P4\n6 1\n\xac"s},
    {"a rectangle of colours", "P3 2 2 255  1 2 3  4 5 6  7 8 9  10 11 12", "--crop 1x2+1+0", "o.ppm",
     "P6\n1 2\n255\n\x04\x05\x06\x0a\x0b\x0c"s},
    {"growing repeats", "P2 2 1 255  0 255", "--size 200%", "o.pgm", "P5\n4 2\n255\n\0\0\xff\xff\0\0\xff\xff"s},
    {"also bits", "P1 2 1 10", "--size 200%", "o.pbm", "P4\n4 2\n\xc0\xc0"s},
    {"a rectangle grows", kSix, "--crop 1x1+2+0 --size 200%", "o.pgm", "P5\n2 2\n255\n\x03\x03\x03\x03"s},
    {"bits stay bits", "P1 4 4  1111 1111 1111 1111", "--size 2", "o.pgm", "P5\n2 2\n1\n\0\0\0\0"s},
    {"unless averaged: that takes grays", "P1 4 4  1111 1111 1111 1111", "--size 2 --reduce smooth", "o.pgm",
     "P5\n2 2\n255\n\0\0\0\0"s},
    {"as many as are asked for", "P1 4 4  1111 1111 1111 1111", "--size 2 --reduce smooth --depth 2", "o.pgm",
     "P5\n2 2\n3\n\0\0\0\0"s}};

TEST(Geometry, GivesTheExpectedFile) {
  const Workplace place;
  for (const Case& c : kCases) ExpectFile(place, c);
}

struct Keep {
  const char* what;
  const char* line;   // the colour of a hairline, as plain PPM
  const char* paper;  // and of what it lies on
  const char* palette;
  const char* options;
  std::string kept;
};
const Keep kKeeps[] = {
    {"black by default", "0 0 0 ", "255 255 255 ", "bw", "", "\0\0\0"s},
    {"white", "255 255 255 ", "0 0 0 ", "bw", "--keep-color white", "\xff\xff\xff"s},
    {"black among colours", "0 0 0 ", "255 0 0 ", "'#f00,#00f,#000'", "", "\0\0\0"s},
    {"a colour", "0 0 255 ", "255 0 0 ", "'#f00,#0f0,#00f'", "--keep-color '#00f'", "\0\0\xff"s}};

TEST(Keep, NoHairlineOfAnIndexedImageVanishesWhereverItLies) {
  const Workplace place;
  for (const Keep& c : kKeeps) {
    SCOPED_TRACE(c.what);
    std::string diagonal = "P3 12 12 255 ";
    for (int i = 0; i < 144; ++i) diagonal += i % 13 == 0 ? c.line : c.paper;
    place.Write("in", diagonal);
    ASSERT_EQ(place.Convert("in a.png --force --palette " + std::string(c.palette)).status, 0);
    const std::string file = place.Convert("a.png - --format ppm --size 4x12 " + std::string(c.options)).out;
    ASSERT_EQ(file.size(), 12U + 144);
    for (std::size_t row = 12; row < file.size(); row += 12) {
      bool found = false;
      for (std::size_t i = row; i < row + 12; i += 3) found = found || file.substr(i, 3) == c.kept;
      EXPECT_TRUE(found) << "row " << row / 12;
    }
  }
}

TEST(Smooth, AnIndexedImageKeepsItsPalette) {
  const Workplace place;
  place.Write("in", "P3 16 1 255" + Times(8, " 255 0 0") + Times(8, " 0 0 255"));
  ASSERT_EQ(place.Convert("in a.png --palette '#f00,#0f0,#00f'").status, 0);
  EXPECT_EQ(place.Convert("a.png - --format ppm --size 2x1 --reduce smooth").out,
            "P6\n2 1\n255\n\xff\0\0\0\0\xff"s);
}

TEST(Smooth, IsHowGraysAndColoursShrink) {
  const Workplace place;
  for (const std::string& input : {"P2 16 16 255" + Times(8, Times(8, " 0 255") + Times(8, " 255 0")),
                                   "P3 8 8 255" + Times(32, " 0 0 0 255 255 255")}) {
    place.Write("in", input);
    const std::string shrunk = place.Convert("in - --format ppm --size 4").out;
    EXPECT_EQ(shrunk, place.Convert("in - --format ppm --size 4 --reduce smooth").out);
    EXPECT_NE(shrunk, place.Convert("in - --format ppm --size 4 --reduce decimate").out);
  }
}

}  // namespace
}  // namespace cvt::app::test

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

struct Case {
  const char* what;
  std::string input;
  const char* options;
  const char* output;
  std::string file;
};

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
  for (const Case& c : kCases) {
    const Workplace place;
    place.Write("in", c.input);
    const Ended ended = place.Convert(std::string(c.options) + " in " + c.output);
    EXPECT_EQ(ended.status, 0) << c.what << ": " << ended.err;
    EXPECT_EQ(place.Read(c.output), c.file) << c.what;
  }
}

struct Keep {
  const char* what;
  const char* line;   // the colour of a hairline, as plain PPM
  const char* paper;  // and of what it lies on
  const char* palette;
  const char* options;
  std::string kept;
};
const Keep kKeeps[] = {{"black by default", "0 0 0", "255 255 255", "bw", "", "\0\0\0"s},
                       {"white", "255 255 255", "0 0 0", "bw", "--keep-color white", "\xff\xff\xff"s},
                       {"black among colours", "0 0 0", "255 0 0", "'#f00,#00f,#000'", "", "\0\0\0"s},
                       {"a colour", "0 0 255", "255 0 0", "'#f00,#0f0,#00f'", "--keep-color '#00f'", "\0\0\xff"s}};

TEST(Keep, NoHairlineOfAnIndexedImageVanishesWhereverItLies) {
  const Workplace place;
  for (const Keep& c : kKeeps) {
    for (int at = 0; at < 12; ++at) {
      std::string row;
      for (int x = 0; x < 12; ++x) row += " " + std::string(x == at ? c.line : c.paper);
      place.Write("in", "P3 12 1 255 " + row);
      ASSERT_EQ(place.Convert("in a.png --force --palette " + std::string(c.palette)).status, 0) << c.what;
      const Ended ended = place.Convert("a.png - --format ppm --size 4x1 " + std::string(c.options));
      ASSERT_TRUE(ended.out.starts_with("P6\n4 1\n255\n")) << c.what << ": " << ended.err;
      bool found = false;
      for (std::size_t i = 11; i < ended.out.size(); i += 3) found = found || ended.out.substr(i, 3) == c.kept;
      EXPECT_TRUE(found) << c.what << ", at " << at;
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

struct Fine {
  const char* what;
  std::string input;
  const char* options;
};
const Fine kFine[] = {
    {"bits", "P1 16 16" + Times(8, Times(8, " 0 1") + Times(8, " 1 0")), "--reduce smooth"},
    {"grays", "P2 16 16 255" + Times(8, Times(8, " 0 255") + Times(8, " 255 0")), ""},
    {"colours", "P3 16 16 255" + Times(8, Times(8, " 0 0 0 255 255 255") + Times(8, " 255 255 255 0 0 0")), ""}};

TEST(Smooth, FineDetailBecomesItsMean) {
  const Workplace place;
  for (const Fine& c : kFine) {
    place.Write("in", c.input);
    const Ended ended = place.Convert(std::string(c.options) + " in - --format ppm --size 4");
    ASSERT_EQ(ended.out.size(), 11U + 48) << c.what << ": " << ended.err;
    for (std::size_t i = 11 + 15; i < 11 + 24; ++i) {  // inside of the second row
      EXPECT_NEAR(static_cast<unsigned char>(ended.out[i]), 127, 2) << c.what << ", byte " << i;
    }
  }
}

}  // namespace
}  // namespace cvt::app::test

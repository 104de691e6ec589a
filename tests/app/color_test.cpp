// Palettes, halftones and tone, end to end.
#include <gtest/gtest.h>

#include <set>

#include "run.h"

namespace cvt::app::test {
namespace {

using namespace std::string_literals;

constexpr const char* kColors = "P3 4 1 255  0 0 0  250 5 5  5 5 250  255 255 255";
constexpr const char* kCorners =
    "P3 8 1 255  0 0 0  255 0 0  0 255 0  255 255 0  0 0 255  255 0 255  0 255 255  255 255 255";

// A flat gray, 16 x 16.
std::string Flat(int gray) { return "P5\n16 16\n255\n" + std::string(256, static_cast<char>(gray)); }

const Case kCases[] = {
    {"colours stay as they are", kColors, "", "o.ppm",
     "P6\n4 1\n255\n\0\0\0\xfa\x05\x05\x05\x05\xfa\xff\xff\xff"s},
    {"grays as direct colour", "P2 2 1 3  1 2", "--depth 24", "o.ppm", "P6\n2 1\n255\n\x55\x55\x55\xaa\xaa\xaa"s},
    {"bits as direct colour", "P1 2 1 10", "--depth 24", "o.ppm", "P6\n2 1\n255\n\0\0\0\xff\xff\xff"s},
    {"colours become grays in a PGM", "P3 2 1 255  255 255 255  0 0 0", "", "o.pgm", "P5\n2 1\n255\n\xff\0"s},
    {"as many as the depth has", "P3 2 1 255  255 255 255  0 0 0", "--depth 2", "o.pgm", "P5\n2 1\n3\n\x03\0"s},
    {"a lighter tone", "P2 3 1 255  0 64 255", "--gamma 2", "o.pgm", "P5\n3 1\n255\n\0\x80\xff"s},
    {"a lighter tone of colours", "P3 1 1 255  0 64 255", "--gamma 2", "o.ppm", "P6\n1 1\n255\n\0\x80\xff"s},
    {"a darker tone", "P2 3 1 255  0 64 255", "--gamma 0.5", "o.pgm", "P5\n3 1\n255\n\0\x10\xff"s},
    {"thresholds from a picture", "P2 4 1 255  150 150 150 150", "--depth 1 --halftone ordered --matrix m.pgm",
     "o.pbm", "P4\n4 1\n\x50"s},
    {"matched as seen, written as told", "P3 2 1 255  60 98 72  255 255 255", "--palette epaper-7", "o.ppm",
     "P6\n2 1\n255\n\0\xff\0\xff\xff\xff"s},
    // Left black and white, right four colours: as many as two bits hold.
    {"a palette that is fitted to what is cut out",
     "P3 8 1 255  0 0 0  255 255 255  9 9 9  90 90 90  40 80 120  200 10 10  10 200 10  250 250 0",
     "--crop 4x1+4+0 --depth 2", "o.ppm", "P6\n4 1\n255\n\x28\x50\x78\xc8\x0a\x0a\x0a\xc8\x0a\xfa\xfa\0"s}};

TEST(Color, GivesTheExpectedFile) {
  const Workplace place;
  place.Write("m.pgm", "P2 2 1 255  100 200");
  for (const Case& c : kCases) ExpectFile(place, c);
}

// An image with a palette of its own keeps it, and takes the tone on its colours.
TEST(Tone, ChangesTheColoursOfAnIndexedImage) {
  const Workplace place;
  place.Write("in", "P3 4 1 255  40 80 120  200 10 10  10 200 10  250 250 0");
  ASSERT_EQ(place.Convert("--depth 2 in i.png").status, 0);
  const std::string negative = "P6\n4 1\n255\n\xd7\xaf\x87\x37\xf5\xf5\xf5\x37\xf5\x05\x05\xff"s;
  for (const char* words : {"--invert i.png", "--invert --depth 2 i.png", "--invert --depth 2 in"})
    EXPECT_EQ(place.Convert(std::string(words) + " - --format ppm").out, negative) << words;
  EXPECT_EQ(place.Convert("--gamma 2 i.png - --format ppm").out,
            "P6\n4 1\n255\n\x65\x8f\xaf\xe2\x32\x32\x32\xe2\x32\xfc\xfc\0"s);
}

TEST(Palette, ThatIsFittedOrACubeLosesNoColourThatItHasRoomFor) {
  const Workplace place;
  place.Write("in", kCorners);
  ASSERT_EQ(place.Convert("in same.ppm").status, 0);
  for (const char* options :
       {"--depth 3", "--palette adaptive", "--palette adaptive --depth 4", "--palette cube",
        "--palette cube --depth 3", "--palette cube --depth 7 --halftone ordered", "--preset web-256"}) {
    const Ended ended = place.Convert(std::string(options) + " in o.ppm --force");
    EXPECT_EQ(ended.status, 0) << options << ": " << ended.err;
    EXPECT_EQ(place.Read("o.ppm"), place.Read("same.ppm")) << options;
  }
}

struct Tone {
  const char* options;
  std::size_t colors;  // that a flat middle gray turns into
};
constexpr Tone kTones[] = {{"--depth 1", 2},
                           {"--depth 1 --halftone nearest", 1},
                           {"--depth 1 --halftone ordered", 2},
                           {"--depth 2", 2},
                           {"--depth 2 --halftone nearest", 1},
                           {"--depth 2 --halftone ordered", 2},
                           {"--palette '#000,#fff,#f00'", 2},
                           {"--palette '#000,#fff,#f00' --halftone nearest", 1},
                           {"--palette '#000,#fff,#808080'", 1},
                           {"--palette gray", 1},
                           {"--palette gray --size 5", 1},
                           {"--threshold 100", 1}};

TEST(Halftone, IsDiffusionWhereColoursAreMissing) {
  const Workplace place;
  place.Write("in", Flat(128));
  for (const Tone& c : kTones) {
    const Ended ended = place.Convert(std::string(c.options) + " in - --format ppm");
    ASSERT_EQ(ended.status, 0) << c.options << ": " << ended.err;
    std::set<std::string> colors;
    for (std::size_t i = ended.out.find("255\n") + 4; i < ended.out.size(); i += 3)
      colors.insert(ended.out.substr(i, 3));
    EXPECT_EQ(colors.size(), c.colors) << c.options;
  }
}

}  // namespace
}  // namespace cvt::app::test

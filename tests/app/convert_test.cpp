// What comes out of conversions, on images small enough to work out by hand.
#include <gtest/gtest.h>

#include "run.h"

namespace cvt::app::test {
namespace {

using Names = std::vector<std::string>;
using namespace std::string_literals;

constexpr const char* kGrays = "P2 4 1 255  0 100 128 255";
constexpr const char* kColors = "P3 4 1 255  0 0 0  250 5 5  5 5 250  255 255 255";

struct Case {
  const char* what;
  const char* input;
  const char* options;
  const char* output;
  std::string file;
};

const Case kCases[] = {
    {"grays stay as they are", kGrays, "", "o.pgm", "P5\n4 1\n255\n\x00\x64\x80\xff"s},
    {"so do grays of two bits", "P2 4 1 3  0 1 2 3", "", "o.pgm", "P5\n4 1\n3\n\x00\x01\x02\x03"s},
    {"and bits", "P1 4 1 1001", "", "o.pnm", "P4\n4 1\n\x90"s},
    {"bits are bits also when diffused", "P1 4 1 1001", "--halftone diffusion", "o.pbm", "P4\n4 1\n\x90"s},
    {"white from the threshold up", kGrays, "--threshold 128", "o.pbm", "P4\n4 1\n\xc0"s},
    {"one above it is black", kGrays, "--threshold 129", "o.pbm", "P4\n4 1\n\xe0"s},
    {"all white from 0 up", kGrays, "--threshold 0", "o.pbm", "P4\n4 1\n\x00"s},
    {"all black from 256 up", kGrays, "--threshold 256", "o.pbm", "P4\n4 1\n\xf0"s},
    {"nearest of two", kGrays, "--depth 1 --halftone nearest", "o.pbm", "P4\n4 1\n\xc0"s},
    {"black and white swapped", "P1 4 1 1001", "--invert", "o.pbm", "P4\n4 1\n\x60"s},
    {"nearest of four grays", kGrays, "--depth 2", "o.pgm", "P5\n4 1\n3\n\x00\x01\x02\x03"s},
    {"nearest of four colours", kColors, "--palette '#000000,#ffffff,#ff0000,#0000ff'", "o.ppm",
     "P6\n4 1\n255\n\0\0\0\xff\0\0\0\0\xff\xff\xff\xff"s},
    {"colours from a file", kColors, "--palette flag.hex", "o.ppm",
     "P6\n4 1\n255\n\0\0\0\xff\0\0\0\0\xff\xff\xff\xff"s},
    {"planes give the same pixels", kGrays, "--depth 2 --layout planes", "o.pgm",
     "P5\n4 1\n3\n\x00\x01\x02\x03"s}};

TEST(Convert, GivesTheExpectedFile) {
  for (const Case& c : kCases) {
    const Workplace place;
    place.Write("in", c.input);
    place.Write("flag.hex", "000000\n#ffffff\nff0000\n0000ff\n");
    const Ended ended = place.Convert(std::string(c.options) + " in " + c.output);
    EXPECT_EQ(ended.status, 0) << c.what << ": " << ended.err;
    EXPECT_EQ(ended.out + ended.err, "") << c.what;
    EXPECT_EQ(place.Read(c.output), c.file) << c.what;
    EXPECT_EQ(place.Names(), (Names{"flag.hex", "in", c.output})) << c.what;
  }
}

TEST(Convert, AnIndexedImageWrittenAgainIsTheSame) {
  const Workplace place;
  place.Write("in", kColors);
  ASSERT_EQ(place.Convert("--palette '#000,#fff,#f00,#00f' in a.png").status, 0);
  ASSERT_EQ(place.Convert("a.png b.png").status, 0);
  ASSERT_EQ(place.Convert("a.png - --format png > c.png").status, 0);
  EXPECT_NE(place.Read("a.png"), "");
  EXPECT_EQ(place.Read("a.png"), place.Read("b.png"));
  EXPECT_EQ(place.Read("a.png"), place.Read("c.png"));
}

TEST(Convert, CopiesAPaletteOfNeighbouringColoursExactly) {
  const Workplace place;
  std::string hex;
  std::string list = "P3 1 16 255";
  for (int i = 0; i < 16; ++i) {
    list += " 100 " + std::to_string(100 + i) + " 100";
    hex += "64" + std::string(1, '6' + static_cast<char>(i / 12)) + std::string(1, "456789abcdef0123"[i]) + "64\n";
  }
  place.Write("in", list);
  place.Write("p.hex", hex);
  ASSERT_EQ(place.Convert("--palette p.hex in a.png").status, 0);
  ASSERT_EQ(place.Convert("a.png b.png").status, 0);
  EXPECT_EQ(place.Read("a.png"), place.Read("b.png"));
}

TEST(Convert, StreamsFromStandardInputToStandardOutput) {
  const Workplace place;
  place.Write("in", kGrays);
  // The pause between the first byte and the rest makes the head of the image come in pieces.
  const Ended ended = place.Shell("{ printf P; sleep 0.1; tail -c +2 in; } | \"$R2R\" convert - - --format pgm");
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(ended.out, "P5\n4 1\n255\n\x00\x64\x80\xff"s);
}

TEST(Convert, ExplainsOnStandardErrorAndConverts) {
  const Workplace place;
  place.Write("in", kGrays);
  const Ended ended = place.Convert("--explain --depth 2 in o.pgm");
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(ended.out, "");
  EXPECT_EQ(place.Read("o.pgm"), "P5\n4 1\n3\n\x00\x01\x02\x03"s);
  place.Write("page", "P4\n80 60\n" + std::string(600, '\x5a'));
  place.Write("dot", "P1 2 3 101010");
  const Ended chain =
      place.Convert("--explain --crop 64x48+8+6 --size 32x24 --overlay dot+1+2 page - --format pbm");
  EXPECT_EQ(chain.err,
            "source: 80 x 60, 1 bit packed, 1 band of up to 60 lines, 600 bytes\n"
            "clip: 64 x 48, 1 bit packed, 1 band of up to 48 lines, 384 bytes from one band\n"
            "move to the origin: 64 x 48, 1 bit packed, 1 band of up to 48 lines, 384 bytes from one band\n"
            "move to the origin: 64 x 48, 1 bit packed, 1 band of up to 48 lines, 384 bytes from one band\n"
            "relabelling: 64 x 48, 1 plane, 1 band of up to 48 lines, 384 bytes from one band\n"
            "next stage: 48 rows of 8 bytes\n"
            "source: 64 x 48, 1 bit packed, 1 band of up to 48 lines, 384 bytes\n"
            "reduce width: 32 x 48, 1 bit packed, 1 band of up to 48 lines, 192 bytes from one band\n"
            "reduce height: 32 x 24, 1 bit packed, 1 band of up to 24 lines, 96 bytes from one band\n"
            "relabelling: 32 x 24, 1 plane, 1 band of up to 24 lines, 96 bytes from one band\n"
            "overlay: 2 x 3 at 1, 2\n"
            "next stage: 24 rows of 4 bytes\n");
}

TEST(Convert, ReplacesItsOwnInputWithForce) {
  const Workplace place;
  place.Write("a.pgm", kGrays);
  EXPECT_EQ(place.Convert("--force a.pgm a.pgm").status, 0);
  EXPECT_EQ(place.Read("a.pgm"), "P5\n4 1\n255\n\x00\x64\x80\xff"s);
  EXPECT_EQ(place.Names(), Names{"a.pgm"});
}

}  // namespace
}  // namespace cvt::app::test

// What comes out of conversions, on images small enough to work out by hand.
#include <gtest/gtest.h>

#include "run.h"

namespace cvt::app::test {
namespace {

using Names = std::vector<std::string>;
using namespace std::string_literals;

constexpr const char* kGrays = "P2 4 1 255  0 100 128 255";
constexpr const char* kColors = "P3 4 1 255  0 0 0  250 5 5  5 5 250  255 255 255";

constexpr const char* kThreeBits = "P2 3 1 7  1 6 3";
constexpr const char* kPrimaries = "P3 4 1 255  255 0 0  0 255 0  0 0 255  8 23 255";

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
    {"colours in the order of the palette", kColors, "--palette white,#f00,black,#00f", "o.raw", "\x9c"},
    {"colours from a file", kColors, "--palette flag.hex", "o.raw", "\x2d"},
    {"planes give the same pixels", kGrays, "--depth 2 --layout planes", "o.pgm", "P5\n4 1\n3\n\x00\x01\x02\x03"s},
    {"raw bits, white is 1, rows start a byte", "P1 9 2  101010101  010101010", "", "o.raw", "\x55\x00\xaa\x80"s},
    {"three bits in four", kThreeBits, "", "o.raw", "\x16\x30"},
    {"three planes, the lowest bit first", kThreeBits, "--layout planes", "o.raw", "\xa0\x60\x40"},
    {"fifteen bits, red on top", kPrimaries, "--depth 15", "o.raw", "\x00\x7c\xe0\x03\x1f\x00\x5f\x04"s},
    {"sixteen bits are the same", kPrimaries, "--depth 16", "o.raw", "\x00\x7c\xe0\x03\x1f\x00\x5f\x04"s},
    {"three bytes, red first", kPrimaries, "", "o.raw", "\xff\0\0\0\xff\0\0\0\xff\x08\x17\xff"s},
    {"words of 32 bits, blue first", kPrimaries, "--depth 32", "o.raw",
     "\0\0\xff\0\0\xff\0\0\xff\0\0\0\xff\x17\x08\0"s},
    {"grays in five bits a channel", kThreeBits, "--depth 15", "o.raw", "\x84\x10\x7b\x6f\xad\x35"}};

TEST(Convert, GivesTheExpectedFile) {
  const Workplace place;
  place.Write("flag.hex", "000000\n#ffffff\nff0000\n0000ff\n");
  for (const Case& c : kCases) ExpectFile(place, c);
}

TEST(Convert, AnIndexedImageWrittenAgainIsTheSame) {
  const Workplace place;
  std::string colors = "JASC-PAL\n0100\n16\n";  // so close that errors handed on would change them
  for (int i = 0; i < 16; ++i) colors += "100 " + std::to_string(100 + i) + " 100\n";
  place.Write("p.pal", colors);
  place.Write("in", "P3 1 16 255 " + colors.substr(colors.find("100 ")));
  ASSERT_EQ(place.Convert("--palette p.pal in a.png").status, 0);
  ASSERT_NE(place.Read("a.png"), "");
  for (const char* options : {"", "--palette p.pal", "--palette a.png"}) {
    EXPECT_EQ(place.Convert(std::string(options) + " a.png - --format png").out, place.Read("a.png")) << options;
  }
  EXPECT_EQ(place.Convert("a.png o.pgm").status, 0);  // unlike a format without colours
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
  place.Write("page", "P4\n80 60\n" + std::string(600, '\x5a'));
  place.Write("dot", "P1 2 3 101010");
  const std::string words = "--crop 64x48+8+6 --size 32x24 --overlay dot+1+2 page - --format pbm";
  const Ended explained = place.Convert("--explain " + words);
  EXPECT_EQ(explained.out, place.Convert(words).out);
  EXPECT_EQ(explained.err,
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

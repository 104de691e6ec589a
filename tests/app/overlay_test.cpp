// Overlays on outputs of every kind, every pixel worked out by hand.
#include <gtest/gtest.h>

#include "run.h"

namespace cvt::app::test {
namespace {

using namespace std::string_literals;

constexpr const char* kBits = "P1 9 2  000000000 111111111";
constexpr const char* kDots = "P1 3 2  101 101";
constexpr const char* kColors = "P3 4 1 255  0 0 0  250 5 5  5 5 250  255 255 255";
constexpr const char* kGrays = "P2 4 1 255  0 100 128 255";

// An indexed PNG of three pixels, white, red and white: two bits, the palette white, red, white, the pixels 0,
// 1, 2.
const std::string kHead =
    "\x89PNG\r\n\x1a\n"
    "\0\0\0\x0dIHDR\0\0\0\x03\0\0\0\x01\x02\x03\0\0\0\x66\x8e\xfc\x27"
    "\0\0\0\x09PLTE\xff\xff\xff\xff\0\0\xff\xff\xff\x9a\x2b\x24\x83"s;
const std::string kTail =
    "\0\0\0\x0dIDAT\x78\x01\x01\x02\0\xfd\xff\0\x18\0\x1a\0\x19\x2f\xcc\xbb\x0f"
    "\0\0\0\0IEND\xae\x42\x60\x82"s;
const std::string kRedTransparent = "\0\0\0\x02tRNS\xff\0\xe5\xb7\x30\x4a"s;

const std::string kFour = "--palette '#000,#fff,#f00,#00f' --overlay logo.png";

const Case kCases[] = {
    {"bits, across a byte", kBits, "--overlay dots+6+0", "o.pbm", "P4\n9 2\n\x02\x80\xfe\x80"s},
    {"white lets through", kBits, "--overlay dots+6+0 --transparent white", "o.pbm", "P4\n9 2\n\x02\x80\xff\x80"s},
    {"black lets through", kBits, "--overlay dots+6+0 --transparent 0", "o.pbm", "P4\n9 2\n\0\0\xfe\x80"s},
    {"bits written as planes", kBits, "--overlay dots+6+0 --layout planes", "o.pbm", "P4\n9 2\n\x02\x80\xfe\x80"s},
    {"at the top left by default", kBits, "--overlay dots", "o.pbm", "P4\n9 2\n\xa0\0\xbf\x80"s},
    {"four colours, opaque", kColors, kFour, "o.raw", "\x65"s},
    {"both whites let through", kColors, kFour + " --transparent '#fff'", "o.raw", "\x2d"s},
    {"one index lets through", kColors, kFour + " --transparent 0", "o.raw", "\x25"s},
    {"red lets through", kColors, kFour + " --transparent 1", "o.raw", "\x65"s},
    {"direct colour, opaque", kColors, "--overlay logo.png+1+0", "o.ppm",
     "P6\n4 1\n255\n\0\0\0\xff\xff\xff\xff\0\0\xff\xff\xff"s},
    {"direct colour, white lets through", kColors, "--overlay logo.png --transparent white", "o.ppm",
     "P6\n4 1\n255\n\0\0\0\xff\0\0\x05\x05\xfa\xff\xff\xff"s},
    {"fifteen bits", kColors, "--depth 15 --overlay logo.png+1+0 --transparent 1", "o.raw",
     "\0\0\xff\x7f\x1f\0\xff\x7f"s},
    {"thirty-two bits", kColors, "--depth 32 --overlay logo.png+1+0 --transparent white", "o.raw",
     "\0\0\0\0\x05\x05\xfa\0\0\0\xff\0\xff\xff\xff\0"s},
    {"three planes", "P2 3 1 7  1 6 3", "--layout planes --overlay four+2+0", "o.raw", "\x80\x40\x60"s},
    {"the nearest gray where its own is missing", kGrays, "--overlay four+1+0 --depth 2", "o.pgm",
     "P5\n4 1\n3\n\0\x02\x02\x03"s},
    {"placed on what is cut out and scaled", kGrays, "--crop 2x1+2+0 --size 4 --overlay dot+3+1", "o.pgm",
     "P5\n4 2\n255\n\x80\x80\xff\xff\x80\x80\xff\0"s},
    {"as it is on a swapped image", kBits, "--invert --overlay dots+6+0 --transparent white", "o.pbm",
     "P4\n9 2\n\xff\x80\x02\x80"s},
    {"white where the file has its own transparency", kColors, "--overlay clear.png", "o.ppm",
     "P6\n4 1\n255\n\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff"s},
    {"a file named like a place", kGrays, "--overlay dot+1+0", "o.pgm", "P5\n4 1\n255\n\0\0\x80\xff"s},
    {"a file named like a place, placed", kGrays, "--overlay two+1+0+2+0", "o.pgm",
     "P5\n4 1\n255\n\0\x64\x11\x22"s},
    {"named in full rather than by a part", kGrays, "--overlay two+1+0", "o.raw", "\x11\x22\x80\xff"},
    {"from standard input", kGrays, "--overlay -+2+0 <dot", "o.raw", "\0\x64\0\xff"s},
    // It hides the blue and brings a red: two bits hold the four colours that are seen then.
    {"a palette that is fitted counts it", "P3 5 1 255  9 9 9  0 200 0  10 20 250  255 255 255  9 9 9",
     "--overlay logo.png+2+0 --depth 2", "o.ppm",
     "P6\n5 1\n255\n\x09\x09\x09\0\xc8\0\xff\xff\xff\xff\0\0\xff\xff\xff"s}};

TEST(Overlay, GivesTheExpectedFile) {
  const Workplace place;
  place.Write("dots", kDots);
  place.Write("four", "P2 1 1 7  4");
  place.Write("two", "P2 1 1 255  0");
  place.Write("two+1+0", "P2 2 1 255  17 34");
  place.Write("dot", "P2 1 1 255  0");
  place.Write("logo.png", kHead + kTail);
  place.Write("clear.png", kHead + kRedTransparent + kTail);
  for (const Case& c : kCases) ExpectFile(place, c);
}

}  // namespace
}  // namespace cvt::app::test

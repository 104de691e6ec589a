// Raw output, every byte worked out by hand.
#include <gtest/gtest.h>

#include "run.h"

namespace cvt::app::test {
namespace {

using namespace std::string_literals;

constexpr const char* kBits = "P1 9 2  101010101  010101010";
constexpr const char* kThreeBits = "P2 3 1 7  1 6 3";
constexpr const char* kPrimaries = "P3 4 1 255  255 0 0  0 255 0  0 0 255  8 23 255";

struct Case {
  const char* what;
  const char* input;
  const char* options;
  std::string file;
};

const Case kCases[] = {
    {"one bit, white is 1, rows start a byte", kBits, "", "\x55\x00\xaa\x80"s},
    {"one plane is the same", kBits, "--layout planes", "\x55\x00\xaa\x80"s},
    {"three bits in four", kThreeBits, "", "\x16\x30"s},
    {"three planes, the lowest bit first", kThreeBits, "--layout planes", "\xa0\x60\x40"s},
    {"fifteen bits, red on top", kPrimaries, "--depth 15", "\x00\x7c\xe0\x03\x1f\x00\x5f\x04"s},
    {"sixteen bits are the same five a channel", kPrimaries, "--depth 16", "\x00\x7c\xe0\x03\x1f\x00\x5f\x04"s},
    {"three bytes, red first", kPrimaries, "", "\xff\0\0\0\xff\0\0\0\xff\x08\x17\xff"s},
    {"words of 32 bits, blue first", kPrimaries, "--depth 32", "\0\0\xff\0\0\xff\0\0\xff\0\0\0\xff\x17\x08\0"s},
    {"grays in five bits a channel", kThreeBits, "--depth 15", "\x84\x10\x7b\x6f\xad\x35"s},
    {"values are places in the palette", kPrimaries, "--palette '#00f,#0f0,#f00' --crop 3x1+0+0", "\x90"s}};

TEST(Raw, IsTheRowsOneAfterAnother) {
  for (const Case& c : kCases) {
    const Workplace place;
    place.Write("in", c.input);
    const Ended ended = place.Convert(std::string(c.options) + " in o.raw");
    EXPECT_EQ(ended.status, 0) << c.what << ": " << ended.err;
    EXPECT_EQ(place.Read("o.raw"), c.file) << c.what;
    EXPECT_EQ(place.Convert(std::string(c.options) + " in - --format raw").out, c.file) << c.what;
  }
}

}  // namespace
}  // namespace cvt::app::test

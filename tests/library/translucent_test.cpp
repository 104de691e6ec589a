// The translucent line writers: figures worked out by hand, and random lines against the twins.
#include "tests/library/sweep.h"
#include "tests/library/translucent_cases.h"

namespace cvt::test {

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Row {
  const char* what;
  TranslucentCase line;
  Written written;
};
const BandPlan kNibbles = {false, 7, 3, 8, 1, 4, {0x11, 0x22, 0x33, 0x44}};
const BandPlan kWords = {false, 5, 9, 2, 2, 16, Bytes(8, 0)}, kLongs = {false, 1, 0, 2, 1, 24, Bytes(8, 9)};
const BandPlan kPlanes = {true, 0, 0, 48, 1, 2, Bytes(12, 0xA5)};
const Bytes kSixIsSpared = {0, 0, 0, 0, 0, 0, 1};
const Row kRows[] = {
    {"an odd column", {kNibbles, 8, 3, {{3, 0xA}}}, {3, {0x1A, 0xAA, 0x33, 0x44}}},
    {"6 is spared",
     {kNibbles, 8, 3, {{1, 0xA}, {0, 7}, {2, 6}, {1, 0xB}}, Way::ByBand, kSixIsSpared},
     {4, {0x1A, 0x22, 0xB3, 0x44}}},
    {"whole bytes of planes",
     {kPlanes, 0, 0, {{40, 2}}},
     {40, {0, 0, 0, 0, 0, 0xA5, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xA5}}},
    // the low nibble is the pixel; the rest runs up to the start of the 16 bits and no further
    {"a value too wide spills", {kNibbles, 9, 3, {{1, 0x91234}}}, {1, {0x33, 0x42, 0x33, 0x44}}},
    {"no further than its unit", {kNibbles, 11, 3, {{1, 0x12345}}}, {1, {0x11, 0x22, 0x53, 0x44}}},
    {"words are little-endian", {kWords, 6, 9, {{1, 0x71234}}}, {1, {0, 0, 0x34, 0x12, 0, 0, 0, 0}}},
    {"longs too", {kLongs, 2, 0, {{1, 0x12345}}}, {1, {9, 9, 9, 9, 0x45, 0x23, 0x01, 0}}},
    {"the last pixel", {kWords, 6, 10, {{1, 1}}}, {1, {0, 0, 0, 0, 0, 0, 1, 0}}},
    {"before the first column", {kWords, 4, 9, {{1, 1}}}, {0, Bytes(8, 0)}},
    {"behind the last", {kWords, 7, 9, {{1, 1}}}, {0, Bytes(8, 0)}},
    {"above", {kWords, 5, 8, {{1, 1}}}, {0, Bytes(8, 0)}},
    {"below", {kWords, 5, 11, {{1, 1}}}, {0, Bytes(8, 0)}},
    {"less than no planes", {kPlanes, 0, 0, {{1, 1}}, Way::ByBand, {}, 0xFFFFFFFF}, {1, Bytes(12, 0xA5)}},
    {"planes: behind the last", {kPlanes, 48, 0, {{1, 1}}}, {0, Bytes(12, 0xA5)}},
    // called directly, the column behind the last is the next line's first, and the one before the first its last
    {"no edge on the right", {kWords, 7, 9, {{1, 0x1234}}, Way::Word}, {1, {0, 0, 0, 0, 0x34, 0x12, 0, 0}}},
    {"no edge on the left", {kWords, 4, 10, {{1, 0x1234}}, Way::Word}, {1, {0, 0, 0x34, 0x12, 0, 0, 0, 0}}}};

TEST(Translucent, PaintsWhatIsOpaque) {
  for (const Row& row : kRows) EXPECT_EQ(Write(Writer::Library, row.line), row.written) << row.what;
}

TEST(Translucent, ClearsPlanesThatNoValueReaches) {
  const Bytes bytes = Write(Writer::Library, {{true, 0, 0, 1, 1, 34, Bytes(68, 0xFF)}, 0, 0, {{1, 3}}}).bytes;
  for (std::size_t plane = 0; plane < 34; ++plane) EXPECT_EQ(bytes[2 * plane], plane < 2 ? 0xFF : 0x7F) << plane;
}

TEST(Translucent, AgreesWithItsTwins) {
  Sweep(3000, [](Dice& dice) {
    const TranslucentCase what = RandomTranslucent(dice);
    const Written library = Write(Writer::Library, what), twin = Write(Writer::Twin, what);
    ASSERT_EQ(library.count, twin.count);
    ASSERT_EQ(library.bytes, twin.bytes);
  });
}

}  // namespace

}  // namespace cvt::test

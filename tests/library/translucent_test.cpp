// The translucent line writers: figures worked out by hand, and random lines against the twins.
#include <gtest/gtest.h>

#include "tests/library/translucent_cases.h"

namespace cvt::test {

namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(Translucent, PaintsNibblesFromAnOddColumn) {
  Bytes opaque(16, 0);
  const BandPlan plan = {false, 7, 3, 8, 1, 4, {0x11, 0x22, 0x33, 0x44}};
  EXPECT_EQ(Write(Writer::Library, Way::ByBand, plan, 8, 3, {{3, 0xA}}, opaque),
            (Written{3, {0x1A, 0xAA, 0x33, 0x44}}));
  Bytes spares(16, 0);
  spares[5] = 1;
  EXPECT_EQ(Write(Writer::Library, Way::ByBand, plan, 8, 3, {{1, 0xA}, {0, 7}, {2, 5}, {1, 0xB}}, spares),
            (Written{4, {0x1A, 0x22, 0xB3, 0x44}}));
}

TEST(Translucent, PaintsWholeBytesOfPlanes) {
  Bytes opaque(4, 0);
  const BandPlan plan = {true, 0, 0, 48, 1, 2, Bytes(12, 0xA5)};
  EXPECT_EQ(Write(Writer::Library, Way::ByBand, plan, 0, 0, {{40, 2}}, opaque),
            (Written{40, {0, 0, 0, 0, 0, 0xA5, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xA5}}));
}

TEST(Translucent, ClearsPlanesThatNoValueReaches) {
  Bytes opaque(4, 0);
  const BandPlan plan = {true, 0, 0, 1, 1, 34, Bytes(68, 0xFF)};
  const Bytes bytes = Write(Writer::Library, Way::ByBand, plan, 0, 0, {{1, 3}}, opaque).bytes;
  for (std::size_t plane = 0; plane < 34; ++plane) EXPECT_EQ(bytes[2 * plane], plane < 2 ? 0xFF : 0x7F) << plane;
}

TEST(Translucent, SpillsValuesThatAreTooWideIntoThePixelsBefore) {
  Bytes opaque(65536, 0);
  const BandPlan plan = {false, 0, 0, 8, 1, 4, {0, 0, 0, 0}};
  // the low nibble is the pixel; the rest runs up to the start of the 16 bits and no further
  EXPECT_EQ(Write(Writer::Library, Way::ByBand, plan, 2, 0, {{1, 0x91234}}, opaque).bytes,
            (Bytes{0x23, 0x40, 0, 0}));
  EXPECT_EQ(Write(Writer::Library, Way::ByBand, plan, 4, 0, {{1, 0x12345}}, opaque).bytes, (Bytes{0, 0, 0x50, 0}));
}

TEST(Translucent, WritesWordsAndLongsLittleEndian) {
  Bytes opaque(65536, 0);
  const BandPlan words = {false, 1, 0, 3, 1, 16, Bytes(6, 9)}, longs = {false, 1, 0, 2, 1, 24, Bytes(8, 9)};
  EXPECT_EQ(Write(Writer::Library, Way::ByBand, words, 2, 0, {{2, 0x71234}}, opaque).bytes,
            (Bytes{9, 9, 0x34, 0x12, 0x34, 0x12}));
  EXPECT_EQ(Write(Writer::Library, Way::ByBand, longs, 2, 0, {{1, 0x1234}}, opaque).bytes,
            (Bytes{9, 9, 9, 9, 0x34, 0x12, 0, 0}));
}

TEST(Translucent, StartsInsideTheBandOrNotAtAll) {
  Bytes opaque(16, 0);
  for (const bool planes : {true, false}) {
    const BandPlan plan = {planes, 5, 9, 16, 2, 1, Bytes(4, 0x5A)};
    for (const auto& [x, y] : {std::pair{4, 9}, {21, 9}, {5, 8}, {5, 11}, {0, 0}, {65535, 10}})
      EXPECT_EQ(Write(Writer::Library, Way::ByBand, plan, static_cast<std::uint16_t>(x),
                      static_cast<std::uint16_t>(y), {{1, 1}}, opaque),
                (Written{0, Bytes(4, 0x5A)}))
          << x << ' ' << y;
    EXPECT_EQ(Write(Writer::Library, Way::ByBand, plan, 20, 10, {{1, 1}}, opaque).count, 1);
  }
  // called directly, the line above the second is the first, and the column before the first is its last
  const BandPlan words = {false, 5, 9, 2, 2, 16, Bytes(8, 0)};
  Written before = Write(Writer::Library, Way::Word, words, 7, 9, {{1, 0x1234}}, opaque = Bytes(65536, 0));
  EXPECT_EQ(before, (Written{1, {0, 0, 0, 0, 0x34, 0x12, 0, 0}}));
  EXPECT_EQ(Write(Writer::Library, Way::Word, words, 4, 10, {{1, 0x1234}}, opaque).bytes,
            (Bytes{0, 0, 0x34, 0x12, 0, 0, 0, 0}));
}

TEST(Translucent, AgreesWithItsTwins) {
  for (int i = 0; i < Rounds(3000) && !HasFatalFailure(); ++i) {
    Dice dice(static_cast<std::uint32_t>(i));
    TranslucentCase what = RandomTranslucent(dice);
    const Written library = Write(Writer::Library, what), twin = Write(Writer::Twin, what);
    ASSERT_EQ(library.count, twin.count) << "line " << i << " of seed " << Seed();
    ASSERT_EQ(library.bytes, twin.bytes) << "line " << i << " of seed " << Seed();
  }
}

}  // namespace

}  // namespace cvt::test

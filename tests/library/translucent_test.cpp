// The translucent line writers: figures worked out by hand, and random lines against the twins.
#include <gtest/gtest.h>

#include "tests/library/harness.h"
#include "tests/reference/color.h"

namespace cvt::test {

namespace {

struct Painted {
  std::uint16_t length;
  std::uint32_t value;
};

// Writes a line into a band with either side's writer and keeps the count and the bytes.
struct Written {
  std::uint16_t count;
  std::vector<std::uint8_t> bytes;
  bool operator==(const Written&) const = default;
};

enum class Writer : std::uint8_t { Library, Twin };
enum class Way : std::uint8_t { ByBand, Word, Long };

Written Write(Writer writer, Way way, const BandPlan& plan, std::uint16_t x, std::uint16_t y,
              const std::vector<Painted>& line, std::vector<std::uint8_t>& transparent) {
  World world({}, static_cast<std::uint16_t>(line.size()), {0});
  for (std::size_t i = 0; i < line.size(); ++i) {
    world.runLengths[i] = line[i].length;
    world.values[i] = line[i].value;
  }
  tagRasterPacked* band = world.MakeBand(plan);
  std::uint8_t* const table = transparent.data();
  tagCRLA* const context = &world.context;
  const bool library = writer == Writer::Library;
  Written result{};
  if (plan.planes) {
    tagPlaneData* cursor = RefOpenPlane(reinterpret_cast<tagRasterPlane*>(band));
    result.count = library ? CvtWritePlaneTranslucentLine(cursor, context, x, y, table)
                           : RefTranslucentPlanes(cursor, context, x, y, table);
  } else {
    tagPackedData* cursor = RefOpenPacked(band);
    if (way == Way::Word)
      result.count = library ? CvtWritePackedTransluceLineWord(cursor, context, x, y, table)
                             : RefTranslucentStored(2, cursor, context, x, y, table);
    else if (way == Way::Long)
      result.count = library ? CvtWritePackedTransluceLineLong(cursor, context, x, y, table)
                             : RefTranslucentStored(4, cursor, context, x, y, table);
    else
      result.count = library ? CvtWritePackedTranslucentLine(cursor, context, x, y, table)
                             : RefTranslucentPacked(cursor, context, x, y, table);
  }
  result.bytes = world.BytesOf(band);
  result.bytes.erase(result.bytes.begin(), result.bytes.begin() + 16);
  return result;
}

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
    const bool planes = dice.OneIn(3);
    const int depth = planes ? dice.Between(0, 32) : dice.Between(1, 32);
    const int width = dice.OneIn(10) ? dice.Between(0, 2000) : dice.Between(0, 90), lines = dice.Between(1, 3);
    const int left = dice.Of({0, 0, 3, 40000}), top = dice.Of({0, 7, 60000});
    BandPlan plan = {planes,
                     static_cast<std::uint16_t>(left),
                     static_cast<std::uint16_t>(top),
                     static_cast<std::uint16_t>(width),
                     static_cast<std::uint16_t>(lines),
                     static_cast<std::uint16_t>(depth),
                     {}};
    plan.pixels.resize(PixelBytes(planes, plan.width, plan.lineCount, plan.depth));
    for (std::uint8_t& b : plan.pixels) b = static_cast<std::uint8_t>(dice.Between(0, 255));
    const bool inside = width > 0 && !dice.OneIn(8);
    const int x = inside ? dice.Between(left, left + width - 1) : dice.Of({left - 1, left + width});
    const int y = dice.OneIn(8) ? dice.Of({top - 1, top + lines}) : dice.Between(top, top + lines - 1);
    int room = inside ? left + width - x : 0;
    std::vector<Painted> line;
    while (line.size() < 40 && !dice.OneIn(12)) {
      const int length = std::min(room, dice.Of({0, 1, 2, dice.Between(0, 20), dice.Between(0, 60), 2000}));
      const int value = dice.OneIn(2) ? dice.Between(0, 3) : dice.Between(0, (1 << std::min(depth, 12)) - 1);
      line.push_back({static_cast<std::uint16_t>(length), static_cast<std::uint32_t>(value)});
      if (dice.OneIn(6)) line.back().value = static_cast<std::uint32_t>(dice.Between(0, 0xFFFFF));
      room -= length;
    }
    if (dice.OneIn(5)) line.insert(line.end(), {{40000, 4}, {40000, 4}});
    static Bytes transparent(1 << 20);
    for (std::size_t v = 0; v < 4096; ++v) transparent[v] = dice.OneIn(3) ? static_cast<std::uint8_t>(v | 1) : 0;
    transparent[4] = 1;
    const auto write = [&](Writer writer) {
      return Write(writer, Way::ByBand, plan, static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y), line,
                   transparent);
    };
    const Written library = write(Writer::Library), twin = write(Writer::Twin);
    ASSERT_EQ(library.count, twin.count) << "line " << i << " of seed " << Seed() << ", depth " << depth;
    ASSERT_EQ(library.bytes, twin.bytes) << "line " << i << " of seed " << Seed() << ", depth " << depth;
  }
}

}  // namespace

}  // namespace cvt::test

// Cursors, context and bit inversion.
#include <gtest/gtest.h>

#include "tests/library/harness.h"

namespace cvt::test {

namespace {

using Fields = std::vector<std::int64_t>;

Fields FieldsOf(const tagPlaneData& c) {
  return {c.rowBytes, c.left, c.top, c.right, c.bottom, c.planeCount, c.planeBytes};
}
Fields FieldsOf(const tagPackedData& c) { return {c.rowUnits, c.left, c.top, c.right, c.bottom, c.depthClass}; }

struct CursorCase {
  const char* what;
  BandPlan band;
  Fields fields;
};
const CursorCase kCursors[] = {
    {"24 bits are stored in 32", {false, 7, 9, 3, 2, 24, {}}, {3, 7, 9, 10, 11, 5}},
    {"three bits as four, odd width", {false, 0, 0, 5, 1, 3, {}}, {2, 0, 0, 5, 1, 2}},
    {"no depth", {false, 1, 2, 50, 4, 0, {}}, {0, 1, 2, 51, 6, 5}},
    {"right and bottom wrap", {false, 65535, 65530, 2, 8, 8, {}}, {1, 65535, 65530, 1, 2, 3}},
    {"row bytes wrap before they are halved", {false, 0, 0, 16385, 1, 32, {}}, {1, 0, 0, 16385, 1, 5}},
    {"planes: rows of whole words", {true, 3, 4, 17, 5, 2, {}}, {4, 3, 4, 20, 9, 2, 20}},
    {"planes: the widest row", {true, 1, 65535, 65535, 1, 1, {}}, {8192, 1, 65535, 0, 0, 1, 8192}}};

TEST(Cursor, HasTheBandsGeometry) {
  for (const CursorCase& c : kCursors) {
    World world({}, 1, {});
    tagRasterPacked* band = world.MakeBand(c.band);
    auto* planes = reinterpret_cast<tagRasterPlane*>(band);
    auto* pixels = reinterpret_cast<std::uint8_t*>(band) + 12;
    const auto check = [&](auto* cursor) {
      EXPECT_EQ(FieldsOf(*cursor), c.fields) << c.what;
      EXPECT_TRUE(cursor->data == pixels) << c.what;
    };
    c.band.planes ? check(CvtOpenPlanePixel(planes)) : check(CvtOpenPackedPixel(band));
  }
}

TEST(Cursor, AgreesWithTheTwinAtEveryDepth) {
  for (std::uint16_t depth = 0; depth <= 40; ++depth)
    for (const int width : {0, 1, 3, 5, 7, 8, 9, 15, 16, 17, 31, 33, 511, 4095, 16384, 16387, 65535}) {
      SCOPED_TRACE(std::to_string(depth) + " bits, " + std::to_string(width));
      World world({}, 1, {});
      tagRasterPacked* packed = world.MakeBand({false, 77, 88, Word(width), 6, depth, {}});
      auto* planes = reinterpret_cast<tagRasterPlane*>(packed);
      EXPECT_EQ(FieldsOf(*CvtOpenPackedPixel(packed)), FieldsOf(*RefOpenPacked(packed)));
      EXPECT_EQ(FieldsOf(*CvtOpenPlanePixel(planes)), FieldsOf(*RefOpenPlane(planes)));
    }
}

// What a failure leaves allocated is in failure_rules.h.
TEST(Context, IsBuiltStepByStep) {
  for (const int capacity : {0, 640, 65535})
    for (const int failing : {0, 1, 2, 3}) {
      SCOPED_TRACE(std::to_string(capacity) + ", block " + std::to_string(failing));
      Script script;
      script.failAllocAt = failing;
      World world(script, 1, {});
      tagCRLA* made = &world.context;
      const CvtStatus status = CvtCreateCRLA(&made, Word(capacity));
      EXPECT_EQ(made == nullptr, failing == 1);
      EXPECT_TRUE(failing != 2 || made->runLengths == nullptr);
      EXPECT_TRUE(failing != 3 || made->values == nullptr);
      if (status != kCvtOk) continue;
      Fields sizes;
      for (const Entry& entry : world.log) sizes.push_back(entry.args[0]);
      EXPECT_EQ(sizes, (Fields{sizeof(tagCRLA), 2 * capacity, 4 * capacity}));
      EXPECT_TRUE(made->runCount == capacity);
      EXPECT_TRUE(made->mergeLeft != 0) << "left as the heap gave it";
    }
}

TEST(Context, IsReleasedInOrder) {
  for (unsigned present = 0; present < 32; ++present) {
    Script script;
    script.freeAnswer = -5;
    World world(script, 1, {});
    const auto block = [&](unsigned bit) { return (present >> bit & 1) != 0 ? SioAllocSMem(8) : nullptr; };
    tagCRLA made{};
    made.runLengths = static_cast<std::uint16_t*>(block(0));
    made.values = static_cast<std::uint32_t*>(block(1));
    made.errorRow = static_cast<std::int16_t*>(block(2));
    made.ownedBuffer2 = block(3);
    made.ownedBuffer1 = block(4);
    auto* record = static_cast<tagCRLA*>(SioAllocSMem(sizeof(tagCRLA)));  // goes last
    *record = made;
    Fields taken, released;
    for (const Entry& entry : world.log) taken.push_back(entry.args[1]);
    world.log.clear();
    EXPECT_EQ(CvtDestroyCRLA(record), -5);
    for (const Entry& entry : world.log) released.push_back(entry.args[0]);
    EXPECT_EQ(released, taken) << present;
  }
}

TEST(FlipBits, InvertsWholeWordsOfTheBlock) {
  for (std::size_t bytes = 0; bytes <= 9; ++bytes) {
    World world({}, 1, {});
    tagRasterPacked* band = world.MakeBand({true, 0, 0, 1, 1, 1, std::vector<std::uint8_t>(bytes, 0x0F)});
    std::vector<std::uint8_t> expected = world.BytesOf(band);
    for (std::size_t i = 0; i < bytes / 2 * 2; ++i) expected[16 + i] = 0xF0;
    CvtFlipBits(reinterpret_cast<tagRasterPlane*>(band));
    EXPECT_EQ(world.BytesOf(band), expected) << bytes;
  }
}

}  // namespace

}  // namespace cvt::test

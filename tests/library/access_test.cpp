// Cursors, context and bit inversion.
#include <gtest/gtest.h>

#include "tests/library/harness.h"

namespace cvt::test {

namespace {

std::string Fields(std::initializer_list<std::uint32_t> values) {
  std::string text;
  for (const std::uint32_t v : values) text += (text.empty() ? "" : " ") + std::to_string(v);
  return text;
}
std::string Text(const tagPlaneData& c) {
  return Fields({c.rowBytes, c.left, c.top, c.right, c.bottom, c.planeCount, c.planeBytes});
}
std::string Text(const tagPackedData& c) {
  return Fields({c.rowUnits, c.left, c.top, c.right, c.bottom, c.depthClass});
}

struct CursorCase {
  const char* what;
  BandPlan band;
  const char* fields;
};
const CursorCase kCursors[] = {
    {"24 bits are stored in 32", {false, 7, 9, 3, 2, 24, {}}, "3 7 9 10 11 5"},
    {"17 bits too", {false, 0, 0, 1, 1, 17, {}}, "1 0 0 1 1 5"},
    {"four bits, odd width", {false, 0, 0, 5, 1, 4, {}}, "2 0 0 5 1 2"},
    {"three bits as four", {false, 0, 0, 5, 1, 3, {}}, "2 0 0 5 1 2"},
    {"no depth", {false, 1, 2, 50, 4, 0, {}}, "0 1 2 51 6 5"},
    {"nine bits as sixteen", {false, 0, 0, 3, 1, 9, {}}, "3 0 0 3 1 4"},
    {"right and bottom wrap", {false, 65535, 65530, 2, 8, 8, {}}, "1 65535 65530 1 2 3"},
    {"row bytes wrap before they are halved", {false, 0, 0, 16385, 1, 32, {}}, "1 0 0 16385 1 5"},
    {"planes: rows of whole words", {true, 3, 4, 17, 5, 2, {}}, "4 3 4 20 9 2 20"},
    {"planes: no width", {true, 3, 4, 0, 5, 300, {}}, "0 3 4 3 9 300 0"},
    {"planes: the widest row", {true, 1, 65535, 65535, 1, 1, {}}, "8192 1 65535 0 0 1 8192"}};

TEST(Cursor, HasTheBandsGeometry) {
  for (const CursorCase& c : kCursors) {
    World world({}, 1, {});
    tagRasterPacked* band = world.MakeBand(c.band);
    auto* pixels = reinterpret_cast<std::uint8_t*>(band) + 12;
    if (c.band.planes) {
      tagPlaneData* cursor = CvtOpenPlanePixel(reinterpret_cast<tagRasterPlane*>(band));
      EXPECT_EQ(Text(*cursor), c.fields) << c.what;
      EXPECT_TRUE(cursor->data == pixels) << c.what;
      CvtClosePlanePixel(cursor);
    } else {
      tagPackedData* cursor = CvtOpenPackedPixel(band);
      EXPECT_EQ(Text(*cursor), c.fields) << c.what;
      EXPECT_TRUE(cursor->data == pixels) << c.what;
      CvtClosePackedPixel(cursor);
    }
    EXPECT_TRUE(world.LeftAllocated().empty()) << c.what;
  }
}

TEST(Cursor, AgreesWithTheTwinAtEveryDepth) {
  for (std::uint16_t depth = 0; depth <= 40; ++depth)
    for (const int width : {0, 1, 3, 5, 7, 8, 9, 15, 16, 17, 31, 33, 511, 4095, 16384, 16387, 65535}) {
      World world({}, 1, {});
      const auto columns = static_cast<std::uint16_t>(width);
      tagRasterPacked* packed = world.MakeBand({false, 77, 88, columns, 6, depth, {}});
      auto* planes = reinterpret_cast<tagRasterPlane*>(packed);
      EXPECT_EQ(Text(*CvtOpenPackedPixel(packed)), Text(*RefOpenPacked(packed))) << depth << " bits, " << width;
      EXPECT_EQ(Text(*CvtOpenPlanePixel(planes)), Text(*RefOpenPlane(planes))) << depth << " planes, " << width;
    }
}

TEST(Cursor, IsClosedByEitherName) {
  World world({}, 1, {});
  tagRasterPacked* band = world.MakeBand({false, 0, 0, 4, 1, 8, {}});
  tagPackedData* packed = CvtOpenPackedPixel(band);
  tagPlaneData* planes = CvtOpenPlanePixel(reinterpret_cast<tagRasterPlane*>(band));
  CvtClosePlanePixel(reinterpret_cast<tagPlaneData*>(packed));
  CvtClosePackedPixel(reinterpret_cast<tagPackedData*>(planes));
  EXPECT_TRUE(world.LeftAllocated().empty());
}

struct CreateCase {
  int failAllocAt;
  std::uint16_t capacity;
  CvtStatus status;
  std::vector<std::int64_t> sizes;  // asked of the heap, in order
  std::size_t left;
};
constexpr std::int64_t kRecord = sizeof(tagCRLA);
const CreateCase kCreates[] = {
    {0, 640, kCvtOk, {kRecord, 1280, 2560}, 3},       {0, 0, kCvtOk, {kRecord, 0, 0}, 3},
    {0, 65535, kCvtOk, {kRecord, 131070, 262140}, 3}, {1, 640, kCvtNoContext, {kRecord}, 0},
    {2, 640, kCvtNoRunArrays, {kRecord, 1280}, 1},    {3, 640, kCvtNoRunArrays, {kRecord, 1280, 2560}, 2}};

TEST(Context, IsBuiltStepByStep) {
  for (const CreateCase& c : kCreates) {
    Script script;
    script.failAllocAt = c.failAllocAt;
    World world(script, 1, {});
    tagCRLA* made = &world.context;
    EXPECT_EQ(CvtCreateCRLA(&made, c.capacity), c.status) << c.failAllocAt;
    std::vector<std::int64_t> sizes;
    for (const Entry& entry : world.log) sizes.push_back(entry.args[0]);
    EXPECT_EQ(sizes, c.sizes) << c.failAllocAt;
    EXPECT_EQ(world.LeftAllocated().size(), c.left) << c.failAllocAt;
    EXPECT_EQ(made == nullptr, c.status == kCvtNoContext) << c.failAllocAt;
    if (c.status == kCvtOk) {
      EXPECT_TRUE(made->runCount == c.capacity);
      EXPECT_TRUE(made->mergeLeft != 0) << "left as the heap gave it";
    }
    EXPECT_TRUE(c.failAllocAt != 2 || made->runLengths == nullptr);
    EXPECT_TRUE(c.failAllocAt != 3 || made->values == nullptr);
  }
}

TEST(Context, IsReleasedInOrder) {
  for (unsigned present = 0; present < 32; ++present) {
    Script script;
    script.freeAnswer = -5;
    World world(script, 1, {});
    auto* record = static_cast<tagCRLA*>(SioAllocSMem(sizeof(tagCRLA)));
    const auto block = [&](unsigned bit) { return (present >> bit & 1) != 0 ? SioAllocSMem(8) : nullptr; };
    record->runLengths = static_cast<std::uint16_t*>(block(0));
    record->values = static_cast<std::uint32_t*>(block(1));
    record->errorRow = static_cast<std::int16_t*>(block(2));
    record->ownedBuffer2 = block(3);
    record->ownedBuffer1 = block(4);
    std::vector<std::int64_t> expected;
    for (const Entry& entry : world.log) expected.push_back(entry.args[1]);  // blocks as they were made
    expected.push_back(expected.front());                                    // the record goes last
    expected.erase(expected.begin());
    world.log.clear();
    EXPECT_EQ(CvtDestroyCRLA(record), -5);
    std::vector<std::int64_t> released;
    for (const Entry& entry : world.log) released.push_back(entry.args[0]);
    EXPECT_EQ(released, expected) << present;
  }
}

TEST(FlipBits, InvertsWholeWordsOfTheBlock) {
  for (std::size_t bytes = 0; bytes <= 9; ++bytes) {
    World world({}, 1, {});
    tagRasterPacked* band = world.MakeBand({true, 0, 0, 1, 1, 1, std::vector<std::uint8_t>(bytes, 0x0F)});
    const std::vector<std::uint8_t> before = world.BytesOf(band);
    CvtFlipBits(reinterpret_cast<tagRasterPlane*>(band));
    std::vector<std::uint8_t> expected = before;
    for (std::size_t i = 0; i < bytes / 2 * 2; ++i) expected[16 + i] = 0xF0;
    EXPECT_EQ(world.BytesOf(band), expected) << bytes;
    CvtFlipBits(reinterpret_cast<tagRasterPlane*>(band));
    EXPECT_EQ(world.BytesOf(band), before) << bytes;
  }
}

}  // namespace

}  // namespace cvt::test

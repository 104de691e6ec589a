// Line and pixel access, every layout against a model that sets and reads one bit of one pixel at a time.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "cvt/cvtr2r.h"
#include "host/bits.h"

namespace cvt::host {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Values = std::vector<std::uint32_t>;

struct Layout {
  const char* name;
  bool planes;
  unsigned depth;   // bits in a pixel
  unsigned stored;  // bits that a pixel takes
};
constexpr Layout kLayouts[] = {
    {"packed 1", false, 1, 1},    {"packed 2", false, 2, 2},    {"packed 3", false, 3, 4},
    {"packed 4", false, 4, 4},    {"packed 8", false, 8, 8},    {"packed 15", false, 15, 16},
    {"packed 24", false, 24, 32}, {"packed 32", false, 32, 32}, {"1 plane", true, 1, 1},
    {"2 planes", true, 2, 2},     {"3 planes", true, 3, 3},     {"8 planes", true, 8, 8},
    {"9 planes", true, 9, 9},     {"24 planes", true, 24, 24},  {"32 planes", true, 32, 32}};

struct Shape {
  unsigned left, top, width, lines;
};
constexpr std::ptrdiff_t kGuard = 64, kPixels = kGuard + kBandHeaderBytes;
std::mt19937 generator(20240229);

// A band between guard bytes, all of them noise, with a cursor on it and a context that wide.
struct Canvas {
  Layout layout;
  Shape shape;
  std::size_t rowBytes;
  Bytes memory;
  tagPlaneData* plane = nullptr;
  tagPackedData* packed = nullptr;
  std::vector<std::uint16_t> lengths = std::vector<std::uint16_t>(2000);
  Values values = Values(2000);
  tagCRLA context{};

  Canvas(Layout l, Shape s) : layout(l), shape(s) {
    rowBytes = ((s.width * (l.planes ? 1 : l.stored) + 15) / 16) * 2;
    memory.resize(2 * kGuard + kBandHeaderBytes + rowBytes * s.lines * (l.planes ? l.depth : 1));
    for (auto& byte : memory) byte = Low8(generator());
    auto* band = reinterpret_cast<tagRasterPacked*>(memory.data() + kGuard);
    *band = {Low16(s.left),  Low16(s.top),   Low16(s.width),
             Low16(s.lines), Low16(l.depth), Low16(rowBytes * s.lines)};
    if (l.planes)
      plane = CvtOpenPlanePixel(reinterpret_cast<tagRasterPlane*>(band));
    else
      packed = CvtOpenPackedPixel(band);
    context.runLengths = lengths.data();
    context.values = values.data();
  }
  ~Canvas() { plane != nullptr ? CvtClosePlanePixel(plane) : CvtClosePackedPixel(packed); }
  Canvas(const Canvas&) = delete;

  // Which bit of the band bit k of a pixel is, the leftmost being 0.
  std::size_t BitAt(std::size_t column, std::size_t row, unsigned k) const {
    const std::size_t start = kPixels * 8 + 8 * rowBytes * row;
    if (layout.planes) return start + 8 * rowBytes * shape.lines * k + column;
    if (layout.stored <= 8) return start + (column + 1) * layout.stored - 1 - k;
    return start + column * layout.stored + k / 8 * 8 + 7 - k % 8;
  }
  std::uint32_t Get(std::size_t column, std::size_t row) const {
    std::uint32_t value = 0;
    for (unsigned k = 0; k < layout.stored; ++k) {
      const std::size_t bit = BitAt(column, row, k);
      value |= (memory[bit / 8] >> (7 - bit % 8) & 1U) << k;
    }
    return value;
  }
  // What `memory` should become; pixels outside are dropped.
  void Set(Bytes* expected, std::size_t column, std::size_t row, std::uint32_t value) const {
    if (column >= shape.width || row >= shape.lines) return;
    for (unsigned k = 0; k < layout.stored; ++k) {
      const std::size_t bit = BitAt(column, row, k);
      std::uint8_t& byte = (*expected)[bit / 8];
      byte = Low8((byte & ~(0x80U >> bit % 8)) | (value >> k & 1) << (7 - bit % 8));
    }
  }

  Values Read(unsigned wanted, unsigned x, unsigned y) {
    context.runCount = Low16(wanted);
    const unsigned runs = plane != nullptr ? CvtReadPlaneLine(plane, &context, Low16(x), Low16(y))
                                           : CvtReadPackedLine(packed, &context, Low16(x), Low16(y));
    Values pixels;
    for (unsigned k = 0; k < runs; ++k) pixels.insert(pixels.end(), lengths[k], values[k]);
    return pixels;
  }
  void Write(unsigned runs, unsigned x, unsigned y) {
    context.runCount = Low16(runs);
    plane != nullptr ? CvtWritePlaneLine(plane, &context, Low16(x), Low16(y))
                     : CvtWritePackedLine(packed, &context, Low16(x), Low16(y));
  }
  void WritePixel(unsigned x, unsigned y, std::uint32_t value) {
    plane != nullptr ? CvtWritePlanePixel(plane, Low16(x), Low16(y), value)
                     : CvtWritePackedPixel(packed, Low16(x), Low16(y), value);
  }
};

template <class Check>
void ForEveryLayoutAndStart(Check check) {
  for (const Layout& layout : kLayouts)
    for (unsigned width : {1U, 2U, 7U, 8U, 9U, 31U, 63U, 64U, 65U, 130U, 300U, 521U})
      for (unsigned start : {0U, 1U, 3U, 8U, 61U, 64U, width / 3, width / 2, width - 1}) {
        if (start >= width) continue;
        SCOPED_TRACE(std::string(layout.name) + ", width " + std::to_string(width) + ", from " +
                     std::to_string(start));
        check(layout, width, start);
        if (testing::Test::HasFailure()) return;
      }
}

TEST(ReadLine, DeliversThePixelsUpToTheRightEdge) {
  ForEveryLayoutAndStart([](const Layout& layout, unsigned width, unsigned start) {
    Canvas canvas(layout, {40, 7, width, 3});
    const Bytes before = canvas.memory;
    for (unsigned wanted : {0U, 1U, width / 2, width - start, width + 100}) {
      Values expected;
      for (unsigned i = start; i < std::min(width, start + wanted); ++i) expected.push_back(canvas.Get(i, 1));
      EXPECT_EQ(canvas.Read(wanted, 40 + start, 8), expected) << wanted << " wanted";
    }
    EXPECT_EQ(canvas.memory, before);
  });
}

TEST(ReadLine, MergesOneBitPixelsIntoTheLongestRuns) {
  for (const Layout& layout : {kLayouts[0], kLayouts[8]}) {
    Canvas canvas(layout, {0, 0, 200, 1});
    std::fill(canvas.memory.begin() + kPixels, canvas.memory.end(), std::uint8_t{0});
    for (std::size_t i : {5U, 6U, 63U, 64U, 65U, 199U}) canvas.Set(&canvas.memory, i, 0, 1);
    canvas.Read(200, 4, 0);
    const std::vector<std::uint16_t> lengths(canvas.lengths.begin(), canvas.lengths.begin() + 6);
    const Values values(canvas.values.begin(), canvas.values.begin() + 6);
    EXPECT_EQ(lengths, (std::vector<std::uint16_t>{1, 2, 56, 3, 133, 1})) << layout.name;
    EXPECT_EQ(values, (Values{0, 1, 0, 1, 0, 1})) << layout.name;
  }
}

TEST(WriteLine, ChangesThePixelsOfItsRunsAndNothingElse) {
  const struct {
    const char* what;
    unsigned shortest, longest;
  } kinds[] = {{"single pixels", 1, 1}, {"short runs, some empty", 0, 3}, {"long runs", 9, 70}};
  ForEveryLayoutAndStart([&](const Layout& layout, unsigned width, unsigned start) {
    for (const auto& kind : kinds)
      for (unsigned runs : {0U, 1U, 5U, width - start, width + 9}) {
        Canvas canvas(layout, {40, 7, width, 3});
        Bytes expected = canvas.memory;
        std::size_t at = start;
        for (unsigned k = 0; k < runs; ++k) {
          canvas.values[k] = static_cast<std::uint32_t>(generator());
          canvas.lengths[k] = Low16(kind.shortest + generator() % (kind.longest - kind.shortest + 1));
          for (unsigned i = 0; i < canvas.lengths[k]; ++i) canvas.Set(&expected, at++, 1, canvas.values[k]);
        }
        canvas.Write(runs, 40 + start, 8);
        EXPECT_EQ(canvas.memory, expected) << kind.what << ", " << runs;
      }
  });
}

// The second band ends at the last column of the widest image: the one after it is 65536, which 16 bits see as 0.
TEST(Lines, AreReadAndWrittenInsideTheRectangleOnly) {
  for (const Shape& shape : {Shape{10, 20, 19, 3}, Shape{65526, 65534, 10, 2}})
    for (const Layout& layout : kLayouts) {
      Canvas canvas(layout, shape);
      for (unsigned row = 0U - 3; row != shape.lines + 4; ++row)
        for (unsigned column = 0U - 3; column != shape.width + 6; ++column) {
          SCOPED_TRACE(std::string(layout.name) + ", " + std::to_string(column) + ", " + std::to_string(row));
          const bool inside = column < shape.width && row < shape.lines;
          const unsigned x = shape.left + column, y = shape.top + row;
          Bytes expected = canvas.memory;
          canvas.values[0] = static_cast<std::uint32_t>(generator());
          canvas.Set(&expected, column, row, canvas.values[0]);
          canvas.WritePixel(x, y, canvas.values[0]);
          ASSERT_EQ(canvas.memory, expected);
          ASSERT_EQ(canvas.Read(5, x, y).size(), inside ? std::min(5U, shape.width - column) : 0U);
          if (inside) continue;
          canvas.lengths[0] = 5;
          canvas.Write(1, x, y);
          ASSERT_EQ(canvas.memory, expected);
        }
    }
}

TEST(Lines, OfPixelsWithoutBitsAreEmpty) {
  Canvas canvas({"packed 0", false, 0, 0}, {0, 0, 9, 2});
  const Bytes before = canvas.memory;
  canvas.lengths[0] = 9;
  canvas.Write(1, 0, 0);
  canvas.WritePixel(3, 0, 1);
  EXPECT_TRUE(canvas.Read(9, 0, 0).empty());
  EXPECT_EQ(canvas.memory, before);
}

TEST(Lines, StorePixelsInTheBytesOfTheirLayout) {
  const struct {
    Layout layout;
    Values pixels;
    Bytes bytes;
  } cases[] = {{kLayouts[0], {1, 0, 1, 1, 0, 0, 0, 1, 1}, {0xB1, 0x80}},
               {kLayouts[1], {1, 2, 3, 0, 1}, {0x6C, 0x40}},
               {kLayouts[3], {0xA, 0xB, 0xC}, {0xAB, 0xC0}},
               {kLayouts[4], {0x12, 0x34}, {0x12, 0x34}},
               {kLayouts[5], {0x1234}, {0x34, 0x12}},
               {kLayouts[6], {0x123456}, {0x56, 0x34, 0x12, 0}},
               {kLayouts[10], {1, 2, 4, 7}, {0x90, 0, 0x50, 0, 0x30, 0}}};
  for (const auto& c : cases) {
    Canvas canvas(c.layout, {0, 0, static_cast<unsigned>(c.pixels.size()), 1});
    std::fill(canvas.memory.begin() + kPixels, canvas.memory.end(), std::uint8_t{0});
    std::copy(c.pixels.begin(), c.pixels.end(), canvas.values.begin());
    std::fill(canvas.lengths.begin(), canvas.lengths.end(), std::uint16_t{1});
    canvas.Write(static_cast<unsigned>(c.pixels.size()), 0, 0);
    const auto first = canvas.memory.begin() + kPixels;
    EXPECT_EQ(Bytes(first, first + static_cast<std::ptrdiff_t>(c.bytes.size())), c.bytes) << c.layout.name;
    EXPECT_EQ(canvas.Read(100, 0, 0), c.pixels) << c.layout.name;
  }
}

}  // namespace
}  // namespace cvt::host

// Line and pixel access, every layout against a model that sets and reads one bit of one pixel at a time.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "cvt/cvtr2r.h"

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
constexpr std::size_t kGuard = 64;
std::mt19937 generator(20240229);

unsigned Random(unsigned below) { return static_cast<unsigned>(generator() % below); }

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
    for (auto& byte : memory) byte = static_cast<std::uint8_t>(generator());
    const unsigned words[6] = {s.left, s.top, s.width, s.lines, l.depth, unsigned(rowBytes * s.lines)};
    auto* band = reinterpret_cast<tagRasterPacked*>(memory.data() + kGuard);
    const auto word = [&](int i) { return static_cast<std::uint16_t>(words[i]); };
    *band = {word(0), word(1), word(2), word(3), word(4), word(5)};
    if (l.planes)
      plane = CvtOpenPlanePixel(reinterpret_cast<tagRasterPlane*>(band));
    else
      packed = CvtOpenPackedPixel(band);
    context.runLengths = lengths.data();
    context.values = values.data();
  }
  ~Canvas() { plane != nullptr ? CvtClosePlanePixel(plane) : CvtClosePackedPixel(packed); }
  Canvas(const Canvas&) = delete;

  // Where bit k of a pixel is: byte in `memory`, mask.
  std::pair<std::size_t, std::uint8_t> BitAt(std::size_t column, std::size_t row, unsigned k) const {
    const std::size_t pixels = kGuard + kBandHeaderBytes;
    const auto mask = [](std::size_t bit) { return static_cast<std::uint8_t>(1U << bit); };
    if (layout.planes) return {pixels + (k * shape.lines + row) * rowBytes + column / 8, mask(7 - column % 8)};
    const std::size_t start = pixels + row * rowBytes;
    if (layout.stored > 8) return {start + column * layout.stored / 8 + k / 8, mask(k % 8)};
    return {start + column * layout.stored / 8, mask((8 - layout.stored - column * layout.stored % 8) + k)};
  }
  std::uint32_t Get(std::size_t column, std::size_t row) const {
    std::uint32_t value = 0;
    for (unsigned k = 0; k < layout.stored; ++k) {
      const auto [byte, mask] = BitAt(column, row, k);
      if ((memory[byte] & mask) != 0) value |= 1U << k;
    }
    return value;
  }
  // What `memory` should become; pixels outside are dropped.
  void Set(Bytes* expected, std::size_t column, std::size_t row, std::uint32_t value) const {
    if (column >= shape.width || row >= shape.lines) return;
    for (unsigned k = 0; k < layout.stored; ++k) {
      const auto [byte, mask] = BitAt(column, row, k);
      std::uint8_t& target = (*expected)[byte];
      target = static_cast<std::uint8_t>((value >> k & 1) != 0 ? target | mask : target & ~mask);
    }
  }

  Values Read(unsigned wanted, unsigned x, unsigned y) {
    context.runCount = static_cast<std::uint16_t>(wanted);
    const auto x16 = static_cast<std::uint16_t>(x), y16 = static_cast<std::uint16_t>(y);
    const unsigned runs = plane != nullptr ? CvtReadPlaneLine(plane, &context, x16, y16)
                                           : CvtReadPackedLine(packed, &context, x16, y16);
    Values pixels;
    for (unsigned k = 0; k < runs; ++k) pixels.insert(pixels.end(), lengths[k], values[k]);
    return pixels;
  }
  void Write(unsigned runs, unsigned x, unsigned y) {
    context.runCount = static_cast<std::uint16_t>(runs);
    const auto x16 = static_cast<std::uint16_t>(x), y16 = static_cast<std::uint16_t>(y);
    plane != nullptr ? CvtWritePlaneLine(plane, &context, x16, y16)
                     : CvtWritePackedLine(packed, &context, x16, y16);
  }
  void WritePixel(unsigned x, unsigned y, std::uint32_t value) {
    const auto x16 = static_cast<std::uint16_t>(x), y16 = static_cast<std::uint16_t>(y);
    plane != nullptr ? CvtWritePlanePixel(plane, x16, y16, value) : CvtWritePackedPixel(packed, x16, y16, value);
  }
};

constexpr unsigned kWidths[] = {1, 2, 7, 8, 9, 31, 63, 64, 65, 130, 300, 521};

std::vector<unsigned> StartsIn(unsigned width) {
  std::vector<unsigned> starts = {0, width / 3, width / 2, width - 1};
  for (unsigned start : {1U, 3U, 8U, 61U, 64U})
    if (start < width) starts.push_back(start);
  return starts;
}

template <class Check>
void ForEveryLayoutAndStart(Check check) {
  for (const Layout& layout : kLayouts)
    for (unsigned width : kWidths)
      for (unsigned start : StartsIn(width)) {
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
    const Bytes blank(canvas.memory.size(), 0);
    canvas.memory.assign(blank.begin(), blank.end());
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
          canvas.lengths[k] = static_cast<std::uint16_t>(kind.shortest + Random(kind.longest - kind.shortest + 1));
          for (unsigned i = 0; i < canvas.lengths[k]; ++i) canvas.Set(&expected, at++, 1, canvas.values[k]);
        }
        canvas.Write(runs, 40 + start, 8);
        EXPECT_EQ(canvas.memory, expected) << kind.what << ", " << runs;
      }
  });
}

TEST(WritePixel, SetsAPixelOfTheRectangleAndDropsAllOthers) {
  for (const Layout& layout : kLayouts) {
    Canvas canvas(layout, {10, 20, 19, 3});
    for (unsigned y = 17; y < 27; ++y)
      for (unsigned x = 7; x < 35; ++x) {
        Bytes expected = canvas.memory;
        const auto value = static_cast<std::uint32_t>(generator());
        canvas.Set(&expected, std::size_t{x} - 10, std::size_t{y} - 20, value);
        canvas.WritePixel(x, y, value);
        ASSERT_EQ(canvas.memory, expected) << layout.name << " " << x << "," << y;
      }
  }
}

TEST(Lines, OutsideTheBandAreNeitherReadNorWritten) {
  const struct {
    const char* what;
    unsigned x, y;
  } cases[] = {
      {"above", 10, 19}, {"below", 10, 23}, {"left of", 9, 20}, {"right of", 29, 20}, {"far", 65535, 65535}};
  for (const Layout& layout : kLayouts)
    for (const auto& c : cases) {
      Canvas canvas(layout, {10, 20, 19, 3});
      const Bytes before = canvas.memory;
      canvas.lengths[0] = 5;
      canvas.Write(1, c.x, c.y);
      EXPECT_EQ(canvas.memory, before) << layout.name << " " << c.what;
      EXPECT_TRUE(canvas.Read(5, c.x, c.y).empty()) << layout.name << " " << c.what;
    }
}

// The last column of the widest image: the column after it is 65536, which 16 bits see as 0.
TEST(Lines, ReachTheLastColumnAndLineOfTheCoordinates) {
  for (const Layout& layout : kLayouts) {
    Canvas canvas(layout, {65526, 65534, 10, 2});
    Bytes expected = canvas.memory;
    canvas.Set(&expected, 9, 1, 0x5A5A5A5A);
    canvas.WritePixel(65535, 65535, 0x5A5A5A5A);
    canvas.WritePixel(0, 65535, 0);
    EXPECT_EQ(canvas.memory, expected) << layout.name;
    EXPECT_EQ(canvas.Read(10, 65526, 65535).size(), 10U) << layout.name;
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
    std::fill(canvas.memory.begin() + kGuard + kBandHeaderBytes, canvas.memory.end(), std::uint8_t{0});
    std::copy(c.pixels.begin(), c.pixels.end(), canvas.values.begin());
    std::fill(canvas.lengths.begin(), canvas.lengths.end(), std::uint16_t{1});
    canvas.Write(static_cast<unsigned>(c.pixels.size()), 0, 0);
    const auto first = canvas.memory.begin() + kGuard + kBandHeaderBytes;
    EXPECT_EQ(Bytes(first, first + static_cast<std::ptrdiff_t>(c.bytes.size())), c.bytes) << c.layout.name;
    EXPECT_EQ(canvas.Read(100, 0, 0), c.pixels) << c.layout.name;
  }
}

}  // namespace

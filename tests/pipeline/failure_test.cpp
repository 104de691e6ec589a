// Whatever goes wrong is told in one line, and everything is given back.

#include <gtest/gtest.h>

#include "host/heap.h"
#include "tests/pipeline/picture.h"

namespace cvt::test {
namespace {

using namespace cvt::pipeline;

TEST(Refuse, SaysWhatIsWrongAndWhatToDo) {
  struct Case {
    const char* what;
    Image image;
    Settings settings;
    const char* message;
  };
  const Settings bits{.depth = 1, .palette = GrayRamp(1)};
  const Case kCases[] = {
      {"no pixels", {0, 5, 8, GrayRamp(8)}, bits, "no pixels"},
      {"too wide", {65536, 1, 1, GrayRamp(1)}, bits, "neither side may exceed 65535"},
      {"too tall", {1, 70000, 1, GrayRamp(1)}, bits, "neither side may exceed 65535"},
      {"odd depth", {4, 4, 12, GrayRamp(8)}, bits, "12 bits a pixel cannot be read"},
      {"palette without colours", {4, 4, 8, {}}, bits, "palette does not fit"},
      {"palette too large", {4, 4, 1, GrayRamp(2)}, bits, "palette does not fit"},
      {"planes of colour", {4, 4, 24, {}, Layout::Planes}, bits, "planes of direct colour"},
      {"line too long for a band",
       {17000, 1, kDirectDepth},
       {.depth = 2, .palette = {{255, 0, 0}, {0, 0, 0}, {9, 9, 9}, {1, 2, 3}}},
       "at most 16380 pixels"},
      {"output line too long",
       {65535, 1, 1, GrayRamp(1)},
       {.depth = 8, .palette = GrayRamp(8)},
       "8 bits of output does not fit a band"},
      {"depth 9", {4, 4, 8, GrayRamp(8)}, {.depth = 9, .palette = GrayRamp(8)}, "depth 9 cannot be written"},
      {"no palette", {4, 4, 8, GrayRamp(8)}, {.depth = 1, .palette = {}}, "0 colours do not fit"},
      {"too many colours", {4, 4, 8, GrayRamp(8)}, {.depth = 1, .palette = GrayRamp(2)}, "4 colours do not fit"},
      {"threshold",
       {4, 4, 8, GrayRamp(8)},
       {.depth = 1, .palette = GrayRamp(1), .threshold = 257},
       "threshold 257"},
      {"palette for direct colour",
       {4, 4, 8, GrayRamp(8)},
       {.depth = 24, .palette = GrayRamp(1)},
       "has no palette"},
      {"halftoned direct colour",
       {4, 4, 8, GrayRamp(8)},
       {.depth = 24, .halftone = Halftone::Diffusion},
       "not halftoned"},
      {"planes of direct output",
       {4, 4, 8, GrayRamp(8)},
       {.depth = 24, .layout = Layout::Planes},
       "cannot be written"},
      {"palettes of two sizes",
       {4, 4, 8, GrayRamp(8)},
       {.depth = 1, .palette = GrayRamp(1), .writtenPalette = GrayRamp(2)},
       "differ in size"},
      {"thresholds that are not there",
       {4, 4, 8, GrayRamp(8)},
       {.depth = 1, .palette = GrayRamp(1), .thresholds = {4, 4, {1, 2, 3}}},
       "a matrix of 4 x 4"},
      {"gamma", {4, 4, 8, GrayRamp(8)}, {.depth = 1, .palette = GrayRamp(1), .gamma = 0}, "no positive number"},
      {"crop outside",
       {9, 9, 8, GrayRamp(8)},
       {.depth = 1, .palette = GrayRamp(1), .crop = {5, 0, 5, 9}},
       "does not lie within"},
      {"size", {4, 4, 8, GrayRamp(8)}, {.depth = 1, .palette = GrayRamp(1), .width = 70000}, "cannot be made"},
      {"widths whose product wraps",
       {60000, 4, 1, GrayRamp(1)},
       {.depth = 1, .palette = GrayRamp(1), .width = 50000},
       "the largest new width is 35791"},
      {"heights that are scaled",
       {4, 40000, 8, GrayRamp(8)},
       {.depth = 1, .palette = GrayRamp(1), .height = 10},
       "32767"},
      {"smooth heights that no parts serve",
       {4, 4300, 8, GrayRamp(8)},
       {.depth = 1, .palette = GrayRamp(1), .height = 4299},
       "4300 lines cannot be averaged to 4299"},
      {"enlarged line too long",
       {33000, 4, 8, GrayRamp(8)},
       {.depth = 8, .palette = GrayRamp(8), .width = 65010},
       "after scaling does not fit a band of 65000"},
      {"overlay beyond the edge",
       {9, 9, 8, GrayRamp(8)},
       {.depth = 1, .palette = GrayRamp(1), .overlay = {{3, 1, 8, GrayRamp(8)}, {0, 0, 0}, 7, 0, -1}},
       "does not lie within"},
      {"overlay of direct colour",
       {9, 9, 8, GrayRamp(8)},
       {.depth = 1, .palette = GrayRamp(1), .overlay = {{1, 1, 24}, {0, 0, 0}, 0, 0, -1}},
       "the overlay has no palette"},
      {"colour that cannot be kept",
       {9, 9, 24},
       {.depth = 24, .width = 4, .reduce = Reduce::Keep, .keepColor = {255, 0, 0}},
       "keep black"},
      {"green that cannot be kept",
       {9, 9, 24},
       {.depth = 24, .width = 4, .reduce = Reduce::Keep, .keepColor = {0, 128, 0}},
       "keep black"},
  };
  for (const Case& c : kCases) {
    const std::string message = Refusal({c.image, {}}, c.settings);
    EXPECT_NE(message.find(c.message), std::string::npos) << c.what << ": " << message;
    EXPECT_EQ(message.back(), ')') << c.what << " does not say what to do: " << message;
  }
}

TEST(Refuse, TakesWhatJustFits) {
  struct Case {
    Image image;
    Settings settings;
  };
  const Case kCases[] = {
      {{33000, 4, 8, GrayRamp(8)},
       {.depth = 8, .palette = GrayRamp(8), .width = 65010, .enlarge = Enlarge::Smooth}},
      {{32768, 2, 1, GrayRamp(1)}, {.depth = 1, .palette = GrayRamp(1), .crop = {1, 0, 32766, 1}}}};
  std::vector<std::string> lines;
  for (const Case& c : kCases) EXPECT_EQ(Explain(c.image, c.settings, &lines).message, "");
}

// A conversion of several bands whose source or sink fails at the n-th row.
Status RunWithFailure(Halftone halftone, std::int32_t failingRead, std::int32_t failingWrite, bool* ended) {
  const Picture picture = NoisePicture({30, 20, 8, GrayRamp(8)}, 3);
  const std::vector<std::uint8_t> rows = RowsOf(picture);
  RowSource source = ReadMemory(picture.image, rows.data(), RowBytes(picture.image));
  const auto read = source.read;
  source.read = [=, n = 0](std::uint8_t* row) mutable {
    return ++n == failingRead ? Fail(Code::Input, "row lost (find it)") : read(row);
  };
  RowSink sink;
  sink.begin = [](const Image&) { return Ok(); };
  sink.write = [=](std::int32_t y, const std::uint8_t*) {
    return y + 1 == failingWrite ? Fail(Code::Output, "disk full (empty it)") : Ok();
  };
  sink.end = [ended] {
    *ended = true;
    return Ok();
  };
  return Convert(source, {.depth = 1, .palette = GrayRamp(1), .halftone = halftone, .bandLines = 6}, sink);
}

TEST(Fail, StopsAtTheRowThatFailedAndGivesEverythingBack) {
  for (const Halftone halftone : {Halftone::Nearest, Halftone::Diffusion})
    for (const std::int32_t row : {1, 6, 7, 20}) {
      const std::int64_t before = host::heapUse.liveBlocks;
      bool ended = false;
      EXPECT_EQ(RunWithFailure(halftone, row, 0, &ended).message, "row lost (find it)");
      EXPECT_EQ(RunWithFailure(halftone, 0, row, &ended).message, "disk full (empty it)");
      EXPECT_FALSE(ended);
      EXPECT_EQ(host::heapUse.liveBlocks, before);
    }
}

// Runs a conversion with every allocation failing once and returns how many there were.
int FailEveryAllocation(Halftone halftone) {
  for (int n = 1;; ++n) {
    const std::int64_t before = host::heapUse.liveBlocks;
    host::heapUse.failIn = n;
    bool ended = false;
    const Status status = RunWithFailure(halftone, 0, 0, &ended);
    const bool failed = host::heapUse.failIn == 0;
    host::heapUse.failIn = 0;
    EXPECT_EQ(host::heapUse.liveBlocks, before) << "allocation " << n;
    if (!failed) return n - 1;
    EXPECT_EQ(status.code, Code::Limit) << "allocation " << n;
    EXPECT_FALSE(ended);
  }
}

TEST(Fail, TellsThatMemoryRanOutAndGivesEverythingBackWhicheverAllocationFails) {
  // For each of four bands a descriptor, two cursors and a sub-band at the least.
  EXPECT_GT(FailEveryAllocation(Halftone::Nearest), 16);
  EXPECT_GT(FailEveryAllocation(Halftone::Diffusion), 16);
}

}  // namespace
}  // namespace cvt::test

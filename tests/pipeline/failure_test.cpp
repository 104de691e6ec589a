// Whatever goes wrong is told in one line, and everything is given back.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <new>

#include "cvt/host.h"
#include "host/heap.h"
#include "tests/pipeline/picture.h"

namespace cvt::test {
namespace {

using namespace cvt::pipeline;

// The message of a conversion that must not succeed.
std::string Refusal(const Image& image, const Settings& settings) {
  RowSource source{image, [](std::uint8_t*) {
                     ADD_FAILURE() << "a row was read";
                     return Ok();
                   }};
  RowSink sink;
  sink.begin = [](const Image&) {
    ADD_FAILURE() << "the sink was opened";
    return Ok();
  };
  return Convert(source, settings, sink).message;
}

TEST(Refuse, SaysWhatIsWrongAndWhatToDo) {
  const std::vector<IRGB> bw = GrayRamp(1), ramp = GrayRamp(8);
  const std::vector<std::uint8_t> wide(256);
  const Image gray{9, 9, 8, ramp}, color{9, 9, kDirectDepth}, dot{1, 1, 1, bw}, dash{3, 1, 1, bw};
  const Settings bits{.depth = 1, .palette = bw}, grays{.depth = 8, .palette = ramp};
  const struct {
    const char* message;
    Image image;
    Settings settings;
  } cases[] = {
      {"no pixels", {0, 5, 8, ramp}, bits},
      {"65536 x 1 pixels: neither side may exceed 65535", {65536, 1, 1, bw}, bits},
      {"1 x 70000 pixels: neither side may exceed 65535", {1, 70000, 1, bw}, bits},
      {"12 bits a pixel cannot be read", {4, 4, 12, ramp}, bits},
      {"palette does not fit", {4, 4, 8, {}}, bits},
      {"palette does not fit", {4, 4, 1, GrayRamp(2)}, bits},
      {"planes of direct colour", {4, 4, 24, {}, Layout::Planes}, bits},
      {"at most 16380 pixels", {17000, 1, 24}, {.depth = 2, .palette = Distinct(4)}},
      {"at most 65520 pixels", {65535, 1, 8, ramp, Layout::Planes}, bits},
      {"8 bits of output does not fit a band", {65535, 1, 1, bw}, grays},
      {"depth 9 cannot be written", gray, {.depth = 9, .palette = ramp}},
      {"0 colours do not fit", gray, {.depth = 1, .palette = {}}},
      {"4 colours do not fit", gray, {.depth = 1, .palette = GrayRamp(2)}},
      {"threshold 257", gray, {.depth = 1, .palette = bw, .threshold = 257}},
      {"direct colour has no palette", gray, {.depth = 24, .palette = bw}},
      {"not halftoned", gray, {.depth = 24, .halftone = Halftone::Diffusion}},
      {"cannot be written", gray, {.depth = 24, .layout = Layout::Planes}},
      {"differ in size", gray, {.depth = 1, .palette = bw, .writtenPalette = GrayRamp(2)}},
      {"a matrix of 4 x 4", gray, {.depth = 1, .palette = bw, .thresholds = {4, 4, {1, 2, 3}}}},
      {"a matrix of 256 x 1", gray, {.depth = 1, .palette = bw, .thresholds = {256, 1, wide}}},
      {"no positive number", gray, {.depth = 1, .palette = bw, .gamma = 0}},
      {"no positive number", gray, {.depth = 1, .palette = bw, .gamma = std::nan("")}},
      {"does not lie within", gray, {.depth = 1, .palette = bw, .crop = {5, 0, 5, 9}}},
      {"does not lie within", gray, {.depth = 1, .palette = bw, .crop = {-1, 0, 5, 9}}},
      {"does not lie within", gray, {.depth = 1, .palette = bw, .crop = {0, 0, 0, 9}}},
      {"beyond column or line 32767", {32768, 1, 1, bw}, {.depth = 1, .palette = bw, .crop = {0, 0, 32768, 1}}},
      {"a size of 70000 x 0 cannot be made", gray, {.depth = 1, .palette = bw, .width = 70000}},
      {"a size of -1 x 0 cannot be made", gray, {.depth = 1, .palette = bw, .width = -1}},
      {"the largest new width is 35791", {60000, 4, 1, bw}, {.depth = 1, .palette = bw, .width = 50000}},
      {"may not exceed 32767", {4, 32768, 8, ramp}, {.depth = 1, .palette = bw, .height = 10}},
      {"4300 lines cannot be averaged to 8599",
       {4, 4300, 8, ramp},
       {.depth = 1, .palette = bw, .height = 8599, .enlarge = Enlarge::Smooth}},
      {"fit a band of 65000", {33000, 4, 1, bw}, {.depth = 8, .palette = ramp, .width = 65010}},
      {"fit a band of 65000", {33000, 4, 8, ramp}, {.depth = 8, .palette = ramp, .width = 65010}},
      {"does not lie within", gray, {.depth = 1, .palette = bw, .overlay = {dash, {0}, 7}}},
      {"does not lie within", gray, {.depth = 1, .palette = bw, .overlay = {dash, {0}, -1}}},
      {"the overlay has no palette", gray, {.depth = 1, .palette = bw, .overlay = {{1, 1, 24}, {0, 0, 0}}}},
      {"the overlay's rows", gray, {.depth = 1, .palette = bw, .overlay = {dot, {0, 0}}}},
      {"the transparent index", gray, {.depth = 1, .palette = bw, .overlay = {dot, {0}, 0, 0, 2}}},
      {"keep black", color, {.depth = 24, .width = 4, .reduce = Reduce::Keep, .keepColor = {255, 0, 0}}},
      {"keep black", color, {.depth = 24, .width = 4, .reduce = Reduce::Keep, .keepColor = {0, 128, 0}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.message);
    const std::string message = Refusal(c.image, c.settings);
    EXPECT_NE(message.find(c.message), std::string::npos) << message;
    EXPECT_TRUE(message.ends_with(")")) << "does not say what to do: " << message;
  }
}

TEST(Refuse, TakesWhatJustFits) {
  const std::vector<IRGB> bw = GrayRamp(1), ramp = GrayRamp(8);
  const struct {
    Image image;
    Settings settings;
  } cases[] = {{{33000, 4, 8, ramp}, {.depth = 8, .palette = ramp, .width = 65010, .enlarge = Enlarge::Smooth}},
               {{32768, 2, 1, bw}, {.depth = 1, .palette = bw, .crop = {1, 0, 32766, 1}}},
               {{9, 9, 1, bw}, {.depth = 1, .palette = bw, .threshold = 256}}};
  std::vector<std::string> lines;
  for (const auto& c : cases) EXPECT_EQ(Explain(c.image, c.settings, &lines).message, "");
}

// A conversion of several bands that fails at the n-th row read or written, 0 for the opening of the sink.
struct Failing {
  std::int32_t read = -1, write = -1;
};

Status RunWithFailure(const Settings& settings, Failing failing, bool* ended) {
  const Rows rows = RowsOf(NoisePicture({30, 20, 8, GrayRamp(8)}, 3));
  RowSource source = ReadMemory(rows.image, rows.bytes.data(), RowBytes(rows.image));
  source.read = [=, n = 0, read = source.read](std::uint8_t* row) mutable {
    return ++n == failing.read ? Fail(Code::Input, "row lost (find it)") : read(row);
  };
  const auto write = [=](std::int32_t n) {
    return n == failing.write ? Fail(Code::Output, "disk full (empty it)") : Ok();
  };
  RowSink sink;
  sink.begin = [=](const Image&) { return write(0); };
  sink.write = [=](std::int32_t y, const std::uint8_t*) { return write(y + 1); };
  sink.end = [ended] {
    *ended = true;
    return Ok();
  };
  if (settings.layout == Layout::Planes) sink = PackRows(sink);
  return Convert(source, settings, sink);
}

// What a sink takes from the heap, and fails, is its own; what it throws does not reach the library.
TEST(Fail, LeavesTheSinkWhatIsTheSinks) {
  for (const bool throws : {false, true}) {
    const std::int64_t before = host::heapUse.liveBlocks;
    void* block = nullptr;
    RowSink sink;
    sink.begin = [](const Image&) { return Ok(); };
    sink.write = [&](std::int32_t, const std::uint8_t*) {
      block = SioAllocSMem(8);
      if (throws) throw std::bad_alloc();
      return Fail(Code::Output, "disk full (empty it)");
    };
    sink.end = [] { return Ok(); };
    const Rows rows = RowsOf(NoisePicture({30, 20, 8, GrayRamp(8)}, 3));
    RowSource source = ReadMemory(rows.image, rows.bytes.data(), RowBytes(rows.image));
    const Status status = Convert(source, {.depth = 4, .palette = GrayRamp(4)}, sink);
    EXPECT_EQ(status.code, throws ? Code::Limit : Code::Output) << status.message;
    EXPECT_EQ(host::heapUse.liveBlocks, before + 1);
    SioFreeSMem(block);
  }
}

// Of several bands each.
std::vector<Settings> EverySettings() {
  const Overlay dot{{1, 1, 1, GrayRamp(1)}, {0}};
  return {{.depth = 1, .palette = GrayRamp(1), .bandLines = 6},
          {.depth = 1, .palette = GrayRamp(1), .halftone = Halftone::Diffusion, .bandLines = 6},
          {.depth = 4, .palette = GrayRamp(4), .overlay = dot, .bandLines = 6},
          {.depth = 4, .palette = GrayRamp(4), .layout = Layout::Planes, .overlay = dot, .bandLines = 6}};
}

TEST(Fail, StopsAtTheRowThatFailedAndGivesEverythingBack) {
  for (const Settings& settings : EverySettings())
    for (const std::int32_t row : {0, 1, 6, 7, 20}) {
      const std::int64_t before = host::heapUse.liveBlocks;
      bool ended = false;
      EXPECT_EQ(RunWithFailure(settings, {.write = row}, &ended).message, "disk full (empty it)");
      EXPECT_EQ(RunWithFailure(settings, {.read = std::max(row, 1)}, &ended).message, "row lost (find it)");
      EXPECT_FALSE(ended);
      EXPECT_EQ(host::heapUse.liveBlocks, before);
    }
}

TEST(Fail, TellsThatMemoryRanOutAndGivesEverythingBackWhicheverAllocationFails) {
  for (const Settings& settings : EverySettings()) {
    bool failed = true;
    int n = 0;
    while (failed) {
      SCOPED_TRACE("allocation " + std::to_string(++n));
      const std::int64_t before = host::heapUse.liveBlocks;
      host::heapUse.failIn = n;
      bool ended = false;
      const Status status = RunWithFailure(settings, {}, &ended);
      failed = host::heapUse.failIn == 0;
      host::heapUse.failIn = 0;
      EXPECT_EQ(host::heapUse.liveBlocks, before);
      EXPECT_EQ(status.message, failed ? "memory ran out (free some and try again)" : "");
      EXPECT_NE(ended, failed);
    }
    EXPECT_GT(n, 17);  // for each of four bands a descriptor, two cursors and a sub-band at the least
  }
}

}  // namespace
}  // namespace cvt::test

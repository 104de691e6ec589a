// Scaling: every method on gray, colour and one-bit images, by whole and by fractional ratios.

#include "bench/bench.h"

namespace cvt::bench {
namespace {

const Image kGray{4000, 3000, 8, GrayRamp(8)};
const Image kColor{4000, 3000, kDirectDepth};
const Image kSmallGray{1000, 750, 8, GrayRamp(8)};
const Image kSmallColor{1000, 750, kDirectDepth};

// A page as a scanner gives it: white, with lines of text and rules.
std::vector<std::uint8_t> Page(const Image& image) {
  std::vector<std::uint8_t> rows(RowBytes(image) * static_cast<std::size_t>(image.height));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::size_t x = i % RowBytes(image), y = i / RowBytes(image);
    if (y % 60 < 30 && x % 5 < 3 && (x * 7 + y / 4) % 11 < 5) rows[i] = static_cast<std::uint8_t>(0x3C << y % 3);
    if (y % 500 == 0) rows[i] = 0xFF;
  }
  return rows;
}

void ScalePage(benchmark::State& state, std::int32_t width, std::int32_t height, Reduce reduce) {
  const Image page{2480, 3508, 1, {{255, 255, 255}, {0, 0, 0}}};
  const std::vector<std::uint8_t> rows = Page(page);
  const Settings settings{.depth = 1, .palette = page.palette, .width = width, .height = height, .reduce = reduce};
  Image written;
  std::vector<std::uint8_t> out;
  for (auto _ : state) {
    RowSource source = ReadMemory(page, rows.data(), RowBytes(page));
    RowSink sink = WriteMemory(&written, &out);
    if (const Status status = Convert(source, settings, sink); Failed(status))
      return state.SkipWithError(status.message.c_str());
  }
  CountPixels(state, std::int64_t{page.width} * page.height);
}

Settings GrayTo(std::int32_t width, std::int32_t height, Reduce reduce, Enlarge enlarge = Enlarge::Replicate) {
  return {
      .depth = 8, .palette = GrayRamp(8), .width = width, .height = height, .reduce = reduce, .enlarge = enlarge};
}
Settings ColorTo(std::int32_t width, std::int32_t height, Reduce reduce, Enlarge enlarge = Enlarge::Replicate) {
  return {.depth = kDirectDepth, .width = width, .height = height, .reduce = reduce, .enlarge = enlarge};
}

BENCHMARK_CAPTURE(WholePath, gray_smooth_to_1280, kGray, GrayTo(1280, 960, Reduce::Smooth));
BENCHMARK_CAPTURE(WholePath, gray_smooth_to_half, kGray, GrayTo(2000, 1500, Reduce::Smooth));
BENCHMARK_CAPTURE(WholePath, color_smooth_to_1280, kColor, ColorTo(1280, 960, Reduce::Smooth));
BENCHMARK_CAPTURE(WholePath, gray_decimate_to_1280, kGray, GrayTo(1280, 960, Reduce::Decimate));
BENCHMARK_CAPTURE(WholePath, color_decimate_to_half, kColor, ColorTo(2000, 1500, Reduce::Decimate));
BENCHMARK_CAPTURE(WholePath, gray_keep_to_1280, kGray, GrayTo(1280, 960, Reduce::Keep));
BENCHMARK_CAPTURE(WholePath, gray_replicate_to_double, kSmallGray, GrayTo(2000, 1500, Reduce::Smooth));
BENCHMARK_CAPTURE(WholePath, gray_replicate_by_1_7, kSmallGray, GrayTo(1700, 1275, Reduce::Smooth));
BENCHMARK_CAPTURE(WholePath, color_replicate_to_double, kSmallColor, ColorTo(2000, 1500, Reduce::Smooth));
BENCHMARK_CAPTURE(WholePath, gray_smooth_to_double, kSmallGray,
                  GrayTo(2000, 1500, Reduce::Smooth, Enlarge::Smooth));
BENCHMARK_CAPTURE(ScalePage, keep_to_half, 1240, 1754, Reduce::Keep);
BENCHMARK_CAPTURE(ScalePage, keep_to_37_percent, 918, 1298, Reduce::Keep);
BENCHMARK_CAPTURE(ScalePage, decimate_to_half, 1240, 1754, Reduce::Decimate);

}  // namespace
}  // namespace cvt::bench

// Source pixels a second: whole paths as an application runs them, and single routines on one band.
//
// The picture is a gradient with noise on it: every pixel differs from its neighbours as in a photograph,
// so that no run is longer than chance makes it.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "cvt/cvtr2r.h"
#include "host/conversion.h"
#include "pipeline/band.h"
#include "pipeline/convert.h"

namespace {

using namespace cvt::pipeline;

constexpr std::int32_t kWidth = 2048;
constexpr std::int32_t kHeight = 1536;

std::vector<std::uint8_t> Photograph(const Image& image) {
  std::vector<std::uint8_t> rows(RowBytes(image) * static_cast<std::size_t>(image.height));
  std::uint32_t noise = 1;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    noise = noise * 1664525U + 1013904223U;
    rows[i] = static_cast<std::uint8_t>(i * 255 / rows.size() / 2 + (noise >> 25));
  }
  return rows;
}

std::vector<IRGB> Colors(std::size_t count) {
  std::vector<IRGB> colors;
  std::uint32_t noise = 7;
  const auto channel = [&noise] {
    noise = noise * 1664525U + 1013904223U;
    return static_cast<std::uint8_t>(noise >> 24);
  };
  while (colors.size() < count) colors.push_back({channel(), channel(), channel()});
  return colors;
}

void CountPixels(benchmark::State& state, std::int64_t pixels) {
  state.counters["pixels/s"] =
      benchmark::Counter(static_cast<double>(pixels), benchmark::Counter::kIsIterationInvariantRate);
}

// Memory to memory, everything that a user of the pipeline pays for.
void WholePath(benchmark::State& state, const Image& image, const Settings& settings) {
  const std::vector<std::uint8_t> rows = Photograph(image);
  Image written;
  std::vector<std::uint8_t> out;
  for (auto _ : state) {
    RowSource source = ReadMemory(image, rows.data(), RowBytes(image));
    RowSink sink = WriteMemory(&written, &out);
    if (const Status status = Convert(source, settings, sink); Failed(status))
      return state.SkipWithError(status.message.c_str());
    benchmark::DoNotOptimize(out.data());
  }
  CountPixels(state, std::int64_t{image.width} * image.height);
}

const Image kGray{kWidth, kHeight, 8, GrayRamp(8)};
const Image kColor{kWidth, kHeight, kDirectDepth};
const Image kPlanes{kWidth, kHeight, 8, Colors(256), Layout::Planes};

BENCHMARK_CAPTURE(WholePath, gray_to_1_bit_diffusion, kGray,
                  Settings{.depth = 1, .palette = GrayRamp(1), .halftone = Halftone::Diffusion});
BENCHMARK_CAPTURE(
    WholePath, gray_to_1_plane_diffusion, kGray,
    Settings{.depth = 1, .palette = GrayRamp(1), .halftone = Halftone::Diffusion, .layout = Layout::Planes});
BENCHMARK_CAPTURE(WholePath, color_to_256_nearest, kColor, Settings{.depth = 8, .palette = Colors(256)});
BENCHMARK_CAPTURE(WholePath, color_to_1_bit_diffusion, kColor,
                  Settings{.depth = 1, .palette = GrayRamp(1), .halftone = Halftone::Diffusion});
BENCHMARK_CAPTURE(WholePath, packed_to_8_planes, kGray,
                  Settings{.depth = 8, .palette = Colors(256), .layout = Layout::Planes});
BENCHMARK_CAPTURE(WholePath, planes_to_8_bit_packed, kPlanes, Settings{.depth = 8, .palette = Colors(256)});
BENCHMARK_CAPTURE(WholePath, gray_to_16_colors_nearest, kGray, Settings{.depth = 4, .palette = Colors(16)});

// ---- Single routines ----

// One band of noise, and a conversion that ends where the routine hands its bands on.
struct OneBand {
  std::vector<IRGB> sourceColors, wantedColors;
  tagIGFD source = {}, destination = {};
  tagRasterPacked* band = nullptr;
  tagCRLA* context = nullptr;
};

struct BandKind {
  Layout layout;
  std::int32_t depth;  // of palette indices, or kDirectDepth
};

tagIGFD Describe(BandKind kind, std::int32_t lines, std::vector<IRGB>* colors) {
  tagIGFD image{};
  image.progressProc = [](std::uint32_t) -> std::int16_t { return 0; };
  image.rasterKind = kind.layout == Layout::Planes ? kPlaneKind : kPackedKind;
  image.imageWidth = kWidth;
  image.imageHeight = lines;
  image.bitsPerPixel = static_cast<std::uint8_t>(kind.depth);
  if (kind.depth == kDirectDepth) return image;
  image.colorFlags = kIndexedColor;
  image.palette = colors->data();
  return image;
}

std::vector<IRGB> ColorsOf(BandKind kind) {
  if (kind.depth == kDirectDepth) return {};
  return kind.depth == 1 ? GrayRamp(1) : Colors(std::size_t{1} << kind.depth);
}

void SetUp(BandKind from, BandKind to, std::uint8_t method, OneBand* one) {
  const std::int32_t bits = BandBits(from.layout, from.depth);
  const std::int32_t lines = kBandBytes / BandLineBytes(from.layout, kWidth, bits);
  one->sourceColors = ColorsOf(from);
  one->wantedColors = ColorsOf(to);
  one->source = Describe(from, lines, &one->sourceColors);
  one->destination = Describe(to, lines, &one->wantedColors);
  cvt::host::ConversionSetup setup;
  setup.source = &one->source;
  setup.destination = &one->destination;
  setup.lineCapacity = kWidth;
  setup.next = [](void*, tagRasterPacked*) -> std::int16_t { return 0; };
  setup.halftoneMethod = method;
  one->context = cvt::host::OpenConversion(setup);
  const auto bytes = static_cast<std::uint32_t>(lines * BandLineBytes(from.layout, kWidth, bits));
  one->band = static_cast<tagRasterPacked*>(
      SioCreateOp(from.layout == Layout::Planes ? kPlaneBand : kPackedBand, bytes + kBandHeaderBytes));
  *one->band = {};
  one->band->width = kWidth;
  one->band->lineCount = static_cast<std::uint16_t>(lines);
  one->band->bitsPerPixel = static_cast<std::uint16_t>(bits);
  if (from.layout == Layout::Planes)
    one->band->planeBytes = static_cast<std::uint16_t>(BandLineBytes(from.layout, kWidth, 1) * lines);
  const Image noise{kWidth, lines, 8, {}};
  const std::vector<std::uint8_t> pixels = Photograph({static_cast<std::int32_t>(bytes), 1, 8, {}});
  std::copy(pixels.begin(), pixels.end(), PixelsOf(one->band));
}

void Routine(benchmark::State& state, BandKind from, BandKind to, std::uint8_t method) {
  OneBand one;
  SetUp(from, to, method, &one);
  for (auto _ : state) {
    tagRasterPacked* band = one.band;
    if (Cvtr2r(&band, &one.source, &one.destination, one.context) != kCvtOk) state.SkipWithError("failed");
  }
  CountPixels(state, std::int64_t{kWidth} * one.band->lineCount);
  SioFreeSMem(reinterpret_cast<std::uint8_t*>(one.band) - kBandPrefixBytes);
  cvt::host::CloseConversion(one.context);
}

constexpr BandKind kPacked8{Layout::Packed, 8}, kPacked1{Layout::Packed, 1},
    kPackedColor{Layout::Packed, kDirectDepth};
constexpr BandKind kPlanes8{Layout::Planes, 8}, kPlanes1{Layout::Planes, 1};

BENCHMARK_CAPTURE(Routine, diffusion_packed_to_packed, kPacked8, kPacked1, kDiffusion);
BENCHMARK_CAPTURE(Routine, diffusion_packed_to_plane, kPacked8, kPlanes1, kDiffusion);
BENCHMARK_CAPTURE(Routine, diffusion_planes_to_packed, kPlanes8, kPacked1, kDiffusion);
BENCHMARK_CAPTURE(Routine, diffusion_planes_to_plane, kPlanes8, kPlanes1, kDiffusion);
BENCHMARK_CAPTURE(Routine, nearest_color_to_packed, kPackedColor, kPacked8, kNearest);
BENCHMARK_CAPTURE(Routine, nearest_packed_to_planes, kPacked8, kPlanes8, kNearest);
BENCHMARK_CAPTURE(Routine, nearest_planes_to_packed, kPlanes8, kPacked8, kNearest);

}  // namespace

// What the benchmarks share: a picture, whole paths as an application runs them, and single routines on one
// band. Source pixels a second.
//
// The picture is a gradient with noise on it: every pixel differs from its neighbours as in a photograph,
// so that no run is longer than chance makes it.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "cvt/cvtr2r.h"
#include "host/conversion.h"
#include "pipeline/band.h"
#include "pipeline/convert.h"

namespace cvt::bench {

using namespace cvt::pipeline;

inline constexpr std::int32_t kWidth = 2048;
inline constexpr std::int32_t kHeight = 1536;

inline std::vector<std::uint8_t> Photograph(const Image& image) {
  std::vector<std::uint8_t> rows(RowBytes(image) * static_cast<std::size_t>(image.height));
  std::uint32_t noise = 1;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    noise = noise * 1664525U + 1013904223U;
    rows[i] = static_cast<std::uint8_t>(i * 255 / rows.size() / 2 + (noise >> 25));
  }
  return rows;
}

inline std::vector<IRGB> Colors(std::size_t count) {
  std::vector<IRGB> colors;
  std::uint32_t noise = 7;
  const auto channel = [&noise] {
    noise = noise * 1664525U + 1013904223U;
    return static_cast<std::uint8_t>(noise >> 24);
  };
  while (colors.size() < count) colors.push_back({channel(), channel(), channel()});
  return colors;
}

inline void CountPixels(benchmark::State& state, std::int64_t pixels) {
  state.counters["pixels/s"] =
      benchmark::Counter(static_cast<double>(pixels), benchmark::Counter::kIsIterationInvariantRate);
}

// Memory to memory, everything that a user of the pipeline pays for.
inline void WholePath(benchmark::State& state, const Image& image, const Settings& settings) {
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

// One band of noise, and a conversion that ends where the routine hands its bands on.
struct OneBand {
  std::vector<IRGB> sourceColors, wantedColors;
  tagIGFD source = {}, destination = {};
  OwnedBand band = {};
  tagCRLA* context = nullptr;
};

struct BandKind {
  Layout layout;
  std::int32_t depth;  // of palette indices, or kDirectDepth
};

inline tagIGFD Describe(BandKind kind, std::int32_t lines, std::vector<IRGB>* colors) {
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

inline std::vector<IRGB> ColorsOf(BandKind kind) {
  if (kind.depth == kDirectDepth) return {};
  return kind.depth == 1 ? GrayRamp(1) : Colors(std::size_t{1} << kind.depth);
}

inline void SetUp(BandKind from, BandKind to, std::uint8_t method, OneBand* one) {
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
  const std::int32_t bytes = lines * BandLineBytes(from.layout, kWidth, bits);
  one->band = NewBand(bytes);
  LabelBand(from.layout, bytes, one->band.get());
  one->band->width = kWidth;
  one->band->lineCount = static_cast<std::uint16_t>(lines);
  one->band->bitsPerPixel = static_cast<std::uint16_t>(bits);
  if (from.layout == Layout::Planes)
    one->band->planeBytes = static_cast<std::uint16_t>(BandLineBytes(from.layout, kWidth, 1) * lines);
  const std::vector<std::uint8_t> pixels = Photograph({bytes, 1, 8});
  std::copy(pixels.begin(), pixels.end(), PixelsOf(one->band.get()));
}

inline void Routine(benchmark::State& state, BandKind from, BandKind to, std::uint8_t method) {
  OneBand one;
  SetUp(from, to, method, &one);
  for (auto _ : state) {
    tagRasterPacked* band = one.band.get();
    if (Cvtr2r(&band, &one.source, &one.destination, one.context) != kCvtOk) state.SkipWithError("failed");
  }
  CountPixels(state, std::int64_t{kWidth} * one.band->lineCount);
  cvt::host::CloseConversion(one.context);
}

}  // namespace cvt::bench

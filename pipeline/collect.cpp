#include "pipeline/collect.h"

#include <cstring>

#include "pipeline/band.h"

namespace cvt::pipeline {
namespace {

constexpr std::int16_t kSinkFailed = -1;

const std::uint8_t* GatherPlanes(Collector* collector, tagRasterPacked* band, std::size_t line) {
  const Image& output = *collector->output;
  const std::size_t bytes = PlaneRowBytes(output.width);
  const auto stride = static_cast<std::size_t>(BandLineBytes(Layout::Planes, output.width, 1));
  for (std::size_t plane = 0; plane < band->bitsPerPixel; ++plane)
    std::memcpy(collector->row.data() + plane * bytes, PixelsOf(band) + plane * band->planeBytes + line * stride,
                bytes);
  return collector->row.data();
}

const std::uint8_t* RowOf(Collector* collector, tagRasterPacked* band, std::size_t line) {
  if (LayoutOf(band) == Layout::Planes) return GatherPlanes(collector, band, line);
  const std::int32_t bits = BandBits(Layout::Packed, collector->output->depth);
  return PixelsOf(band) + line * static_cast<std::size_t>(BandLineBytes(Layout::Packed, band->width, bits));
}

}  // namespace

std::int16_t TakeBand(Collector* collector, tagRasterPacked* band) {
  for (std::int32_t i = 0; i < band->lineCount; ++i) {
    collector->status = collector->sink->write(band->top + i, RowOf(collector, band, static_cast<std::size_t>(i)));
    if (Failed(collector->status)) return kSinkFailed;
  }
  return 0;
}

}  // namespace cvt::pipeline

// Images in memory as sources and sinks, and the gray ramps.

#include <cstring>

#include "pipeline/image.h"

namespace cvt::pipeline {

RowSource ReadMemory(Image image, const std::uint8_t* rows, std::size_t strideBytes) {
  const std::size_t rowBytes = RowBytes(image);
  return {std::move(image), [next = rows, rowBytes, strideBytes](std::uint8_t* row) mutable {
            std::memcpy(row, next, rowBytes);
            next += strideBytes;
            return Ok();
          }};
}

RowSink WriteMemory(Image* image, std::vector<std::uint8_t>* rows) {
  RowSink sink;
  sink.begin = [image, rows](const Image& written) {
    *image = written;
    rows->resize(RowBytes(written) * static_cast<std::size_t>(written.height));
    return Ok();
  };
  sink.write = [image, rows](std::int32_t y, const std::uint8_t* row) {
    const std::size_t bytes = RowBytes(*image);
    std::memcpy(rows->data() + bytes * static_cast<std::size_t>(y), row, bytes);
    return Ok();
  };
  sink.end = [] { return Ok(); };
  return sink;
}

std::vector<IRGB> GrayRamp(std::int32_t depth) {
  const std::int32_t last = (1 << depth) - 1;
  std::vector<IRGB> ramp;
  for (std::int32_t i = 0; i <= last; ++i) {
    const auto gray = static_cast<std::uint8_t>((i * 255 + last / 2) / last);
    ramp.push_back({gray, gray, gray});
  }
  return ramp;
}

}  // namespace cvt::pipeline

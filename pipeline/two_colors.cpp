#include "pipeline/two_colors.h"

#include <memory>

#include "host/tables.h"

namespace cvt::pipeline {
namespace {

// The low bits of four pixels of two bits each, side by side in the low half of a byte.
std::uint8_t LowBits(std::uint32_t pairs) {
  return static_cast<std::uint8_t>((pairs >> 3 & 8) | (pairs >> 2 & 4) | (pairs >> 1 & 2) | (pairs & 1));
}

struct Narrower {
  RowSink* sink;
  Image image;
  std::vector<std::uint8_t> row;
};

// The first of two planes is the row already.
const std::uint8_t* Narrow(Narrower* narrower, const std::uint8_t* row) {
  if (narrower->image.layout == Layout::Planes) return row;
  const std::size_t pairBytes = (static_cast<std::size_t>(narrower->image.width) + 3) / 4;
  for (std::size_t i = 0; i < narrower->row.size(); ++i) {
    const std::uint32_t right = 2 * i + 1 < pairBytes ? row[2 * i + 1] : 0U;
    narrower->row[i] = static_cast<std::uint8_t>(LowBits(row[2 * i]) << 4 | LowBits(right));
  }
  return narrower->row.data();
}

}  // namespace

bool WantsTwoColors(const Settings& settings) {
  return settings.depth == 1 && settings.palette.size() == 2 && settings.threshold == kMiddleThreshold &&
         !host::AllGray({settings.palette.data(), settings.palette.size()});
}

Settings WithTwoBits(Settings settings) {
  settings.depth = 2;
  return settings;
}

RowSink NarrowRows(RowSink* sink) {
  auto narrower = std::make_shared<Narrower>();
  narrower->sink = sink;
  RowSink narrowing;
  narrowing.begin = [narrower](const Image& image) {
    narrower->image = image;
    narrower->image.depth = 1;
    narrower->row.resize(RowBytes(narrower->image));
    return narrower->sink->begin(narrower->image);
  };
  narrowing.write = [narrower](std::int32_t y, const std::uint8_t* row) {
    return narrower->sink->write(y, Narrow(narrower.get(), row));
  };
  narrowing.end = [narrower] { return narrower->sink->end(); };
  return narrowing;
}

}  // namespace cvt::pipeline

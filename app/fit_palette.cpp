#include "app/fit_palette.h"

#include <utility>
#include <vector>

#include "host/adaptive.h"

namespace cvt::app {

using pipeline::Failed;
using pipeline::Image;
using pipeline::Ok;
using pipeline::RowSink;
using pipeline::Settings;
using pipeline::Status;

namespace {

struct Counter {
  host::ColorCounts counts;
  std::vector<IRGB> row;
};

RowSink CountInto(Counter& counter) {
  return {[&counter](const Image& image) {
            counter.row.resize(static_cast<std::size_t>(image.width));
            return Ok();
          },
          [&counter](std::int32_t, const std::uint8_t* row) {
            for (IRGB& color : counter.row) {
              color = {row[0], row[1], row[2]};
              row += 3;
            }
            host::CountColors(counter.counts, counter.row.data(), counter.row.size());
            return Ok();
          },
          [] { return Ok(); }};
}

}  // namespace

Status FitPalette(pipeline::RowSource& source, Settings* settings) {
  Settings direct = *settings;
  direct.depth = pipeline::kDirectDepth;
  direct.palette.clear();
  direct.halftone = pipeline::Halftone::Nearest;
  direct.layout = pipeline::Layout::Packed;
  Counter counter;
  RowSink sink = CountInto(counter);
  if (Status failed = pipeline::Convert(source, direct, sink); Failed(failed)) return failed;
  settings->palette = host::ChoosePalette(counter.counts, std::size_t{1} << settings->depth);
  return Ok();
}

}  // namespace cvt::app

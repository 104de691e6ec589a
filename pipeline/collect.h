// The end of a chain: takes finished bands of either kind and hands their lines to a row sink.
#pragma once

#include <cstdint>
#include <vector>

#include "pipeline/image.h"
#include "pipeline/status.h"

namespace cvt::pipeline {

struct Collector {
  const Image* output;
  RowSink* sink;
  std::vector<std::uint8_t> row;  // RowBytes of the output: a line of planes, gathered
  Status status = {};             // why TakeBand answered nonzero
};

/// Hands every line of the band to the sink. Returns 0, or nonzero with the reason in collector->status.
std::int16_t TakeBand(Collector* collector, tagRasterPacked* band);

}  // namespace cvt::pipeline

// The test chart: gradients, hues, hairlines, text and a zone plate, drawn pixel by pixel in integers, so
// that every machine draws the same chart.
#pragma once

#include "pipeline/image.h"

namespace cvt::pipeline {

inline constexpr std::int32_t kChartWidth = 960;
inline constexpr std::int32_t kChartHeight = 720;

/// The colour of one pixel of the chart.
IRGB ChartPixel(std::int32_t x, std::int32_t y);

/// The whole chart, 24-bit direct colour.
RowSource ReadChart();

}  // namespace cvt::pipeline

// What the system can take, checked before any work: an error message instead of a wrapped number.
#pragma once

#include "pipeline/convert.h"
#include "pipeline/plan.h"

namespace cvt::pipeline {

Status CheckImage(const Image& image);
Status CheckSettings(const Settings& settings);

/// The crop must lie within the image.
Status CheckCrop(const Image& image, const Crop& crop);

/// The overlay must be an indexed image that lies within the output.
Status CheckOverlay(const Overlay& overlay, const Image& output);

/// Whether a height can be averaged to another in one go.
bool CanAverage(std::int32_t height, std::int32_t newHeight);

/// The products that scaling forms must stay within 32 bits.
Status CheckScaling(const Stage& stage);

/// A line must fit a band in every form that it takes in the stage.
Status CheckLines(const Stage& stage);

}  // namespace cvt::pipeline

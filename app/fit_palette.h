// Palettes fitted to an image.
#pragma once

#include "pipeline/convert.h"

namespace cvt::app {

/// Reads the whole image and fills settings->palette with the 1 << depth colours that suit it best: as it
/// is after clipping, scaling and the tone curve, overlay included. Fails as pipeline::Convert does.
pipeline::Status FitPalette(pipeline::RowSource& source, pipeline::Settings* settings);

}  // namespace cvt::app

// What the user left open: depth, palette and halftone of the output, from the options and the image.
#pragma once

#include <string>
#include <vector>

#include "app/option_table.h"
#include "app/report.h"
#include "imageio/image_file.h"
#include "pipeline/convert.h"

namespace cvt::app {

/// --palette as given, before the image and the depth are known.
struct PaletteWish {
  enum class Kind : std::uint8_t { None, Gray, Colors } kind = Kind::None;
  std::vector<IRGB> colors;  // Colors only
};

Outcome ReadPaletteWish(const Arguments& arguments, PaletteWish* wish);

/// --background, white when it is not given.
Outcome ReadBackground(const Arguments& arguments, IRGB* color);

/// --format, Format::FromSuffix when it is not given.
imageio::Format WishedFormat(const Arguments& arguments);

/// The settings for `image`, written as `format`. Code::Usage for options that contradict each other or
/// cannot be met.
Outcome ChooseSettings(const Arguments& arguments, const PaletteWish& wish, const pipeline::Image& image,
                       imageio::Format format, pipeline::Settings* settings);

}  // namespace cvt::app

// What the user left open: size, depth, palette and halftone of the output, from the options and the image.
#pragma once

#include "app/option_table.h"
#include "app/palettes.h"
#include "app/report.h"
#include "imageio/image_file.h"

namespace cvt::app {

/// What options name that is the same for every image.
struct Wishes {
  PaletteWish palette;
  pipeline::Thresholds thresholds;
};

Outcome ReadWishes(const Arguments& arguments, Wishes* wishes);

struct Chosen {
  pipeline::Settings settings;
  bool adaptive = false;  // settings.palette is still to be fitted to the image
};

/// The settings for `image`, written as `format`. Code::Usage for options that contradict each other or
/// cannot be met.
Outcome ChooseSettings(const Arguments& arguments, const Wishes& wishes, const pipeline::Image& image,
                       imageio::Format format, Chosen* chosen);

}  // namespace cvt::app

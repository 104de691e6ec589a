// What a conversion will be, settled before any work: the form in which rows enter, the colours that the
// routines see, the height of the bands, and whether the image is within the limits at all.
#pragma once

#include <cstdint>
#include <vector>

#include "pipeline/convert.h"
#include "pipeline/image.h"
#include "pipeline/intake.h"

namespace cvt::pipeline {

struct Plan {
  Intake intake = Intake::AsStored;
  Image input;                     // what the source delivers
  Image output;                    // what the sink gets
  std::vector<IRGB> sourceColors;  // of the band's values; empty for direct colour
  std::vector<IRGB> wantedColors;  // of the output's values as the routines see them
  std::int32_t bandLines = 0;      // lines in every band but the last
};

/// Code::Usage or Code::Limit with the reason when the image cannot be converted so.
Status MakePlan(const Image& image, const Settings& settings, Plan* plan);

}  // namespace cvt::pipeline

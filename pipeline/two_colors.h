// One bit for two colours that are not black and white.
//
// The one-bit routines tell two values by gray level, which is right for paper and ink but not for, say, red
// and blue. Such images are made with two bits, by nearest colour, and lose the idle bit on their way out.
#pragma once

#include "pipeline/convert.h"

namespace cvt::pipeline {

/// Whether the settings ask for one bit of two colours that are not both gray, without a gray threshold.
bool WantsTwoColors(const Settings& settings);

/// The same settings with two bits.
Settings WithTwoBits(Settings settings);

/// A sink for rows of two bits whose upper bit is idle; passes them on as rows of one bit.
RowSink NarrowRows(RowSink* sink);

}  // namespace cvt::pipeline

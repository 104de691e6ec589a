// `r2r chart`: the test chart into a file.
#pragma once

#include "app/option_table.h"
#include "app/report.h"

namespace cvt::app {

Outcome RunChart(const Arguments& arguments);

}  // namespace cvt::app

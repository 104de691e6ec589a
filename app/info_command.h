// `r2r info`: what images are, without converting them.
#pragma once

#include "app/option_table.h"
#include "app/report.h"

namespace cvt::app {

Outcome RunInfo(const Arguments& arguments);

}  // namespace cvt::app

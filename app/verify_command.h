// `r2r verify`: whether this build on this machine gives the bits that it should.
#pragma once

#include "app/option_table.h"
#include "app/report.h"

namespace cvt::app {

Outcome RunVerify(const Arguments& arguments);

}  // namespace cvt::app

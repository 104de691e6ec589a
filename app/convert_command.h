// `r2r convert`: one image from file to file, or many into a directory.
#pragma once

#include "app/option_table.h"
#include "app/report.h"

namespace cvt::app {

Outcome RunConvert(const Arguments& arguments);

}  // namespace cvt::app

// r2r contact-sheet: every method on one image, as one picture or one page.
#pragma once

#include "app/option_table.h"
#include "app/report.h"

namespace cvt::app {

Outcome RunContactSheet(const Arguments& arguments);

}  // namespace cvt::app

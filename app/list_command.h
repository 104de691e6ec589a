// `r2r list`: what may be chosen from, on standard output.
#pragma once

#include "app/option_table.h"
#include "app/report.h"

namespace cvt::app {

Outcome RunList(const Arguments& arguments);

/// Text on standard output.
Outcome Print(const std::string& text);

}  // namespace cvt::app

// The words of the command line, made a request.
#pragma once

#include <string>

#include "app/option_table.h"
#include "app/report.h"

namespace cvt::app {

enum class Action : std::uint8_t { Print, Convert };

struct Request {
  Action action = Action::Print;
  std::string text;  // Print: for standard output
  Arguments arguments;
};

/// Code::Usage with the option that is wrong; `request` is then undefined.
Outcome ParseCommandLine(int count, const char* const* words, Request* request);

}  // namespace cvt::app

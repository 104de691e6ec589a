// The words of the command line, made a request.
#pragma once

#include <string>
#include <vector>

#include "app/option_table.h"
#include "app/report.h"

namespace cvt::app {

struct Request {
  Outcome (*run)(const Arguments& arguments) = nullptr;  // null: print the text
  std::string text;                                      // for standard output
  Arguments arguments;
};

/// Code::Usage with the option that is wrong; `request` is then undefined.
Outcome ParseCommandLine(int count, const char* const* words, Request* request);

/// The same of words that the program made itself, from "r2r" on.
Outcome ParseWords(const std::vector<std::string>& words, Request* request);

}  // namespace cvt::app

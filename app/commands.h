// Every command of the tool, once: the parser, the help text and whatever is generated read this table.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "app/option_table.h"
#include "app/report.h"

namespace cvt::app {

struct Command {
  const char* name;
  const char* what;
  const char* forms[2];  // how it is given; null: there is no second way
  const char* operands;  // what the operands are
  std::size_t least, most;
  Outcome (*run)(const Arguments& arguments);
  std::string_view options;  // names with blanks between and at both ends; kAllOptions: every one

  static constexpr std::string_view kAllOptions = "*";
};

std::span<const Command> Commands();

/// Whether the command takes the option.
bool Takes(const Command& command, const OptionRow& option);

}  // namespace cvt::app

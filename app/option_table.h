// Every option of the tool, once: the parser, the help text and whatever is generated read this table.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>

namespace cvt::app {

/// What `r2r convert` was asked for. An option that was not given is empty or false.
struct Arguments {
  std::string input;
  std::string output;
  std::optional<std::int64_t> depth, threshold, maxPixels;
  std::optional<std::string> palette, halftone, background, layout, format;
  bool invert = false, force = false, explain = false, quiet = false;
};

struct Switch {
  bool Arguments::*target;
};
struct Number {
  std::optional<std::int64_t> Arguments::*target;
  std::int64_t least, most;
};
struct Text {
  std::optional<std::string> Arguments::*target;
};
struct Choice {  // one of the words of OptionRow::value
  std::optional<std::string> Arguments::*target;
};

struct OptionRow {
  const char* group;
  const char* name;
  const char* value;  // how the help names the value; empty for switches
  const char* help;
  std::variant<Switch, Number, Text, Choice> kind;
};

std::span<const OptionRow> ConvertOptions();

/// Lines of examples that close every help text.
const char* Examples();

}  // namespace cvt::app

// Every option of the tool, once: the parser, the help text and whatever is generated read this table.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "app/words.h"

namespace cvt::app {

/// An option and its value as the user spelled them.
struct GivenOption {
  std::string name, value;
};

/// What the user asked for. An option that was not given is empty or false.
struct Arguments {
  std::vector<std::string> operands;
  std::vector<GivenOption> given;  // those with values, in their order
  std::optional<pipeline::Crop> crop;
  std::optional<SizeWish> size;
  std::optional<std::int64_t> depth, threshold, maxPixels, maxMemory, page, jobs;
  std::optional<std::int64_t> reduce, enlarge, halftone, layout, format, compress;  // Word::value
  std::optional<double> gamma;
  std::optional<IRGB> keepColor, background;
  std::optional<PixelWish> transparent;
  std::optional<Shard> shard;
  std::optional<std::string> palette, matrix, preset, overlay, outDir, filesFrom, report;
  bool invert = false, force = false, skipExisting = false, explain = false, nulBetween = false;
  bool quiet = false, verbose = false;
};

/// One of the words that an option takes.
struct Word {
  const char* name;
  std::int64_t value;  // of the enumeration that the option chooses from
  const char* what;
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
struct Choice {
  std::optional<std::int64_t> Arguments::*target;
  std::span<const Word> words;
};
template <class Value>
struct Form {  // a value with a spelling of its own
  std::optional<Value> Arguments::*target;
  std::optional<Value> (*parse)(std::string_view word);
  const char* allowed;
};

struct OptionRow {
  const char* group;
  const char* name;
  const char* value;  // how the help names the value; empty for switches and choices
  const char* help;
  std::variant<Switch, Number, Text, Choice, Form<std::int64_t>, Form<double>, Form<IRGB>, Form<PixelWish>,
               Form<SizeWish>, Form<pipeline::Crop>, Form<Shard>>
      kind;
};

std::span<const OptionRow> ConvertOptions();

/// The words of a choice as the help names them: with bars between.
std::string Joined(std::span<const Word> words);

/// Lines of examples that close every help text.
const char* Examples();

}  // namespace cvt::app

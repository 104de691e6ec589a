#include "app/generate/generate.h"

namespace cvt::app {

namespace {

std::string Quoted(const std::string& text) { return Cat({"'", Escaped(text, "'\\"), "'"}); }

// A list of words, each with its meaning behind a tab.
std::string Offered(const std::vector<Suggestion>& words) {
  std::string list;
  for (const Suggestion& word : words) {
    AddItem(" ", word.name, &list);
    if (!word.what.empty()) list += Cat({"\\t", Quoted(word.what)});
  }
  return list.empty() ? "" : Cat({" -a ", Quoted(list)});
}

// -r: a value follows; -f: it is no file, -F: it may be one; -x is -r -f.
std::string ValueFlags(const OptionRow& option) {
  if (IsSwitch(option)) return "";
  const Suggestions values = ValuesOf(option);
  if (values.directories) return " -x -a '(__fish_complete_directories)'";
  return Cat({values.files ? " -r -F" : " -x", Offered(values.words)});
}

std::string Within(const Command& command) {
  return Cat({"complete -c r2r -n '__fish_seen_subcommand_from ", command.name, "'"});
}

std::string OptionLine(const Command& command, const OptionRow& option) {
  std::string_view name = option.name;
  const bool isLong = name.starts_with("--");
  name.remove_prefix(isLong ? 2 : 1);
  return Cat(
      {Within(command), isLong ? " -l " : " -s ", name, ValueFlags(option), " -d ", Quoted(option.help), "\n"});
}

std::string CommandLines(const Command& command) {
  std::string lines =
      Cat({"complete -c r2r -n __fish_use_subcommand -f -a ", command.name, " -d ", Quoted(command.what), "\n"});
  for (const OptionRow* option : OptionsOf(command)) lines += OptionLine(command, *option);
  const Suggestions operands = OperandsOf(command);
  return lines + Cat({Within(command), operands.files ? " -F" : " -f", Offered(operands.words), "\n"});
}

}  // namespace

std::string FishCompletion() {
  std::string text =
      "# Completion of r2r for fish, made from the tables of its options and commands.\n"
      "complete -c r2r -l help -d 'print this help'\n"
      "complete -c r2r -n __fish_use_subcommand -l version -d 'print the version'\n";
  for (const Command& command : Commands()) text += CommandLines(command);
  return text;
}

}  // namespace cvt::app

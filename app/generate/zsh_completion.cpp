#include "app/generate/generate.h"

namespace cvt::app {

namespace {

// Text inside single quotes.
std::string Quoted(const std::string& text) {
  std::string quoted;
  for (const char c : text) {
    if (c == '\'')
      quoted += "'\\''";
    else
      quoted += c;
  }
  return quoted;
}

// One of the pieces that colons divide.
std::string Part(const std::string& text) { return Escaped(text, ":"); }

std::string Offer(const Suggestions& suggestions) {
  std::string words;
  for (const Suggestion& word : suggestions.words) {
    AddItem(" ", word.name, &words);
    if (!word.what.empty()) words += Cat({":\"", Escaped(word.what, "\"\\$`"), "\""});
  }
  if (suggestions.directories) return "_files -/";
  if (words.empty()) return suggestions.files ? "_files" : " ";
  std::string offered = Cat({"((", words, "))"});
  if (!suggestions.files) return offered;
  return Cat({"{_alternative 'words:name:", Quoted(offered), "' 'files:file:_files'}"});
}

std::string OptionSpec(const OptionRow& option) {
  std::string spec = Cat({option.name, "[", Escaped(option.help, "[]\\"), "]"});
  if (!IsSwitch(option)) spec += Cat({":", Part(ValueName(option)), ":", Part(Offer(ValuesOf(option)))});
  return Cat({"        '", Quoted(spec), "' \\\n"});
}

std::string CommandCase(const Command& command) {
  std::string text = Cat({"    ", command.name, ")\n      _arguments -S \\\n"});
  for (const OptionRow* option : OptionsOf(command)) text += OptionSpec(*option);
  text += "        '--help[print this help]'";
  const Suggestions operands = OperandsOf(command);
  if (operands.files || !operands.words.empty())
    text += Cat({" \\\n        '*:operand:", Quoted(Part(Offer(operands))), "'"});
  return text + " ;;\n";
}

}  // namespace

std::string ZshCompletion() {
  std::string names, cases;
  for (const Command& command : Commands()) {
    names += Cat({"      '", command.name, ":", Quoted(Escaped(command.what, "\\")), "'\n"});
    cases += CommandCase(command);
  }
  return Cat(
      {"#compdef r2r\n# Completion of r2r for zsh, made from the tables of its options and commands.\n\n"
       "_r2r() {\n  local curcontext=$curcontext state line\n  local -a commands\n"
       "  _arguments -C '--help[print this help]' '--version[print the version]' \\\n"
       "    '1:command:->command' '*::operand:->operands'\n"
       "  if [[ $state == command ]]; then\n    commands=(\n",
       names, "    )\n    _describe command commands\n    return\n  fi\n  case $words[1] in\n", cases,
       "  esac\n}\n\n_r2r \"$@\"\n"});
}

}  // namespace cvt::app

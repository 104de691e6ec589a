#include "app/generate/generate.h"

namespace cvt::app {

namespace {

constexpr const char* kHead =
    R"(# Completion of r2r for bash, made from the tables of its options and commands.

# Each takes the word so far; words to offer follow.
_r2r_words() {
  local word=$1
  shift
  mapfile -t COMPREPLY < <(compgen -W "$*" -- "$word")
}
_r2r_files() {
  _r2r_words "$@"
  compopt -o filenames
  mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$1")
}
_r2r_directories() {
  compopt -o filenames
  mapfile -t COMPREPLY < <(compgen -d -- "$1")
}

_r2r() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()
  if [[ $word == '=' ]]; then
    word=
  elif [[ $before == '=' ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
)";

std::string Offer(const Suggestions& suggestions) {
  const std::string words = Names(suggestions.words);
  if (suggestions.directories) return "_r2r_directories \"$word\"";
  if (suggestions.files) return Cat({"_r2r_files \"$word\"", words.empty() ? "" : " ", words});
  return words.empty() ? ":" : Cat({"_r2r_words \"$word\" ", words});
}

// Values first: a word behind an option that takes one is its value, whatever it looks like.
std::string Values() {
  std::string cases;
  for (const OptionRow& option : ConvertOptions()) {
    if (!IsSwitch(option)) cases += Cat({"    ", option.name, ") ", Offer(ValuesOf(option)), "; return ;;\n"});
  }
  return Cat({"  case $before in\n", cases, "  esac\n"});
}

std::string CommandCase(const Command& command) {
  std::string options = "--help";
  for (const OptionRow* option : OptionsOf(command)) AddItem(" ", option->name, &options);
  return Cat({"    ", command.name, ")\n      if [[ $word == -* ]]; then\n        _r2r_words \"$word\" ", options,
              "\n      else\n        ", Offer(OperandsOf(command)), "\n      fi ;;\n"});
}

}  // namespace

std::string BashCompletion() {
  std::string names, cases;
  for (const Command& command : Commands()) {
    AddItem(" ", command.name, &names);
    cases += CommandCase(command);
  }
  return Cat({kHead, "  if ((COMP_CWORD == 1)); then\n    _r2r_words \"$word\" ", names,
              " --help --version\n    return\n  fi\n", Values(), "  case ${COMP_WORDS[1]} in\n", cases,
              "  esac\n}\ncomplete -F _r2r r2r\n"});
}

}  // namespace cvt::app

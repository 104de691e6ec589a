#include <algorithm>
#include <cstring>
#include <string_view>

#include "app/generate/generate.h"
#include "app/palettes.h"
#include "app/presets.h"
#include "host/matrices.h"

namespace cvt::app {

namespace {

// Names that the parser of an option looks up in a table of its own.
std::vector<Suggestion> TableOf(std::string_view option) {
  std::vector<Suggestion> words;
  if (option == "--palette")
    for (const NamedPalette& palette : NamedPalettes()) words.push_back({palette.name, palette.what});
  if (option == "--preset")
    for (const Preset& preset : Presets()) words.push_back({preset.name, preset.what});
  if (option == "--matrix")
    for (const std::string_view name : host::kMatrixNames) words.push_back({std::string(name), ""});
  return words;
}

std::vector<Suggestion> Split(std::string_view text, char separator) {
  std::vector<Suggestion> words;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    words.push_back({std::string(text.substr(0, end)), ""});
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return words;
}

}  // namespace

Suggestions ValuesOf(const OptionRow& option) {
  const std::string_view value = option.value;
  Suggestions suggestions{TableOf(option.name), value.find("FILE") != std::string_view::npos || value == "SPEC",
                          value == "DIR"};
  if (const auto* choice = std::get_if<Choice>(&option.kind))
    for (const Word& word : choice->words) suggestions.words.push_back({word.name, word.what});
  return suggestions;
}

// The last word of a command's form tells words to choose from, with bars between, or stands for files.
Suggestions OperandsOf(const Command& command) {
  if (command.most == 0) return {};
  const std::string_view form = command.forms[0];
  const std::string_view last = form.substr(form.rfind(' ') + 1);
  if (last.find('|') != std::string_view::npos) return {Split(last, '|')};
  return {{}, true};
}

std::string ValueName(const OptionRow& option) {
  const auto* choice = std::get_if<Choice>(&option.kind);
  return choice != nullptr ? Joined(choice->words) : option.value;
}

std::vector<const OptionRow*> OptionsOf(const Command& command) {
  std::vector<const OptionRow*> taken;
  for (const OptionRow& option : ConvertOptions()) {
    if (Takes(command, option)) taken.push_back(&option);
  }
  return taken;
}

std::string Cat(std::initializer_list<std::string_view> pieces) {
  std::string text;
  for (const std::string_view piece : pieces) text += piece;
  return text;
}

void AddItem(std::string_view separator, std::string_view item, std::string* list) {
  if (!list->empty()) *list += separator;
  *list += item;
}

std::string Names(const std::vector<Suggestion>& words) {
  std::string names;
  for (const Suggestion& word : words) AddItem(" ", word.name, &names);
  return names;
}

std::string Escaped(const std::string& text, const char* special, const char* escape) {
  std::string escaped;
  for (const char c : text) {
    if (std::strchr(special, c) != nullptr) escaped += escape;
    escaped += c;
  }
  return escaped;
}

}  // namespace cvt::app

// Texts about the tool that are made from its tables while it is built: the manual page and what shells complete.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "app/commands.h"
#include "app/option_table.h"

namespace cvt::app {

std::string ManPage(const char* version);
std::string BashCompletion();
std::string ZshCompletion();
std::string FishCompletion();

/// A word that may be given, and what it means; `what` may be empty.
struct Suggestion {
  std::string name, what;
};

/// What a shell may offer for the value of an option or for the operands of a command.
struct Suggestions {
  std::vector<Suggestion> words;
  bool files = false, directories = false;
};

Suggestions ValuesOf(const OptionRow& option);
Suggestions OperandsOf(const Command& command);

inline bool IsSwitch(const OptionRow& option) { return std::holds_alternative<Switch>(option.kind); }

/// How the manual and zsh name the value of an option: WxH, keep|decimate|smooth.
std::string ValueName(const OptionRow& option);

/// The options that a command takes, in the order of the table.
std::vector<const OptionRow*> OptionsOf(const Command& command);

/// The pieces, one after another.
std::string Cat(std::initializer_list<std::string_view> pieces);

/// Appends an item to a list, with the separator before it if it is not the first.
void AddItem(std::string_view separator, std::string_view item, std::string* list);

/// The names alone, blanks between.
std::string Names(const std::vector<Suggestion>& words);

/// The text with each character of `special` preceded by `escape`.
std::string Escaped(const std::string& text, const char* special, const char* escape = "\\");

}  // namespace cvt::app

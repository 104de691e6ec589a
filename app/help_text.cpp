#include "app/help_text.h"

#include <CLI/CLI.hpp>
#include <sstream>
#include <string_view>

namespace cvt::app {

namespace {

constexpr std::size_t kColumns = 100;
constexpr std::size_t kTextColumn = 30;  // where what an option means begins

// Breaks a line at blanks; what follows the first piece stands where descriptions begin.
std::string Folded(std::string_view line) {
  std::string folded;
  std::string indent;
  while (indent.size() + line.size() > kColumns) {
    const std::size_t room = kColumns - indent.size();
    std::size_t end = line.rfind(' ', room);
    if (end == std::string_view::npos || indent.size() + end <= kTextColumn) break;
    folded += indent + std::string(line.substr(0, end)) + "\n";
    line.remove_prefix(end + 1);
    indent.assign(kTextColumn, ' ');
  }
  return folded + indent + std::string(line) + "\n";
}

// A group of options has two empty lines behind it; one is enough.
std::string Tidied(const std::string& text) {
  std::istringstream lines(text);
  std::string tidied;
  std::string line;
  for (bool empty = false; std::getline(lines, line); empty = line.empty()) {
    if (!line.empty() || !empty) tidied += Folded(line);
  }
  return tidied;
}

}  // namespace

std::string HelpText(const CLI::App& root, const Command* command) {
  if (command == nullptr) return Tidied(root.help());
  std::string text = root.get_subcommand(command->name)->help("r2r");
  std::string forms;
  for (const char* form : command->forms) {
    if (form != nullptr) forms += std::string(forms.empty() ? "Usage: " : "       ") + form + "\n";
  }
  const std::size_t usage = text.find("Usage: ");
  text.replace(usage, text.find('\n', usage) + 1 - usage, forms);
  return Tidied(text);
}

}  // namespace cvt::app

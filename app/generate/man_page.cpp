// The manual page, in the macros of man(7).

#include <algorithm>
#include <cctype>
#include <string_view>

#include "app/generate/generate.h"

namespace cvt::app {

namespace {

constexpr std::size_t kColumns = 78;

constexpr const char* kDescription =
    ".SH DESCRIPTION\n"
    "Rows of an image stream through a chain of conversions in bounded memory, whatever its height.\n"
    "Only data goes to standard output; messages go to standard error.\n"
    "An output file appears complete or not at all, and never in the place of another without\n"
    ".BR \\-\\-force .\n"
    "The same input and options give the same pixels on every machine.\n"
    "An option that cannot be honoured for an image is an error.\n";

struct ExitStatus {
  const char* status;
  const char* meaning;
};
constexpr ExitStatus kExitStatuses[] = {
    {"0", "all done"},
    {"1", "some inputs of many failed"},
    {"2", "wrong usage"},
    {"3", "an input cannot be read or is damaged"},
    {"4", "a limit was hit; the message names it and the option that moves it"},
    {"5", "the output cannot be written"},
    {"130", "interrupted"}};

std::string Plain(std::string_view text) {
  std::string plain;
  for (const char c : text) {
    if (c == '\\' || c == '-') plain += '\\';
    plain += c == '\\' ? 'e' : c;
  }
  return plain;
}

// Text in lines of an input file; a full stop or an apostrophe must not begin one.
std::string Prose(std::string_view text) {
  std::string prose, line;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string word = Plain(text.substr(0, end));
    if (!line.empty() && line.size() + 1 + word.size() > kColumns) {
      prose += line + "\n";
      line.clear();
    }
    if (line.empty() && (word.starts_with('.') || word.starts_with('\''))) line = "\\&";
    AddItem(line == "\\&" ? "" : " ", word, &line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return prose + line + "\n";
}

std::string Item(std::string_view tag, std::string_view text) { return Cat({".TP\n", tag, "\n", Prose(text)}); }

std::string Bold(std::string_view text) { return Cat({"\\fB", Plain(text), "\\fR"}); }
std::string Italic(std::string_view text) { return Cat({"\\fI", Plain(text), "\\fR"}); }

// Capitals stand for what the user fills in, small letters for themselves.
std::string Styled(std::string_view form) {
  const auto isWord = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-'; };
  std::string styled;
  while (!form.empty()) {
    std::size_t length = 0;
    while (length < form.size() && isWord(form[length])) ++length;
    const std::string_view piece = form.substr(0, length == 0 ? 1 : length);
    const bool filledIn = std::isupper(static_cast<unsigned char>(piece[0])) != 0;
    styled += length == 0 ? std::string(piece) : filledIn ? Italic(piece) : Bold(piece);
    form.remove_prefix(piece.size());
  }
  return styled;
}

std::string Synopsis() {
  std::string lines;
  for (const Command& command : Commands())
    for (const char* form : command.forms)
      if (form != nullptr) AddItem(".br\n", Cat({Styled(form), "\n"}), &lines);
  return Cat({".SH SYNOPSIS\n", lines});
}

std::string CommandItem(const Command& command) {
  std::string text = Cat({command.what, "."});
  if (command.most > 0) text += Cat({" Operands: ", command.operands, "."});
  std::string options;
  for (const OptionRow* option : OptionsOf(command)) AddItem(", ", option->name, &options);
  if (command.options == Command::kAllOptions) options = "all of those below";
  if (!options.empty()) text += Cat({" Options: ", options, "."});
  return Item(Bold(command.name), text);
}

std::string OptionItem(const OptionRow& option) {
  std::string tag = Bold(option.name);
  if (!IsSwitch(option)) tag += Cat({" ", Italic(ValueName(option))});
  std::string item = Item(tag, option.help);
  if (const auto* choice = std::get_if<Choice>(&option.kind)) {
    item += ".RS\n";
    for (const Word& word : choice->words) item += Item(Bold(word.name), word.what);
    item += ".RE\n";
  }
  return item;
}

std::string Options() {
  std::string text = ".SH OPTIONS\n";
  std::string_view group;
  for (const OptionRow& option : ConvertOptions()) {
    if (group != option.group) text += Cat({".SS ", option.group, "\n"});
    group = option.group;
    text += OptionItem(option);
  }
  return text;
}

// The examples of the help text: a command indented by two, what it does by six.
std::string ExampleItems() {
  std::string text;
  std::string_view rest = Examples();
  for (rest.remove_prefix(rest.find('\n') + 1); !rest.empty(); rest.remove_prefix(rest.find('\n') + 1)) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    const std::size_t indent = line.find_first_not_of(' ');
    const std::string_view content = line.substr(indent);
    text += indent < 6 ? Cat({".TP\n", Bold(content), "\n"}) : Prose(content);
  }
  return text;
}

}  // namespace

std::string ManPage(const char* version) {
  std::string text = Cat({".TH R2R 1 \"\" \"cvtr2r ", version, "\" \"User Commands\"\n.SH NAME\n",
                          "r2r \\- convert raster images to other depths, palettes and sizes\n", Synopsis(),
                          kDescription, ".SH COMMANDS\n"});
  for (const Command& command : Commands()) text += CommandItem(command);
  text += Item(Bold("--help"), "Print help: for the tool, or for the command that stands before it.");
  text += Item(Bold("--version"), "Print the version.");
  text += Options() + ".SH EXIT STATUS\n";
  for (const ExitStatus& status : kExitStatuses) text += Item(Bold(status.status), status.meaning);
  return Cat({text, ".SH EXAMPLES\n", ExampleItems()});
}

}  // namespace cvt::app

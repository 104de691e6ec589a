#include "app/command_line.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <string_view>
#include <vector>

namespace cvt::app {

namespace {

// One value of an option; throws what CLI11 reports as an error of that option.
struct Setter {
  const OptionRow* row;
  Arguments* arguments;
  const std::string* word;

  [[noreturn]] void Refuse(const std::string& allowed) const {
    throw CLI::ValidationError(row->name, "'" + *word + "' is not possible (give " + allowed + ")");
  }
  void operator()(const Switch&) const {}
  void operator()(const Text& kind) const { arguments->*kind.target = *word; }
  void operator()(const Number& kind) const {
    std::int64_t value = 0;
    const char* end = word->data() + word->size();
    const auto [stop, error] = std::from_chars(word->data(), end, value);
    if (error != std::errc() || stop != end || value < kind.least || value > kind.most) {
      Refuse("a whole number from " + std::to_string(kind.least) + " to " + std::to_string(kind.most));
    }
    arguments->*kind.target = value;
  }
  void operator()(const Choice& kind) const {
    std::string choices = std::string(row->value) + "|";
    if (word->empty() || word->find('|') != std::string::npos ||
        ("|" + choices).find("|" + *word + "|") == std::string::npos) {
      Refuse(row->value);
    }
    arguments->*kind.target = *word;
  }
};

void AddOption(CLI::App& app, const OptionRow& row, Arguments* arguments) {
  CLI::Option* option = nullptr;
  if (const auto* flag = std::get_if<Switch>(&row.kind)) {
    option = app.add_flag(row.name, arguments->*flag->target, row.help)->disable_flag_override();
  } else {
    const auto set = [&row, arguments](const std::string& word) {
      std::visit(Setter{&row, arguments, &word}, row.kind);
    };
    option = app.add_option_function<std::string>(row.name, set, row.help)->type_name(row.value);
  }
  option->group(row.group);
}

CLI::App* AddConvert(CLI::App& root, Arguments* arguments) {
  CLI::App* convert = root.add_subcommand("convert", "Convert one image; \"-\" is standard input or output");
  convert->add_option("INPUT", arguments->input, "PNG, PBM, PGM or PPM")->type_name("");
  convert->add_option("OUTPUT", arguments->output, "PNG, PBM, PGM or PPM")->type_name("");
  for (const OptionRow& row : ConvertOptions()) AddOption(*convert, row, arguments);
  convert->set_help_flag("--help", "print this help")->group("Running");
  convert->allow_extras();
  convert->footer(Examples());
  return convert;
}

// Operands are required, but CheckRequest says so: CLI11 would complain of them before it does of options.
std::string HelpForConvert(CLI::App* convert) {
  for (const char* operand : {"INPUT", "OUTPUT"}) convert->get_option(operand)->required();
  return convert->help("r2r");
}

// What no option or operand took. An option that does not exist leaves its value behind as well, so the
// first that looks like an option is the one to name.
Outcome CheckExtras(const std::vector<std::string>& extras, const CLI::App* convert) {
  for (const std::string& word : extras) {
    if (word.size() > 1 && word[0] == '-') return Usage(word, "there is no such option (see r2r convert --help)");
  }
  if (extras.empty()) return Done();
  if (convert->parsed()) return Usage(extras[0], "one operand too many (give one INPUT and one OUTPUT)");
  return Usage(extras[0], "there is no such command (see r2r --help)");
}

Outcome CheckRequest(const CLI::App& root, const CLI::App* convert, const Arguments& arguments) {
  if (Outcome failed = CheckExtras(root.remaining(true), convert); Failed(failed)) return failed;
  if (!convert->parsed()) return Usage("", "there is no command (give r2r convert INPUT OUTPUT, or r2r --help)");
  if (arguments.input.empty()) return Usage("INPUT", "it is missing (give r2r convert INPUT OUTPUT)");
  if (arguments.output.empty()) return Usage("OUTPUT", "it is missing (give r2r convert INPUT OUTPUT)");
  return Done();
}

Outcome Misread(const CLI::ParseError& error) {
  const std::string message = error.what();
  if (message.ends_with("flag override")) {
    const std::string name = message.substr(0, message.find(' '));
    return Usage((name.size() > 1 ? "--" : "-") + name, "it takes no value (leave out what follows the =)");
  }
  return Usage("", message.ends_with(')') ? message : message + " (see r2r convert --help)");
}

}  // namespace

Outcome ParseCommandLine(int count, const char* const* words, Request* request) {
  CLI::App root("Converts images to other depths, palettes and layouts", "r2r");
  root.set_version_flag("--version", "r2r " CVTR2R_VERSION, "print the version");
  root.set_help_flag("--help", "print this help; r2r convert --help lists the options");
  root.allow_extras();
  root.footer(Examples());
  CLI::App* convert = AddConvert(root, &request->arguments);
  try {
    root.parse(count, words);
  } catch (const CLI::CallForHelp&) {
    request->text = convert->parsed() ? HelpForConvert(convert) : root.help();
    return Done();
  } catch (const CLI::CallForVersion& version) {
    request->text = std::string(version.what()) + "\n";
    return Done();
  } catch (const CLI::ParseError& error) {
    return Misread(error);
  }
  request->action = Action::Convert;
  return CheckRequest(root, convert, request->arguments);
}

}  // namespace cvt::app

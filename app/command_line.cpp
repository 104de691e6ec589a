#include "app/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string_view>
#include <vector>

#include "app/commands.h"
#include "app/help_text.h"
#include "app/presets.h"

namespace cvt::app {

namespace {

// One value of an option; throws what CLI11 reports as an error of that option.
struct Setter {
  const OptionRow* row;
  Arguments* arguments;
  std::string word;

  template <class Value>
  void Take(std::optional<Value> Arguments::*target, const std::optional<Value>& value,
            const std::string& allowed) const {
    if (!value) throw CLI::ValidationError(row->name, "'" + word + "' is not possible (give " + allowed + ")");
    arguments->*target = value;
  }
  void operator()(const Switch&) const {}
  void operator()(const Text& kind) const { arguments->*kind.target = word; }
  void operator()(const Number& kind) const {
    Take(kind.target, ParseWhole(word, kind.least, kind.most),
         "a whole number from " + std::to_string(kind.least) + " to " + std::to_string(kind.most));
  }
  void operator()(const Choice& kind) const {
    const auto found = std::find_if(kind.words.begin(), kind.words.end(),
                                    [this](const Word& choice) { return word == choice.name; });
    Take(kind.target, found == kind.words.end() ? std::nullopt : std::optional(found->value), Joined(kind.words));
  }
  template <class Value>
  void operator()(const Form<Value>& kind) const {
    Take(kind.target, kind.parse(word), kind.allowed);
  }
};

void SetOption(const OptionRow& row, const std::string& word, Arguments* arguments) {
  std::visit(Setter{&row, arguments, word}, row.kind);
}

void AddOption(CLI::App& app, const OptionRow& row, Arguments* arguments) {
  CLI::Option* option = nullptr;
  if (const auto* flag = std::get_if<Switch>(&row.kind)) {
    option = app.add_flag(row.name, arguments->*flag->target, row.help)->disable_flag_override();
  } else {
    const auto set = [&row, arguments](const std::vector<std::string>& words) {
      if (words.size() > 1) throw CLI::ValidationError(row.name, "it is given twice (give it once)");
      SetOption(row, words[0], arguments);
      arguments->given.push_back({row.name, words[0]});
    };
    const auto* choice = std::get_if<Choice>(&row.kind);
    option = app.add_option_function<std::vector<std::string>>(row.name, set, row.help)
                 ->expected(1)
                 ->allow_extra_args(false)
                 ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
                 ->type_name(choice != nullptr ? Joined(choice->words) : row.value);
  }
  option->group(row.group);
}

void AddCommand(CLI::App& root, const Command& command, Arguments* arguments) {
  CLI::App* added = root.add_subcommand(command.name, command.what);
  added->add_option("OPERANDS", arguments->operands, command.operands)->type_name("");
  for (const OptionRow& row : ConvertOptions()) {
    if (Takes(command, row)) AddOption(*added, row, arguments);
  }
  added->set_help_flag("--help", "print this help")->group("Running");
  added->allow_extras();
  added->footer(Examples());
}

const Command* CommandOf(const CLI::App& root) {
  for (const Command& command : Commands()) {
    if (root.got_subcommand(command.name)) return &command;
  }
  return nullptr;
}

// The first word that looks like an option. "-9" is a number to CLI11 and so an operand.
Outcome CheckNoOption(const std::vector<std::string>& words, const Command* command) {
  const auto found = std::find_if(words.begin(), words.end(),
                                  [](const std::string& word) { return word.size() > 1 && word[0] == '-'; });
  if (found == words.end()) return Done();
  const std::string name = command == nullptr ? "" : std::string(" ") + command->name;
  return Usage(*found, "there is no such option (see r2r" + name + " --help)");
}

// What no option or operand took. An option that does not exist leaves its value behind as well, so the
// first that looks like an option is the one to name.
Outcome CheckExtras(const std::vector<std::string>& extras, const Command* command) {
  if (Outcome failed = CheckNoOption(extras, command); Failed(failed)) return failed;
  return extras.empty() ? Done() : Usage(extras[0], "there is no such command (see r2r --help)");
}

Outcome CheckOperands(const Command& command, const std::vector<std::string>& operands) {
  const std::string form = std::string(" (give ") + command.forms[0] + ")";
  if (operands.size() < command.least) return Usage(command.name, "there is no operand" + form);
  return operands.size() <= command.most ? Done() : Usage(operands[command.most], "one operand too many" + form);
}

// What stood before "--".
Outcome CheckWords(const CLI::App& root, const Command* command, const Arguments& arguments) {
  if (Outcome failed = CheckExtras(root.remaining(true), command); Failed(failed)) return failed;
  if (command != nullptr) return CheckNoOption(arguments.operands, command);
  return Usage("", "there is no command (give r2r convert INPUT OUTPUT, or r2r --help)");
}

// Fills in what the preset says and the command line does not. What was given rules over the preset, and so
// takes the options that go with another choice of it along.
void ApplyPreset(const Preset& preset, const CLI::App& convert, Arguments* arguments) {
  std::string leftOut = " ";
  const auto loses = [&](const char* name) {
    return name != nullptr && (convert.count(name) > 0 || leftOut.find(name) != std::string::npos);
  };
  for (const PresetOption& option : preset.options) {
    if (option.name == nullptr) return;
    if (loses(option.name) || loses(option.owner)) {
      leftOut += std::string(option.name) + " ";
      continue;
    }
    for (const OptionRow& row : ConvertOptions()) {
      if (std::string_view(row.name) == option.name) SetOption(row, option.value, arguments);
    }
  }
}

Outcome TakePreset(const CLI::App& root, Arguments* arguments) {
  if (!arguments->preset) return Done();
  for (const Preset& preset : Presets()) {
    if (*arguments->preset != preset.name) continue;
    ApplyPreset(preset, *root.get_subcommand("convert"), arguments);
    return Done();
  }
  return Usage("--preset", "'" + *arguments->preset + "' is no preset (give a name that r2r list presets shows)");
}

Outcome Misread(const CLI::ParseError& error) {
  const std::string message = error.what();
  if (message.ends_with("flag override")) {
    const std::string name = message.substr(0, message.find(' '));
    return Usage((name.size() > 1 ? "--" : "-") + name, "it takes no value (leave out what follows the =)");
  }
  const bool plain = error.get_name() != "ArgumentMismatch";
  if (plain) return Usage("", message.ends_with(')') ? message : message + " (see r2r convert --help)");
  return Usage(message.substr(0, message.find(':')), "its value is missing (give it behind the option)");
}

}  // namespace

Outcome ParseCommandLine(int count, const char* const* words, Request* request) {
  CLI::App root("Converts images to other depths, palettes and layouts", "r2r");
  root.set_version_flag("--version", "r2r " CVTR2R_VERSION, "print the version");
  root.set_help_flag("--help", "print this help; r2r convert --help lists the options");
  root.allow_extras();
  root.footer(Examples());
  for (const Command& command : Commands()) AddCommand(root, command, &request->arguments);
  const char* const* const end = words + count;
  const char* const* const options = std::find(words, end, std::string_view("--"));
  try {
    root.parse(static_cast<int>(options - words), words);
  } catch (const CLI::CallForHelp&) {
    const Command* command = CommandOf(root);
    request->text = HelpText(root, command);
    return Done();
  } catch (const CLI::CallForVersion& version) {
    request->text = std::string(version.what()) + "\n";
    return Done();
  } catch (const CLI::ParseError& error) {
    return Misread(error);
  }
  const Command* command = CommandOf(root);
  if (Outcome failed = CheckWords(root, command, request->arguments); Failed(failed)) return failed;
  std::vector<std::string>& operands = request->arguments.operands;
  if (options != end) operands.insert(operands.end(), options + 1, end);
  if (Outcome failed = CheckOperands(*command, operands); Failed(failed)) return failed;
  request->run = command->run;
  return TakePreset(root, &request->arguments);
}

Outcome ParseWords(const std::vector<std::string>& words, Request* request) {
  std::vector<const char*> pointers;
  pointers.reserve(words.size());
  for (const std::string& word : words) pointers.push_back(word.c_str());
  return ParseCommandLine(static_cast<int>(pointers.size()), pointers.data(), request);
}

}  // namespace cvt::app

// Lists are made of the tables that the parser reads, so that what is listed is what can be given.
#include "app/list_command.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

#include "app/palettes.h"
#include "app/presets.h"
#include "host/matrices.h"

namespace cvt::app {

namespace {

std::string Line(std::string_view name, std::string_view what) {
  constexpr std::size_t kColumn = 22;
  std::string line = "  " + std::string(name);
  line.resize(std::max(kColumn, line.size() + 2), ' ');
  return line + std::string(what) + "\n";
}

std::string ListChoice(std::string_view option) {
  for (const OptionRow& row : ConvertOptions()) {
    if (row.name != option) continue;
    std::string text = std::string(option) + "\n";
    for (const Word& word : std::get<Choice>(row.kind).words) text += Line(word.name, word.what);
    return text;
  }
  return "";
}

std::string ListMethods() { return ListChoice("--halftone") + ListChoice("--reduce") + ListChoice("--enlarge"); }

std::string ListFormats() {
  return "inputs\n" + Line("PNG, TIFF, JPEG,", "told by their first bytes") +
         Line("PBM, PGM, PPM, PAM", "told by their first bytes, binary and plain") + ListChoice("--format") +
         ListChoice("--compress");
}

std::string ListMatrices() {
  std::string text = "--matrix\n";
  for (const std::string_view name : host::kMatrixNames) {
    const std::optional<host::Matrix> matrix = host::MatrixNamed(name);
    if (!matrix) continue;
    text += Line(name, std::to_string(matrix->width) + " x " + std::to_string(matrix->height) +
                           (name.starts_with("cluster") ? ", clustered dots" : ", dispersed dots"));
  }
  return text + Line("FILE.pgm", "a picture of thresholds, 255 x 255 at most");
}

std::string ListPalettes() {
  std::string text = "--palette\n";
  for (const NamedPalette& palette : NamedPalettes()) text += Line(palette.name, palette.what);
  return text + Line("FILE.gpl|.hex|.pal", "a palette file") + Line("FILE.png", "the palette of an indexed PNG") +
         Line("#rrggbb,#rgb,...", "a list of colours, black and white by name");
}

std::string ListPresets() {
  std::string text = "--preset\n";
  for (const Preset& preset : Presets()) {
    text += Line(preset.name, preset.what);
    std::string options;
    for (const PresetOption& option : preset.options) {
      if (option.name != nullptr) options += std::string(option.name) + " " + option.value + " ";
    }
    options.pop_back();
    text += Line("", options);
  }
  return text;
}

struct Topic {
  std::string_view name;
  std::string (*list)();
};
constexpr Topic kTopics[] = {{"methods", ListMethods},
                             {"matrices", ListMatrices},
                             {"palettes", ListPalettes},
                             {"formats", ListFormats},
                             {"presets", ListPresets}};

}  // namespace

Outcome Print(const std::string& text) {
  const bool written = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
  if (written) return Done();
  return {
      pipeline::Fail(pipeline::Code::Output, "writing failed (make room, or choose another place for the output)"),
      "standard output"};
}

Outcome RunList(const Arguments& arguments) {
  const std::string& wanted = arguments.operands[0];
  for (const Topic& topic : kTopics) {
    if (topic.name == wanted) return Print(topic.list());
  }
  return Usage(wanted, "there is no such list (give methods, matrices, palettes, formats or presets)");
}

}  // namespace cvt::app

// The table of groups, and the words of their command lines.
#include "app/contact_sheet_plan.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string_view>

#include "app/presets.h"
#include "host/matrices.h"

namespace cvt::app {

namespace {

constexpr std::int32_t kLargest = 512;  // three side by side fit most screens

// Options that say what is converted: they go into every command line.
constexpr std::string_view kForAll =
    " --crop --size --reduce --enlarge --background --page --max-pixels --max-memory ";

enum class Shown : std::uint8_t { Always, WithoutPalette, WithPalette, WhenShrunk, WhenGrown };

// Pictures that differ in the value of one option.
struct GroupRow {
  Shown shown;
  const char* heading;
  const char* name;     // of the files, with the value behind it
  const char* words;    // what they have in common
  const char* changes;  // the option
};
constexpr GroupRow kGroups[] = {
    {Shown::WhenShrunk, "Ways to shrink", "reduce", "", "--reduce"},
    {Shown::WhenGrown, "Ways to grow", "enlarge", "", "--enlarge"},
    {Shown::Always, "Presets for common jobs", "preset", "", "--preset"},
    {Shown::Always, "Black and white", "bw", "--depth 1", "--halftone"},
    {Shown::Always, "Black and white by threshold matrix", "bw", "--depth 1 --halftone ordered", "--matrix"},
    {Shown::Always, "4 grays", "gray4", "--depth 2 --palette gray", "--halftone"},
    {Shown::Always, "16 grays", "gray16", "--depth 4 --palette gray", "--halftone"},
    {Shown::WithPalette, "Your palette", "palette", "", "--halftone"},
    {Shown::WithoutPalette, "16 colours of early displays", "retro16", "--palette retro-16", "--halftone"},
    {Shown::WithoutPalette, "7 inks of e-paper", "epaper7", "--palette epaper-7", "--halftone"},
    {Shown::WithoutPalette, "8 colours, evenly spaced", "cube8", "--depth 3 --palette cube", "--halftone"},
    {Shown::WithoutPalette, "216 colours, evenly spaced", "cube216", "--depth 8 --palette cube", "--halftone"},
    {Shown::WithoutPalette, "The 16 best colours", "best16", "--depth 4 --palette adaptive", "--halftone"},
    {Shown::WithoutPalette, "The 256 best colours", "best256", "--depth 8 --palette adaptive", "--halftone"}};

std::vector<std::string> ValuesOf(std::string_view option) {
  std::vector<std::string> values;
  if (option == "--matrix") values.assign(std::begin(host::kMatrixNames), std::end(host::kMatrixNames));
  if (option == "--preset") {
    for (const Preset& preset : Presets()) values.emplace_back(preset.name);
  }
  for (const OptionRow& row : ConvertOptions()) {
    const auto* choice = std::get_if<Choice>(&row.kind);
    if (choice == nullptr || row.name != option) continue;
    for (const Word& word : choice->words) values.emplace_back(word.name);
  }
  return values;
}

bool IsShown(Shown shown, const Arguments& arguments, Extent from, Extent to) {
  switch (shown) {
    case Shown::WithoutPalette:
      return !arguments.palette;
    case Shown::WithPalette:
      return arguments.palette.has_value();
    case Shown::WhenShrunk:
      return !arguments.reduce && (to.width < from.width || to.height < from.height);
    case Shown::WhenGrown:
      return !arguments.enlarge && (to.width > from.width || to.height > from.height);
    case Shown::Always:
      break;
  }
  return true;
}

void AddGiven(const Arguments& arguments, std::string_view names, std::vector<std::string>* words) {
  for (const GivenOption& option : arguments.given) {
    if (names.find(" " + option.name + " ") == std::string_view::npos) continue;
    words->insert(words->end(), {option.name, option.value});
  }
}

// Where nothing says how large the pictures are to be: the wish that makes large ones fit; empty for others.
std::string SizeThatFits(const Arguments& arguments, Extent from) {
  if (arguments.size || std::max(from.width, from.height) <= kLargest) return "";
  return (from.width < from.height ? "x" : "") + std::to_string(kLargest);
}

// A name that starts like an option is one no longer.
std::string AsOperand(const std::string& path) { return path.starts_with('-') ? "./" + path : path; }

SheetCell PlanCell(const Arguments& arguments, Extent from, const std::string& name, const std::string& fileName,
                   const std::vector<std::string>& method) {
  const std::string& input = arguments.operands[0];
  SheetCell cell{name, {"r2r", "convert"}};
  cell.words.insert(cell.words.end(), method.begin(), method.end());
  AddGiven(arguments, kForAll, &cell.words);
  if (const std::string size = SizeThatFits(arguments, from); !size.empty()) {
    cell.words.insert(cell.words.end(), {"--size", size});
  }
  const std::string stem = std::filesystem::path(input).stem().string();
  cell.words.insert(cell.words.end(), {AsOperand(input), AsOperand(stem + "-" + fileName + ".png")});
  return cell;
}

SheetGroup PlanGroup(const Arguments& arguments, Extent from, const GroupRow& row) {
  SheetGroup group{row.heading, {}};
  for (const std::string& value : ValuesOf(row.changes)) {
    std::istringstream common(row.words);
    std::vector<std::string> method{std::istream_iterator<std::string>(common), {}};
    if (row.shown == Shown::WithPalette) method = {"--palette", *arguments.palette};
    method.insert(method.end(), {row.changes, value});
    AddGiven(arguments, " --gamma ", &method);
    group.cells.push_back(PlanCell(arguments, from, value, row.name + ("-" + value), method));
  }
  return group;
}

std::string Quoted(const std::string& word) {
  constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./:,+@%-";
  if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? "'\\''" : std::string(1, c);
  return quoted + "'";
}

}  // namespace

Extent PictureSize(const Arguments& arguments, Extent image) {
  const Extent from = Clipped(arguments.crop, image);
  const std::string fits = SizeThatFits(arguments, from);
  const std::optional<SizeWish> size = fits.empty() ? arguments.size : ParseSize(fits);
  return size ? NewSize(*size, from) : from;
}

Sheet PlanSheet(const Arguments& arguments, Extent image) {
  const Extent from = Clipped(arguments.crop, image);
  const Extent to = PictureSize(arguments, image);
  Sheet sheet{std::filesystem::path(arguments.operands[0]).filename().string(),
              PlanCell(arguments, from, "original", "original", {}),
              {}};
  for (const GroupRow& row : kGroups) {
    if (IsShown(row.shown, arguments, from, to)) sheet.groups.push_back(PlanGroup(arguments, from, row));
  }
  return sheet;
}

std::vector<SheetCell*> CellsOf(Sheet& sheet) {
  std::vector<SheetCell*> cells{&sheet.original};
  for (SheetGroup& group : sheet.groups) {
    for (SheetCell& cell : group.cells) cells.push_back(&cell);
  }
  return cells;
}

std::string CommandLine(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) {
    if (!line.empty()) line += ' ';
    line += Quoted(word);
  }
  return line;
}

std::string FactsOf(const Picture& picture) {
  const pipeline::Image& image = picture.image;
  return std::to_string(image.width) + " x " + std::to_string(image.height) + ", " +
         (image.palette.empty() ? "direct colour" : std::to_string(image.palette.size()) + " colours") + ", " +
         std::to_string(picture.png.size()) + " bytes";
}

std::string SubtitleOf(const Sheet& sheet) {
  std::size_t pictures = 0;
  for (const SheetGroup& group : sheet.groups) pictures += group.cells.size();
  return std::to_string(pictures) +
         " ways to convert it, pixel for pixel. Below each picture stands the command line that makes it.";
}

}  // namespace cvt::app

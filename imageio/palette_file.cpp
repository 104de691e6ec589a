#include "imageio/palette_file.h"

#include <charconv>
#include <memory>
#include <utility>

#include "imageio/input_file.h"
#include "imageio/png_file.h"
#include "imageio/suffix.h"
#include "imageio/text.h"

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Failed;
using pipeline::Ok;
using pipeline::Status;

namespace {

constexpr std::size_t kMaxColors = 256;
constexpr std::size_t kMaxFileBytes = 1 << 20;  // far more than 256 lines need

std::string_view TakeLine(std::string_view* text) {
  const std::size_t end = text->find('\n');
  const std::string_view line = text->substr(0, end);
  text->remove_prefix(end == std::string_view::npos ? text->size() : end + 1);
  return Trimmed(line);
}

std::optional<std::uint8_t> TakeLevel(std::string_view* line) {
  *line = Trimmed(*line);
  std::uint8_t level = 0;
  const auto [end, error] = std::from_chars(line->data(), line->data() + line->size(), level);
  if (error != std::errc()) return std::nullopt;
  line->remove_prefix(static_cast<std::size_t>(end - line->data()));
  if (!line->empty() && line->front() != ' ' && line->front() != '\t') return std::nullopt;
  return level;
}

std::optional<IRGB> NumberColor(std::string_view line) {
  const std::optional<std::uint8_t> red = TakeLevel(&line);
  const std::optional<std::uint8_t> green = TakeLevel(&line);
  const std::optional<std::uint8_t> blue = TakeLevel(&line);
  if (!red || !green || !blue) return std::nullopt;
  return IRGB{*red, *green, *blue};
}

Status AtLine(int line, const std::string& words) {
  return Fail(Code::Input, "line " + std::to_string(line) + " " + words);
}

Status AddColor(const std::optional<IRGB>& color, int line, const char* form, std::vector<IRGB>* palette) {
  if (!color) return AtLine(line, std::string("is no colour (write ") + form + ")");
  if (palette->size() == kMaxColors) return AtLine(line, "is colour 257 (leave 256 at most)");
  palette->push_back(*color);
  return Ok();
}

Status ParseHex(std::string_view text, std::vector<IRGB>* palette) {
  for (int number = 1; !text.empty(); ++number) {
    std::string_view line = TakeLine(&text);
    if (line.empty()) continue;
    if (line.front() == '#') line.remove_prefix(1);
    if (Status failed = AddColor(HexColor(line), number, "six hexadecimal digits", palette); Failed(failed)) {
      return failed;
    }
  }
  return Ok();
}

bool IsRemark(std::string_view line) {
  return line.empty() || line.front() == '#' || line.starts_with("Name:") || line.starts_with("Columns:");
}

// The colours that stand in lines of three numbers from line `number` on.
Status ParseNumbers(std::string_view text, int number, std::vector<IRGB>* palette) {
  for (; !text.empty(); ++number) {
    const std::string_view line = TakeLine(&text);
    if (IsRemark(line)) continue;
    if (Status failed = AddColor(NumberColor(line), number, "three numbers from 0 to 255", palette);
        Failed(failed)) {
      return failed;
    }
  }
  return Ok();
}

Status ParseGpl(std::string_view text, std::vector<IRGB>* palette) {
  if (TakeLine(&text) != "GIMP Palette") return AtLine(1, "does not read \"GIMP Palette\" (give a .gpl palette)");
  return ParseNumbers(text, 2, palette);
}

Status ParsePal(std::string_view text, std::vector<IRGB>* palette) {
  if (TakeLine(&text) != "JASC-PAL") return AtLine(1, "does not read \"JASC-PAL\" (give a JASC palette)");
  if (TakeLine(&text) != "0100") return AtLine(2, "does not read \"0100\" (give a JASC palette)");
  const std::string told(TakeLine(&text));
  if (Status failed = ParseNumbers(text, 4, palette); Failed(failed)) return failed;
  if (told == std::to_string(palette->size())) return Ok();
  return AtLine(
      3, "does not tell the " + std::to_string(palette->size()) + " colours that follow (get an intact copy)");
}

struct TextForm {
  const char* suffix;
  Status (*parse)(std::string_view text, std::vector<IRGB>* palette);
};
constexpr TextForm kTextForms[] = {{".gpl", ParseGpl}, {".hex", ParseHex}, {".pal", ParsePal}};

const TextForm* FormOf(const std::string& path) {
  for (const TextForm& form : kTextForms) {
    if (HasSuffix(path, form.suffix)) return &form;
  }
  return nullptr;
}

Status ReadText(const std::string& path, std::string* text) {
  std::unique_ptr<InputFile> file;
  if (Status failed = OpenInput(path, &file); Failed(failed)) return failed;
  for (int c = NextByte(*file); c >= 0; c = NextByte(*file)) {
    if (text->size() == kMaxFileBytes)
      return Fail(Code::Input, "the file is too large for a palette (check the name)");
    text->push_back(static_cast<char>(c));
  }
  return file->error == 0 ? Ok() : EndOfInput(*file, "");
}

}  // namespace

std::optional<IRGB> HexColor(std::string_view digits) {
  std::uint32_t value = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
  if (digits.size() != 6 || error != std::errc() || stop != end) return std::nullopt;
  return IRGB{static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8 & 255),
              static_cast<std::uint8_t>(value & 255)};
}

bool IsPaletteFile(const std::string& path) { return FormOf(path) != nullptr || HasSuffix(path, ".png"); }

Status ReadPalette(const std::string& path, std::vector<IRGB>* palette) {
  if (!IsPaletteFile(path))
    return Fail(Code::Usage, "this is no palette file (give a .gpl, .hex, .pal or .png file)");
  palette->clear();
  const TextForm* form = FormOf(path);
  if (form == nullptr) return ReadPngPalette(path, palette);
  std::string text;
  if (Status failed = ReadText(path, &text); Failed(failed)) return failed;
  if (Status failed = form->parse(text, palette); Failed(failed)) return failed;
  return palette->empty() ? Fail(Code::Input, "the palette has no colours (write at least one)") : Ok();
}

}  // namespace cvt::imageio

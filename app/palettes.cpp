#include "app/palettes.h"

#include <string_view>

#include "app/words.h"
#include "imageio/palette_file.h"

namespace cvt::app {

namespace {

constexpr std::size_t kMostColors = 256;

constexpr IRGB kBlackAndWhite[] = {{0, 0, 0}, {255, 255, 255}};

// Black, white, green, blue, red, yellow, orange: the order in which such panels count their inks.
constexpr IRGB kInks[] = {{0, 0, 0},   {255, 255, 255}, {0, 255, 0},  {0, 0, 255},
                          {255, 0, 0}, {255, 255, 0},   {255, 128, 0}};
// The same inks as they look on a panel, its white taken as white: dull, and dark colours close together.
constexpr IRGB kInksSeen[] = {{50, 44, 54},  {255, 255, 255}, {60, 98, 72},  {62, 60, 98},
                              {160, 70, 72}, {214, 194, 72},  {182, 108, 72}};

// Four bits a colour: red, green, blue and brightness, with brown in the place of dark yellow.
constexpr IRGB kRetro[] = {{0, 0, 0},     {0, 0, 170},    {0, 170, 0},    {0, 170, 170},
                           {170, 0, 0},   {170, 0, 170},  {170, 85, 0},   {170, 170, 170},
                           {85, 85, 85},  {85, 85, 255},  {85, 255, 85},  {85, 255, 255},
                           {255, 85, 85}, {255, 85, 255}, {255, 255, 85}, {255, 255, 255}};

constexpr NamedPalette kPalettes[] = {
    {"bw", "black and white", PaletteKind::Colors, kBlackAndWhite},
    {"gray", "evenly spaced grays, as many as the depth has", PaletteKind::Gray},
    {"cube", "evenly spaced colours, as many as fit the depth (3 to 8)", PaletteKind::Cube},
    {"adaptive", "the best colours for the image; reads it twice", PaletteKind::Adaptive},
    {"retro-16", "the sixteen colours of early displays", PaletteKind::Colors, kRetro},
    {"epaper-7",
     "seven inks of e-paper: matched as they look, written as black, white, green, blue, red, yellow, orange",
     PaletteKind::Colors, kInksSeen, kInks}};

Outcome ParseColorList(std::string_view list, std::vector<IRGB>* colors) {
  for (bool more = true; more;) {
    const std::size_t comma = list.find(',');
    const std::string word(list.substr(0, comma));
    const std::optional<IRGB> color = ParseColor(word);
    if (!color) {
      return Usage("--palette",
                   "'" + word +
                       "' is no palette (give a name that r2r list palettes shows, FILE.gpl, FILE.hex, "
                       "FILE.pal, FILE.png or #rrggbb,#rrggbb,...)");
    }
    colors->push_back(*color);
    more = comma != std::string_view::npos;
    if (more) list.remove_prefix(comma + 1);
  }
  if (colors->size() <= kMostColors) return Done();
  return Usage("--palette", std::to_string(colors->size()) + " colours are too many (give 256 at most)");
}

}  // namespace

std::span<const NamedPalette> NamedPalettes() { return kPalettes; }

Outcome ReadPaletteWish(const std::optional<std::string>& spec, PaletteWish* wish) {
  if (!spec) return Done();
  for (const NamedPalette& named : kPalettes) {
    if (*spec != named.name) continue;
    *wish = {named.kind, {named.colors.begin(), named.colors.end()}, {named.written.begin(), named.written.end()}};
    return Done();
  }
  wish->kind = PaletteKind::Colors;
  if (imageio::IsPaletteFile(*spec)) return {imageio::ReadPalette(*spec, &wish->colors), *spec};
  return ParseColorList(*spec, &wish->colors);
}

}  // namespace cvt::app

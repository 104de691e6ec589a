#include "app/choose.h"

#include <optional>
#include <string_view>

#include "imageio/palette_file.h"

namespace cvt::app {

using imageio::Format;
using pipeline::Halftone;
using pipeline::Image;
using pipeline::Settings;

namespace {

using Kind = PaletteWish::Kind;

constexpr IRGB kBlack{0, 0, 0};
constexpr IRGB kWhite{255, 255, 255};
constexpr std::size_t kMaxColors = 256;

bool Holds(std::int32_t depth, std::size_t colors) { return colors <= std::size_t{1} << depth; }

std::int32_t SmallestDepth(std::size_t colors) {
  std::int32_t depth = 1;
  while (!Holds(depth, colors)) ++depth;
  return depth;
}

std::optional<IRGB> ParseColor(std::string_view word) {
  if (word == "black") return kBlack;
  if (word == "white") return kWhite;
  if (word.empty() || word.front() != '#') return std::nullopt;
  word.remove_prefix(1);
  if (word.size() != 3) return imageio::HexColor(word);
  const char twice[] = {word[0], word[0], word[1], word[1], word[2], word[2]};
  return imageio::HexColor({twice, sizeof twice});
}

Outcome ParseColorList(std::string_view list, std::vector<IRGB>* colors) {
  for (bool more = true; more;) {
    const std::size_t comma = list.find(',');
    const std::string word(list.substr(0, comma));
    const std::optional<IRGB> color = ParseColor(word);
    if (!color) {
      return Usage("--palette",
                   "'" + word + "' is no palette (give bw, gray, FILE.gpl, FILE.hex or #rrggbb,#rrggbb,...)");
    }
    colors->push_back(*color);
    more = comma != std::string_view::npos;
    if (more) list.remove_prefix(comma + 1);
  }
  if (colors->size() <= kMaxColors) return Done();
  return Usage("--palette", std::to_string(colors->size()) + " colours are too many (give 256 at most)");
}

// Without a wish for its colours the image keeps what it has: depth, palette, every pixel.
bool IsPlainCopy(const Arguments& arguments, const PaletteWish& wish, Format format) {
  return !arguments.depth && wish.kind == Kind::None && format != Format::Pbm && !arguments.threshold;
}

std::optional<std::int32_t> ChooseDepth(const Arguments& arguments, const PaletteWish& wish, const Image& image,
                                        Format format) {
  if (arguments.depth) return static_cast<std::int32_t>(*arguments.depth);
  if (wish.kind == Kind::Colors) return SmallestDepth(wish.colors.size());
  if (format == Format::Pbm || arguments.threshold) return 1;
  if (wish.kind == Kind::Gray) return 8;
  if (image.depth <= 8) return image.depth;
  return std::nullopt;
}

std::vector<IRGB> ChoosePalette(const PaletteWish& wish, const Image& image, bool copy, std::int32_t depth) {
  if (wish.kind == Kind::Colors) return wish.colors;
  if (wish.kind == Kind::Gray) return pipeline::GrayRamp(depth);
  if (copy) return image.palette;
  if (depth == 1) return {kBlack, kWhite};
  const bool fits = image.depth <= 8 && Holds(depth, image.palette.size());
  return fits ? image.palette : pipeline::GrayRamp(depth);
}

Outcome CheckTogether(const Arguments& arguments, const Settings& settings) {
  if (!Holds(settings.depth, settings.palette.size())) {
    return Usage("--palette", std::to_string(settings.palette.size()) + " colours do not fit --depth " +
                                  std::to_string(settings.depth) + " (choose --depth " +
                                  std::to_string(SmallestDepth(settings.palette.size())) + " or more)");
  }
  if (arguments.halftone == "diffusion" && settings.depth > 1) {
    return Usage("--halftone", "diffusion makes one bit a pixel, not " + std::to_string(settings.depth) +
                                   " (choose --depth 1 or --halftone nearest)");
  }
  if (!arguments.threshold) return Done();
  if (arguments.halftone == "diffusion") {
    return Usage("--threshold", "diffusion has no threshold (leave out one of the two)");
  }
  if (settings.depth > 1)
    return Usage("--threshold", "it makes one bit a pixel (choose --depth 1, or leave it out)");
  return Done();
}

Halftone ChooseHalftone(const Arguments& arguments, std::int32_t depth, bool copy) {
  if (arguments.halftone) return *arguments.halftone == "diffusion" ? Halftone::Diffusion : Halftone::Nearest;
  return depth == 1 && !copy && !arguments.threshold ? Halftone::Diffusion : Halftone::Nearest;
}

}  // namespace

Outcome ReadPaletteWish(const Arguments& arguments, PaletteWish* wish) {
  if (!arguments.palette) return Done();
  const std::string& spec = *arguments.palette;
  wish->kind = spec == "gray" ? Kind::Gray : Kind::Colors;
  if (spec == "gray") return Done();
  if (spec == "bw") {
    wish->colors = {kBlack, kWhite};
    return Done();
  }
  if (imageio::IsPaletteFile(spec)) return {imageio::ReadPalette(spec, &wish->colors), spec};
  return ParseColorList(spec, &wish->colors);
}

Outcome ReadBackground(const Arguments& arguments, IRGB* color) {
  const std::optional<IRGB> parsed = arguments.background ? ParseColor(*arguments.background) : kWhite;
  if (!parsed) {
    return Usage("--background",
                 "'" + *arguments.background + "' is no colour (give black, white, #rgb or #rrggbb)");
  }
  *color = *parsed;
  return Done();
}

Format WishedFormat(const Arguments& arguments) {
  if (arguments.format == "png") return Format::Png;
  if (arguments.format == "pbm") return Format::Pbm;
  if (arguments.format == "pgm") return Format::Pgm;
  return arguments.format == "ppm" ? Format::Ppm : Format::FromSuffix;
}

Outcome ChooseSettings(const Arguments& arguments, const PaletteWish& wish, const Image& image, Format format,
                       Settings* settings) {
  const std::optional<std::int32_t> depth = ChooseDepth(arguments, wish, image, format);
  if (!depth)
    return Usage("--depth",
                 "this image has direct colours, which can be read but not yet written (choose --depth 1 to 8 or "
                 "a --palette)");
  const bool copy = IsPlainCopy(arguments, wish, format);
  settings->depth = *depth;
  settings->palette = ChoosePalette(wish, image, copy, *depth);
  settings->halftone = ChooseHalftone(arguments, *depth, copy);
  settings->invert = arguments.invert;
  settings->layout = arguments.layout == "planes" ? pipeline::Layout::Planes : pipeline::Layout::Packed;
  if (arguments.threshold) settings->threshold = static_cast<std::int32_t>(*arguments.threshold);
  return CheckTogether(arguments, *settings);
}

}  // namespace cvt::app

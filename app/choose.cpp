#include "app/choose.h"

#include <algorithm>
#include <string>

#include "app/matrices.h"
#include "host/uniform_cube.h"
#include "imageio/palette_kind.h"

namespace cvt::app {

using imageio::Format;
using pipeline::Enlarge;
using pipeline::Halftone;
using pipeline::Image;
using pipeline::Reduce;
using pipeline::Settings;

namespace {

// Where the output's colours come from.
enum class Colors : std::uint8_t { Direct, Own, BlackAndWhite, Gray, Cube, Adaptive, Given };

// What is known when a default is to be chosen.
struct Job {
  const Arguments& arguments;
  const PaletteWish& wish;
  const Image& image;
  Format format;
  bool gray;   // the image has grays only
  bool mixed;  // see Mixes
};

bool Holds(std::int32_t depth, std::size_t colors) { return colors <= std::size_t{1} << depth; }

std::int32_t SmallestDepth(std::size_t colors) {
  std::int32_t depth = 1;
  while (!Holds(depth, colors)) ++depth;
  return depth;
}

template <class Enum>
Enum Given(const std::optional<std::int64_t>& choice, Enum otherwise) {
  return choice ? static_cast<Enum>(*choice) : otherwise;
}

void ChooseGeometry(const Arguments& arguments, const Image& image, bool gray, Settings* settings) {
  settings->crop = arguments.crop.value_or(pipeline::Crop{});
  const Extent from = Clipped(arguments.crop, {image.width, image.height});
  const Extent to = arguments.size ? NewSize(*arguments.size, from) : from;
  settings->width = to.width;
  settings->height = to.height;
  const bool thin = image.depth == 1 || (image.depth <= 8 && !gray);
  settings->reduce = Given(arguments.reduce, thin ? Reduce::Keep : Reduce::Smooth);
  settings->enlarge = Given(arguments.enlarge, Enlarge::Replicate);
}

// Whether scaling or the tone curve make colours that the image does not have.
bool Mixes(const Arguments& arguments, const Settings& settings, const Image& image) {
  const Extent from = Clipped(arguments.crop, {image.width, image.height});
  const bool shrinks = settings.width < from.width || settings.height < from.height;
  const bool grows = settings.width > from.width || settings.height > from.height;
  return (shrinks && settings.reduce == Reduce::Smooth) || (grows && settings.enlarge == Enlarge::Smooth) ||
         settings.gamma != 1.0;
}

std::int32_t ChooseDepth(const Job& job) {
  if (job.arguments.depth) return static_cast<std::int32_t>(*job.arguments.depth);
  if (job.wish.kind == PaletteKind::Colors) return SmallestDepth(job.wish.colors.size());
  if (job.format == Format::Pbm || job.arguments.threshold) return 1;
  if (job.wish.kind != PaletteKind::None) return 8;
  const bool becomesGray = job.format == Format::Pgm && !job.gray;
  return becomesGray || (job.gray && job.mixed) ? 8 : job.image.depth;
}

// Whether the image's own palette is the one to take when no other is asked for. Grays that arise find
// their levels in a ramp; the colours that arise in a copy go to the nearest one that is there.
bool KeepsPalette(const Job& job, std::int32_t depth) {
  if (job.image.depth > 8 || !Holds(depth, job.image.palette.size())) return false;
  if (job.format == Format::Pgm && !job.gray) return false;
  const bool copy = !job.arguments.depth && !job.arguments.threshold && job.format != Format::Pbm;
  return copy ? !job.gray || !job.mixed : depth > 1 && !job.mixed;
}

Colors ChooseColors(const Job& job, std::int32_t depth) {
  constexpr Colors kWished[] = {Colors::Own, Colors::Gray, Colors::Cube, Colors::Adaptive, Colors::Given};
  if (depth > 8) return Colors::Direct;
  if (job.wish.kind != PaletteKind::None) return kWished[static_cast<std::size_t>(job.wish.kind)];
  if (KeepsPalette(job, depth)) return Colors::Own;
  if (depth == 1) return Colors::BlackAndWhite;
  return job.gray || job.format == Format::Pgm ? Colors::Gray : Colors::Adaptive;
}

bool HasAll(const std::vector<IRGB>& palette, const std::vector<IRGB>& colors) {
  return std::all_of(colors.begin(), colors.end(), [&palette](IRGB color) {
    return std::find(palette.begin(), palette.end(), color) != palette.end();
  });
}

// The image's palette, as gamma and inversion change its colours: the nearest of those that were would undo
// that. A negative that only swaps colours keeps their order.
std::vector<IRGB> OwnPalette(const std::vector<IRGB>& own, const Settings& settings) {
  std::vector<IRGB> toned = pipeline::ToneOf(settings, own);
  return HasAll(own, toned) ? own : toned;
}

std::vector<IRGB> PaletteOf(const Job& job, Colors colors, const Settings& settings) {
  switch (colors) {
    case Colors::Own:
      return OwnPalette(job.image.palette, settings);
    case Colors::BlackAndWhite:
    case Colors::Gray:
      return pipeline::GrayRamp(settings.depth);
    case Colors::Cube:
      return host::UniformCube(host::CubeLevels(static_cast<std::uint32_t>(settings.depth)));
    case Colors::Given:
      return job.wish.colors;
    case Colors::Direct:
    case Colors::Adaptive:
      break;
  }
  return {};
}

Halftone ChooseHalftone(const Job& job, Colors colors, const std::vector<IRGB>& palette) {
  // Where every colour of the image is in the palette nothing is lost and nothing owed.
  const bool complete = job.image.depth <= 8 && !job.mixed && HasAll(palette, job.image.palette);
  const bool exact = colors == Colors::Direct || colors == Colors::Own || complete ||
                     (colors == Colors::Gray && palette.size() == 256);
  const bool nearest = exact || job.arguments.threshold;
  return Given(job.arguments.halftone, nearest ? Halftone::Nearest : Halftone::Diffusion);
}

Outcome CheckPalette(const Job& job, Colors colors, const Settings& settings) {
  if (colors == Colors::Direct && job.wish.kind != PaletteKind::None) {
    return Usage("--palette", "direct colour has no palette (leave it out, or choose --depth 1 to 8)");
  }
  if (colors == Colors::Cube && settings.depth < 3) {
    return Usage("--palette", "a cube has eight colours at least (choose --depth 3 to 8)");
  }
  if (colors == Colors::Direct || Holds(settings.depth, settings.palette.size())) return Done();
  return Usage("--palette", std::to_string(settings.palette.size()) + " colours do not fit --depth " +
                                std::to_string(settings.depth) + " (choose --depth " +
                                std::to_string(SmallestDepth(settings.palette.size())) + " or more)");
}

Outcome CheckHalftone(const Job& job, Colors colors, const Settings& settings) {
  const bool nearest = settings.halftone == Halftone::Nearest;
  const bool asked = job.arguments.depth || job.wish.kind != PaletteKind::None || settings.depth == 1;
  if (!nearest && (colors == Colors::Direct || (colors == Colors::Own && !asked && !job.mixed))) {
    return Usage("--halftone",
                 "the colours stay as they are, none is to be made of others (give --depth 1 to 8 or "
                 "a --palette)");
  }
  if (job.arguments.matrix && settings.halftone != Halftone::Ordered) {
    return Usage("--matrix", "it belongs to --halftone ordered (give that too, or leave it out)");
  }
  if (!job.arguments.threshold) return Done();
  if (!nearest) return Usage("--threshold", "it halftones nothing (leave out --threshold or --halftone)");
  if (settings.depth > 1)
    return Usage("--threshold", "it makes one bit a pixel (choose --depth 1, or leave it out)");
  return Done();
}

Outcome CheckTogether(const Job& job, Colors colors, const Settings& settings) {
  if (job.arguments.keepColor && settings.reduce != Reduce::Keep) {
    return Usage("--keep-color", "it belongs to --reduce keep (give that too, or leave it out)");
  }
  if (Outcome failed = CheckPalette(job, colors, settings); Failed(failed)) return failed;
  return CheckHalftone(job, colors, settings);
}

void TakeAsGiven(const Arguments& arguments, Settings* settings) {
  settings->gamma = arguments.gamma.value_or(1.0);
  settings->invert = arguments.invert;
  settings->layout = Given(arguments.layout, pipeline::Layout::Packed);
  settings->keepColor = arguments.keepColor.value_or(IRGB{0, 0, 0});
  settings->threshold = static_cast<std::int32_t>(arguments.threshold.value_or(settings->threshold));
}

}  // namespace

Outcome ReadWishes(const Arguments& arguments, Wishes* wishes) {
  if (Outcome failed = ReadPaletteWish(arguments.palette, &wishes->palette); Failed(failed)) return failed;
  return ReadMatrixWish(arguments.matrix, &wishes->thresholds);
}

Outcome ChooseSettings(const Arguments& arguments, const Wishes& wishes, const Image& image, Format format,
                       Chosen* chosen) {
  Settings& settings = chosen->settings;
  const bool gray = imageio::IsGray(image);
  TakeAsGiven(arguments, &settings);
  ChooseGeometry(arguments, image, gray, &settings);
  const Job job{arguments, wishes.palette, image, format, gray, Mixes(arguments, settings, image)};
  settings.depth = ChooseDepth(job);
  const Colors colors = ChooseColors(job, settings.depth);
  chosen->adaptive = colors == Colors::Adaptive;
  settings.palette = PaletteOf(job, colors, settings);
  settings.writtenPalette = colors == Colors::Given ? wishes.palette.written : std::vector<IRGB>{};
  settings.halftone = ChooseHalftone(job, colors, settings.palette);
  settings.thresholds = wishes.thresholds;
  return CheckTogether(job, colors, settings);
}

}  // namespace cvt::app

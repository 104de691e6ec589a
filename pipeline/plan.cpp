#include "pipeline/plan.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "pipeline/band.h"

namespace cvt::pipeline {
namespace {

constexpr std::int32_t kLargestCoordinate = 65535;
constexpr std::int32_t kMiddleThreshold = 128;

bool SameColor(IRGB a, IRGB b) { return a.red == b.red && a.green == b.green && a.blue == b.blue; }

bool IsGray(IRGB color) { return color.red == color.green && color.green == color.blue; }

IRGB Complement(IRGB color) {
  const auto invert = [](std::uint8_t channel) { return static_cast<std::uint8_t>(255 - channel); };
  return {invert(color.red), invert(color.green), invert(color.blue)};
}

Status CheckImage(const Image& image) {
  if (image.width < 1 || image.height < 1)
    return Fail(Code::Input, "the image has no pixels (nothing to convert)");
  if (image.width > kLargestCoordinate || image.height > kLargestCoordinate)
    return Fail(Code::Limit, std::to_string(image.width) + " x " + std::to_string(image.height) +
                                 " pixels: neither side may exceed 65535 (cut the image into tiles first)");
  const bool indexed = image.depth >= 1 && image.depth <= 8;
  if (!indexed && image.layout == Layout::Planes)
    return Fail(Code::Usage, "planes of direct colour cannot be read (give packed pixels)");
  if (!indexed && image.depth != kDirectDepth)
    return Fail(Code::Usage, std::to_string(image.depth) + " bits a pixel cannot be read (give 1 to 8, or 24)");
  if (indexed && (image.palette.empty() || image.palette.size() > std::size_t{1} << image.depth))
    return Fail(Code::Usage, "the image's palette does not fit its depth (give 1 to 2^depth colours)");
  return Ok();
}

Status CheckSettings(const Settings& settings) {
  if (settings.depth < 1 || settings.depth > 8)
    return Fail(Code::Usage, "depth " + std::to_string(settings.depth) + " cannot be written (choose 1 to 8)");
  if (settings.palette.empty() || settings.palette.size() > std::size_t{1} << settings.depth)
    return Fail(Code::Usage, std::to_string(settings.palette.size()) + " colours do not fit a depth of " +
                                 std::to_string(settings.depth) + " (choose another depth or palette)");
  if (settings.threshold < 0 || settings.threshold > 256)
    return Fail(Code::Usage,
                "threshold " + std::to_string(settings.threshold) + " is no gray level (choose 0 to 256)");
  if (settings.halftone == Halftone::Diffusion && settings.depth != 1)
    return Fail(Code::Usage, "diffusion goes to 1 bit only (choose depth 1 or nearest colour)");
  return Ok();
}

// A palette has a colour for every pixel value; the spare ones repeat the first, which is found before them.
std::vector<IRGB> Padded(std::vector<IRGB> palette, std::int32_t depth) {
  palette.resize(std::size_t{1} << depth, palette.front());
  return palette;
}

// The colours that the routines match against. To invert is to match the negatives of the colours.
std::vector<IRGB> WantedColors(const Settings& settings) {
  std::vector<IRGB> colors = Padded(settings.palette, settings.depth);
  if (settings.invert) std::transform(colors.begin(), colors.end(), colors.begin(), Complement);
  return colors;
}

// Whether one bit becomes one bit by keeping or swapping the two values.
bool IsRelabelling(const Image& image, const Settings& settings, const std::vector<IRGB>& wanted) {
  if (image.depth != 1 || settings.depth != 1 || image.palette.size() != 2) return false;
  if (settings.halftone == Halftone::Nearest && settings.threshold != kMiddleThreshold) return false;
  const IRGB zero = image.palette[0];
  const IRGB one = image.palette[1];
  return !SameColor(zero, one) && ((SameColor(zero, wanted[0]) && SameColor(one, wanted[1])) ||
                                   (SameColor(zero, wanted[1]) && SameColor(one, wanted[0])));
}

Intake ChooseIntake(const Image& image, const Settings& settings, const std::vector<IRGB>& wanted) {
  if (image.depth == kDirectDepth) {
    const bool byGray = settings.depth == 1 || std::all_of(wanted.begin(), wanted.end(), IsGray);
    return byGray ? Intake::GrayLevels : Intake::DirectWords;
  }
  const bool wouldOnlyBeRelabelled = image.depth == 1 && settings.depth == 1;
  return wouldOnlyBeRelabelled && !IsRelabelling(image, settings, wanted) ? Intake::WidenBits : Intake::AsStored;
}

// Whether a line fits a band; `which` line, for the message.
Status CheckLine(Layout layout, std::int32_t width, std::int32_t bits, const char* which) {
  if (BandLineBytes(layout, width, bits) <= kBandBytes) return Ok();
  constexpr std::int32_t kWords = kBandBytes / 2;
  const std::int32_t most = layout == Layout::Planes ? kWords / bits * 16 : kWords * 16 / bits;
  return Fail(Code::Limit, "a line of " + std::to_string(width) + " pixels of " + std::to_string(bits) + " bits" +
                               which + " does not fit a band of " + std::to_string(kBandBytes) +
                               " bytes (at most " + std::to_string(most) + " pixels do)");
}

Status PlanBands(const Image& image, const Settings& settings, Plan* plan) {
  const Layout layout = IntakeLayout(plan->intake, image);
  const std::int32_t sourceBits = BandBits(layout, IntakeDepth(plan->intake, image));
  const std::int32_t outputBits = BandBits(settings.layout, settings.depth);
  if (Status bad = CheckLine(layout, image.width, sourceBits, ""); Failed(bad)) return bad;
  if (Status bad = CheckLine(settings.layout, image.width, outputBits, " of output"); Failed(bad)) return bad;

  // Neither a band nor, however it is split, its output may outgrow a block.
  plan->bandLines = std::min({kBandBytes / BandLineBytes(layout, image.width, sourceBits),
                              kBandBytes / BandLineBytes(settings.layout, image.width, outputBits), image.height});
  if (settings.bandLines > 0) plan->bandLines = std::min(plan->bandLines, settings.bandLines);
  return Ok();
}

}  // namespace

Status MakePlan(const Image& image, const Settings& settings, Plan* plan) {
  if (Status bad = CheckImage(image); Failed(bad)) return bad;
  if (Status bad = CheckSettings(settings); Failed(bad)) return bad;
  plan->input = image;
  plan->wantedColors = WantedColors(settings);
  plan->intake = ChooseIntake(image, settings, plan->wantedColors);
  plan->sourceColors = IntakePalette(plan->intake, image);
  plan->output = {image.width, image.height, settings.depth, settings.palette, settings.layout};
  return PlanBands(image, settings, plan);
}

}  // namespace cvt::pipeline

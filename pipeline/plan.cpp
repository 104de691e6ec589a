#include "pipeline/plan.h"

#include <algorithm>

#include "host/tables.h"
#include "pipeline/band.h"
#include "pipeline/limits.h"
#include "pipeline/parts.h"

namespace cvt::pipeline {
namespace {

constexpr std::uint8_t kOrdered = 0;  // neither nearest nor diffusion
constexpr std::uint8_t kKeepFeatures = 0;

bool AllGray(const std::vector<IRGB>& colors) { return host::AllGray({colors.data(), colors.size()}); }

IRGB Complement(IRGB color) {
  const auto invert = [](std::uint8_t channel) { return static_cast<std::uint8_t>(255 - channel); };
  return {invert(color.red), invert(color.green), invert(color.blue)};
}

bool Shrinks(const Image& from, const Image& to) { return to.width < from.width || to.height < from.height; }
bool Grows(const Image& from, const Image& to) { return to.width > from.width || to.height > from.height; }

// The colours that the routines match against; spare ones repeat the first, which is found before them. To
// invert is to match the negatives of the colours.
std::vector<IRGB> WantedColors(const Settings& settings) {
  std::vector<IRGB> colors = settings.palette;
  if (colors.empty()) return colors;
  colors.resize(std::size_t{1} << settings.depth, colors.front());
  if (settings.invert) std::transform(colors.begin(), colors.end(), colors.begin(), Complement);
  return colors;
}

ToneCurve GammaCurve(double gamma) {
  ToneCurve tone;
  host::BuildGamma(gamma, tone.data());
  return tone;
}

// What happens to channel values on their way in. Direct colour is not matched against anything, so that it
// is inverted here.
ToneCurve Tone(const Settings& settings) {
  ToneCurve tone = GammaCurve(settings.gamma);
  if (settings.invert && IsDirect(settings.depth))
    for (std::uint8_t& level : tone) level = static_cast<std::uint8_t>(255 - level);
  return tone;
}

// Whether one bit becomes one bit by keeping or swapping the two values.
bool IsRelabelling(const Image& image, const Settings& settings, const std::vector<IRGB>& wanted) {
  if (image.palette.size() != 2 || settings.gamma != 1.0) return false;
  if (settings.halftone == Halftone::Nearest && settings.threshold != kMiddleThreshold) return false;
  const IRGB zero = image.palette[0];
  const IRGB one = image.palette[1];
  return zero != one && ((zero == wanted[0] && one == wanted[1]) || (zero == wanted[1] && one == wanted[0]));
}

// Bands that are enlarged fill their blocks: they must not become deeper after that.
bool Deepens(const Image& from, const Image& to) {
  return Grows(from, to) && to.depth <= 8 && BandBits(to.layout, to.depth) > BandBits(from.layout, from.depth);
}

Intake ChooseIntake(const Image& image, const Stage& stage, const Settings& settings) {
  const std::vector<IRGB>& wanted = stage.wantedColors;
  const bool grayOutput = !wanted.empty() && (settings.depth == 1 || AllGray(wanted));
  if (image.depth == kDirectDepth) return grayOutput ? Intake::GrayLevels : Intake::DirectWords;
  if (stage.smooth) return grayOutput || AllGray(image.palette) ? Intake::GrayLevels : Intake::DirectWords;
  if (image.depth == 1 && settings.depth == 1)
    return IsRelabelling(image, settings, wanted) ? Intake::AsStored : Intake::Widened;
  return Deepens(image, stage.output) ? Intake::Widened : Intake::AsStored;
}

std::uint8_t MethodOf(Halftone halftone) {
  return halftone == Halftone::Nearest ? kNearest : halftone == Halftone::Diffusion ? kDiffusion : kOrdered;
}

bool ScalesSmoothly(const Image& from, const Image& to, const Settings& settings) {
  return (Shrinks(from, to) && settings.reduce == Reduce::Smooth) ||
         (Grows(from, to) && settings.enlarge == Enlarge::Smooth);
}

// The value of the colour that is least like another.
std::uint32_t FarthestEntry(const std::vector<IRGB>& colors, IRGB from) {
  const auto distance = [from](IRGB color) {
    const std::int32_t red = color.red - from.red, green = color.green - from.green, blue = color.blue - from.blue;
    return red * red + green * green + blue * blue;
  };
  const auto farthest = std::max_element(colors.begin(), colors.end(),
                                         [&distance](IRGB a, IRGB b) { return distance(a) < distance(b); });
  return static_cast<std::uint32_t>(farthest - colors.begin());
}

// The pixel values of the colour to keep, and of the paper that it is drawn on. Values of direct colour reach 16
// bits only where red is 0.
Status FindKeepValue(const Settings& settings, Stage* stage) {
  const IRGB color = settings.keepColor;
  const std::vector<IRGB>& colors = stage->entry.colors;
  if (!colors.empty()) {
    stage->keepValue = static_cast<std::int16_t>(host::NearestEntry({colors.data(), colors.size()}, color));
    stage->paperValue = FarthestEntry(colors, color);
    return Ok();
  }
  if (color.red != 0 || color.green > 127)
    return Fail(Code::Usage,
                "this colour cannot be kept in an image of direct colour (keep black, or reduce smooth)");
  stage->keepValue = static_cast<std::int16_t>(color.green << 8 | color.blue);
  stage->paperValue = 0xFFFFFF;
  return Ok();
}

// Whether every source line ends where an output line ends.
bool EndsWithEveryLine(const Stage& stage) { return stage.output.height % stage.entry.image.height == 0; }

// Source lines that at the least must share a band so that an output line ends in it. Averaging needs one
// more to choose its cuts from, where a band of the fewest lines would end together with an output line.
std::int32_t FewestLinesOfPart(const Stage& stage) {
  const std::int32_t from = stage.entry.image.height, to = stage.output.height;
  const std::int32_t group = to >= from ? 1 : (from + to - 1) / to;
  const bool needsChoice = to > from || from % to == 0;
  return stage.smooth && !EndsWithEveryLine(stage) && needsChoice ? std::min(group + 1, from) : group;
}

std::int32_t FewestBandLines(const Stage& stage) {
  std::int32_t fewest = 1;
  for (std::int32_t i = 0; i < stage.parts; ++i)
    fewest = std::max(fewest, FewestLinesOfPart(StageOfPart(stage, i)));
  return fewest;
}

std::int32_t ScaledLine(const Stage& stage) {
  const Layout layout = BandLayout(stage.entry);
  return BandLineBytes(layout, stage.output.width, BandBits(layout, BandDepth(stage.entry)));
}

std::int32_t OutputLine(const Image& to) {
  return BandLineBytes(to.layout, to.width, BandBits(to.layout, to.depth));
}

// Planes pad their rows one by one: bands that enlarging has filled may not fit a block any more.
bool OutgrowsBlock(const Stage& stage) {
  const Image& to = stage.output;
  return Grows(stage.entry.image, to) && to.layout == Layout::Planes && OutputLine(to) > ScaledLine(stage);
}

// Neither a band nor, however it is split, what becomes of it may outgrow a block.
std::int32_t MostBandLines(const Stage& stage, const Settings& settings) {
  const std::int32_t longest = std::max({BandLine(stage.entry), ScaledLine(stage), OutputLine(stage.output)});
  const std::int32_t most = std::min(kBandBytes / longest, stage.entry.image.height);
  if (settings.bandLines == 0) return most;
  return std::min(most, std::max(settings.bandLines, FewestBandLines(stage)));
}

// The stage from `image` to the output that `settings` ask for.
Status FinalStage(const Image& image, const Settings& settings, Stage* stage) {
  const std::int32_t width = settings.width > 0 ? settings.width : image.width;
  const std::int32_t height = settings.height > 0 ? settings.height : image.height;
  const std::vector<IRGB>& written = settings.writtenPalette.empty() ? settings.palette : settings.writtenPalette;
  stage->output = {width, height, settings.depth, written, settings.layout};
  stage->wantedColors = WantedColors(settings);
  stage->halftoneMethod = MethodOf(settings.halftone);
  stage->threshold = settings.threshold;
  stage->thresholds = settings.thresholds;
  stage->scaleDownMethod = settings.reduce == Reduce::Decimate ? kDecimate : kKeepFeatures;
  stage->smooth = ScalesSmoothly(image, stage->output, settings);
  stage->entry = MakeEntry(ChooseIntake(image, *stage, settings), image, Tone(settings));
  if (stage->smooth) stage->parts = PartsNeeded(image.height, height);
  if (Status bad = CheckScaling(StageOfPart(*stage, 0)); Failed(bad)) return bad;
  if (Status bad = CheckLines(*stage); Failed(bad)) return bad;
  stage->bandLines = MostBandLines(*stage, settings);
  if (!Shrinks(image, stage->output) || settings.reduce != Reduce::Keep) return Ok();
  return FindKeepValue(settings, stage);
}

// Settings of a stage that leaves pixels as they are and only changes the geometry.
Settings Unchanged(const Image& image, const Settings& settings) {
  Settings same;
  same.depth = image.depth;
  same.palette = image.palette;
  same.layout = image.layout;
  same.reduce = settings.reduce;
  same.keepColor = settings.keepColor;
  same.bandLines = settings.bandLines;
  return same;
}

Status AddCrop(const Settings& settings, Image* image, Plan* plan) {
  if (Status bad = CheckCrop(*image, settings.crop); Failed(bad)) return bad;
  Stage stage;
  Settings same = Unchanged(*image, settings);
  if (Status bad = FinalStage(*image, same, &stage); Failed(bad)) return bad;
  if (image->depth <= 8) stage.entry = MakeEntry(Intake::AsStored, *image, Tone(same));
  stage.crop = settings.crop;
  stage.output.width = settings.crop.width;
  stage.output.height = settings.crop.height;
  plan->stages.push_back(stage);
  *image = stage.output;
  return Ok();
}

// What averages are made of on their way: grays or direct colour.
Settings Averaging(const Image& image, const Settings& settings, const Stage& last) {
  const bool gray = last.entry.intake == Intake::GrayLevels;
  Settings step = Unchanged(image, settings);
  step.depth = gray ? 8 : kDirectDepth;
  step.palette = gray ? GrayRamp(8) : std::vector<IRGB>{};
  step.layout = Layout::Packed;
  step.gamma = settings.gamma;
  return step;
}

Status AddStage(const Settings& step, Image* image, Plan* plan) {
  Stage stage;
  if (Status bad = FinalStage(*image, step, &stage); Failed(bad)) return bad;
  plan->stages.push_back(stage);
  *image = stage.output;
  return Ok();
}

// Scales in a stage of its own, so that what follows, error diffusion say, does not notice parts or full bands.
Status AddScaling(const Settings& settings, const Stage& last, Image* image, Plan* plan) {
  Settings step = last.smooth ? Averaging(*image, settings, last) : Unchanged(*image, settings);
  step.enlarge = settings.enlarge;
  step.width = last.output.width;
  step.height = last.output.height;
  return AddStage(step, image, plan);
}

// A band holds too few lines for an output line to end in it: go part of the way first.
//
// The width goes first, since narrower lines make taller bands: all the way where pixels are sampled or
// merged, as the routines would do next; by halves where they are averaged, of grays or direct colour, since
// every average costs a little sharpness. Lines are sampled or merged to a multiple of the lines wanted, which
// ends in the lines that one step would choose.
Status AddStep(const Settings& settings, const Stage& last, Image* image, Plan* plan) {
  Settings step = last.smooth ? Averaging(*image, settings, last) : Unchanged(*image, settings);
  step.width = std::min(image->width, last.output.width);
  step.height = image->height;
  if (last.smooth) {
    step.width = std::min(image->width, std::max(last.output.width, (image->width + 1) / 2));
    if (step.width == image->width && last.bandLines > 2) step.height = (image->height + 1) / 2;
  } else if (step.width == image->width && last.bandLines > 1) {
    const std::int32_t group = FewestBandLines(last);
    step.height = last.output.height * ((group + last.bandLines - 1) / last.bandLines);
  }
  if (step.width == image->width && step.height == image->height)
    return Fail(Code::Limit, "the lines are too long to reduce the height so far at once (reduce in two steps)");
  return AddStage(step, image, plan);
}

// Averaging loses step where a band ends together with an output line: it makes one more line, which is lost.
// Such cuts are avoided; where there are no others, the first line is a band of its own, so that the loss is at
// the edge.
std::int32_t SmoothLinesFrom(const Stage& stage, std::int32_t top, std::int32_t lines) {
  const std::int32_t height = stage.entry.image.height;
  if (top + lines == height) return lines;
  if (EndsWithEveryLine(stage)) return top == 0 ? 1 : lines;
  return std::int64_t{top + lines} * stage.output.height % height == 0 ? lines - 1 : lines;
}

}  // namespace

std::vector<IRGB> ToneOf(const Settings& settings, std::vector<IRGB> colors) {
  const ToneCurve tone = GammaCurve(settings.gamma);
  for (IRGB& color : colors) {
    color = {tone[color.red], tone[color.green], tone[color.blue]};
    if (settings.invert) color = Complement(color);
  }
  return colors;
}

std::int32_t LinesFrom(const Stage& stage, std::int32_t top) {
  const std::int32_t height = stage.entry.image.height, newHeight = stage.output.height;
  const std::int32_t lines = std::min(stage.bandLines, height - top);
  if (stage.smooth) return SmoothLinesFrom(stage, top, lines);
  if (stage.crop.width > 0 || newHeight >= height) return lines;
  // Output line k is made of the source lines from k * height / newHeight, rounded up.
  const std::int64_t ended = std::int64_t{top + lines} * newHeight / height;
  return static_cast<std::int32_t>((ended * height + newHeight - 1) / newHeight) - top;
}

std::int32_t RowsAhead(const Stage& stage) {
  const std::int32_t height = stage.entry.image.height;
  if (!stage.smooth) return 0;
  const bool losesLine = stage.output.height == height && stage.bandLines < height;
  return std::min(losesLine ? 2 : 1, height - 1);
}

Status MakePlan(const Image& image, const Settings& settings, Plan* plan) {
  if (Status bad = CheckImage(image); Failed(bad)) return bad;
  if (Status bad = CheckSettings(settings); Failed(bad)) return bad;
  plan->stages.clear();
  Image next = image;
  Settings rest = settings;
  if (settings.crop.width != 0 || settings.crop.height != 0)
    if (Status bad = AddCrop(settings, &next, plan); Failed(bad)) return bad;
  for (;;) {
    Stage last;
    if (Status bad = FinalStage(next, rest, &last); Failed(bad)) return bad;
    const bool enough = last.bandLines >= FewestBandLines(last);
    if (enough && last.parts == 1 && !OutgrowsBlock(last)) {
      if (Status bad = CheckOverlay(settings.overlay, last.output); Failed(bad)) return bad;
      if (settings.overlay.image.width > 0) last.overlay = std::make_shared<const Overlay>(settings.overlay);
      plan->stages.push_back(last);
      return Ok();
    }
    Status bad = enough ? AddScaling(rest, last, &next, plan) : AddStep(rest, last, &next, plan);
    if (Failed(bad)) return bad;
    if (last.smooth) rest.gamma = 1.0;  // the step has applied it
  }
}

}  // namespace cvt::pipeline

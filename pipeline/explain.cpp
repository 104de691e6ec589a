// The chains told link by link, as they run: blank rows go through each stage, watched, until its first band
// has gone down the chain.

#include <string>

#include "pipeline/convert.h"
#include "pipeline/parts.h"
#include "pipeline/stage.h"
#include "pipeline/two_colors.h"

namespace cvt::pipeline {
namespace {

std::string Many(std::int32_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string Size(std::int32_t width, std::int32_t height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

std::string Pixels(const LinkSeen& link) {
  return link.layout == Layout::Planes ? Many(link.bits, "plane") : Many(link.bits, "bit") + " packed";
}

std::string Bands(const LinkSeen& link, std::int32_t bands) {
  return Many(bands, "band") + " of up to " + Many(link.lines, "line") + ", " + Many(link.bytes, "byte");
}

const char* IntakeNote(const Entry& entry) {
  switch (entry.intake) {
    case Intake::Widened:
      return "indices widened to 8 bits; ";
    case Intake::GrayLevels:
      return entry.image.depth == kDirectDepth ? "colour as 256 grays; " : "";
    case Intake::DirectWords:
      return "colour as 32-bit words; ";
    case Intake::AsStored:
      break;
  }
  return "";
}

const char* ScalingStep(const Stage& stage, const LinkSeen& before, const LinkSeen& after) {
  if (stage.smooth) return "smooth scaling";
  const bool width = before.width != after.width;
  if (before.width > after.width || before.height > after.height) {
    if (stage.scaleDownMethod == kDecimate) return width ? "decimate width" : "decimate height";
    return width ? "reduce width" : "reduce height";
  }
  return width ? "enlarge width" : "enlarge height";
}

const char* DepthStep(const Stage& stage, const LinkSeen& before, const LinkSeen& after) {
  if (before.bits == 1 && after.bits == 1) return "relabelling";
  if (stage.wantedColors.empty()) return "direct colour";
  if (stage.halftoneMethod == kDiffusion) return "error diffusion";
  return stage.halftoneMethod == kNearest ? "nearest colour" : "ordered dither";
}

// What turned the band of link `i` - 1 into that of link `i`. Only the last step can leave the size as it is and
// change pixels; behind a clip, the scalers move what was cut out to column and line 0.
const char* StepName(const Worker& worker, std::size_t i) {
  const LinkSeen &before = worker.links[i - 1], &after = worker.links[i];
  const bool sameSize = before.width == after.width && before.height == after.height;
  if (sameSize && i + 1 < worker.links.size()) return "move to the origin";
  if (sameSize) return DepthStep(worker.stage, before, after);
  return worker.stage.crop.width > 0 ? "clip" : ScalingStep(worker.stage, before, after);
}

std::int32_t BandsOf(const Stage& stage) {
  std::int32_t bands = 0;
  for (std::int32_t top = 0; top < stage.entry.image.height; top += LinesFrom(stage, top)) ++bands;
  return bands;
}

void Tell(const Worker& worker, std::vector<std::string>* lines) {
  for (std::size_t i = 0; i < worker.links.size(); ++i) {
    const LinkSeen& link = worker.links[i];
    const bool first = i == 0;
    const std::string what =
        first ? std::string("source: ") + IntakeNote(worker.stage.entry) : std::string(StepName(worker, i)) + ": ";
    lines->push_back(what + Size(link.width, link.height) + ", " + Pixels(link) + ", " +
                     Bands(link, first ? BandsOf(worker.stage) : link.bands) + (first ? "" : " from one band"));
  }
  if (worker.stage.overlay != nullptr) {
    const Overlay& overlay = *worker.stage.overlay;
    lines->push_back("overlay: " + Size(overlay.image.width, overlay.image.height) + " at " +
                     std::to_string(overlay.x) + ", " + std::to_string(overlay.y));
  }
  lines->push_back("next stage: " + Many(worker.stage.output.height, "row") + " of " +
                   Many(static_cast<std::int32_t>(RowBytes(worker.stage.output)), "byte"));
}

Status ExplainStage(const Stage& stage, std::vector<std::string>* lines) {
  Worker worker;
  worker.watched = true;
  const auto drop = [](std::int32_t, const std::uint8_t*) { return Ok(); };
  if (Status bad = StartWorker(stage, drop, &worker); Failed(bad)) return bad;
  const std::vector<std::uint8_t> blank(RowBytes(stage.entry.image));
  while (worker.top == 0)
    if (Status bad = PushRow(&worker, blank.data()); Failed(bad)) return bad;
  Tell(worker, lines);
  return Ok();
}

}  // namespace

Status Explain(const Image& image, const Settings& settings, std::vector<std::string>* lines) {
  Plan plan;
  if (Status bad = MakePlan(image, WantsTwoColors(settings) ? WithTwoBits(settings) : settings, &plan);
      Failed(bad))
    return bad;
  lines->clear();
  for (const Stage& stage : plan.stages) {
    if (stage.parts > 1) lines->push_back("in " + Many(stage.parts, "part") + ", of which the first:");
    if (Status bad = ExplainStage(StageOfPart(stage, 0), lines); Failed(bad)) return bad;
  }
  return Ok();
}

}  // namespace cvt::pipeline

// The chain told link by link, as it runs: one blank band goes through it, watched.

#include <cstring>
#include <string>

#include "pipeline/chain.h"
#include "pipeline/convert.h"

namespace cvt::pipeline {
namespace {

RowSource Blank(const Image& image) {
  return {image, [bytes = RowBytes(image)](std::uint8_t* row) {
            std::memset(row, 0, bytes);
            return Ok();
          }};
}

RowSink Nowhere() {
  return {[](const Image&) { return Ok(); }, [](std::int32_t, const std::uint8_t*) { return Ok(); },
          [] { return Ok(); }};
}

std::string Many(std::int32_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string Size(std::int32_t width, std::int32_t height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

std::string Pixels(Layout layout, std::int32_t bits) {
  return layout == Layout::Planes ? Many(bits, "plane") : Many(bits, "bit") + " packed";
}

std::string Bands(const LinkSeen& link, std::int32_t bands) {
  return Many(bands, "band") + " of up to " + Many(link.lines, "line") + ", " + Many(link.bytes, "byte");
}

const char* IntakeNote(Intake intake) {
  switch (intake) {
    case Intake::WidenBits:
      return "1 bit widened to 8, so that its colours are looked at; ";
    case Intake::GrayLevels:
      return "colour as 256 grays; ";
    case Intake::DirectWords:
      return "colour as 32-bit words; ";
    case Intake::AsStored:
      break;
  }
  return "";
}

// What turned the band of one link into the band of the next.
const char* Conversion(const Settings& settings, const LinkSeen& before, const LinkSeen& after) {
  if (settings.halftone == Halftone::Diffusion && before.bits != 1) return "error diffusion";
  return before.bits == 1 && after.bits == 1 ? "relabelling" : "nearest colour";
}

std::vector<std::string> Tell(const Plan& plan, const Settings& settings, const std::vector<LinkSeen>& links) {
  const std::int32_t bands = (plan.input.height + plan.bandLines - 1) / plan.bandLines;
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < links.size(); ++i) {
    const LinkSeen& link = links[i];
    const std::string what = i == 0 ? std::string("source: ") + IntakeNote(plan.intake)
                                    : std::string(Conversion(settings, links[i - 1], link)) + ": ";
    lines.push_back(what + Size(link.width, link.height) + ", " + Pixels(link.layout, link.bits) + ", " +
                    Bands(link, i == 0 ? bands : link.bands) + (i == 0 ? "" : " from each band"));
  }
  lines.push_back("next stage: " + Many(plan.output.height, "row") + " of " +
                  Many(static_cast<std::int32_t>(RowBytes(plan.output)), "byte"));
  return lines;
}

}  // namespace

Status Explain(const Image& image, const Settings& settings, std::vector<std::string>* lines) {
  Plan plan;
  if (Status bad = MakePlan(image, settings, &plan); Failed(bad)) return bad;
  RowSource blank = Blank(image);
  RowSink nowhere = Nowhere();
  Chain chain;
  if (Status bad = OpenChain(&plan, settings, &nowhere, &chain); Failed(bad)) return bad;
  WatchLinks(&chain);
  if (Status bad = SendBand(plan, &blank, 0, &chain); Failed(bad)) return bad;
  *lines = Tell(plan, settings, chain.links);
  return Ok();
}

}  // namespace cvt::pipeline

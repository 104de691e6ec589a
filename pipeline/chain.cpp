#include "pipeline/chain.h"

#include <algorithm>
#include <string>

#include "cvt/cvtr2r.h"
#include "host/heap.h"
#include "pipeline/band.h"

namespace cvt::pipeline {
namespace {

// Conversions are ended by their source or sink, which say why.
std::int16_t CVT_CALL KeepGoing(std::uint32_t) { return 0; }

tagIGFD Describe(const Image& image, Layout layout, std::int32_t depth, std::vector<IRGB>* colors,
                 tagOpList* operations) {
  tagIGFD descriptor{};
  descriptor.opList = operations;
  descriptor.progressProc = KeepGoing;
  descriptor.rasterKind = layout == Layout::Planes ? kPlaneKind : kPackedKind;
  descriptor.imageWidth = image.width;
  descriptor.imageHeight = image.height;
  descriptor.bitsPerPixel = static_cast<std::uint8_t>(depth);
  descriptor.colorFlags = colors->empty() ? 0 : kIndexedColor;
  descriptor.palette = colors->empty() ? nullptr : colors->data();
  return descriptor;
}

std::int16_t HandToCollector(void* user, tagRasterPacked* band) {
  return TakeBand(&static_cast<Chain*>(user)->collector, band);
}

tagCRLA* OpenContext(const Plan& plan, const Settings& settings, Chain* chain) {
  host::ConversionSetup setup;
  setup.source = &chain->source;
  setup.destination = &chain->destination;
  setup.lineCapacity = static_cast<std::uint16_t>(plan.output.width);
  setup.next = HandToCollector;
  setup.user = chain;
  setup.halftoneMethod = settings.halftone == Halftone::Diffusion ? kDiffusion : kNearest;
  setup.threshold = settings.threshold;
  return host::OpenConversion(setup);
}

std::int32_t SourceLineBytes(const Plan& plan) {
  const Layout layout = IntakeLayout(plan.intake, plan.input);
  return BandLineBytes(layout, plan.input.width, BandBits(layout, IntakeDepth(plan.intake, plan.input)));
}

// Labels the block anew for each band: a conversion may have relabelled it in place.
void StartBand(const Plan& plan, std::int32_t top, std::int32_t lines, tagRasterPacked* band) {
  const Layout layout = IntakeLayout(plan.intake, plan.input);
  const std::int32_t bytes = SourceLineBytes(plan) * lines;
  const std::uint16_t prefix[2] = {
      layout == Layout::Planes ? kPlaneBand : kPackedBand,
      static_cast<std::uint16_t>(bytes + static_cast<std::int32_t>(kBandHeaderBytes))};
  std::memcpy(reinterpret_cast<std::uint8_t*>(band) - kBandPrefixBytes, prefix, sizeof prefix);
  *band = {};
  band->top = static_cast<std::uint16_t>(top);
  band->width = static_cast<std::uint16_t>(plan.input.width);
  band->lineCount = static_cast<std::uint16_t>(lines);
  const std::int32_t depth = IntakeDepth(plan.intake, plan.input);
  band->bitsPerPixel = static_cast<std::uint16_t>(BandBits(layout, depth));
  if (layout == Layout::Planes)
    band->planeBytes = static_cast<std::uint16_t>(BandLineBytes(layout, plan.input.width, 1) * lines);
}

Status StatusOf(CvtStatus status, const Collector& collector) {
  if (Failed(collector.status)) return collector.status;
  if (status == kCvtOk) return Ok();
  if (status == kCvtNoMemory || status == kCvtNoDescriptor) return OutOfMemory();
  return Fail(Code::Limit, "the conversion ended with status " + std::to_string(status) + " (please report this)");
}

void NoteLink(const tagRasterPacked* band, const tagIGFD& image, LinkSeen* link) {
  const Layout layout = LayoutOf(band);
  const std::int32_t bytes = BandLineBytes(layout, band->width, band->bitsPerPixel) * band->lineCount;
  link->width = image.imageWidth;
  link->height = image.imageHeight;
  link->layout = layout;
  link->bits = band->bitsPerPixel;
  link->lines = std::max(link->lines, std::int32_t{band->lineCount});
  link->bytes = std::max(link->bytes, bytes);
  ++link->bands;
}

// Stands before Cvtr2r in a chain that is watched.
std::int16_t CVT_CALL WatchedLink(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                  tagCRLA* context) {
  auto* chain = static_cast<Chain*>(host::UserOf(context));
  if (chain->level == chain->links.size()) chain->links.emplace_back();
  if ((*band)->lineCount > 0) NoteLink(*band, *source, &chain->links[chain->level]);
  ++chain->level;
  const CvtStatus status = Cvtr2r(band, source, destination, context);
  --chain->level;
  return status;
}

}  // namespace

Status OpenChain(Plan* plan, const Settings& settings, RowSink* sink, Chain* chain) {
  const Layout sourceLayout = IntakeLayout(plan->intake, plan->input);
  const std::int32_t sourceDepth = IntakeDepth(plan->intake, plan->input);
  chain->source = Describe(plan->input, sourceLayout, sourceDepth, &plan->sourceColors, &chain->operations);
  chain->destination =
      Describe(plan->output, settings.layout, settings.depth, &plan->wantedColors, &chain->operations);
  chain->collector = {&plan->output, sink, std::vector<std::uint8_t>(RowBytes(plan->output)), Ok()};
  chain->context.reset(OpenContext(*plan, settings, chain));
  const auto blockBytes = static_cast<std::uint32_t>(SourceLineBytes(*plan) * plan->bandLines) + kBandHeaderBytes;
  chain->band.reset(static_cast<tagRasterPacked*>(SioCreateOp(kPackedBand, blockBytes)));
  chain->row.resize(RowBytes(plan->input));
  return chain->context == nullptr || chain->band == nullptr ? OutOfMemory() : Ok();
}

void WatchLinks(Chain* chain) { chain->context->convertProc = WatchedLink; }

Status SendBand(const Plan& plan, RowSource* source, std::int32_t top, Chain* chain) {
  const std::int32_t lines = std::min(plan.bandLines, plan.input.height - top);
  tagRasterPacked* band = chain->band.get();
  StartBand(plan, top, lines, band);
  for (std::int32_t i = 0; i < lines; ++i) {
    if (Status bad = source->read(chain->row.data()); Failed(bad)) return bad;
    TakeRow(plan.intake, plan.input, chain->row.data(), band, i);
  }
  tagCRLA* context = chain->context.get();
  host::HeapWatch watch;
  host::BeginWatch(&watch);
  const CvtStatus status = context->convertProc(&band, &chain->source, &chain->destination, context);
  host::EndWatch(&watch, status != kCvtOk);  // links that fail may leave bands and cursors behind
  return StatusOf(status, chain->collector);
}

Status RunChain(const Plan& plan, RowSource* source, Chain* chain) {
  for (std::int32_t top = 0; top < plan.input.height; top += plan.bandLines)
    if (Status bad = SendBand(plan, source, top, chain); Failed(bad)) return bad;
  return Ok();
}

}  // namespace cvt::pipeline

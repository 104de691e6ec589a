#include "pipeline/stage.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "cvt/cvtr2r.h"
#include "host/heap.h"
#include "pipeline/band.h"

namespace cvt::pipeline {
namespace {

constexpr std::int16_t kNextFailed = -1;

// Conversions are ended by their source or sink, which say why.
std::int16_t CVT_CALL KeepGoing(std::uint32_t) { return 0; }

struct Pixels {
  Layout layout;
  std::int32_t depth;
};

tagIGFD Describe(const Image& image, Pixels pixels, std::vector<IRGB>* colors, tagOpList* operations) {
  tagIGFD descriptor{};
  descriptor.opList = operations;
  descriptor.progressProc = KeepGoing;
  descriptor.rasterKind = pixels.layout == Layout::Planes ? kPlaneKind : kPackedKind;
  descriptor.imageWidth = image.width;
  descriptor.imageHeight = image.height;
  descriptor.bitsPerPixel = static_cast<std::uint8_t>(pixels.depth);
  descriptor.colorFlags = colors->empty() ? 0 : kIndexedColor;
  descriptor.palette = colors->empty() ? nullptr : colors->data();
  return descriptor;
}

void DescribeCrop(const Crop& crop, tagIGFD* source) {
  if (crop.width == 0) return;
  source->options = kClipOption;
  source->clipX0 = static_cast<std::int16_t>(crop.x);
  source->clipX1 = static_cast<std::int16_t>(crop.x + crop.width);
  source->clipY0 = static_cast<std::int16_t>(crop.y);
  source->clipY1 = static_cast<std::int16_t>(crop.y + crop.height);
}

void DescribeWorker(Worker* worker) {
  Stage& stage = worker->stage;
  const Pixels pixels{BandLayout(stage.entry), BandDepth(stage.entry)};
  worker->source = Describe(stage.entry.image, pixels, &stage.entry.colors, &worker->operations);
  // One plane has the rows of packed bits, and hosts set its pixels faster.
  const Layout outputLayout = stage.output.depth == 1 ? Layout::Planes : stage.output.layout;
  worker->destination =
      Describe(stage.output, {outputLayout, stage.output.depth}, &stage.wantedColors, &worker->operations);
  worker->destination.keepColor = stage.keepValue;
  DescribeCrop(stage.crop, &worker->source);
  if (stage.smooth) worker->source.options = kSmoothOption;
}

// ---- Finished bands ----

const std::uint8_t* GatherPlanes(Worker* worker, tagRasterPacked* band, std::size_t line) {
  const std::size_t bytes = PlaneRowBytes(band->width);
  const auto stride = static_cast<std::size_t>(BandLineBytes(Layout::Planes, band->width, 1));
  for (std::size_t plane = 0; plane < band->bitsPerPixel; ++plane)
    std::memcpy(worker->row.data() + plane * bytes, PixelsOf(band) + plane * band->planeBytes + line * stride,
                bytes);
  return worker->row.data();
}

const std::uint8_t* ColorsOf(Worker* worker, const std::uint8_t* words, std::size_t width) {
  std::uint8_t* rgb = worker->row.data();
  for (std::size_t x = 0; x < width; ++x) {
    rgb[3 * x] = words[4 * x + 2];
    rgb[3 * x + 1] = words[4 * x + 1];
    rgb[3 * x + 2] = words[4 * x];
  }
  return rgb;
}

const std::uint8_t* RowOf(Worker* worker, tagRasterPacked* band, std::size_t line) {
  if (LayoutOf(band) == Layout::Planes && band->bitsPerPixel > 1) return GatherPlanes(worker, band, line);
  const std::int32_t bits = BandBits(Layout::Packed, worker->stage.output.depth);
  const std::uint8_t* pixels =
      PixelsOf(band) + line * static_cast<std::size_t>(BandLineBytes(Layout::Packed, band->width, bits));
  return worker->stage.output.depth == kDirectDepth ? ColorsOf(worker, pixels, band->width) : pixels;
}

// The library in between knows no exceptions: the one that sinks may throw ends here.
Status HandOn(Worker* worker, tagRasterPacked* band) {
  try {
    for (std::int32_t i = 0; i < band->lineCount; ++i) {
      Status bad = worker->next(band->top + i, RowOf(worker, band, static_cast<std::size_t>(i)));
      if (Failed(bad)) return bad;
    }
    return Ok();
  } catch (const std::bad_alloc&) {
    return OutOfMemory();
  }
}

std::int16_t TakeBand(void* user, tagRasterPacked* band) {
  auto* worker = static_cast<Worker*>(user);
  if (!StampBand(&worker->stamp, band)) return kCvtNoMemory;
  host::HeapWatch keeping;  // what a sink takes from the heap is its own, whatever becomes of the band
  host::BeginWatch(&keeping);
  worker->status = HandOn(worker, band);
  host::EndWatch(&keeping, false);
  return Failed(worker->status) ? kNextFailed : 0;
}

// ---- Links ----

void NoteLink(tagRasterPacked* band, const tagIGFD& image, LinkSeen* link) {
  link->width = image.imageWidth;
  link->height = image.imageHeight;
  link->layout = LayoutOf(band);
  link->bits = band->bitsPerPixel;
  link->lines = std::max(link->lines, std::int32_t{band->lineCount});
  link->bytes = std::max(link->bytes, BandLineBytes(link->layout, band->width, link->bits) * band->lineCount);
  ++link->bands;
}

// Stands before Cvtr2r. Enlarging in height holds a line in the context's line buffer while the links behind
// it run, and counts on the number of its runs: that is kept here.
std::int16_t CVT_CALL RunLink(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  auto* worker = static_cast<Worker*>(host::UserOf(context));
  if (worker->watched && (*band)->lineCount > 0) {
    if (worker->level == worker->links.size()) worker->links.emplace_back();
    NoteLink(*band, *source, &worker->links[worker->level]);
  }
  const std::uint16_t runs = context->runCount;
  ++worker->level;
  const CvtStatus status = Cvtr2r(band, source, destination, context);
  --worker->level;
  context->runCount = runs;
  return status;
}

tagCRLA* OpenContext(Worker* worker) {
  const Stage& stage = worker->stage;
  const Thresholds& thresholds = stage.thresholds;
  host::ConversionSetup setup;
  setup.source = &worker->source;
  setup.destination = &worker->destination;
  setup.lineCapacity = static_cast<std::uint16_t>(std::max(stage.entry.image.width, stage.output.width));
  setup.next = TakeBand;
  setup.user = worker;
  setup.bandLimit = kBandBytes;
  setup.halftoneMethod = stage.halftoneMethod;
  setup.scaleDownMethod = stage.scaleDownMethod;
  setup.paperValue = stage.paperValue;
  setup.threshold = stage.threshold;
  if (!thresholds.values.empty()) {
    setup.ditherMatrix = thresholds.values.data();
    setup.ditherWidth = static_cast<std::uint8_t>(thresholds.width);
    setup.ditherHeight = static_cast<std::uint8_t>(thresholds.height);
  }
  tagCRLA* context = host::OpenConversion(setup);
  if (context != nullptr) context->convertProc = RunLink;
  return context;
}

// Labels the block anew for each band: a conversion may have changed it in place.
void StartBand(Worker* worker) {
  const Entry& entry = worker->stage.entry;
  const Layout layout = BandLayout(entry);
  const std::int32_t width = entry.image.width, lines = LinesFrom(worker->stage, worker->top);
  const std::int32_t bits = BandBits(layout, BandDepth(entry));
  LabelBand(layout, BandLine(entry) * lines, worker->band.get());
  tagRasterPacked* band = worker->band.get();
  band->top = static_cast<std::uint16_t>(worker->top);
  band->width = static_cast<std::uint16_t>(width);
  band->lineCount = static_cast<std::uint16_t>(lines);
  band->bitsPerPixel = static_cast<std::uint16_t>(bits);
  if (layout == Layout::Planes)
    band->planeBytes = static_cast<std::uint16_t>(BandLineBytes(layout, width, 1) * lines);
}

Status StatusOf(CvtStatus status, const Worker& worker) {
  if (Failed(worker.status)) return worker.status;
  if (status == kCvtOk) return Ok();
  if (status == kCvtNoMemory || status == kCvtNoDescriptor) return OutOfMemory();
  return Fail(Code::Limit, "the conversion ended with status " + std::to_string(status) + " (please report this)");
}

Status SendBand(Worker* worker) {
  tagRasterPacked* band = worker->band.get();
  const std::int32_t lines = band->lineCount;
  host::HeapWatch watch;
  host::BeginWatch(&watch);
  const CvtStatus status = RunLink(&band, &worker->source, &worker->destination, worker->context.get());
  host::EndWatch(&watch, status != kCvtOk);  // links that fail may leave bands and cursors behind
  worker->top += lines;
  return StatusOf(status, *worker);
}

// Averages lag by one pixel: pixels enter one ahead, the last one twice. The first would be lost: it is the mean
// of the first two instead.
void AdvanceLine(Worker* worker) {
  const Entry& entry = worker->stage.entry;
  const std::size_t pixel = entry.intake == Intake::DirectWords ? 4 : 1;
  const auto width = static_cast<std::size_t>(entry.image.width);
  const auto stride = static_cast<std::size_t>(BandLine(entry));
  std::uint8_t* line = PixelsOf(worker->band.get()) + static_cast<std::size_t>(worker->filled) * stride;
  if (width == 1) return;
  for (std::size_t i = 0; i < pixel; ++i) line[i] = static_cast<std::uint8_t>((line[i] + line[pixel + i]) / 2);
  std::memmove(line + pixel, line + 2 * pixel, (width - 2) * pixel);
}

// Rows that enter ahead would be lost: the first that enters is the mean of them and itself.
void AddToLead(Worker* worker) {
  const std::uint8_t* line = PixelsOf(worker->band.get());
  worker->lead.resize(static_cast<std::size_t>(BandLine(worker->stage.entry)));
  for (std::uint16_t& sum : worker->lead) sum = static_cast<std::uint16_t>(sum + *line++);
}

void EnterLead(Worker* worker) {
  if (worker->lead.empty()) return;
  AddToLead(worker);
  std::uint8_t* line = PixelsOf(worker->band.get());
  for (const std::uint16_t sum : worker->lead) *line++ = static_cast<std::uint8_t>(sum / worker->rowsIn);
  worker->lead.clear();
}

Status AddRow(Worker* worker, const std::uint8_t* row) {
  if (worker->filled == 0) StartBand(worker);
  TakeRow(worker->stage.entry, row, &worker->indices, worker->band.get(), worker->filled);
  if (worker->stage.smooth) {
    EnterLead(worker);
    AdvanceLine(worker);
  }
  if (++worker->filled < worker->band->lineCount) return Ok();
  worker->filled = 0;
  return SendBand(worker);
}

}  // namespace

Status StartWorker(const Stage& stage, TakeRowFunction next, Worker* worker) {
  worker->stage = stage;
  worker->next = std::move(next);
  DescribeWorker(worker);
  worker->row.resize(RowBytes(stage.output));
  worker->stamp = MakeStamp(stage.overlay, stage.output);
  worker->context.reset(OpenContext(worker));
  worker->band = NewBand(BandLine(stage.entry) * stage.bandLines);
  return worker->context == nullptr || worker->band == nullptr ? OutOfMemory() : Ok();
}

Status PushRow(Worker* worker, const std::uint8_t* row) {
  const Stage& stage = worker->stage;
  const std::int32_t ahead = RowsAhead(stage);
  const std::int32_t y = worker->rowsIn++;
  if (y < ahead) {
    TakeRow(stage.entry, row, &worker->indices, worker->band.get(), 0);
    AddToLead(worker);
    return Ok();
  }
  if (Status bad = AddRow(worker, row); Failed(bad) || y + 1 < stage.entry.image.height || stage.goesOn)
    return bad;
  for (std::int32_t i = 0; i < ahead; ++i)  // none comes behind the last row: it stands for what would
    if (Status bad = AddRow(worker, row); Failed(bad)) return bad;
  return Ok();
}

}  // namespace cvt::pipeline

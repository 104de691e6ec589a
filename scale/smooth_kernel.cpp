// Smooth scaling of prepared bands: resamples every line across, then builds output lines from the current
// and the previous resampled line. Gray and colour differ in what a word holds, and in nothing else.

#include <cstring>

#include "cvt/cvtr2r.h"
#include "frame/access.h"
#include "frame/split.h"
#include "scale/bands.h"
#include "scale/smooth_rule.h"

namespace cvt {
namespace {

// One call's view of the state that goes from band to band.
struct Smoothing {
  tagCRLA* context;
  tagPackedData* input;
  std::uint16_t width;  // of the prepared band
  SmoothSizes across;
  std::uint32_t sourceLines;  // of the image: units in an output line
  std::uint32_t outputLines;  // of the image: units in a source line
  Divisor byArea;             // units of both
  std::uint32_t* current;
  std::uint32_t* previous;
  std::uint32_t* sums;
  std::uint32_t sourceLeft;  // units left in the current source line
  std::uint32_t outputLeft;  // units left in the output line
  std::uint16_t line;        // next to read
};

Smoothing SmoothingOf(const tagRasterPacked* band, tagPackedData* input, const tagIGFD* prepared,
                      const tagIGFD* destination, tagCRLA* context) {
  const std::uint32_t sourceLines = Unsigned32(prepared->imageHeight);
  const std::uint32_t outputLines = Unsigned32(destination->imageHeight);
  return {context,
          input,
          band->width,
          SmoothSizesOf(prepared->imageWidth, destination->imageWidth),
          sourceLines,
          outputLines,
          DivisorOf(sourceLines * outputLines),
          context->smoothCurrentLine,
          static_cast<std::uint32_t*>(context->ownedBuffer2),
          context->smoothSums,
          context->scaleAccumulator,
          context->smoothOutputRemain,
          input->top};
}

template <class Word>
void ReadResampled(Smoothing* at, std::uint32_t* line) {
  ReadPixels(at->input, at->context, at->width, at->input->left, at->line++);
  if (IsSinglePixels(at->context))
    ResampleLine<Word>(line, SinglePixelsOf(at->context), at->across);
  else
    ResampleLine<Word>(line, RunPixelsOf(at->context), at->across);
}

std::size_t LineBytes(const Smoothing& at) { return std::size_t{at.across.to} * sizeof(std::uint32_t); }

// The first line of the image is its own predecessor.
template <class Word>
void StartImage(Smoothing* at) {
  std::memset(at->sums, 0, Word::SumBytes(at->across.to));
  ReadResampled<Word>(at, at->previous);
  std::memcpy(at->current, at->previous, LineBytes(*at));
  at->sourceLeft = at->outputLines;
  at->outputLeft = at->sourceLines;
}

// Adds what is left of the current line to the sums; it becomes the previous line.
template <class Word>
void ConsumeLine(Smoothing* at) {
  const LineWeights weights = LineWeightsOf(at->outputLines, at->sourceLeft, at->sourceLeft);
  const std::uint32_t* current = at->current;
  const std::uint32_t* previous = at->previous;
  std::uint32_t* sums = at->sums;
  const std::uint32_t width = at->across.to;
  for (std::uint32_t x = 0; x < width; ++x)
    for (std::uint32_t c = 0; c < Word::kChannels; ++c)
      sums[x * Word::kChannels + c] +=
          Weighted(Word::Channel(current[x], c), Word::Channel(previous[x], c), weights);
  at->outputLeft -= at->sourceLeft;
  at->sourceLeft = at->outputLines;
  std::memcpy(at->previous, at->current, LineBytes(*at));
}

// Finishes an output line with the part of the current line that it takes.
template <class Word>
void EmitLine(Smoothing* at, tagPackedData* output, std::uint16_t line) {
  const LineWeights weights = LineWeightsOf(at->outputLines, at->sourceLeft, at->outputLeft);
  const Divisor byArea = at->byArea;
  const std::uint32_t left = output->left;
  const std::uint32_t width = at->across.to;
  std::uint32_t* sums = at->sums;
  for (std::uint32_t x = 0; x < width; ++x) {
    std::uint32_t word = 0;
    for (std::uint32_t c = 0; c < Word::kChannels; ++c, ++sums) {
      const std::uint32_t sum =
          Weighted(Word::Channel(at->current[x], c), Word::Channel(at->previous[x], c), weights) + *sums;
      word |= Word::Place(Divide(sum, byArea), c);
      *sums = 0;
    }
    WritePixel(output, Low16(x + left), line, word);
  }
  at->sourceLeft -= at->outputLeft;
  at->outputLeft = at->sourceLines;
}

enum class Place : std::uint8_t { Inside, Last };  // of a sub-band among its call's

// Builds one sub-band. The last one goes on until the band is read, holding its last line for the next band,
// and may write one line too many, which the host drops.
template <class Word>
void BuildLines(Smoothing* at, tagPackedData* output, Place place) {
  const std::uint16_t end = output->bottom;
  std::uint16_t line = output->top;
  for (;;) {
    const bool allRead = at->line == at->input->bottom;
    if (at->outputLeft < at->sourceLeft) {
      if (place == Place::Inside && line >= end) return;
      EmitLine<Word>(at, output, line++);
      continue;
    }
    if ((place == Place::Inside || allRead) && line >= end) return;
    ConsumeLine<Word>(at);
    if (place == Place::Last && allRead && line < end) continue;  // the held line stands in for the next
    ReadResampled<Word>(at, at->current);
  }
}

// The output lines that end within a band, and their sub-bands.
struct SmoothPlan {
  std::uint32_t first, end;
  std::uint32_t lines;  // 16 bits
  SubBands parts;
};

template <class Word>
SmoothPlan PlanOutput(const tagRasterPacked* band, const Smoothing& at) {
  const std::uint32_t top = Unsigned32(SignExtend16(band->top));
  const std::uint32_t first = top * at.outputLines / at.sourceLines;
  const std::uint32_t end = (top + band->lineCount) * at.outputLines / at.sourceLines;
  const std::uint32_t lines = Low16(end - first);
  const std::uint32_t limit = (*at.context->next->stage)->bandLimit;
  return {first, end, lines, SplitByBytes(lines, RowBytes(at.across.to, Word::kDepth), limit)};
}

template <class Word>
CvtStatus BuildSubBand(Smoothing* at, const BandShape& shape, Place place, tagIGFD* copy, tagIGFD* destination) {
  if (BytesFor<Packed>(shape) == 0) return kCvtOk;
  const Output<Packed> output = MakeOutput<Packed>(shape);
  if (output.cursor == nullptr) return kCvtNoMemory;
  BuildLines<Word>(at, output.cursor, place);
  CloseCursor(output.cursor);
  tagRasterPacked* made = output.band;
  const CvtStatus status = at->context->convertProc(&made, copy, destination, at->context);
  if (status == kCvtOk) SioFreeSMem(BlockOf(made));
  return status;
}

template <class Word>
CvtStatus BuildBand(const tagRasterPacked* band, Smoothing* at, tagIGFD* copy, tagIGFD* destination) {
  const SmoothPlan plan = PlanOutput<Word>(band, *at);
  if (plan.lines != 0 && at->across.to != 0 && plan.parts.count == 0) return kCvtNoMemory;  // no line fits
  for (std::uint32_t k = 0; k < plan.parts.count; ++k) {
    const Place place = k + 1 == plan.parts.count ? Place::Last : Place::Inside;
    const std::uint16_t top = Low16(plan.first + FirstLineOf(plan.parts, k));
    const std::uint32_t lines = place == Place::Last ? Low16(plan.end - top) : plan.parts.lines;
    const std::uint32_t left = at->across.to * Unsigned32(SignExtend16(band->left)) / at->across.from;
    const BandShape shape{left, top, at->across.to, lines, Word::kDepth};
    if (const CvtStatus status = BuildSubBand<Word>(at, shape, place, copy, destination); status != kCvtOk)
      return status;
  }
  return kCvtOk;
}

tagIGFD* ScaledCopy(tagIGFD* prepared, const tagIGFD* destination) {
  tagIGFD* copy = CvtDupIGFD(prepared);
  if (copy == nullptr) return nullptr;
  copy->originX = destination->originX;
  copy->originY = destination->originY;
  copy->imageWidth = destination->imageWidth;
  copy->imageHeight = destination->imageHeight;
  return copy;
}

// Whatever fails, all that the call holds stays allocated.
template <class Word>
CvtStatus SmoothBand(tagRasterPacked* band, tagIGFD* prepared, tagIGFD* destination, tagCRLA* context) {
  tagIGFD* copy = ScaledCopy(prepared, destination);
  if (copy == nullptr) return kCvtNoDescriptor;
  auto* input = OpenCursor(band);
  if (input == nullptr) return kCvtNoMemory;
  Smoothing at = SmoothingOf(band, input, prepared, destination, context);
  if (at.sourceLeft == 0 && at.outputLeft == 0) StartImage<Word>(&at);

  if (const CvtStatus status = BuildBand<Word>(band, &at, copy, destination); status != kCvtOk) return status;
  CloseCursor(input);
  CvtDisposeIGFD(copy);
  context->nextSourceLine = at.line;
  context->scaleAccumulator = at.sourceLeft;
  context->smoothOutputRemain = at.outputLeft;
  return kCvtOk;
}

}  // namespace
}  // namespace cvt

CvtStatus CVT_CALL CvtScaleSmoothGray(tagRasterPacked* band, tagIGFD* prepared, tagIGFD* destination,
                                      tagCRLA* context) {
  return cvt::SmoothBand<cvt::GrayWord>(band, prepared, destination, context);
}
CvtStatus CVT_CALL CvtScaleSmoothRGB(tagRasterPacked* band, tagIGFD* prepared, tagIGFD* destination,
                                     tagCRLA* context) {
  return cvt::SmoothBand<cvt::ColorWord>(band, prepared, destination, context);
}

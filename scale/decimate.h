// Plain sampling: every output pixel and every output line is one of the source's, thin features or not.
#pragma once

#include <cstdint>

#include "scale/bands.h"
#include "scale/reduce.h"
#include "scale/runs.h"

namespace cvt {

template <class Layout>
typename Layout::Band* DecimateWidth(void* slot, Ratio ratio, tagCRLA* context) {
  const RunEnds ends = RunEndsOf(ratio);
  return ReduceWidth<Layout>(slot, ratio, context, [&] { SampleRuns(context, ends); });
}

// Shows the last source line of every group. A line adds `to` units, a group has `from`; what is left over
// goes to the next band. The last line stands in when the band ends early, and when the output is full the
// rest of the lines are still read, one a group: hosts count the reads.
template <class Layout>
void SampleLines(typename Layout::Cursor* input, typename Layout::Cursor* output, std::uint16_t width, Ratio ratio,
                 tagCRLA* context) {
  std::int32_t units = Signed32(context->scaleAccumulator);
  std::uint16_t line = input->top;
  std::uint16_t outputLine = output->top;
  do {
    for (; units < ratio.from; ++line) units = AddWrap32(units, ratio.to);
    --line;
    if (line >= input->bottom) line = Low16(input->bottom - 1U);
    ReadPixels(input, context, width, input->left, line++);
    if (units >= ratio.from) {
      units = SubWrap32(units, ratio.from);
      if (outputLine < output->bottom) WriteLine(output, context, outputLine++);
    }
  } while (line < input->bottom || outputLine < output->bottom);
  context->scaleAccumulator = Unsigned32(units);
}

// A band in which no output line ends gives a band of no lines and leaves the state alone.
template <class Layout>
typename Layout::Band* DecimateHeight(void* slot, Ratio ratio, tagCRLA* context) {
  auto* band = BandAt<typename Layout::Band>(slot);
  auto* input = OpenCursor(band);
  if (input == nullptr) return nullptr;
  RoundDepth(band);
  const ReducedLines lines = ReducedLinesOf(band->top, band->lineCount, ratio);
  const BandShape shape{band->left, lines.top, band->width, lines.count, band->bitsPerPixel};
  if (lines.count == 0) {
    auto* empty = CreateBand<Layout>(shape, BytesFor<Layout>(shape));
    if (empty != nullptr) CloseCursor(input);
    return empty;
  }
  const Output<Layout> output = MakeOutput<Layout>(shape);
  if (output.cursor == nullptr) return nullptr;

  SampleLines<Layout>(input, output.cursor, output.band->width, ratio, context);
  CloseCursor(output.cursor);
  CloseCursor(input);
  return output.band;
}

}  // namespace cvt

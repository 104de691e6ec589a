// Reducing with thin features kept, and the drivers of both ways to reduce.

#include "cvt/cvtr2r.h"
#include "scale/bands.h"
#include "scale/decimate.h"
#include "scale/driver.h"
#include "scale/merge.h"
#include "scale/reduce.h"
#include "scale/runs.h"

namespace cvt {
namespace {

template <class Layout>
typename Layout::Band* KeepWidth(void* slot, Ratio ratio, tagCRLA* context, std::int16_t keepColor) {
  const RunEnds ends = RunEndsOf(ratio);
  const std::uint32_t keep = Unsigned32(keepColor);
  return ReduceWidth<Layout>(slot, ratio, context, [&] { KeepRuns(context, ends, keep); });
}

template <class Cursor>
void WriteMerged(Cursor* output, tagCRLA* context, std::uint16_t line) {
  EncodeMerged(context);
  WriteLine(output, context, line);
  ClearFlags(context, context->mergeWidth);
}

// A source line adds `to` units, an output line has `from`. The last output line is left to the flush: it is
// written whatever it holds, complete group or not, so that every band shows what it has.
template <class Layout>
void MergeLines(typename Layout::Cursor* input, typename Layout::Cursor* output, std::uint16_t width, Ratio ratio,
                tagCRLA* context) {
  std::int32_t units = Signed32(context->scaleAccumulator);
  std::uint16_t line = input->top;
  std::uint16_t outputLine = output->top;
  while (line < input->bottom) {
    while (line < input->bottom && units < ratio.from) {
      ReadPixels(input, context, width, input->left, line++);
      MergeLine(context);
      units = AddWrap32(units, ratio.to);
    }
    if (units < ratio.from) continue;
    units = SubWrap32(units, ratio.from);
    if (outputLine + 1 < output->bottom) WriteMerged(output, context, outputLine++);
  }
  context->scaleAccumulator = Unsigned32(units);
  if (outputLine < output->bottom) WriteMerged(output, context, outputLine);
}

// A band that does not start where the last one ended starts an image of its own.
template <class Band>
void ContinueMerge(const Band& band, tagCRLA* context) {
  if (band.left != context->mergeLeft || band.top != context->nextSourceLine) {
    ClearFlags(context, band.width);
    ClearValues(context, band.width);
    context->scaleAccumulator = 0;
  }
  context->mergeLeft = band.left;
  context->nextSourceLine = Low16(std::uint32_t{band.top} + band.lineCount);
}

template <class Layout>
typename Layout::Band* KeepHeight(void* slot, Ratio ratio, tagCRLA* context) {
  auto* band = BandAt<typename Layout::Band>(slot);
  auto* input = OpenCursor(band);
  if (input == nullptr) return nullptr;
  RoundDepth(band);
  const ReducedLines lines = ReducedLinesOf(band->top, band->lineCount, ratio);
  const Output<Layout> output = MakeOutput<Layout>(
      {band->left, lines.top, band->width, lines.count == 0 ? 1 : lines.count, band->bitsPerPixel});
  if (output.cursor == nullptr) return nullptr;

  context->mergeWidth = output.band->width;
  ContinueMerge(*band, context);
  MergeLines<Layout>(input, output.cursor, output.band->width, ratio, context);
  CloseCursor(output.cursor);
  CloseCursor(input);
  return output.band;
}

struct WidthWorker {
  static void Begin(const tagRasterPacked&, Ratio, tagCRLA*) {}
  template <class Layout>
  static typename Layout::Band* Make(void* slot, Ratio ratio, const tagIGFD& destination, tagCRLA* context,
                                     std::int16_t*) {
    if (context->scaleDownMethod == kDecimate) return DecimateWidth<Layout>(slot, ratio, context);
    return KeepWidth<Layout>(slot, ratio, context, destination.keepColor);
  }
};

struct HeightWorker {
  static void Begin(const tagRasterPacked&, Ratio, tagCRLA*) {}
  template <class Layout>
  static typename Layout::Band* Make(void* slot, Ratio ratio, const tagIGFD&, tagCRLA* context, std::int16_t*) {
    if (context->scaleDownMethod == kDecimate) return DecimateHeight<Layout>(slot, ratio, context);
    return KeepHeight<Layout>(slot, ratio, context);
  }
};

}  // namespace
}  // namespace cvt

using cvt::AcrossHeight, cvt::AcrossWidth, cvt::Packed, cvt::Planes;

CvtStatus CVT_CALL CvtScaleDownWidth(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                     tagCRLA* context) {
  return cvt::ScaleBand<AcrossWidth, cvt::WidthWorker>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtScaleDownHeight(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                      tagCRLA* context) {
  return cvt::ScaleBand<AcrossHeight, cvt::HeightWorker>(band, source, destination, context);
}
tagRasterPlane* CVT_CALL CvtScaleDownWidthBit(tagRasterPlane** band, std::int32_t srcWidth, std::int32_t dstWidth,
                                              tagCRLA* context, std::int16_t keepColor) {
  return cvt::KeepWidth<Planes>(band, {srcWidth, dstWidth}, context, keepColor);
}
tagRasterPacked* CVT_CALL CvtScaleDownWidthByte(tagRasterPacked** band, std::int32_t srcWidth,
                                                std::int32_t dstWidth, tagCRLA* context, std::int16_t keepColor) {
  return cvt::KeepWidth<Packed>(band, {srcWidth, dstWidth}, context, keepColor);
}
tagRasterPlane* CVT_CALL CvtScaleDownHeightBit(tagRasterPlane** band, std::int32_t srcHeight,
                                               std::int32_t dstHeight, tagCRLA* context) {
  return cvt::KeepHeight<Planes>(band, {srcHeight, dstHeight}, context);
}
tagRasterPacked* CVT_CALL CvtScaleDownHeightByte(tagRasterPacked** band, std::int32_t srcHeight,
                                                 std::int32_t dstHeight, tagCRLA* context) {
  return cvt::KeepHeight<Packed>(band, {srcHeight, dstHeight}, context);
}

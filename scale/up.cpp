// Enlarging by replication: pixels across a line, lines down the image.

#include <algorithm>
#include <cstring>

#include "cvt/cvtr2r.h"
#include "frame/split.h"
#include "scale/bands.h"
#include "scale/driver.h"
#include "scale/runs.h"

namespace cvt {
namespace {

inline constexpr std::uint32_t kSubBandBytes = 65000;  // of pixels, at most

template <class Layout>
constexpr std::uint32_t LineBytes(std::uint32_t width, std::uint32_t depth) {
  return RowBytes(width, Layout::BitsInRow(depth)) * Layout::RowsInLine(depth);
}

// Makes sub-band number *index of the enlarged band, and counts the index on; 0 after the last.
template <class Layout>
typename Layout::Band* EnlargeWidth(void* slot, Ratio ratio, tagCRLA* context, std::int16_t* index) {
  auto* band = BandAt<typename Layout::Band>(slot);
  RoundDepth(band);
  const std::uint32_t width = Unsigned32(Rescale(band->width, ratio));
  const std::uint32_t lines = band->lineCount;
  const SubBands parts = SplitByBytes(lines, LineBytes<Layout>(width, band->bitsPerPixel), kSubBandBytes);
  if (parts.count == 0) return nullptr;
  auto* input = OpenCursor(band);
  if (input == nullptr) return nullptr;

  const std::uint32_t part = Unsigned32(*index);
  const std::uint32_t first = FirstLineOf(parts, part);
  const std::uint32_t left = Unsigned32(Rescale(SignExtend16(band->left), ratio));
  const Output<Layout> output =
      MakeOutput<Layout>({left, band->top + first, width, LinesOf(parts, part, lines), band->bitsPerPixel});
  if (output.cursor == nullptr) return nullptr;

  const Divisor from = DivisorOf(Unsigned32(ratio.from));
  CopyLines(input, output.cursor, context, band->width, [&] {
    ReplicateRuns(context, ratio, from);
    ClipRuns(context, output.band->width);
  });
  CloseCursor(output.cursor);
  CloseCursor(input);
  *index = part + 1 == parts.count ? std::int16_t{0} : Wrap16(*index + 1);
  return output.band;
}

// The links behind this one use the same line buffer, so the line that is being replicated spends the time
// between two calls in the owned buffers. The heap is asked for the sizes each time.
void BringBackHeldLine(tagCRLA* context) {
  std::memcpy(context->values, context->ownedBuffer2, SioSizeSMem(context->values));
  std::memcpy(context->runLengths, context->ownedBuffer1, SioSizeSMem(context->runLengths));
}
void PutAwayHeldLine(tagCRLA* context) {
  std::memcpy(context->ownedBuffer2, context->values, SioSizeSMem(context->values));
  std::memcpy(context->ownedBuffer1, context->runLengths, SioSizeSMem(context->runLengths));
}

// Replication of lines: a line written adds `from` units, a source line that is done takes `to` units away.
// Below `to` the held line is shown again; below `from` the next one is due. Units are 16 bits that wrap.
struct LineState {
  std::uint16_t units;
  std::uint16_t sourceLine;
  std::uint16_t outputLine;
};

// Whether the held line is used up. Planes compare 16 bits of the source height, packed pixels all of it.
constexpr bool NeedsLine(Planes, std::uint16_t units, std::int32_t from) {
  return units < Low16(Unsigned32(from));
}
constexpr bool NeedsLine(Packed, std::uint16_t units, std::int32_t from) { return units < from; }

// Writes lines until the output is full (true) or the input used up (false).
template <class Layout>
bool ReplicateLines(typename Layout::Cursor* input, typename Layout::Cursor* output, std::uint16_t width,
                    Ratio ratio, tagCRLA* context, LineState* state) {
  const std::uint32_t from = Unsigned32(ratio.from);
  const std::uint32_t to = Unsigned32(ratio.to);
  while (state->sourceLine <= input->bottom) {
    if (NeedsLine(Layout{}, state->units, ratio.from)) {
      if (state->sourceLine == input->bottom) return false;
      ReadPixels(input, context, width, input->left, state->sourceLine++);
    }
    while (state->units < ratio.to) {
      state->units = Low16(state->units + from);
      WriteLine(output, context, state->outputLine++);
      if (state->outputLine >= output->bottom) break;
    }
    if (state->outputLine >= output->bottom) {
      if (state->units >= ratio.to) state->units = Low16(state->units - to);
      return true;
    }
    state->units = Low16(state->units - to);
  }
  return true;
}

// Lines that a sub-band can take; 0 where not even one fits, or where there is nothing to hold.
template <class Layout>
constexpr std::uint32_t MostLines(const typename Layout::Band& band) {
  const std::uint32_t lineBytes = LineBytes<Layout>(band.width, band.bitsPerPixel);
  return lineBytes == 0 ? 0 : kSubBandBytes / lineBytes;
}

// Output lines that begin within `lines` source lines from `top` on.
constexpr std::uint16_t LinesBrought(std::int32_t top, std::int32_t lines, Ratio ratio) {
  return Low16(Unsigned32(SubWrap32(Rescale(top + lines, ratio), Rescale(top, ratio))));
}

// Makes one band of the enlarged image, as long as the input lasts. *more: the input has lines left.
template <class Layout>
typename Layout::Band* EnlargeHeight(void* slot, Ratio ratio, tagCRLA* context, std::int16_t* more) {
  auto* band = BandAt<typename Layout::Band>(slot);
  RoundDepth(band);
  const std::uint32_t most = MostLines<Layout>(*band);
  if (most == 0) return nullptr;
  const std::uint32_t lines =
      std::min<std::uint32_t>(LinesBrought(SignExtend16(band->top), band->lineCount, ratio), most);
  BringBackHeldLine(context);
  auto* input = OpenCursor(band);
  if (input == nullptr) return nullptr;
  const Output<Layout> output =
      MakeOutput<Layout>({band->left, context->upOutputLine, band->width, lines, band->bitsPerPixel});
  if (output.cursor == nullptr) return nullptr;

  LineState state{Low16(context->scaleAccumulator), context->upSourceLine, context->upOutputLine};
  *more = ReplicateLines<Layout>(input, output.cursor, band->width, ratio, context, &state) ? 1 : 0;
  CloseCursor(output.cursor);
  CloseCursor(input);
  output.band->lineCount = Low16(std::uint32_t{state.outputLine} - output.band->top);
  PutAwayHeldLine(context);
  context->scaleAccumulator = state.units;
  context->upSourceLine = state.sourceLine;
  context->upOutputLine = state.outputLine;
  return output.band;
}

struct WidthWorker {
  static void Begin(const tagRasterPacked&, Ratio, tagCRLA*) {}
  template <class Layout>
  static typename Layout::Band* Make(void* slot, Ratio ratio, const tagIGFD&, tagCRLA* context,
                                     std::int16_t* index) {
    return EnlargeWidth<Layout>(slot, ratio, context, index);
  }
};

struct HeightWorker {
  // The first band of an image says at which lines it starts.
  static void Begin(const tagRasterPacked& band, Ratio ratio, tagCRLA* context) {
    if (context->upSourceLine != 0 || context->upOutputLine != 0) return;
    context->upSourceLine = band.top;
    context->upOutputLine = Low16(band.top * Unsigned32(ratio.to) / Unsigned32(ratio.from));
  }
  template <class Layout>
  static typename Layout::Band* Make(void* slot, Ratio ratio, const tagIGFD&, tagCRLA* context,
                                     std::int16_t* more) {
    return EnlargeHeight<Layout>(slot, ratio, context, more);
  }
};

}  // namespace
}  // namespace cvt

using cvt::AcrossHeight, cvt::AcrossWidth, cvt::Packed, cvt::Planes;

CvtStatus CVT_CALL CvtScaleUpWidth(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                   tagCRLA* context) {
  return cvt::ScaleBand<AcrossWidth, cvt::WidthWorker>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtScaleUpHeight(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                    tagCRLA* context) {
  return cvt::ScaleBand<AcrossHeight, cvt::HeightWorker>(band, source, destination, context);
}
tagRasterPlane* CVT_CALL CvtScaleUpWidthBit(tagRasterPlane** band, std::int32_t srcWidth, std::int32_t dstWidth,
                                            tagCRLA* context, std::int16_t* index) {
  return cvt::EnlargeWidth<Planes>(band, {srcWidth, dstWidth}, context, index);
}
tagRasterPacked* CVT_CALL CvtScaleUpWidthByte(tagRasterPacked** band, std::int32_t srcWidth, std::int32_t dstWidth,
                                              tagCRLA* context, std::int16_t* index) {
  return cvt::EnlargeWidth<Packed>(band, {srcWidth, dstWidth}, context, index);
}
tagRasterPlane* CVT_CALL CvtScaleUpHeightBit(tagRasterPlane** band, std::int32_t srcHeight, std::int32_t dstHeight,
                                             tagCRLA* context, std::int16_t* more) {
  return cvt::EnlargeHeight<Planes>(band, {srcHeight, dstHeight}, context, more);
}
tagRasterPacked* CVT_CALL CvtScaleUpHeightByte(tagRasterPacked** band, std::int32_t srcHeight,
                                               std::int32_t dstHeight, tagCRLA* context, std::int16_t* more) {
  return cvt::EnlargeHeight<Packed>(band, {srcHeight, dstHeight}, context, more);
}

// Twins of the workers that enlarge.
#include <cstring>

#include "tests/reference/scale.h"

namespace cvt::test {

namespace {

constexpr std::uint32_t kSubBandBytes = 65000;

// The error term walks on from run to run; each pixel is shown as often as it takes to reach `to` again.
void Replicate(tagCRLA* context, std::int32_t from, std::int32_t to, std::uint16_t outWidth) {
  std::int64_t acc = 0;
  for (std::uint32_t i = 0; i < context->runCount; ++i) {
    std::int64_t shown = 0;
    for (int pixel = 0; pixel < context->runLengths[i]; ++pixel) {
      for (; acc < to; acc += from) ++shown;
      acc -= to;
    }
    context->runLengths[i] = static_cast<std::uint16_t>(shown);
  }
  std::uint32_t sum = 0;
  for (std::uint32_t i = 0; i < context->runCount; ++i) {
    sum += context->runLengths[i];
    if ((sum & 0xFFFF) > outWidth) {
      context->runCount = static_cast<std::uint16_t>(i + 1);
      context->runLengths[i] = static_cast<std::uint16_t>(context->runLengths[i] + outWidth - sum);
      return;
    }
  }
}

}  // namespace

tagRasterPacked* RefUpWidth(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                            tagCRLA* context, std::int16_t* index) {
  tagRasterPacked* source = *band;
  if (!planes) RefRoundDepth(source);
  const std::uint32_t depth = source->bitsPerPixel, allLines = source->lineCount;
  const std::int32_t outWidth = RefScaled(source->width, to, from);
  const std::uint32_t rowBytes = RefRowBytes(planes, outWidth, depth);
  const std::uint32_t lineBytes = planes ? rowBytes * depth : rowBytes;
  if (lineBytes > kSubBandBytes) return nullptr;
  const RefSplit split = RefSplitLines(lineBytes, allLines, kSubBandBytes);

  const RefCursor in = RefOpen(planes, source);
  if (in.Missing()) return nullptr;
  const std::int64_t k = *index;
  const bool isLast = k == std::int64_t{split.count} - 1;
  const std::int64_t lines = isLast ? allLines - split.lines * k : split.lines;
  const std::int64_t bytes = planes ? rowBytes * lines : (rowBytes & 0xFFFE) * lines & 0xFFFF;
  const std::int32_t left = RefScaled(static_cast<std::int16_t>(source->left), to, from);
  tagRasterPacked* made =
      RefCopyLines(in, planes, planes ? depth * bytes : bytes,
                   {left, source->top + split.lines * k, outWidth, lines, depth, bytes}, context,
                   [&] { Replicate(context, from, to, static_cast<std::uint16_t>(outWidth)); });
  if (made != nullptr) *index = static_cast<std::int16_t>(isLast ? 0 : k + 1);
  return made;
}

tagRasterPacked* RefUpHeight(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                             tagCRLA* context, std::int16_t* more) {
  tagRasterPacked* source = *band;
  if (!planes) RefRoundDepth(source);
  const std::uint32_t depth = source->bitsPerPixel;
  const std::int64_t top = static_cast<std::int16_t>(source->top);
  const std::int64_t outLines = RefScaled(top + source->lineCount, to, from) - RefScaled(top, to, from);
  const std::uint32_t rowBytes = RefRowBytes(planes, source->width, depth);
  const std::uint32_t lineBytes = planes ? rowBytes * depth : rowBytes;
  if (lineBytes > kSubBandBytes) return nullptr;
  const std::int64_t maxLines = kSubBandBytes / lineBytes;
  const std::int64_t count = (outLines & 0xFFFF) < (maxLines & 0xFFFF) ? outLines : maxLines;
  const std::int64_t bytes = rowBytes * count & 0xFFFF;
  auto acc = static_cast<std::uint16_t>(context->scaleAccumulator);
  std::memcpy(context->values, context->ownedBuffer2, SioSizeSMem(context->values));
  std::memcpy(context->runLengths, context->ownedBuffer1, SioSizeSMem(context->runLengths));

  const RefCursor in = RefOpen(planes, source);
  if (in.Missing()) return nullptr;
  tagRasterPacked* made = RefNewBand(planes, planes ? depth * bytes : bytes,
                                     {source->left, context->upOutputLine, source->width, count, depth, bytes});
  if (made == nullptr) return nullptr;
  const RefCursor out = RefOpen(planes, made);
  if (out.Missing()) return nullptr;
  std::uint16_t s = context->upSourceLine, o = context->upOutputLine;
  *more = 1;
  while (s <= in.Bottom()) {
    const bool lineIsUsedUp = planes ? acc < static_cast<std::uint16_t>(from) : acc < from;
    if (lineIsUsedUp && s == in.Bottom()) {
      *more = 0;
      break;
    }
    if (lineIsUsedUp) RefReadLine(in, context, s++);
    while (acc < to) {
      acc = static_cast<std::uint16_t>(acc + from);
      RefWriteLine(out, context, o++);
      if (o >= out.Bottom()) break;
    }
    const bool full = o >= out.Bottom();
    if (!full || acc >= to) acc = static_cast<std::uint16_t>(acc - to);
    if (full) break;
  }
  RefClose(out);
  RefClose(in);
  made->lineCount = static_cast<std::uint16_t>(o - made->top);
  std::memcpy(context->ownedBuffer2, context->values, SioSizeSMem(context->values));
  std::memcpy(context->ownedBuffer1, context->runLengths, SioSizeSMem(context->runLengths));
  context->scaleAccumulator = acc;
  context->upSourceLine = s;
  context->upOutputLine = o;
  return made;
}

}  // namespace cvt::test

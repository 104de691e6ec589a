// Twins of the workers that reduce, keeping thin features or sampling.
#include <algorithm>

#include "tests/reference/scale.h"

namespace cvt::test {

namespace {

struct Rescaling {
  std::int32_t from, to;
  bool keeps;
  std::uint32_t keepColor;
};

void RescaleRuns(tagCRLA* context, const Rescaling& r) {
  std::uint16_t* lengths = context->runLengths;
  std::int32_t emitted = 0, pos = 0;
  for (std::int32_t i = lengths[0] == 0 ? 1 : 0; i < context->runCount; ++i) {
    pos += lengths[i];
    lengths[i] = static_cast<std::uint16_t>(RefScaled(pos, r.to, r.from) - emitted);
    if (r.keeps && lengths[i] == 0 && context->values[i] == r.keepColor) {
      std::int32_t donor = i - 1;
      while (donor >= 0 && lengths[donor] == 0) --donor;
      if (donor >= 0) {
        --lengths[donor];
        --emitted;
      }
      lengths[i] = 1;
    }
    if (r.keeps && lengths[i] == 0xFFFF) lengths[i] = 0;
    emitted += lengths[i];
  }
}

tagRasterPacked* ReduceWidth(bool planes, tagRasterPacked* source, const Rescaling& r, tagCRLA* context) {
  if (!planes) RefRoundDepth(source);
  const RefCursor in = RefOpen(planes, source);
  if (in.Missing()) return nullptr;
  const std::int64_t lines = source->lineCount, depth = source->bitsPerPixel;
  const std::int32_t scaled = RefScaled(source->width, r.to, r.from);
  const std::int64_t outWidth = scaled & 0xFFFF;
  const std::int64_t bytes =
      planes ? RefRowBytes(true, outWidth, 1) * lines : (RefRowBytes(false, scaled, depth) & 0xFFFE) * lines;
  const std::int32_t left = RefScaled(static_cast<std::int16_t>(source->left), r.to, r.from);
  return RefCopyLines(in, planes, planes ? depth * bytes : bytes,
                      {left, source->top, outWidth, lines, depth, bytes}, context,
                      [&] { RescaleRuns(context, r); });
}

tagRasterPacked* NewShorterBand(bool planes, const tagRasterPacked& source, std::int32_t firstLine,
                                std::int64_t lines) {
  const std::int64_t depth = source.bitsPerPixel;
  const std::uint32_t rowBytes = RefRowBytes(planes, source.width, depth);
  const std::int64_t bytes = (planes ? rowBytes : rowBytes & 0xFFFE) * lines;
  return RefNewBand(planes, planes ? depth * bytes : bytes,
                    {source.left, firstLine, source.width, lines, depth, bytes});
}

struct Merge {
  tagCRLA* context;
  std::uint16_t* flags;
  std::uint32_t* merged;

  void ClearFlags(std::size_t pixels) const { std::fill_n(flags, pixels, std::uint16_t{0}); }
  void Add() const {
    std::size_t p = 0;
    for (std::uint32_t r = 0; r < context->runCount; ++r)
      for (std::uint32_t n = 0; n < context->runLengths[r]; ++n, ++p)
        if (flags[p] == 0 && merged[p] != context->values[r]) {
          merged[p] = context->values[r];
          flags[p] = 1;
        }
  }
  void Emit(RefCursor out, std::uint16_t o) const {
    const int pixels = std::max<int>(context->mergeWidth, 1);
    std::uint16_t runs = 0;
    for (int p = 0, length = 1; p < pixels; ++p, ++length) {
      if (p + 1 < pixels && merged[p + 1] == merged[p]) continue;
      context->runLengths[runs] = static_cast<std::uint16_t>(length);
      context->values[runs++] = merged[p];
      length = 0;
    }
    context->runCount = runs;
    RefWriteLine(out, context, o);
    ClearFlags(context->mergeWidth);
  }
};

}  // namespace

tagRasterPacked* RefDownWidth(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                              tagCRLA* context, std::int16_t keepColor) {
  const auto kept = static_cast<std::uint32_t>(std::int32_t{keepColor});
  return ReduceWidth(planes, *band, {from, to, true, kept}, context);
}

tagRasterPacked* RefDecimateWidth(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                                  tagCRLA* context) {
  return ReduceWidth(planes, *band, {from, to, false, 0}, context);
}

tagRasterPacked* RefDownHeight(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                               tagCRLA* context) {
  tagRasterPacked* source = *band;
  const RefCursor in = RefOpen(planes, source);
  if (in.Missing()) return nullptr;
  if (!planes) RefRoundDepth(source);
  const std::int64_t top = static_cast<std::int16_t>(source->top);
  const std::int64_t ends = RefScaled(top + source->lineCount, to, from) & 0xFFFF;
  const std::int64_t begins = RefScaled(top, to, from) & 0xFFFF;
  const std::int64_t lines = ends == begins ? 1 : ends - begins;
  tagRasterPacked* made = NewShorterBand(planes, *source, RefScaled(top, to, from), lines);
  if (made == nullptr) return nullptr;
  const RefCursor out = RefOpen(planes, made);
  if (out.Missing()) return nullptr;
  const Merge merge{context, static_cast<std::uint16_t*>(context->ownedBuffer1),
                    static_cast<std::uint32_t*>(context->ownedBuffer2)};
  auto acc = static_cast<std::int32_t>(context->scaleAccumulator);
  context->mergeWidth = made->width;
  if (source->left != context->mergeLeft || source->top != context->nextSourceLine) {
    merge.ClearFlags(source->width);
    std::fill_n(merge.merged, source->width, 0u);
    acc = 0;
  }
  context->mergeLeft = source->left;
  context->nextSourceLine = static_cast<std::uint16_t>(source->top + source->lineCount);
  std::uint16_t s = in.Top(), o = out.Top();
  while (s < in.Bottom()) {
    while (s < in.Bottom() && acc < from) {
      RefReadLine(in, context, s++);
      merge.Add();
      acc += to;
    }
    if (acc >= from) {
      acc -= from;
      if (o + 1 < out.Bottom()) merge.Emit(out, o++);
    }
  }
  context->scaleAccumulator = static_cast<std::uint32_t>(acc);
  if (o < out.Bottom()) merge.Emit(out, o);
  RefClose(out);
  RefClose(in);
  return made;
}

tagRasterPacked* RefDecimateHeight(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                                   tagCRLA* context) {
  tagRasterPacked* source = *band;
  const RefCursor in = RefOpen(planes, source);
  if (in.Missing()) return nullptr;
  if (!planes) RefRoundDepth(source);
  const std::int64_t top = static_cast<std::int16_t>(source->top);
  const std::int64_t ends = RefScaled(top + source->lineCount, to, from) & 0xFFFF;
  const std::int64_t begins = RefScaled(top, to, from) & 0xFFFF;
  tagRasterPacked* made = NewShorterBand(planes, *source, RefScaled(top, to, from), ends - begins);
  if (made == nullptr) return nullptr;
  if (ends == begins) {
    RefClose(in);
    return made;
  }
  const RefCursor out = RefOpen(planes, made);
  if (out.Missing()) return nullptr;
  std::uint16_t s = in.Top(), o = out.Top();
  auto acc = static_cast<std::int32_t>(context->scaleAccumulator);
  do {
    for (; acc < from; acc += to) ++s;
    --s;
    if (s >= in.Bottom()) s = static_cast<std::uint16_t>(in.Bottom() - 1);
    RefReadLine(in, context, s++);
    acc -= from;
    if (o < out.Bottom()) RefWriteLine(out, context, o++);
  } while (s < in.Bottom() || o < out.Bottom());
  context->scaleAccumulator = static_cast<std::uint32_t>(acc);
  RefClose(out);
  RefClose(in);
  return made;
}

}  // namespace cvt::test

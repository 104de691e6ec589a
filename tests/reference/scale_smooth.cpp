// Twins of smooth scaling: set-up, preparation and both kernels.
#include <algorithm>
#include <cstring>

#include "tests/reference/scale.h"
#include "tests/scripted/prefix.h"

namespace cvt::test {

namespace {

std::uint32_t LimitOf(const tagCRLA& context) { return (*context.next->stage)->bandLimit; }

std::uint32_t Prepared(const RefSource& from, const tagIGFD& prepared, std::uint32_t v) {
  const IRGB color = from.ColorOf(nullptr, v);
  if (prepared.bitsPerPixel == 8) return static_cast<std::uint32_t>(RefGray(color));
  const Channels to = ChannelsOf(prepared);
  const std::uint32_t red = color.red, green = color.green, blue = color.blue;
  return (red >> to.shift) << 2 * to.width | (green >> to.shift) << to.width | blue >> to.shift;
}

// One image under way. A source pixel is dw units wide and an output pixel sw; a source line dh high, an output
// line sh. Channels run from blue to red; gray levels are one channel of 32 bits.
struct Smoothing {
  std::uint32_t sw, sh, dw, dh;
  std::uint32_t channels;
  tagCRLA* context;
  std::uint32_t *previous, *current, *sums;

  std::uint32_t Of(std::uint32_t value, std::uint32_t c) const {
    return channels == 1 ? value : value >> 8 * c & 0xFF;
  }
  std::uint32_t Joined(const std::uint32_t* each) const {
    if (channels == 1) return each[0];
    return std::min(each[2], 255u) << 16 | std::min(each[1], 255u) << 8 | std::min(each[0], 255u);
  }
  void Resample(std::uint32_t* line) const;
  std::uint32_t Weighted(std::uint32_t x, std::uint32_t c, std::uint32_t srcLeft) const {
    return Of(current[x], c) * (dh - srcLeft) + Of(previous[x], c) * srcLeft;
  }
};

void Smoothing::Resample(std::uint32_t* line) const {
  std::uint32_t i = context->runLengths[0] == 0 ? 1 : 0;
  std::uint16_t runLeft = context->runLengths[i], inRun = 0;
  std::uint32_t cur = context->values[i], prev = cur, frac = dw, need = sw;
  std::uint32_t sum[3] = {0, 0, 0};
  for (std::uint16_t x = 0; x < static_cast<std::uint16_t>(dw);) {
    for (std::uint32_t c = 0; c < channels; ++c)
      sum[c] += std::min(need, frac) * (((dw - frac) * Of(cur, c) + frac * Of(prev, c)) / dw);
    if (need < frac) {
      for (std::uint32_t& s : sum) s /= sw;
      line[x++] = Joined(sum);
      std::fill_n(sum, 3, 0u);
      frac -= need;
      need = sw;
      continue;
    }
    need -= frac;
    frac = dw;
    prev = cur;
    if (++inRun < runLeft) continue;
    inRun = 0;
    if (++i >= context->runCount) {
      runLeft = 0xFFFF;
    } else {
      runLeft = context->runLengths[i];
      cur = context->values[i];
    }
  }
}

struct Vertical {
  RefCursor in;
  std::uint16_t srcY;
  std::uint32_t srcLeft, outLeft;
};

void EmitLine(const Smoothing& job, const Vertical& at, RefCursor out, std::uint16_t o) {
  for (std::uint32_t x = 0; x < job.dw; ++x) {
    std::uint32_t level[3] = {0, 0, 0};
    for (std::uint32_t c = 0; c < job.channels; ++c) {
      std::uint32_t& sum = job.sums[x * job.channels + c];
      level[c] = (job.Weighted(x, c, at.srcLeft) * at.outLeft + sum) / (job.sh * job.dh);
      sum = 0;
    }
    CvtWritePackedPixel(out.packed, static_cast<std::uint16_t>(x + out.Left()), o, job.Joined(level));
  }
}

void FillSubBand(const Smoothing& job, Vertical& at, RefCursor out, bool isLast) {
  const std::uint16_t end = at.in.Bottom();
  for (std::uint16_t o = out.Top();;) {
    if (at.outLeft < at.srcLeft) {
      if (!isLast && o >= out.Bottom()) return;
      EmitLine(job, at, out, o++);
      at.srcLeft -= at.outLeft;
      at.outLeft = job.sh;
      continue;
    }
    if (!(isLast && at.srcY != end) && o >= out.Bottom()) return;
    for (std::uint32_t x = 0; x < job.dw; ++x)
      for (std::uint32_t c = 0; c < job.channels; ++c)
        job.sums[x * job.channels + c] += job.Weighted(x, c, at.srcLeft) * at.srcLeft;
    at.outLeft -= at.srcLeft;
    at.srcLeft = job.dh;
    std::copy_n(job.current, job.dw, job.previous);
    if (isLast && at.srcY == end && o < out.Bottom()) continue;
    RefReadLine(at.in, job.context, at.srcY++);
    job.Resample(job.current);
  }
}

}  // namespace

CvtStatus RefSmoothKernel(bool color, tagRasterPacked* band, tagIGFD* prepared, tagIGFD* destination,
                          tagCRLA* context) {
  tagIGFD* copy = CvtDupIGFD(prepared);
  if (copy == nullptr) return kCvtNoDescriptor;
  copy->originX = destination->originX;
  copy->originY = destination->originY;
  copy->imageWidth = destination->imageWidth;
  copy->imageHeight = destination->imageHeight;
  const std::int32_t sw = prepared->imageWidth, sh = prepared->imageHeight;
  const std::int32_t dw = destination->imageWidth, dh = destination->imageHeight;
  Smoothing job{};
  job.sw = static_cast<std::uint32_t>(sw);
  job.sh = static_cast<std::uint32_t>(sh);
  job.dw = static_cast<std::uint32_t>(dw);
  job.dh = static_cast<std::uint32_t>(dh);
  job.channels = color ? 3 : 1;
  job.context = context;
  job.previous = static_cast<std::uint32_t*>(context->ownedBuffer2);
  job.current = context->smoothCurrentLine;
  job.sums = context->smoothSums;
  const RefCursor in = RefOpen(false, band);
  if (in.Missing()) return kCvtNoMemory;
  Vertical at{in, in.Top(), context->scaleAccumulator, context->smoothOutputRemain};
  if (at.srcLeft == 0 && at.outLeft == 0) {
    std::memset(job.sums, 0, color ? (job.dw * 4 & 0xFFFF) * std::size_t{3} : job.dw * std::size_t{4});
    RefReadLine(in, context, at.srcY++);
    job.Resample(job.previous);
    std::copy_n(job.previous, job.dw, job.current);
    at.srcLeft = job.dh;
    at.outLeft = job.sh;
  }

  const std::uint32_t rowBytes = RefRowBytes(false, dw, color ? 32 : 8);
  const std::int64_t top = static_cast<std::int16_t>(band->top);
  const std::uint32_t a = RefScaledUnsigned(top + band->lineCount, dh, sh), b = RefScaledUnsigned(top, dh, sh);
  const std::uint32_t allLines = (a - b) & 0xFFFF;
  if (allLines != 0 && rowBytes > LimitOf(*context)) return kCvtNoMemory;
  const RefSplit split = RefSplitLines(rowBytes, allLines, LimitOf(*context));
  for (std::uint32_t k = 0; k < split.count; ++k) {
    const bool isLast = k == split.count - 1;
    const std::uint32_t first = (b + k * split.lines) & 0xFFFF;
    const std::uint32_t lines = isLast ? (a & 0xFFFF) - first : split.lines;
    const std::uint32_t bytes = (rowBytes & 0xFFFE) * lines;
    if (bytes == 0) continue;
    const std::uint32_t left = RefScaledUnsigned(static_cast<std::int16_t>(band->left), dw, sw);
    tagRasterPacked* made = RefNewBand(false, bytes & 0xFFFF, {left, first, dw, lines, color ? 32 : 8, 0});
    if (made == nullptr) return kCvtNoMemory;
    const RefCursor out = RefOpen(false, made);
    if (out.Missing()) return kCvtNoMemory;
    FillSubBand(job, at, out, isLast);
    RefClose(out);
    const CvtStatus status = context->convertProc(&made, copy, destination, context);
    if (status != 0) return status;
    RefFreeBand(made);
  }
  RefClose(in);
  CvtDisposeIGFD(copy);
  context->nextSourceLine = at.srcY;
  context->scaleAccumulator = at.srcLeft;
  context->smoothOutputRemain = at.outLeft;
  return kCvtOk;
}

tagRasterPacked* RefPrepareSmooth(bool planes, tagRasterPacked** band, tagIGFD* source, tagIGFD* prepared,
                                  tagCRLA* context, std::uint16_t* index) {
  const tagRasterPacked& given = **band;
  const std::uint32_t depth = prepared->bitsPerPixel == 8 ? 8 : 32, allLines = given.lineCount;
  const std::uint32_t rowBytes = RefRowBytes(false, given.width, depth);
  if (rowBytes > LimitOf(*context)) return nullptr;
  const RefCursor in = RefOpen(planes, *band);
  if (in.Missing()) return nullptr;
  const RefSplit split = RefSplitLines(rowBytes, allLines, LimitOf(*context));
  const std::uint32_t k = *index;
  const bool isLast = k == split.count - 1;
  const std::uint32_t lines = isLast ? allLines - split.lines * k : split.lines;
  RefSource from = RefSourceOf(*source, *context, false);
  from.gamma = false;
  from.indexMask = 0xFFFFFFFF;
  tagRasterPacked* made =
      RefCopyLines(in, false, (rowBytes & 0xFFFE) * lines & 0xFFFF,
                   {given.left, given.top + k * split.lines, given.width, lines, depth, 0}, context, [&] {
                     for (std::uint32_t i = 0; i < context->runCount; ++i)
                       context->values[i] = Prepared(from, *prepared, context->values[i]);
                   });
  if (made != nullptr) *index = static_cast<std::uint16_t>(isLast ? 0 : k + 1);
  return made;
}

CvtStatus RefScaleSmooth(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  tagIGFD* prepared = CvtDupIGFD(source);
  if (prepared == nullptr) return kCvtNoDescriptor;
  prepared->options = prepared->options & 0xFFBF;
  prepared->rasterKind = 9;
  prepared->sampleDepth = 8;
  prepared->keepColor = 0;
  std::memset(prepared->keepColorWords, 0, sizeof prepared->keepColorWords);
  const bool gray = context->grayPalette == 1 || source->bitsPerPixel == 1 || destination->bitsPerPixel == 1 ||
                    CvtIsGray(source, 0) != 0;
  prepared->bitsPerPixel = gray ? 8 : 24;
  prepared->colorFlags = gray ? 0x80 : 0;
  IRGB* ramp = nullptr;
  if (gray) {
    ramp = static_cast<IRGB*>(SioAllocSMem(768));
    if (ramp == nullptr) return kCvtNoDescriptor;
    for (int i = 0; i < 256; ++i) std::memset(ramp + i, i, 3);
  }
  prepared->palette = ramp;

  const bool planes = PrefixOf(*band).code == 20;
  CvtStatus status = kCvtOk;
  std::uint16_t index = 0;
  do {
    tagRasterPacked* piece = RefPrepareSmooth(planes, band, source, prepared, context, &index);
    if (piece == nullptr)
      status = kCvtNoMemory;
    else if (piece->lineCount != 0)
      status = RefSmoothKernel(!gray, piece, prepared, destination, context);
    if (gray && status != kCvtOk) SioFreeSMem(ramp);
    if (piece != nullptr) RefFreeBand(piece);
  } while (status == kCvtOk && index != 0);
  if (gray && status == kCvtOk) SioFreeSMem(ramp);
  CvtDisposeIGFD(prepared);
  return status;
}

}  // namespace cvt::test

// Twins of the drivers of the plain scalers, and the steps that all scalers share.
#include "tests/reference/color.h"
#include "tests/reference/scale.h"
#include "tests/scripted/prefix.h"

namespace cvt::test {

std::int32_t RefScaled(std::int64_t position, std::int64_t to, std::int32_t from) {
  return static_cast<std::int32_t>(position * to) / from;
}

std::uint32_t RefScaledUnsigned(std::int64_t position, std::int32_t to, std::int32_t from) {
  return static_cast<std::uint32_t>(position * to) / static_cast<std::uint32_t>(from);
}

std::uint32_t RefRowBytes(bool planes, std::int64_t pixels, std::int64_t depth) {
  return static_cast<std::uint32_t>(pixels * (planes ? 1 : depth) + 15) >> 3 & 0x1FFFFFFEu;
}

void RefRoundDepth(tagRasterPacked* band) {
  std::uint16_t b = band->bitsPerPixel;
  while ((b & (b - 1)) != 0) ++b;
  band->bitsPerPixel = b;
}

RefSplit RefSplitLines(std::uint32_t rowBytes, std::uint32_t lines, std::uint32_t limit) {
  const std::uint32_t total = rowBytes * lines;
  if (total == 0) return {0, 0};
  std::uint32_t count = total / limit & 0xFFFF;
  if (count * limit < total) ++count;
  const std::uint32_t each = total / count / rowBytes & 0xFFFF;
  while ((lines - (count - 1) * each) * rowBytes > limit) ++count;
  return {count, each};
}

tagRasterPacked* RefNewBand(bool planes, std::int64_t dataBytes, const RefHeader& header) {
  const auto size = static_cast<std::uint32_t>(dataBytes + 12);
  auto* band = static_cast<tagRasterPacked*>(SioCreateOp(planes ? kPlaneBand : kPackedBand, size));
  if (band == nullptr) return nullptr;
  band->left = static_cast<std::uint16_t>(header.left);
  band->top = static_cast<std::uint16_t>(header.top);
  band->width = static_cast<std::uint16_t>(header.width);
  band->lineCount = static_cast<std::uint16_t>(header.lines);
  band->bitsPerPixel = static_cast<std::uint16_t>(header.depth);
  if (planes) band->planeBytes = static_cast<std::uint16_t>(header.planeBytes);
  return band;
}

void RefWriteLine(RefCursor out, tagCRLA* context, std::uint16_t y) {
  if (out.planes != nullptr)
    CvtWritePlaneLine(out.planes, context, out.Left(), y);
  else
    CvtWritePackedLine(out.packed, context, out.Left(), y);
}

namespace {

struct Side {
  std::int32_t size;
  std::int16_t origin;
};

Side SideOf(Along along, const tagIGFD& image) {
  if (along == Along::Width) return {image.imageWidth, image.originX};
  return {image.imageHeight, image.originY};
}

void Shift(Along along, tagRasterPacked* band, std::int64_t by) {
  if (along == Along::Width)
    band->left = static_cast<std::uint16_t>(band->left + by);
  else
    band->top = static_cast<std::uint16_t>(band->top + by);
}

struct Job {
  Along along;
  tagIGFD* copy;
  tagIGFD* destination;
  tagCRLA* context;
  Side from, to;
};

Job StartJob(Along along, const tagIGFD& source, tagIGFD* copy, tagIGFD* destination, tagCRLA* context) {
  if (along == Along::Width) {
    copy->imageWidth = destination->imageWidth;
    copy->originX = destination->originX;
  } else {
    copy->imageHeight = destination->imageHeight;
    copy->originY = destination->originY;
  }
  return {along, copy, destination, context, SideOf(along, source), SideOf(along, *destination)};
}

CvtStatus MoveOnly(const Job& job, tagRasterPacked** band) {
  Shift(job.along, *band, job.to.origin - job.from.origin);
  const CvtStatus status = job.context->convertProc(band, job.copy, job.destination, job.context);
  CvtDisposeIGFD(job.copy);
  return status;
}

CvtStatus PutAside(const Job& job, tagRasterPacked** band) {
  SioPutOp(job.destination->opList, reinterpret_cast<void**>(band));
  CvtDisposeIGFD(job.copy);
  return kCvtOk;
}

CvtStatus HandOn(const Job& job, tagRasterPacked* out) {
  const std::uint32_t q = RefScaledUnsigned(job.from.origin, job.to.size, job.from.size);
  Shift(job.along, out, job.to.origin - std::int64_t{q & 0xFFFF});
  const CvtStatus status = job.context->convertProc(&out, job.copy, job.destination, job.context);
  if (status == 0) RefFreeBand(out);
  return status;
}

}  // namespace

CvtStatus RefScaleUp(Along along, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                     tagCRLA* context) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  const Job job = StartJob(along, *source, copy, destination, context);
  if (job.from.size == job.to.size) return MoveOnly(job, band);
  if (along == Along::Height && context->upSourceLine == 0 && context->upOutputLine == 0) {
    context->upSourceLine = (*band)->top;
    context->upOutputLine =
        static_cast<std::uint16_t>(RefScaledUnsigned((*band)->top, job.to.size, job.from.size));
  }
  const int code = PrefixOf(*band).code;
  if (code != 20 && code != 21) return PutAside(job, band);
  const auto worker = along == Along::Width ? RefUpWidth : RefUpHeight;
  std::int16_t next = 0;
  do {
    tagRasterPacked* out = worker(code == 20, band, job.from.size, job.to.size, context, &next);
    if (out == nullptr) return kCvtNoMemory;
    const CvtStatus status = HandOn(job, out);
    if (status != 0) return status;
  } while (next != 0);
  CvtDisposeIGFD(copy);
  return kCvtOk;
}

CvtStatus RefScaleDown(Along along, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                       tagCRLA* context) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  const Job job = StartJob(along, *source, copy, destination, context);
  const std::int32_t from = job.from.size, to = job.to.size;
  if (from == to) return MoveOnly(job, band);
  const int code = PrefixOf(*band).code;
  if (code != 20 && code != 21) return PutAside(job, band);
  tagRasterPacked* out = nullptr;
  if (along == Along::Width && context->scaleDownMethod == 2)
    out = RefDecimateWidth(code == 20, band, from, to, context);
  else if (along == Along::Width)
    out = RefDownWidth(code == 20, band, from, to, context, destination->keepColor);
  else if (context->scaleDownMethod == 2)
    out = RefDecimateHeight(code == 20, band, from, to, context);
  else
    out = RefDownHeight(code == 20, band, from, to, context);
  if (out == nullptr) return kCvtNoMemory;
  const CvtStatus status = HandOn(job, out);
  if (status != 0) return status;
  CvtDisposeIGFD(copy);
  return kCvtOk;
}

CvtStatus CVT_CALL RefWholeCvtr2r(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                  tagCRLA* context) {
  const Due due = DueRoutine(0, (*band)->lineCount, *source, *destination, *context);
  if (due < Due::ScaleSmooth || due > Due::ScaleUpHeight)
    return RefColorCvtr2r(band, source, destination, context);
  if (source->progressProc(source->progressData) != 0) return kCvtStopped;
  if (due == Due::ScaleSmooth) return RefScaleSmooth(band, source, destination, context);
  const bool width = due == Due::ScaleDownWidth || due == Due::ScaleUpWidth;
  const bool reduces = due == Due::ScaleDownWidth || due == Due::ScaleDownHeight;
  return (reduces ? RefScaleDown : RefScaleUp)(width ? Along::Width : Along::Height, band, source, destination,
                                               context);
}

}  // namespace cvt::test

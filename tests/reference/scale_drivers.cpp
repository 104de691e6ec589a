// Twins of the drivers of the plain scalers, and the steps that all scalers share.
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
  if (lines == 0) return {1, 0};
  const std::uint32_t total = rowBytes * lines;
  if (total == 0) return {0, 0};
  std::uint32_t count = total / limit & 0xFFFF;
  if (count * limit < total) ++count;
  const std::uint32_t each = total / count / rowBytes & 0xFFFF;
  while ((lines - (count - 1) * each) * rowBytes > limit) ++count;
  return {count, each};
}

tagRasterPacked* RefCopyLines(RefCursor in, bool planes, std::int64_t dataBytes, const RefHeader& header,
                              tagCRLA* context, const std::function<void()>& change) {
  tagRasterPacked* made = RefNewBand(planes, dataBytes, header);
  if (made == nullptr) return nullptr;
  const RefCursor out = RefOpen(planes, made);
  if (out.Missing()) return nullptr;
  for (std::uint16_t y = out.Top(); y < out.Bottom(); ++y) {
    RefReadLine(in, context, y);
    change();
    RefWriteLine(out, context, y);
  }
  RefClose(out);
  RefClose(in);
  return made;
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

void SetSide(Along along, tagIGFD* image, Side side) {
  if (along == Along::Width) {
    image->imageWidth = side.size;
    image->originX = side.origin;
  } else {
    image->imageHeight = side.size;
    image->originY = side.origin;
  }
}

void Shift(Along along, tagRasterPacked* band, std::int64_t by) {
  if (along == Along::Width)
    band->left = static_cast<std::uint16_t>(band->left + by);
  else
    band->top = static_cast<std::uint16_t>(band->top + by);
}

// The first band of an image that grows in height says at which lines it starts.
void StartAt(const tagRasterPacked& band, Side from, Side to, tagCRLA* context) {
  if (context->upSourceLine != 0 || context->upOutputLine != 0) return;
  context->upSourceLine = band.top;
  context->upOutputLine = static_cast<std::uint16_t>(RefScaledUnsigned(band.top, to.size, from.size));
}

using Worker = std::function<tagRasterPacked*(bool planes, Side from, Side to, std::int16_t* next)>;

CvtStatus Scale(Along along, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context,
                bool startsHeight, const Worker& worker) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  const Side from = SideOf(along, *source), to = SideOf(along, *destination);
  SetSide(along, copy, to);
  CvtStatus status = kCvtOk;
  const int code = PrefixOf(*band).code;
  std::int16_t next = 0;
  if (from.size == to.size) {
    Shift(along, *band, to.origin - from.origin);
    status = context->convertProc(band, copy, destination, context);
    CvtDisposeIGFD(copy);
    return status;
  }
  if (startsHeight) StartAt(**band, from, to, context);
  if (code != 20 && code != 21) {
    SioPutOp(destination->opList, reinterpret_cast<void**>(band));
    CvtDisposeIGFD(copy);
    return kCvtOk;
  }
  do {
    tagRasterPacked* out = worker(code == 20, from, to, &next);
    if (out == nullptr) return kCvtNoMemory;
    Shift(along, out, to.origin - std::int64_t{RefScaledUnsigned(from.origin, to.size, from.size) & 0xFFFF});
    status = context->convertProc(&out, copy, destination, context);
    if (status != 0) return status;
    RefFreeBand(out);
  } while (next != 0);
  CvtDisposeIGFD(copy);
  return kCvtOk;
}

}  // namespace

CvtStatus RefScaleUp(Along along, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                     tagCRLA* context) {
  const auto worker = along == Along::Width ? RefUpWidth : RefUpHeight;
  return Scale(along, band, source, destination, context, along == Along::Height,
               [&](bool planes, Side from, Side to, std::int16_t* next) {
                 return worker(planes, band, from.size, to.size, context, next);
               });
}

CvtStatus RefScaleDown(Along along, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                       tagCRLA* context) {
  const bool samples = context->scaleDownMethod == 2, width = along == Along::Width;
  return Scale(along, band, source, destination, context, false,
               [&](bool planes, Side from, Side to, std::int16_t*) {
                 if (width && !samples)
                   return RefDownWidth(planes, band, from.size, to.size, context, destination->keepColor);
                 const auto worker = width ? RefDecimateWidth : samples ? RefDecimateHeight : RefDownHeight;
                 return worker(planes, band, from.size, to.size, context);
               });
}

}  // namespace cvt::test

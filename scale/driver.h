// What the four plain scalers share: they take over the destination's size along one axis, have a worker
// make the output bands, move these into the destination's frame and hand them on.
//
// A worker is a struct with
//   Begin(band, ratio, context)                            once a call, when the sizes differ
//   Make<Layout>(slot, ratio, destination, context, more)  the next output band, or null; *more says whether
//                                                          the same input band has another one to give
// Whatever fails, the descriptor copy stays allocated, and so does a band that the next link refused.
#pragma once

#include <cstdint>

#include "cvt/cvtr2r.h"
#include "frame/layout.h"
#include "scale/bands.h"

namespace cvt {

struct AcrossWidth {
  static std::int32_t Size(const tagIGFD& image) { return image.imageWidth; }
  static std::int32_t Origin(const tagIGFD& image) { return image.originX; }
  static void TakeOver(tagIGFD* copy, const tagIGFD& wanted) {
    copy->imageWidth = wanted.imageWidth;
    copy->originX = wanted.originX;
  }
  static void Move(tagRasterPacked* band, std::uint32_t by) { band->left = Low16(band->left + by); }
};

struct AcrossHeight {
  static std::int32_t Size(const tagIGFD& image) { return image.imageHeight; }
  static std::int32_t Origin(const tagIGFD& image) { return image.originY; }
  static void TakeOver(tagIGFD* copy, const tagIGFD& wanted) {
    copy->imageHeight = wanted.imageHeight;
    copy->originY = wanted.originY;
  }
  static void Move(tagRasterPacked* band, std::uint32_t by) { band->top = Low16(band->top + by); }
};

// How far output bands have to move: from the scaled source origin to the destination's. The division is
// unsigned, so that a negative source origin gives a wrapped place; hosts are used to it.
constexpr std::uint32_t OriginShift(std::int32_t from, std::int32_t to, Ratio ratio) {
  const std::uint32_t scaled = Unsigned32(MulWrap32(from, ratio.to)) / Unsigned32(ratio.from);
  return Unsigned32(to) - scaled;
}

static_assert(OriginShift(10, 7, {2, 1}) == 2 && Low16(OriginShift(-2, 0, {2, 1})) == 1);

template <class Axis, class Worker, class Layout>
CvtStatus ScaleLayout(tagRasterPacked** slot, const tagIGFD& source, tagIGFD* destination, tagIGFD* copy,
                      tagCRLA* context) {
  const Ratio ratio{Axis::Size(source), Axis::Size(*destination)};
  const std::uint32_t shift = OriginShift(Axis::Origin(source), Axis::Origin(*destination), ratio);
  std::int16_t more = 0;
  do {
    auto* made = Worker::template Make<Layout>(slot, ratio, *destination, context, &more);
    if (made == nullptr) return kCvtNoMemory;
    tagRasterPacked* band = nullptr;
    PutBand(&band, made);
    Axis::Move(band, shift);
    if (const CvtStatus status = context->convertProc(&band, copy, destination, context); status != kCvtOk)
      return status;
    SioFreeSMem(BlockOf(band));
  } while (more != 0);
  return kCvtOk;
}

template <class Axis, class Worker>
CvtStatus ScaleRaster(tagRasterPacked** slot, const tagIGFD& source, tagIGFD* destination, tagIGFD* copy,
                      tagCRLA* context) {
  auto* band = BandAt<tagRasterPacked>(slot);
  Worker::Begin(*band, {Axis::Size(source), Axis::Size(*destination)}, context);
  switch (OperationOf(band)) {
    case kPlaneBand:
      return ScaleLayout<Axis, Worker, Planes>(slot, source, destination, copy, context);
    case kPackedBand:
      return ScaleLayout<Axis, Worker, Packed>(slot, source, destination, copy, context);
    default:  // no raster band: it travels on untouched
      SioPutOp(destination->opList, reinterpret_cast<void**>(slot));
      return kCvtOk;
  }
}

template <class Axis, class Worker>
CvtStatus ScaleBand(tagRasterPacked** slot, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  Axis::TakeOver(copy, *destination);

  if (Axis::Size(*source) == Axis::Size(*destination)) {  // only the origin differs
    Axis::Move(BandAt<tagRasterPacked>(slot), Unsigned32(Axis::Origin(*destination) - Axis::Origin(*source)));
    const CvtStatus status = context->convertProc(slot, copy, destination, context);
    CvtDisposeIGFD(copy);
    return status;
  }
  const CvtStatus status = ScaleRaster<Axis, Worker>(slot, *source, destination, copy, context);
  if (status == kCvtOk) CvtDisposeIGFD(copy);
  return status;
}

}  // namespace cvt

// Twin of the four monochrome diffusion routines.
#include "tests/reference/band.h"

namespace cvt::test {

namespace {

std::int16_t Word(std::int64_t value) { return static_cast<std::int16_t>(value); }

struct Place {
  RefCursor out;
  std::uint16_t y;
  std::int64_t left, i;
  std::int16_t error;  // of the previous pixel of the line
};

void DiffusePixel(const RefInks& inks, std::int16_t* row, std::int64_t gray, Place& at) {
  std::int16_t t = Word(gray + (7 * at.error >> 4) + row[at.i]);
  const std::uint16_t ink = t > 127 ? inks.white : inks.black;
  if (ink != inks.black) t = Word(t - 255);
  const std::int16_t e = t > 0 ? Word(t - 1) : Word(t + 1);
  if (at.i > 0) row[at.i - 1] = Word(row[at.i - 1] + (3 * e >> 4));
  row[at.i] = Word(5 * e >> 4);
  RefWritePixel(at.out, at.i + at.left, at.y, ink);
  row[at.i] = Word(row[at.i] + (at.error >> 4));
  at.error = e;
  at.i = at.i + 1;
}

}  // namespace

CvtStatus RefMonoDiffusion(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                           tagCRLA* context) {
  const RefSource from = RefSourceOf(*source, *context, true);  // lowest channel as red in both layouts
  const bool byImageColumn = which.fromPlanes && !which.toPlanes;
  RefInks inks{};
  RefJob job = RefPaletteJob(which, PlaneSize::Full, **band, *source, *destination);
  job.opened = [&] { inks = RefInksOf(destination); };
  job.convertLine = [&](RefCursor in, RefCursor out, std::uint16_t y) -> CvtStatus {
    RefReadLine(in, context, y);
    if (source->progressProc(source->progressData) != 0) return kCvtStopped;
    Place at{out, y, in.Left(), byImageColumn ? in.Left() : 0, 0};
    for (std::uint32_t r = 0; r < context->runCount; ++r) {
      const std::int64_t gray = RefGray(from.ColorOf(context, context->values[r]));
      for (std::uint32_t n = 0; n < context->runLengths[r]; ++n) DiffusePixel(inks, context->errorRow, gray, at);
    }
    return kCvtOk;
  };
  return RefRunJob(job, *band, source, destination, context);
}

}  // namespace cvt::test

// Twin of the four monochrome diffusion routines.
#include "tests/reference/band.h"

namespace cvt::test {

namespace {

struct Diffusion {
  Sibling which;
  bool indexed, gamma;
  Channels channels;
  std::uint16_t black, white;
};

std::int16_t Word(std::int64_t value) { return static_cast<std::int16_t>(value); }

std::int64_t GrayOf(const Diffusion& d, const tagIGFD& source, tagCRLA* context, std::uint32_t value) {
  IRGB color = {d.channels.Of(value, 0), d.channels.Of(value, 1), d.channels.Of(value, 2)};
  if (d.indexed) color = source.palette[value & 0xFFFF];
  if (d.gamma) CvtAdjustGammaValue(context, &color);
  return (30 * color.red + 59 * color.green + 11 * color.blue) / 100;
}

struct Place {
  RefCursor out;
  std::uint16_t y;
  std::int64_t left, i;
  std::int16_t error;  // of the previous pixel of the line
};

void DiffusePixel(const Diffusion& d, std::int16_t* row, std::int64_t gray, Place& at) {
  std::int16_t t = Word(gray + (7 * at.error >> 4) + row[at.i]);
  const std::uint16_t ink = t > 127 ? d.white : d.black;
  if (ink != d.black) t = Word(t - 255);
  const std::int16_t e = t > 0 ? Word(t - 1) : Word(t + 1);
  if (at.i > 0) row[at.i - 1] = Word(row[at.i - 1] + (3 * e >> 4));
  row[at.i] = Word(5 * e >> 4);
  const auto x = static_cast<std::uint16_t>(at.i + at.left);
  if (at.out.planes != nullptr)
    CvtWritePlanePixel(at.out.planes, x, at.y, ink);
  else
    CvtWritePackedPixel(at.out.packed, x, at.y, ink);
  row[at.i] = Word(row[at.i] + (at.error >> 4));
  at.error = e;
  at.i = at.i + 1;
}

bool DiffuseLine(const Diffusion& d, const tagIGFD& source, RefCursor in, RefCursor out, tagCRLA* context,
                 std::uint16_t y) {
  RefReadLine(in, context, y);
  if (source.progressProc(source.progressData) != 0) return false;
  const bool byImageColumn = d.which.fromPlanes && !d.which.toPlanes;
  Place at{out, y, in.Left(), byImageColumn ? in.Left() : 0, 0};
  for (std::uint32_t r = 0; r < context->runCount; ++r) {
    const std::int64_t gray = GrayOf(d, source, context, context->values[r]);
    for (std::uint32_t n = 0; n < context->runLengths[r]; ++n) DiffusePixel(d, context->errorRow, gray, at);
  }
  return true;
}

}  // namespace

// On a failure everything is given back: output cursor, output band, input cursor, copy.
CvtStatus RefMonoDiffusion(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                           tagCRLA* context) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  copy->rasterKind = 0;
  Diffusion d{};
  d.which = which;
  d.channels = ChannelsOf(*source);
  d.indexed = (source->colorFlags & 0x80) != 0;
  d.gamma = !d.indexed && context->gammaActive != 0;
  const RefCursor in = RefOpen(which.fromPlanes, *band);
  if (in.Missing()) {
    CvtDisposeIGFD(copy);
    return kCvtNoMemory;
  }
  const std::int64_t outBits = OutputBits(which, *destination);
  const std::int64_t allLines = (*band)->lineCount;
  const Pieces pieces = CutLines(outBits, SourceBits(which, *source), allLines);
  IRGB black = {0, 0, 0}, white = {255, 255, 255};
  d.black = static_cast<std::uint16_t>(CvtClosestRGB(&black, destination));
  d.white = static_cast<std::uint16_t>(CvtClosestRGB(&white, destination));

  CvtStatus status = kCvtOk;
  for (std::int64_t j = 0; j < pieces.count && status == kCvtOk; ++j) {
    const std::int64_t first = j * pieces.lines;
    const std::int64_t lines = j == pieces.count - 1 ? allLines - first : pieces.lines;
    tagRasterPacked* piece = RefCreateBand(which, PlaneSize::Full, **band, outBits, first, lines);
    if (piece == nullptr) {
      status = kCvtNoMemory;
      break;
    }
    const RefCursor out = RefOpen(which.toPlanes, piece);
    if (out.Missing()) {
      status = kCvtNoMemory;
    } else {
      for (std::uint16_t y = out.Top(); y < out.Bottom() && status == kCvtOk; ++y)
        if (!DiffuseLine(d, *source, in, out, context, y)) status = kCvtStopped;
      RefClose(out);
      if (status == kCvtOk) status = context->convertProc(&piece, copy, destination, context);
    }
    RefFreeBand(piece);
  }
  RefClose(in);
  CvtDisposeIGFD(copy);
  return status;
}

}  // namespace cvt::test

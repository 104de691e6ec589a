// Twins of the four nearest-colour routines and of the one-bit relabelling.
#include "tests/reference/band.h"
#include "tests/scripted/prefix.h"

namespace cvt::test {

namespace {

struct Mapping {
  bool indexed, gamma, graySearch;
  Channels channels;
  bool redLowest;
};

std::uint32_t MapValue(const Mapping& map, tagCRLA* context, std::uint32_t value) {
  IRGB color;
  color.red = map.channels.Of(value, map.redLowest ? 0 : 2);
  color.green = map.channels.Of(value, 1);
  color.blue = map.channels.Of(value, map.redLowest ? 2 : 0);
  if (map.gamma) CvtAdjustGammaValue(context, &color);
  WRGB wide = {color.red, color.green, color.blue};
  if (map.graySearch) return RefSearchGray(context->searchTable, wide);
  return CvtSearchRGBCube(context->searchTable, &wide);
}

void ConvertLine(const Mapping& map, RefCursor in, RefCursor out, tagCRLA* context, std::uint16_t y) {
  RefReadLine(in, context, y);
  if (map.indexed) {
    CvtSnap(context);
  } else {
    for (std::uint32_t r = 0; r < context->runCount; ++r)
      context->values[r] = MapValue(map, context, context->values[r]);
  }
  if (out.planes != nullptr)
    CvtWritePlaneLine(out.planes, context, out.Left(), y);
  else
    CvtWritePackedLine(out.packed, context, out.Left(), y);
}

}  // namespace

// On a failure nothing is given back.
CvtStatus RefNearest(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                     tagCRLA* context) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  copy->rasterKind = 0;
  Mapping map{};
  map.channels = ChannelsOf(*source);
  map.redLowest = which.fromPlanes;
  map.indexed = (source->colorFlags & 0x80) != 0;
  map.gamma = !map.indexed && context->gammaActive != 0;
  map.graySearch = context->grayPalette == 1;
  const RefCursor in = RefOpen(which.fromPlanes, *band);
  if (in.Missing()) return kCvtNoMemory;

  const std::int64_t outBits = OutputBits(which, *destination);
  const std::int64_t allLines = (*band)->lineCount;
  const Pieces pieces = CutLines(outBits, SourceBits(which, *source), allLines);
  for (std::int64_t i = 0; i < pieces.count; ++i) {
    const std::int64_t first = i * pieces.lines;
    const std::int64_t lines = i == pieces.count - 1 ? allLines - first : pieces.lines;
    tagRasterPacked* piece = RefCreateBand(which, PlaneSize::SignedWord, **band, outBits, first, lines);
    if (piece == nullptr) return kCvtNoMemory;
    const RefCursor out = RefOpen(which.toPlanes, piece);
    if (out.Missing()) return kCvtNoMemory;
    for (std::uint16_t y = out.Top(); y < out.Bottom(); ++y) ConvertLine(map, in, out, context, y);
    RefClose(out);
    const CvtStatus status = context->convertProc(&piece, copy, destination, context);
    if (status != 0) return status;
    RefFreeBand(piece);
  }
  RefClose(in);
  CvtDisposeIGFD(copy);
  return kCvtOk;
}

CvtStatus RefRelabel(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  copy->rasterKind = 0;
  tagRasterPacked* relabelled = *band;
  const bool toPlanes = (destination->rasterKind & 4) != 0;
  SetPrefix(relabelled, {static_cast<std::uint16_t>(toPlanes ? 20 : 21), PrefixOf(relabelled).size});
  auto* planes = reinterpret_cast<tagRasterPlane*>(relabelled);
  if (context->sameColorMap == 0 && context->invertMono == 0) RefFlipBits(planes);
  if ((context->sameColorMap & context->invertMono) != 0) RefFlipBits(planes);
  const CvtStatus status = context->convertProc(&relabelled, copy, destination, context);
  if (status != 0) return status;
  CvtDisposeIGFD(copy);
  return kCvtOk;
}

}  // namespace cvt::test

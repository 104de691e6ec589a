// Twins of the four nearest-colour routines and of the one-bit relabelling.
#include "tests/reference/band.h"
#include "tests/scripted/prefix.h"

namespace cvt::test {

// On a failure nothing is given back.
CvtStatus RefNearest(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                     tagCRLA* context) {
  const RefSource from = RefSourceOf(*source, *context, which.fromPlanes);
  const bool gray = context->grayPalette == 1;
  RefJob job = RefPaletteJob(which, PlaneSize::SignedWord, **band, *source, *destination);
  job.releasesWithoutMemory = job.releasesWhenRefused = false;
  job.convertLine = [&](RefCursor in, RefCursor out, std::uint16_t y) -> CvtStatus {
    RefReadLine(in, context, y);
    if (from.indexed) CvtSnap(context);
    for (std::uint32_t r = 0; !from.indexed && r < context->runCount; ++r) {
      const IRGB color = from.ColorOf(context, context->values[r]);
      WRGB wide = {color.red, color.green, color.blue};
      context->values[r] =
          gray ? RefSearchGray(context->searchTable, wide) : CvtSearchRGBCube(context->searchTable, &wide);
    }
    RefWriteLine(out, context, y);
    return kCvtOk;
  };
  return RefRunJob(job, *band, source, destination, context);
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

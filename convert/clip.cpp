// Clipping: a band is cut to the source's clip rectangle in place and handed on.
//
// Packed rows shrink as they are written. Planes keep their row size while the lines move, because a plane
// that shrank would run over the next one, and are packed together afterwards.

#include <cstring>

#include "convert/clip_rule.h"
#include "cvt/cvtr2r.h"
#include "frame/access.h"
#include "frame/layout.h"

namespace cvt {
namespace {

// Describes the clipped image; null when memory is exhausted. The kind stays: the band still needs what else the
// destination asks for.
tagIGFD* DescribeClipped(tagIGFD* source) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return nullptr;
  copy->options = Low16(copy->options & ~std::uint32_t{kClipOption});
  copy->originX = copy->clipX0;
  copy->originY = copy->clipY0;
  copy->imageWidth = copy->clipX1 - copy->clipX0;
  copy->imageHeight = copy->clipY1 - copy->clipY0;
  return copy;
}

ClipRectangle ClipOf(const tagIGFD* copy) {
  return {Low16(Unsigned32(copy->originX)), Low16(Unsigned32(copy->originY)), Low16(Unsigned32(copy->imageWidth)),
          Low16(Unsigned32(copy->imageHeight))};
}

template <class Band>
BandRectangle RectangleOf(const Band* band) {
  return {band->left, band->top, band->width, band->lineCount};
}

// The lines of the band that stay; a rectangle that ends here is noted for the rest of the chain.
template <class Band>
ClipLines TakeLines(const Band* band, ClipRectangle clip, tagIGFD* copy) {
  const ClipLines lines = LinesInside(RectangleOf(band), clip);
  if (lines.complete) copy->clipComplete = 1;
  return lines;
}

template <class Band>
void SetHeader(Band* band, ClipRectangle clip, ClipLines lines) {
  band->left = clip.left;
  band->width = clip.width;
  band->top = Low16(Unsigned32(lines.first));
  band->lineCount = Low16(Unsigned32(SubWrap32(lines.end, lines.first)));
}

template <class Cursor>
void MoveLines(Cursor* input, Cursor* output, tagCRLA* context, ClipRectangle clip, ClipLines lines) {
  for (std::int32_t line = lines.first; line < lines.end; ++line) {
    const std::uint16_t y = Low16(Unsigned32(line));
    ReadPixels(input, context, clip.width, clip.left, y);
    WriteLine(output, context, y);
  }
}

// Packs the planes together: rows of the new width, the lines that stay. No byte moves up.
void CompactPlanes(tagRasterPlane* band, const tagPlaneData* input, std::int32_t firstLine) {
  const std::uint32_t rowBytes = RowBytes(band->width, 1);
  const std::uint32_t oldRowBytes = RowBytes(Low16(Unsigned32(input->right - input->left)), 1);
  const std::uint32_t lines = band->lineCount;
  band->planeBytes = Low16(rowBytes * lines);

  std::uint8_t* to = PixelsOf(band);
  const std::uint8_t* firstKept = input->data + (firstLine - input->top) * Signed32(oldRowBytes);
  for (std::uint32_t plane = 0; plane < band->bitsPerPixel; ++plane) {
    const std::uint8_t* from = firstKept + plane * input->planeBytes;
    for (std::uint32_t line = 0; line < lines; ++line, to += rowBytes, from += oldRowBytes)
      std::memmove(to, from, rowBytes);
  }
}

CvtStatus ClipAcross(tagRasterPlane* band, ClipRectangle clip, tagIGFD* copy, tagCRLA* context) {
  tagPlaneData* input = OpenCursor(band);
  if (input == nullptr) return kCvtNoMemory;
  band->left = clip.left;  // the output cursor has the new left, and all else of the band as it was
  tagPlaneData* output = OpenCursor(band);
  if (output == nullptr) return kCvtNoMemory;
  const ClipLines lines = TakeLines(band, clip, copy);
  SetHeader(band, clip, lines);
  MoveLines(input, output, context, clip, lines);
  CompactPlanes(band, input, lines.first);
  CloseCursor(output);
  CloseCursor(input);
  return kCvtOk;
}

CvtStatus ClipAcross(tagRasterPacked* band, ClipRectangle clip, tagIGFD* copy, tagCRLA* context) {
  tagPackedData* input = OpenCursor(band);
  if (input == nullptr) return kCvtNoMemory;
  const ClipLines lines = TakeLines(band, clip, copy);
  SetHeader(band, clip, lines);
  tagPackedData* output = OpenCursor(band);  // with the new row size
  if (output == nullptr) return kCvtNoMemory;
  MoveLines(input, output, context, clip, lines);
  CloseCursor(output);
  CloseCursor(input);
  return kCvtOk;
}

template <EndSum kSum, class Band>
CvtStatus ClipToRectangle(Band* band, tagIGFD* copy, tagCRLA* context) {
  const ClipRectangle clip = ClipOf(copy);
  switch (PlaceOf<kSum>(RectangleOf(band), clip)) {
    case ClipPlace::Inside:
      return kCvtOk;
    case ClipPlace::Below:
      copy->clipComplete = 1;
      [[fallthrough]];
    case ClipPlace::Above:
      band->lineCount = 0;
      return kCvtOk;
    case ClipPlace::Across:
      break;
  }
  return ClipAcross(band, clip, copy, context);
}

template <EndSum kSum, class Band>
CvtStatus ClipBand(Band** slot, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  tagIGFD* copy = DescribeClipped(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  CvtStatus status = ClipToRectangle<kSum>(BandAt<Band>(slot), copy, context);
  if (status != kCvtOk) return status;  // the copy and the cursor that could be had stay allocated
  status = context->convertProc(reinterpret_cast<tagRasterPacked**>(slot), copy, destination, context);
  CvtDisposeIGFD(copy);
  return status;
}

}  // namespace
}  // namespace cvt

using cvt::ClipBand, cvt::EndSum;

CvtStatus CVT_CALL CvtClipPlane(tagRasterPlane** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return ClipBand<EndSum::Full32>(band, source, destination, context);
}
CvtStatus CVT_CALL CvtClipPacked(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return ClipBand<EndSum::Cut16>(band, source, destination, context);
}

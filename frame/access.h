// The way to lines and pixels. Routines reach a band through this layer and never call the host's readers
// and writers themselves, so that another way to the pixels can take its place without touching a rule.
#pragma once

#include <cstdint>

#include "cvt/cvtr2r.h"
#include "frame/ints.h"

namespace cvt {

inline tagPlaneData* OpenCursor(tagRasterPlane* band) { return CvtOpenPlanePixel(band); }
inline tagPackedData* OpenCursor(tagRasterPacked* band) { return CvtOpenPackedPixel(band); }

inline void CloseCursor(tagPlaneData* cursor) { CvtClosePlanePixel(cursor); }
inline void CloseCursor(tagPackedData* cursor) { CvtClosePackedPixel(cursor); }

// Reads `pixels` pixels of line y, from the column x, into the context as runs.
inline void ReadPixels(tagPlaneData* cursor, tagCRLA* context, std::uint16_t pixels, std::uint16_t x,
                       std::uint16_t y) {
  context->runCount = pixels;
  context->runCount = CvtReadPlaneLine(cursor, context, x, y);
}
inline void ReadPixels(tagPackedData* cursor, tagCRLA* context, std::uint16_t pixels, std::uint16_t x,
                       std::uint16_t y) {
  context->runCount = pixels;
  context->runCount = CvtReadPackedLine(cursor, context, x, y);
}

// Reads the whole of line y.
template <class Cursor>
void ReadLine(Cursor* cursor, tagCRLA* context, std::uint16_t y) {
  ReadPixels(cursor, context, Low16(std::uint32_t{cursor->right} - cursor->left), cursor->left, y);
}

// Writes the context's runs into line y, from the band's first column on.
inline void WriteLine(tagPlaneData* cursor, tagCRLA* context, std::uint16_t y) {
  CvtWritePlaneLine(cursor, context, cursor->left, y);
}
inline void WriteLine(tagPackedData* cursor, tagCRLA* context, std::uint16_t y) {
  CvtWritePackedLine(cursor, context, cursor->left, y);
}

inline void WritePixel(tagPlaneData* cursor, std::uint16_t x, std::uint16_t y, std::uint32_t value) {
  CvtWritePlanePixel(cursor, x, y, value);
}
inline void WritePixel(tagPackedData* cursor, std::uint16_t x, std::uint16_t y, std::uint32_t value) {
  CvtWritePackedPixel(cursor, x, y, value);
}

}  // namespace cvt

// Twins of the scalers, and the steps that they share. A band's depth of 0, a width of 0 and source sizes of 0
// are beyond them, as they are beyond the library.
#pragma once

#include "tests/reference/band.h"

namespace cvt::test {

/// The direction that a plain scaler works in.
enum class Along : std::uint8_t { Width, Height };

CvtStatus RefScaleUp(Along along, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context);
CvtStatus RefScaleDown(Along along, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                       tagCRLA* context);
CvtStatus RefScaleSmooth(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context);

/// The whole chain: dispatch with these twins and those of RefColorCvtr2r.
CvtStatus CVT_CALL RefWholeCvtr2r(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context);

/// Workers; bands of planes pass through them as packed ones.
tagRasterPacked* RefUpWidth(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                            tagCRLA* context, std::int16_t* index);
tagRasterPacked* RefUpHeight(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                             tagCRLA* context, std::int16_t* more);
tagRasterPacked* RefDownWidth(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                              tagCRLA* context, std::int16_t keepColor);
tagRasterPacked* RefDownHeight(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                               tagCRLA* context);
tagRasterPacked* RefDecimateWidth(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                                  tagCRLA* context);
tagRasterPacked* RefDecimateHeight(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                                   tagCRLA* context);
tagRasterPacked* RefPrepareSmooth(bool planes, tagRasterPacked** band, tagIGFD* source, tagIGFD* prepared,
                                  tagCRLA* context, std::uint16_t* index);
CvtStatus RefSmoothKernel(bool color, tagRasterPacked* band, tagIGFD* prepared, tagIGFD* destination,
                          tagCRLA* context);

/// position * to / from: the product cut to 32 bits, the quotient toward zero.
std::int32_t RefScaled(std::int64_t position, std::int64_t to, std::int32_t from);
std::uint32_t RefScaledUnsigned(std::int64_t position, std::int32_t to, std::int32_t from);

/// Bytes of a row of one plane, or of a packed row; always even.
std::uint32_t RefRowBytes(bool planes, std::int64_t pixels, std::int64_t depth);
void RefRoundDepth(tagRasterPacked* band);

/// Sub-bands within a limit of bytes: `count` of them, all but the last of `lines` lines; none for no bytes.
struct RefSplit {
  std::uint32_t count, lines;
};
RefSplit RefSplitLines(std::uint32_t rowBytes, std::uint32_t lines, std::uint32_t limit);

/// A new band with its header; planeBytes is written into bands of planes only. Null when it cannot be had.
struct RefHeader {
  std::int64_t left, top, width, lines, depth, planeBytes;
};
tagRasterPacked* RefNewBand(bool planes, std::int64_t dataBytes, const RefHeader& header);
void RefWriteLine(RefCursor out, tagCRLA* context, std::uint16_t y);

}  // namespace cvt::test

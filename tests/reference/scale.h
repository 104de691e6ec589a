// Twins of the scalers' workers, and the steps that they share. A band's depth of 0, a width of 0 and source sizes
// of 0 are beyond them, as they are beyond the library.
#pragma once

#include "tests/reference/band.h"

namespace cvt::test {

/// Workers; bands of planes pass through them as packed ones.
using RefWorker = tagRasterPacked*(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                                   tagCRLA* context);
using RefUpWorker = tagRasterPacked*(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                                     tagCRLA* context, std::int16_t* more);
RefUpWorker RefUpWidth, RefUpHeight;
RefWorker RefDownHeight, RefDecimateWidth, RefDecimateHeight;
tagRasterPacked* RefDownWidth(bool planes, tagRasterPacked** band, std::int32_t from, std::int32_t to,
                              tagCRLA* context, std::int16_t keepColor);
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

/// An output band whose lines are the input's with their runs changed; both cursors are closed behind it. Null,
/// with all that could be had, when a block cannot be had.
tagRasterPacked* RefCopyLines(RefCursor in, bool planes, std::int64_t dataBytes, const RefHeader& header,
                              tagCRLA* context, const std::function<void()>& change);

/// Sub-bands within a limit of bytes: `count` of them, all but the last of `lines` lines; none for no bytes.
struct RefSplit {
  std::uint32_t count, lines;
};
RefSplit RefSplitLines(std::uint32_t rowBytes, std::uint32_t lines, std::uint32_t limit);

}  // namespace cvt::test

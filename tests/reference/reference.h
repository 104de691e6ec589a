// Independent twins of the library's routines: slow, obvious, one step after the other.
//
// A twin makes the same host calls in the same order as the routine that it stands for, so the logs of
// the two must agree, and everything else that a host can see. Twins share nothing with the library but
// its public headers.
#pragma once

#include <cstdint>

#include "cvt/cvtr2r.h"

namespace cvt::test {

/// Which of four siblings.
struct Sibling {
  bool fromPlanes, toPlanes;
};

/// The direction that a plain scaler works in.
enum class Along : std::uint8_t { Width, Height };

/// Twins of routines that come alone, in fours, and one for each direction.
using RefRoutine = CvtStatus CVT_CALL(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                      tagCRLA* context);
using RefSibling = CvtStatus(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                             tagCRLA* context);
using RefScaler = CvtStatus(Along along, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                            tagCRLA* context);

RefRoutine RefWholeCvtr2r;  // the dispatcher, with these twins as its routines
RefSibling RefNearest, RefRGB, RefMonoDiffusion, RefMonoDither, RefColorDiffusion, RefColorDither;
RefRoutine RefRelabel, RefShortCut, RefScaleSmooth;
CvtStatus RefClip(bool planes, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context);
RefScaler RefScaleUp, RefScaleDown;

std::uint16_t RefDitherIndex(const tagCRLA& context, std::int16_t column, std::int16_t line, const IRGB& color);
std::uint16_t RefCanShortCut(const tagRasterPacked& band, const tagIGFD& destination, tagCRLA* context);
/// By the bytes that a pixel is stored in.
CvtStatus RefShortCutStored(int pixelBytes, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                            tagCRLA* context);

tagPlaneData* RefOpenPlane(tagRasterPlane* band);
tagPackedData* RefOpenPacked(tagRasterPacked* band);
void RefFlipBits(tagRasterPlane* band);

std::int32_t RefDistance(const WRGB& color, const IRGB& entry);
std::int16_t RefClosest(const WRGB& color, const tagIGFD& descriptor);
std::uint16_t RefSearchGray(const std::uint8_t* table, const WRGB& color);
std::uint16_t RefSearchOctree(const tagIGFD& descriptor, const OCTtag* root, const WRGB& color);

std::uint16_t RefTranslucentPlanes(tagPlaneData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y,
                                   const std::uint8_t* transparent);
std::uint16_t RefTranslucentPacked(tagPackedData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y,
                                   const std::uint8_t* transparent);
/// Pixels of 2 or 4 bytes, wherever they are.
std::uint16_t RefTranslucentStored(int pixelBytes, tagPackedData* cursor, tagCRLA* context, std::uint16_t x,
                                   std::uint16_t y, const std::uint8_t* transparent);

}  // namespace cvt::test

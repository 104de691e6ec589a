// Independent twins of the library's routines: slow, obvious, one step after the other.
//
// A twin makes the same host calls in the same order as the routine that it stands for, so the logs of
// the two must agree, and everything else that a host can see. Twins share nothing with the library but
// its public headers.
#pragma once

#include <cstdint>

#include "cvt/cvtr2r.h"

namespace cvt::test {

/// The routine that a dispatch has to run.
enum class Due : std::uint8_t {
  Stop,
  EmptyBand,
  ClipPlane,
  ClipPacked,
  ScaleSmooth,
  ScaleDownWidth,
  ScaleDownHeight,
  ScaleUpWidth,
  ScaleUpHeight,
  BitRGBPacked,
  ByteRGBPacked,
  BitRGBPlane,
  ByteRGBPlane,
  Relabel,
  NearestBitByte,
  NearestByteBit,
  NearestBitBit,
  NearestByteByte,
  MonoDiffusionBitByte,
  MonoDiffusionByteBit,
  MonoDiffusionBitBit,
  MonoDiffusionByteByte,
  MonoDitherBitByte,
  MonoDitherByteBit,
  MonoDitherBitBit,
  MonoDitherByteByte,
  ColorDiffusionBitByte,
  ColorDiffusionByteBit,
  ColorDiffusionBitBit,
  ColorDiffusionByteByte,
  ColorDitherBitByte,
  ColorDitherByteBit,
  ColorDitherBitBit,
  ColorDitherByteByte,
  PassThrough
};

/// What a dispatch must do once the progress procedure has answered.
Due DueRoutine(std::int16_t progressAnswer, std::uint16_t lineCount, const tagIGFD& source,
               const tagIGFD& destination, const tagCRLA& context);

/// Dispatch with the twins as the routines. What has no twin yet is not run and answers kNoTwin.
inline constexpr CvtStatus kNoTwin = 32767;
CvtStatus CVT_CALL RefCvtr2r(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context);
bool HasTwin(Due due);

/// Which of four siblings.
struct Sibling {
  bool fromPlanes, toPlanes;
};

CvtStatus RefNearest(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                     tagCRLA* context);
CvtStatus RefMonoDiffusion(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                           tagCRLA* context);
CvtStatus RefRelabel(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context);

tagPlaneData* RefOpenPlane(tagRasterPlane* band);
tagPackedData* RefOpenPacked(tagRasterPacked* band);
CvtStatus RefCreateContext(tagCRLA** context, std::uint16_t capacity);
CvtStatus RefDestroyContext(tagCRLA* context);
void RefFlipBits(tagRasterPlane* band);

std::int32_t RefDistance(const WRGB& color, const IRGB& entry);
std::int16_t RefClosest(const WRGB& color, const tagIGFD& descriptor);
std::uint16_t RefSearchGray(const std::uint8_t* table, const WRGB& color);
std::uint16_t RefSearchOctree(const tagIGFD& descriptor, const OCTtag* root, const WRGB& color);

}  // namespace cvt::test

// What the routines that reduce to one bit share: the two output indices and the gray level of a value.
#pragma once

#include <cstdint>

#include "cvt/host.h"
#include "frame/color.h"

namespace cvt {

struct MonoValues {
  Source source;
  std::uint16_t black;
  std::uint16_t white;
  std::uint32_t grayCount;  // entries of `grays`
  std::uint8_t grays[256];  // gray levels of a palette of up to 8 bits
};

inline void FillGrays(const tagIGFD* source, MonoValues* values) {
  if (!values->source.indexed || values->source.palette == nullptr || source->bitsPerPixel > 8) return;
  values->grayCount = 1U << source->bitsPerPixel;
  for (std::uint32_t i = 0; i < values->grayCount; ++i) values->grays[i] = GrayOf(values->source.palette[i]);
}

// The destination's entries nearest to black and to white, asked for in this order.
inline MonoValues PrepareMono(const tagIGFD* source, tagIGFD* destination, const tagCRLA* context) {
  MonoValues values;
  values.source = SourceOf(source, context);
  IRGB color{0, 0, 0};
  values.black = Low16(Unsigned32(CvtClosestRGB(&color, destination)));
  color = {255, 255, 255};
  values.white = Low16(Unsigned32(CvtClosestRGB(&color, destination)));
  values.grayCount = 0;
  FillGrays(source, &values);
  return values;
}

// Gray level of a run's value. The lowest channel of a direct-colour value weighs as red here, in planes
// and in packed pixels alike.
template <class Decode>
std::uint8_t GrayLevel(const MonoValues& values, std::uint32_t value, tagCRLA* context) {
  if (value < values.grayCount) return values.grays[value];
  return GrayOf(Decode::template Color<ChannelOrder::RedLowest>(values.source, value, context));
}

}  // namespace cvt

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
};

// The destination's entries nearest to black and to white, asked for in this order.
inline MonoValues PrepareMono(const tagIGFD* source, tagIGFD* destination, const tagCRLA* context) {
  MonoValues values{SourceOf(source, context), 0, 0};
  IRGB color{0, 0, 0};
  values.black = Low16(Unsigned32(CvtClosestRGB(&color, destination)));
  color = {255, 255, 255};
  values.white = Low16(Unsigned32(CvtClosestRGB(&color, destination)));
  return values;
}

// The lowest channel of a direct-colour value weighs as red here, in planes and in packed pixels alike.
template <class Decode>
std::uint8_t GrayLevel(const Source& source, std::uint32_t value, tagCRLA* context) {
  return GrayOf(Decode::template Color<ChannelOrder::RedLowest>(source, value, context));
}

}  // namespace cvt

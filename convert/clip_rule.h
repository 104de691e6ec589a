// Where a band lies with regard to the clip rectangle, and which of its lines stay.
//
// Coordinates are 16 bits read as unsigned, and sums of them are formed in 32 bits, unless a name below says
// otherwise.
#pragma once

#include <cstdint>

#include "cvt/records.h"
#include "frame/ints.h"

namespace cvt {

struct ClipRectangle {
  std::uint16_t left, top, width, height;
};

constexpr std::int32_t EndOf(ClipRectangle clip) { return clip.top + clip.height; }

struct BandRectangle {
  std::uint16_t left, top, width, lines;
};

constexpr std::int32_t EndOf(BandRectangle band) { return band.top + band.lines; }
constexpr std::uint16_t CutEndOf(BandRectangle band) { return Low16(Unsigned32(EndOf(band))); }

// How a band's end is formed for the test whether it lies inside: packed bands cut it to 16 bits.
enum class EndSum : std::uint8_t { Full32, Cut16 };

enum class ClipPlace : std::uint8_t { Inside, Above, Below, Across };

// A band that only touches the rectangle from above or from below counts as across: it keeps no line.
template <EndSum kSum>
constexpr ClipPlace PlaceOf(BandRectangle band, ClipRectangle clip) {
  const std::int32_t end = kSum == EndSum::Cut16 ? CutEndOf(band) : EndOf(band);
  if (band.top >= clip.top && band.left == clip.left && end <= EndOf(clip) && band.width == clip.width)
    return ClipPlace::Inside;
  if (CutEndOf(band) < clip.top) return ClipPlace::Above;
  if (band.top > EndOf(clip)) return ClipPlace::Below;
  return ClipPlace::Across;
}

struct ClipLines {
  std::int32_t first, end;
  bool complete;  // the rectangle ends within the band
};

// Lines here are signed 16-bit numbers once they are chosen: images beyond line 32767 are not clipped soundly.
constexpr ClipLines LinesInside(BandRectangle band, ClipRectangle clip) {
  const std::int32_t bandTop = SignExtend16(band.top);
  const std::int32_t clipTop = SignExtend16(clip.top);
  const std::int32_t first = clip.top > bandTop ? clipTop : bandTop;
  if (EndOf(clip) > EndOf(band)) return {first, EndOf(band), false};
  return {first, SignExtend16(clip.height) + clipTop, true};
}

static_assert(PlaceOf<EndSum::Full32>({0, 4, 8, 6}, {0, 4, 8, 6}) == ClipPlace::Inside);
static_assert(PlaceOf<EndSum::Full32>({0, 0, 8, 4}, {0, 4, 8, 6}) == ClipPlace::Across);
static_assert(PlaceOf<EndSum::Full32>({0, 0, 8, 3}, {0, 4, 8, 6}) == ClipPlace::Above);
static_assert(PlaceOf<EndSum::Full32>({1, 10, 8, 3}, {0, 4, 8, 6}) == ClipPlace::Across);
static_assert(PlaceOf<EndSum::Full32>({1, 11, 8, 3}, {0, 4, 8, 6}) == ClipPlace::Below);
static_assert(PlaceOf<EndSum::Full32>({0, 65530, 8, 10}, {0, 0, 8, 9}) == ClipPlace::Below);
static_assert(PlaceOf<EndSum::Cut16>({0, 65530, 8, 10}, {0, 0, 8, 9}) == ClipPlace::Inside);
static_assert(LinesInside({0, 0, 8, 10}, {0, 4, 8, 3}).end == 7 &&
              LinesInside({0, 0, 8, 10}, {0, 4, 8, 3}).complete);
static_assert(LinesInside({0, 0, 8, 10}, {0, 2, 8, 18}).end == 10);
// Line 40000 counts as -25536; 32770 as -32766, which lies before line 5.
static_assert(LinesInside({0, 32770, 8, 10}, {0, 5, 8, 65530}).first == 5);
static_assert(LinesInside({0, 39995, 8, 30}, {0, 40000, 8, 10}).end == -25526);
static_assert(LinesInside({0, 39995, 8, 30}, {0, 0, 8, 40000}).end == -25536);
static_assert(LinesInside({0, 39995, 8, 30}, {0, 10000, 8, 30000}).end == 40000);
// The end of a band is not cut: it lies behind line 65535, and before the rectangle's.
static_assert(LinesInside({0, 65530, 8, 10}, {0, 65530, 8, 20}).end == 65540);
static_assert(LinesInside({0, 65530, 8, 10}, {0, 5, 8, 15}).complete);

}  // namespace cvt

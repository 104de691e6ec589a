// Error diffusion of gray levels to two colours, one pixel at a time.
//
//                 *     7/16
//     3/16     5/16     1/16
//
// Every share is cut to whole levels on its own, rounding down. Errors are 16-bit state that wraps.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "frame/ints.h"

namespace cvt {

inline constexpr std::int16_t kMidGray = 127;  // the brightest level that still comes out black
inline constexpr std::int32_t kWhiteLevel = 255;

constexpr bool IsWhite(std::int16_t wanted) { return wanted > kMidGray; }

// What is left of the wanted level once `shown` levels are on paper, shrunk by one toward zero; zero
// counts as negative and becomes 1. The bias is part of every picture that this system ever made.
constexpr std::int16_t ErrorLeft(std::int16_t wanted, std::int32_t shown) {
  const std::int16_t rest = Wrap16(wanted - shown);
  return Wrap16(rest > 0 ? rest - 1 : rest + 1);
}

constexpr std::int16_t RightShare(std::int16_t error) { return Wrap16(ShiftDown(7 * error, 4)); }
constexpr std::int16_t BelowLeftShare(std::int16_t error) { return Wrap16(ShiftDown(3 * error, 4)); }
constexpr std::int16_t BelowShare(std::int16_t error) { return Wrap16(ShiftDown(5 * error, 4)); }
constexpr std::int16_t BelowRightShare(std::int16_t error) { return Wrap16(ShiftDown(error, 4)); }

static_assert(!IsWhite(127) && ErrorLeft(127, 0) == 126 && RightShare(126) == 55 && IsWhite(128));
static_assert(ErrorLeft(0, 0) == 1 && ErrorLeft(255, kWhiteLevel) == 1 && ErrorLeft(-5, 0) == -4);
static_assert(BelowShare(-1) == -1 && RightShare(-1) == -1 && BelowRightShare(15) == 0);

// What a pixel passes on: the error that its shares below are cut from, and its right neighbour's share.
struct Spread {
  std::int16_t error;
  std::int16_t right;
};

constexpr Spread SpreadOf(std::int16_t wanted, std::int32_t whiteShown) {
  const std::int16_t error = ErrorLeft(wanted, IsWhite(wanted) ? whiteShown : 0);
  return {error, RightShare(error)};
}

// The same by table for the levels that occur as long as nobody tampers with the error row: the wanted
// level of one pixel waits for the share of the pixel before it, so every cycle between the two counts.
inline constexpr std::int32_t kTableFrom = -512;
inline constexpr std::int32_t kTableTo = 1024;

constexpr std::array<Spread, kTableTo - kTableFrom> MakeSpreads() {
  std::array<Spread, kTableTo - kTableFrom> table{};
  for (std::int32_t wanted = kTableFrom; wanted < kTableTo; ++wanted)
    table[static_cast<std::size_t>(wanted - kTableFrom)] = SpreadOf(Wrap16(wanted), kWhiteLevel);
  return table;
}
inline constexpr std::array<Spread, kTableTo - kTableFrom> kSpreads = MakeSpreads();

// The two colours are two entries, as a rule.
struct TwoInks {
  static Spread Of(std::int32_t wanted) {
    const std::uint32_t at = Unsigned32(wanted - kTableFrom);
    return at < kSpreads.size() ? kSpreads[at] : SpreadOf(Wrap16(wanted), kWhiteLevel);
  }
};

// Black and white are one entry: what tells them apart is the entry, so white is never taken off the error.
struct OneInk {
  static Spread Of(std::int32_t wanted) { return SpreadOf(Wrap16(wanted), 0); }
};

}  // namespace cvt

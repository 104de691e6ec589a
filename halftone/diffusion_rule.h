// Error diffusion of gray levels to two colours, one pixel at a time.
//
//                 *     7/16
//     3/16     5/16     1/16
//
// Every share is cut to whole levels on its own, rounding down. Errors are 16-bit state that wraps.
#pragma once

#include <cstdint>

#include "frame/ints.h"

namespace cvt {

inline constexpr std::int16_t kMidGray = 127;  // the brightest level that still comes out black
inline constexpr std::int32_t kWhiteLevel = 255;

// The level that a pixel should show: its own, its left neighbour's share, and what the line above owes it.
constexpr std::int16_t WantedLevel(std::uint8_t gray, std::int16_t leftError, std::int16_t owed) {
  return Wrap16(gray + ShiftDown(7 * leftError, 4) + owed);
}

constexpr bool IsWhite(std::int16_t wanted) { return wanted > kMidGray; }

// What is left of the wanted level once `shown` levels are on paper, shrunk by one toward zero; zero
// counts as negative and becomes 1. The bias is part of every picture that this system ever made.
constexpr std::int16_t ErrorLeft(std::int16_t wanted, std::int32_t shown) {
  const std::int16_t rest = Wrap16(wanted - shown);
  return Wrap16(rest > 0 ? rest - 1 : rest + 1);
}

constexpr std::int16_t BelowLeftShare(std::int16_t error) { return Wrap16(ShiftDown(3 * error, 4)); }
constexpr std::int16_t BelowShare(std::int16_t error) { return Wrap16(ShiftDown(5 * error, 4)); }
constexpr std::int16_t BelowRightShare(std::int16_t error) { return Wrap16(ShiftDown(error, 4)); }

static_assert(!IsWhite(WantedLevel(127, 0, 0)) && ErrorLeft(127, 0) == 126);
static_assert(IsWhite(WantedLevel(127, 126, 0)) && WantedLevel(127, 126, 0) == 182);
static_assert(ErrorLeft(0, 0) == 1 && ErrorLeft(255, kWhiteLevel) == 1 && ErrorLeft(-5, 0) == -4);
static_assert(BelowShare(-1) == -1 && BelowRightShare(15) == 0 && BelowRightShare(-1) == -1);

}  // namespace cvt

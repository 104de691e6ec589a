// Ordered dither of gray levels to two colours, one pixel at a time.
//
// A level turns white where the threshold lies below it: level 0 is black everywhere, and a threshold of 255
// is black under every level.
#pragma once

#include <cstdint>

namespace cvt {

constexpr bool IsWhite(std::uint8_t threshold, std::uint8_t gray) { return threshold < gray; }

static_assert(!IsWhite(127, 127) && IsWhite(126, 127) && !IsWhite(0, 0) && !IsWhite(255, 255));

}  // namespace cvt

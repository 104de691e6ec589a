// Error diffusion of colours, one pixel at a time.
//
//                 *     7/16
//     3/16     5/16     1/16
//
// Red, green and blue alike, each on its own. The error row holds shares before their division by 16, and
// errors are cut to multiples of 4 first, so that an entry stays within 16 bits.
#pragma once

#include <cstdint>

#include "cvt/records.h"
#include "frame/ints.h"

namespace cvt {

// Something of each channel: an error, a share, a sum of shares.
struct Triple {
  std::int32_t red, green, blue;
};

constexpr Triple operator+(Triple a, Triple b) { return {a.red + b.red, a.green + b.green, a.blue + b.blue}; }
constexpr Triple operator*(std::int32_t times, Triple a) {
  return {times * a.red, times * a.green, times * a.blue};
}

// The level that a channel should show: its own, its left neighbour's share, and what the line above owes it.
// The level joins the sum before the division, which makes no difference to it. No sum leaves 16 bits on the
// way: an error is at most 252 off, a debt at most 32768.
constexpr std::int32_t WantedChannel(std::uint8_t level, std::int32_t leftError, std::int32_t owed) {
  return ShiftDown((16 * level + owed - leftError) + 8 * leftError, 4);
}

// What a palette entry misses of a level, cut toward zero: up to 3 levels are let go.
constexpr std::int32_t LevelMissed(std::uint8_t wanted, std::uint8_t shown) { return CutToFours(wanted - shown); }

// Each pixel waits for the one before it, and few colours leave the box: one branch that is guessed right
// takes less of that time than three clamps.
constexpr IRGB WantedColor(IRGB color, Triple leftError, Triple owed) {
  const std::int32_t red = WantedChannel(color.red, leftError.red, owed.red);
  const std::int32_t green = WantedChannel(color.green, leftError.green, owed.green);
  const std::int32_t blue = WantedChannel(color.blue, leftError.blue, owed.blue);
  if (!AreBytes(red, green, blue)) [[unlikely]]
    return {ClampToByte(red), ClampToByte(green), ClampToByte(blue)};
  return {Low8(Unsigned32(red)), Low8(Unsigned32(green)), Low8(Unsigned32(blue))};
}

constexpr Triple ErrorOf(IRGB wanted, IRGB shown) {
  return {LevelMissed(wanted.red, shown.red), LevelMissed(wanted.green, shown.green),
          LevelMissed(wanted.blue, shown.blue)};
}

constexpr Triple BelowLeftShare(Triple error) { return 3 * error; }
constexpr Triple BelowShare(Triple error) { return 5 * error; }
constexpr Triple BelowRightShare(Triple error) { return error; }

static_assert(WantedChannel(250, 0, 40 * 16) == 290 && WantedChannel(10, -4, 0) == 8 &&
              WantedChannel(10, -252, 0) == -101);
static_assert(WantedChannel(100, 0, -1) == 99 && WantedChannel(100, 0, 15) == 100 &&
              WantedChannel(255, 252, 32767) == 2413);
static_assert(WantedColor({250, 10, 7}, {0, -252, 0}, {640, 0, 16}).red == 255);
static_assert(WantedColor({250, 10, 7}, {0, -252, 0}, {640, 0, 16}).green == 0);
static_assert(WantedColor({250, 10, 7}, {0, -252, 0}, {640, 0, 16}).blue == 8);
static_assert(LevelMissed(3, 0) == 0 && LevelMissed(7, 0) == 4 && LevelMissed(0, 7) == -4);
static_assert(LevelMissed(255, 0) == 252 && LevelMissed(0, 255) == -252);

// What a line's pixels hand on to the right.
struct Carry {
  Triple error;  // of the pixel just shown
  Triple below;  // the row's entry for it, its below-left share still to come
};

// The error row, three entries a pixel. Stores keep the low 16 bits.
inline Triple OwedAt(const std::int16_t* entry) { return {entry[0], entry[1], entry[2]}; }
inline void StoreShares(std::int16_t* entry, Triple shares) {
  entry[0] = Wrap16(shares.red);
  entry[1] = Wrap16(shares.green);
  entry[2] = Wrap16(shares.blue);
}

// What a call's pixels have in common.
struct PaletteTables {
  const IRGB* palette;   // the destination's
  std::uint8_t* search;  // the context's table for Search
};

// Diffuses one pixel. `entry` is its place in the error row, `show` takes its index at the moment when the row
// holds the pixel's own share below but not yet its left neighbour's: hosts see the row then.
template <class Search, class Show>
inline Carry DiffusePixel(const PaletteTables& tables, std::int16_t* entry, bool firstInLine, IRGB color,
                          Carry carry, Show show) {
  const IRGB wanted = WantedColor(color, carry.error, OwedAt(entry));
  WRGB wide{wanted.red, wanted.green, wanted.blue};
  const std::uint16_t index = Search::Index(tables.search, &wide);
  const Triple error = ErrorOf(wanted, tables.palette[index]);
  if (!firstInLine) StoreShares(entry - 3, carry.below + BelowLeftShare(error));
  StoreShares(entry, BelowShare(error));
  show(index);
  const Triple below = BelowShare(error) + BelowRightShare(carry.error);
  StoreShares(entry, below);
  return {error, below};
}

}  // namespace cvt

// Integer arithmetic by name: narrowing, sign extension, wrapping and rounding.
//
// Widths are behaviour here. Casts between widths, and shifts or divisions of values that may be
// negative, live in this file and nowhere else, so that a rule says which one it means and results agree
// on every compiler and machine.
#pragma once

#include <cstdint>

namespace cvt {

constexpr std::uint8_t Low8(std::uint32_t v) { return static_cast<std::uint8_t>(v); }
constexpr std::uint16_t Low16(std::uint32_t v) { return static_cast<std::uint16_t>(v); }

constexpr std::uint32_t Low32(std::uint64_t v) { return static_cast<std::uint32_t>(v); }

// The same bits read with the other sign.
constexpr std::uint32_t Unsigned32(std::int32_t v) { return static_cast<std::uint32_t>(v); }
constexpr std::int32_t Signed32(std::uint32_t v) { return static_cast<std::int32_t>(v); }

// Held to what a byte holds: negative values become 0, large ones 255.
constexpr std::uint8_t ClampToByte(std::int32_t v) {
  return static_cast<std::uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
}

// Whether all three are 0 to 255.
constexpr bool AreBytes(std::int32_t a, std::int32_t b, std::int32_t c) { return Unsigned32(a | b | c) <= 255; }

// Low bits read as signed and widened: 200 is -56 as a byte, 40000 is -25536 as a 16-bit word.
constexpr std::int32_t SignExtend8(std::uint32_t v) { return static_cast<std::int8_t>(v); }
constexpr std::int32_t SignExtend16(std::uint32_t v) { return static_cast<std::int16_t>(v); }

// Low 16 bits read as signed: 32768 becomes -32768. Stores into 16-bit state rely on the wrap.
constexpr std::int16_t Wrap16(std::int32_t v) { return static_cast<std::int16_t>(v); }

// Wrap instead of overflowing: signed overflow is undefined, unsigned is not.
constexpr std::int32_t AddWrap32(std::int32_t a, std::int32_t b) {
  return Signed32(Unsigned32(a) + Unsigned32(b));
}
constexpr std::int32_t SubWrap32(std::int32_t a, std::int32_t b) {
  return Signed32(Unsigned32(a) - Unsigned32(b));
}
constexpr std::int32_t MulWrap32(std::int32_t a, std::int32_t b) {
  return Signed32(Unsigned32(a) * Unsigned32(b));
}

// These two agree except on negative values that do not divide evenly; never swap them.
constexpr std::int32_t ShiftDown(std::int32_t v, int bits) { return v >> bits; }     // toward minus infinity
constexpr std::int32_t DivTrunc(std::int32_t v, std::int32_t by) { return v / by; }  // toward zero

// The next multiple of 4 toward zero, 4 and -4 for 7 and -7; |v| < 2^30. The two top bits are the 3 that a
// negative value needs: no branch.
constexpr std::int32_t CutToFours(std::int32_t v) { return (v + Signed32(Unsigned32(v) >> 30)) & ~3; }

// One of two values without a branch, for choices that no processor could guess.
constexpr std::uint32_t Choose(bool first, std::uint32_t a, std::uint32_t b) {
  return b ^ ((a ^ b) & (0U - std::uint32_t{first}));
}

constexpr std::uint32_t CeilDiv(std::uint32_t v, std::uint32_t by) { return v / by + (v % by != 0 ? 1 : 0); }

static_assert(Wrap16(32768) == -32768 && SignExtend8(200) == -56 && SignExtend16(40000) == -25536);
static_assert(ShiftDown(-1, 1) == -1 && DivTrunc(-1, 2) == 0 && MulWrap32(65536, 65536) == 0);
static_assert(ClampToByte(-1) == 0 && ClampToByte(256) == 255 && ClampToByte(40) == 40);
static_assert(AreBytes(0, 128, 255) && !AreBytes(0, 256, 1) && !AreBytes(-1, 0, 0));
static_assert(CutToFours(7) == 4 && CutToFours(-7) == -4 && CutToFours(-8) == -8 && CutToFours(-3) == 0);
static_assert(Choose(true, 7, 9) == 7 && Choose(false, 7, 9) == 9);
static_assert(CeilDiv(4, 3) == 2 && CeilDiv(8, 4) == 2 && CeilDiv(0, 3) == 0);

}  // namespace cvt

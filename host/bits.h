// Bits and bytes of pixel data: words in a stated byte order, and bits moved many at a time.
//
// Byte orders are spelled out byte by byte; compilers turn each of these into one load or store.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace cvt::host {

constexpr std::uint8_t Low8(std::uint64_t v) { return static_cast<std::uint8_t>(v); }
constexpr std::uint16_t Low16(std::uint64_t v) { return static_cast<std::uint16_t>(v); }

/// A 16- or 32-bit pixel in the order in which a band stores it: low byte first.
template <class Word>
constexpr Word LittleEndian(Word v) {
  if constexpr (std::endian::native == std::endian::little) return v;
  Word reversed = 0;
  for (std::size_t i = 0; i < sizeof(Word); ++i)
    reversed = static_cast<Word>(reversed | ((v >> (8 * i) & 0xFF) << (8 * (sizeof(Word) - 1 - i))));
  return reversed;
}

template <class Word>
Word LoadPixel(const std::uint8_t* at) {
  Word v;
  std::memcpy(&v, at, sizeof v);
  return LittleEndian(v);
}

template <class Word>
void StorePixel(std::uint8_t* at, Word v) {
  const Word stored = LittleEndian(v);
  std::memcpy(at, &stored, sizeof stored);
}

/// Eight bytes as a number, the first one in the top bits.
inline std::uint64_t LoadFirstHigh(const std::uint8_t* p) {
  return std::uint64_t{p[0]} << 56 | std::uint64_t{p[1]} << 48 | std::uint64_t{p[2]} << 40 |
         std::uint64_t{p[3]} << 32 | std::uint64_t{p[4]} << 24 | std::uint64_t{p[5]} << 16 |
         std::uint64_t{p[6]} << 8 | std::uint64_t{p[7]};
}

inline void StoreFirstHigh(std::uint8_t* p, std::uint64_t v) {
  p[0] = Low8(v >> 56);
  p[1] = Low8(v >> 48);
  p[2] = Low8(v >> 40);
  p[3] = Low8(v >> 32);
  p[4] = Low8(v >> 24);
  p[5] = Low8(v >> 16);
  p[6] = Low8(v >> 8);
  p[7] = Low8(v);
}

/// Eight bytes as a number, the first one in the low bits.
inline std::uint64_t LoadFirstLow(const std::uint8_t* p) {
  return std::uint64_t{p[7]} << 56 | std::uint64_t{p[6]} << 48 | std::uint64_t{p[5]} << 40 |
         std::uint64_t{p[4]} << 32 | std::uint64_t{p[3]} << 24 | std::uint64_t{p[2]} << 16 |
         std::uint64_t{p[1]} << 8 | std::uint64_t{p[0]};
}

/// Mirrors an 8 x 8 matrix of bits, one byte a row: bit c of byte r becomes bit r of byte c.
///
/// Three rounds swap single bits, then 2 x 2 blocks, then 4 x 4 blocks across the diagonal.
constexpr std::uint64_t Transpose8x8(std::uint64_t m) {
  std::uint64_t t = (m ^ m >> 7) & 0x00AA00AA00AA00AA;
  m ^= t ^ t << 7;
  t = (m ^ m >> 14) & 0x0000CCCC0000CCCC;
  m ^= t ^ t << 14;
  t = (m ^ m >> 28) & 0x00000000F0F0F0F0;
  return m ^ t ^ t << 28;
}
static_assert(Transpose8x8(0x80) == 0x0100000000000000);

/// The lowest bits of eight bytes, the top byte's first: seen from the byte that LoadFirstHigh read first,
/// the bits of a row. The factor adds byte k, moved by 7 * (8 - k), so that no two bits meet.
constexpr std::uint8_t GatherLowBits(std::uint64_t bytes) {
  return Low8((bytes & 0x0101010101010101) * 0x0102040810204080 >> 56);
}

/// The bits of every byte in the opposite order: a row's leftmost pixel comes first in counting order.
constexpr std::uint64_t MirrorBytes(std::uint64_t v) {
  v = (v >> 1 & 0x5555555555555555) | (v & 0x5555555555555555) << 1;
  v = (v >> 2 & 0x3333333333333333) | (v & 0x3333333333333333) << 2;
  return (v >> 4 & 0x0F0F0F0F0F0F0F0F) | (v & 0x0F0F0F0F0F0F0F0F) << 4;
}
static_assert(MirrorBytes(0x8001'0000'0000'0010) == 0x0180'0000'0000'0008);

/// Replaces the bits of a byte that the mask selects.
inline void MergeBits(std::uint8_t* byte, std::uint32_t mask, std::uint32_t bits) {
  *byte = Low8((*byte & ~mask) | (bits & mask));
}

}  // namespace cvt::host

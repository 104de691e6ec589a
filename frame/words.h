// Words inside byte buffers, put together byte by byte: the same on every machine and at every address.
#pragma once

#include <cstdint>

#include "frame/ints.h"

namespace cvt {

// Pixels of 16 and 32 bits are stored low byte first.
constexpr std::uint32_t GetLow16(const std::uint8_t* at) { return at[0] | std::uint32_t{at[1]} << 8; }
constexpr void PutLow16(std::uint8_t* at, std::uint32_t word) {
  at[0] = Low8(word);
  at[1] = Low8(word >> 8);
}
constexpr void PutLow32(std::uint8_t* at, std::uint32_t word) {
  PutLow16(at, word);
  PutLow16(at + 2, word >> 16);
}

// Pixels of up to 8 bits fill units of 16 bits that are stored high byte first.
constexpr std::uint32_t GetHigh16(const std::uint8_t* at) { return std::uint32_t{at[0]} << 8 | at[1]; }
constexpr void PutHigh16(std::uint8_t* at, std::uint32_t word) {
  at[0] = Low8(word >> 8);
  at[1] = Low8(word);
}

}  // namespace cvt

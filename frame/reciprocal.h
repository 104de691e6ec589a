// Exact division by a number that stays the same for a whole line, without a divide instruction.
//
// n / d is (n * m) >> (31 + l) with l = ceil(log2 d) and m = ceil(2^(31 + l) / d): m exceeds the true
// factor by less than 2^l / 2^(31 + l) of it, too little to reach the next quotient while n stays below
// 2^31. Larger numbers, which sums that wrapped can give, are divided plainly.
#pragma once

#include <bit>
#include <cstdint>

#include "frame/ints.h"

namespace cvt {

struct Divisor {
  std::uint32_t number;
  std::uint32_t multiplier;
  std::uint32_t shift;
};

// 0 may be prepared, as long as nothing is divided by it.
constexpr Divisor DivisorOf(std::uint32_t number) {
  if (number == 0) return {0, 0, 0};
  const std::uint32_t shift = 63 - Unsigned32(std::countl_zero(number - 1));
  return {number, Low32(((std::uint64_t{1} << shift) + number - 1) / number), shift};
}

inline constexpr std::uint32_t kDivideLimit = 0x80000000;

// n below kDivideLimit
constexpr std::uint32_t DivideSmall(std::uint32_t n, const Divisor& by) {
  return Low32(std::uint64_t{n} * by.multiplier >> by.shift);
}

constexpr std::uint32_t Divide(std::uint32_t n, const Divisor& by) {
  if (n >= kDivideLimit) [[unlikely]]
    return n / by.number;
  return DivideSmall(n, by);
}

static_assert(Divide(0x7FFFFFFF, DivisorOf(1)) == 0x7FFFFFFF && Divide(0x7FFFFFFF, DivisorOf(0x7FFFFFFF)) == 1);
static_assert(Divide(8, DivisorOf(3)) == 2 && Divide(9, DivisorOf(3)) == 3 &&
              Divide(9, DivisorOf(0xFFFFFFFF)) == 0);
static_assert(Divide(0xFFFFFFFB, DivisorOf(7)) == 613566755);  // the product alone would give one more

}  // namespace cvt

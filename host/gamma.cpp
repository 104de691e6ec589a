// The tone curve. Library functions for powers differ in their last bits from machine to machine, so the
// curve is made of logarithms in whole numbers: level v reaches output n, rounded, when
//
//   255 * (v / 255) ^ (1 / gamma) >= n - 1/2
//   gamma * (log2(2n - 1) - log2(510)) <= log2(2v) - log2(510)
//
// The logarithms are good to nine digits and the one multiplication is exactly rounded everywhere.

#include "host/bits.h"
#include "host/tables.h"

namespace cvt::host {
namespace {

// log2(v) in units of 2^-32. The mantissa, 1 to 2 in units of 2^-31, is squared for each further bit of the
// logarithm: whenever it passes 2, the bit is 1.
constexpr std::int64_t Log2(std::uint32_t v) {
  const int whole = static_cast<int>(std::bit_width(v)) - 1;
  std::uint64_t mantissa = std::uint64_t{v} << (31 - whole);
  std::int64_t log = whole;
  for (int bit = 0; bit < 32; ++bit) {
    mantissa = mantissa * mantissa >> 31;
    const std::uint64_t carry = mantissa >> 32;
    mantissa >>= carry;
    log = log * 2 + static_cast<std::int64_t>(carry);
  }
  return log;
}
static_assert(Log2(1) == 0 && Log2(256) == std::int64_t{8} << 32);

bool Reaches(std::uint32_t v, std::uint32_t n, double gamma) {
  constexpr std::int64_t kFull = Log2(510);
  return static_cast<double>(Log2(2 * n - 1) - kFull) * gamma <= static_cast<double>(Log2(2 * v) - kFull);
}

}  // namespace

void BuildGamma(double gamma, std::uint8_t* table) {
  std::uint32_t n = 0;
  table[0] = 0;
  for (std::uint32_t v = 1; v < kGrayLevels; ++v) {
    while (n < 255 && Reaches(v, n + 1, gamma)) ++n;
    table[v] = Low8(n);
  }
}

}  // namespace cvt::host

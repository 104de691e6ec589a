// The words in front of a band, in the machine's order of bytes.
#pragma once

#include <cstdint>
#include <cstring>

#include "cvt/records.h"

namespace cvt::test {

struct Prefix {
  std::uint16_t code, size;
};
static_assert(sizeof(Prefix) == kBandPrefixBytes);

inline Prefix PrefixOf(const void* band) {
  Prefix prefix{};
  std::memcpy(&prefix, static_cast<const std::uint8_t*>(band) - sizeof prefix, sizeof prefix);
  return prefix;
}

inline void SetPrefix(void* band, Prefix prefix) {
  std::memcpy(static_cast<std::uint8_t*>(band) - sizeof prefix, &prefix, sizeof prefix);
}

}  // namespace cvt::test

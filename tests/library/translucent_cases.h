// A line written over what a band holds: by the library's translucent writers and by their twins.
#pragma once

#include "tests/library/harness.h"

namespace cvt::test {

struct Painted {
  std::uint16_t length;
  std::uint32_t value;
};

// What the band holds after a line, and the writer's count.
struct Written {
  std::uint16_t count;
  std::vector<std::uint8_t> bytes;
  bool operator==(const Written&) const = default;
};

enum class Writer : std::uint8_t { Library, Twin };
enum class Way : std::uint8_t { ByBand, Word, Long };

struct TranslucentCase {
  BandPlan plan;
  std::uint16_t x, y;
  std::vector<Painted> line;
  Way way = Way::ByBand;
  std::vector<std::uint8_t> transparent = {};  // none: all values are opaque
  std::uint32_t planeCount = 0;                // of the cursor; 0: the band's
};
TranslucentCase RandomTranslucent(Dice& dice);
Written Write(Writer writer, const TranslucentCase& what);

}  // namespace cvt::test

// The two ways a band stores pixels, as tables for the compiler: which record, which cursor, which label
// and how many bytes. Knows nothing of colour.
#pragma once

#include <cstdint>
#include <cstring>

#include "cvt/records.h"
#include "frame/ints.h"

namespace cvt {

struct Planes {
  using Band = tagRasterPlane;
  using Cursor = tagPlaneData;
  static constexpr std::uint16_t kOperation = kPlaneBand;
  // A line is one row of single bits for every bit of depth.
  static constexpr std::uint32_t BitsInRow(std::uint32_t) { return 1; }
  static constexpr std::uint32_t RowsInLine(std::uint32_t depth) { return depth; }
};

struct Packed {
  using Band = tagRasterPacked;
  using Cursor = tagPackedData;
  static constexpr std::uint16_t kOperation = kPackedBand;
  static constexpr std::uint32_t BitsInRow(std::uint32_t depth) { return depth; }
  static constexpr std::uint32_t RowsInLine(std::uint32_t) { return 1; }
};

// A row of one plane or of packed pixels is padded to a 16-bit boundary.
constexpr std::uint32_t RowBytes(std::uint32_t width, std::uint32_t bits) {
  return ((width * bits + 15) >> 3) & ~1U;
}

// Bits that a packed pixel takes up in its row.
constexpr std::uint32_t PowerOfTwoFrom(std::uint32_t bits) {
  while ((bits & (bits - 1)) != 0) ++bits;
  return bits;
}

// Bits in which packed pixels of a depth are stored in palette output. Depths are palette depths here:
// everything above 8 becomes 16.
constexpr std::uint32_t PaletteDepth(std::int32_t depth) {
  return depth > 8 ? 16 : depth > 4 ? 8 : depth > 2 ? 4 : depth == 2 ? 2 : 1;
}

static_assert(RowBytes(17, 1) == 4 && RowBytes(5, 4) == 4 && RowBytes(3, 32) == 12 && RowBytes(0, 8) == 0);
static_assert(PowerOfTwoFrom(0) == 0 && PowerOfTwoFrom(1) == 1 && PowerOfTwoFrom(24) == 32);
static_assert(PaletteDepth(3) == 4 && PaletteDepth(9) == 16 && PaletteDepth(0) == 1 && PaletteDepth(-1) == 1);

// Bands of both kinds travel through pointers of either type. These read and write the pointer as bytes,
// which is right whatever the variable was declared as.
template <class Band>
Band* BandAt(void* slot) {
  Band* band = nullptr;
  std::memcpy(&band, slot, sizeof band);
  return band;
}
inline void PutBand(void* slot, const void* band) { std::memcpy(slot, &band, sizeof band); }

// The block that a band lives in starts with its prefix: operation code, then block size.
inline std::uint8_t* BlockOf(void* band) { return static_cast<std::uint8_t*>(band) - kBandPrefixBytes; }
inline std::uint8_t* PixelsOf(void* band) { return static_cast<std::uint8_t*>(band) + kBandHeaderBytes; }

inline std::uint16_t OperationOf(void* band) {
  std::uint16_t code = 0;
  std::memcpy(&code, BlockOf(band), sizeof code);
  return code;
}
inline void SetOperation(void* band, std::uint16_t code) { std::memcpy(BlockOf(band), &code, sizeof code); }

inline std::uint16_t BlockSizeOf(void* band) {
  std::uint16_t size = 0;
  std::memcpy(&size, BlockOf(band) + sizeof size, sizeof size);
  return size;
}

}  // namespace cvt

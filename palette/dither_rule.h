// Ordered dither of colours: the threshold of a pixel's place pushes its colour, a table names the palette
// entry that the pushed colour gets.
//
// Seven dither functions, one type each, so that a line loop is compiled for every one of them:
//   DitherGray       gray ramps: up or down by the entry's step in that direction
//   DitherColor      any palette: along the diagonal of the colour box that the colour's octant points to, by
//                    the entry's step in that direction
//   DitherCube<n>    uniform cubes of n = 2 to 6 levels: all channels alike, by the distance of two levels
#pragma once

#include <cstdint>

#include "cvt/records.h"
#include "frame/color.h"
#include "frame/ints.h"
#include "frame/thresholds.h"

namespace cvt {

// The context's tables; each function looks into those that it needs.
struct DitherTables {
  const std::uint8_t* search;
  const std::uint8_t* steps;
  const std::uint8_t* cube;
};

inline DitherTables DitherTablesOf(const tagCRLA* context) {
  return {context->searchTable, context->ditherSteps, context->cubeTable};
}

inline constexpr std::int32_t kNoPush = 126;  // the threshold that leaves a colour as it is

constexpr std::int32_t PushOf(std::uint8_t threshold) { return threshold - kNoPush; }

// A step of the palette, scaled by the push.
constexpr std::int32_t ScaleStep(std::uint8_t step, std::int32_t push) { return ShiftDown(step * push, 7); }

constexpr std::uint32_t TopBits(std::uint32_t level, std::uint32_t bits) { return level >> (8 - bits); }

// The cell of a colour in the cube table.
constexpr std::uint32_t CellOf(IRGB color) {
  return TopBits(color.red, 5) << 10 | TopBits(color.green, 5) << 5 | TopBits(color.blue, 5);
}

inline Thresholds RowOrBlock(const tagCRLA* context, std::uint16_t line) {
  return context->halftoneMethod == kFixedBlock ? BlockRow(context, line) : MatrixRow(context, line);
}

struct DitherGray {
  static Thresholds Along(const tagCRLA* context, std::uint16_t line) { return RowOrBlock(context, line); }

  static constexpr std::uint16_t Index(const DitherTables& tables, IRGB color, std::uint8_t threshold) {
    const std::int32_t push = PushOf(threshold);
    const std::uint8_t gray = GrayOf(color);
    const std::uint32_t entry = tables.search[gray];
    const std::uint8_t step = tables.steps[2 * entry + (push < 0 ? 1U : 0U)];
    return tables.search[ClampToByte(gray + ScaleStep(step, push))];
  }
};

// Channels of the colour box, red 4, green 2, blue 1: those in whose upper half a colour lies.
constexpr std::uint32_t kAllChannels = 7;

constexpr std::uint32_t OctantOf(IRGB color) {
  return TopBits(color.red, 1) << 2 | TopBits(color.green, 1) << 1 | TopBits(color.blue, 1);
}

constexpr std::uint32_t IsOdd(std::uint32_t channels) { return (channels ^ channels >> 1 ^ channels >> 2) & 1; }

// The channels that a push moves up; the others move down as far. Octants of an odd number of upper halves move
// to the corner that they lie at, the others away from it, so that neighbouring octants move against each
// other; a push below zero turns both round. Without a push nothing moves either way.
constexpr std::uint32_t RaisedBy(std::int32_t push, std::uint32_t octant) {
  const std::uint32_t upward = push < 0 ? 0 : 1;
  return octant ^ ((upward ^ IsOdd(octant)) != 0 ? kAllChannels : 0);
}

// The palette's step, scaled by the push's size: cut in odd octants, rounded up in even ones.
constexpr std::int32_t DistanceOf(std::uint8_t step, std::int32_t push, std::uint32_t octant) {
  const std::int32_t roundUp = Signed32(127 & (IsOdd(octant) - 1));
  return ShiftDown(step * (push < 0 ? -push : push) + roundUp, 7);
}

static_assert(RaisedBy(10, 7) == 7 && RaisedBy(-10, 4) == 3 && RaisedBy(10, 3) == 4 && RaisedBy(-10, 0) == 0);
static_assert(DistanceOf(40, 10, 7) == 3 && DistanceOf(40, 10, 3) == 4 && DistanceOf(40, -10, 0) == 4);
static_assert(DistanceOf(255, 0, 3) == 0 && DistanceOf(255, 129, 5) == 257);

struct DitherColor {
  static Thresholds Along(const tagCRLA* context, std::uint16_t line) { return RowOrBlock(context, line); }

  static constexpr std::uint16_t Index(const DitherTables& tables, IRGB color, std::uint8_t threshold) {
    const std::int32_t push = PushOf(threshold);
    const std::uint32_t octant = OctantOf(color);
    const std::uint32_t raised = RaisedBy(push, octant);
    const std::uint32_t entry = tables.search[CellOf(color)];
    const std::int32_t distance = DistanceOf(tables.steps[8 * entry + raised], push, octant);
    const IRGB pushed{ClampToByte(color.red + ((raised & 4) != 0 ? distance : -distance)),
                      ClampToByte(color.green + ((raised & 2) != 0 ? distance : -distance)),
                      ClampToByte(color.blue + ((raised & 1) != 0 ? distance : -distance))};
    return tables.search[CellOf(pushed)];
  }
};

// Levels of a uniform cube, 0 the brightest: level (top - value) / width.
struct CubeLevels {
  std::int32_t top, width;
};

constexpr CubeLevels CubeLevelsOf(std::uint32_t levels) {
  switch (levels) {
    case 2:
      return {255, 128};
    case 3:
      return {318, 128};
    case 4:
      return {296, 85};
    case 5:
      return {286, 64};
    default:
      return {281, 51};
  }
}

template <std::uint32_t kLevels>
struct DitherCube {
  // Columns go down the matrix, and its fixed block is not used: cubes have always been dithered that way.
  static Thresholds Along(const tagCRLA* context, std::uint16_t line) { return MatrixColumn(context, line); }

  // Two levels take the threshold as a signed byte: 127 adds 127, 128 takes 128 away.
  static constexpr std::int32_t Offset(std::uint8_t threshold) {
    if (kLevels == 2) return SignExtend8(threshold);
    return DivTrunc(PushOf(threshold), std::int32_t{kLevels} - 1);
  }

  static constexpr std::uint32_t LevelOf(std::int32_t value) {
    constexpr CubeLevels kOf = CubeLevelsOf(kLevels);
    return Unsigned32(DivTrunc(kOf.top - ClampToByte(value), kOf.width));
  }

  static constexpr std::uint16_t Index(const DitherTables& tables, IRGB color, std::uint8_t threshold) {
    const std::int32_t offset = Offset(threshold);
    const std::uint32_t red = LevelOf(color.red + offset);
    const std::uint32_t green = LevelOf(color.green + offset);
    const std::uint32_t blue = LevelOf(color.blue + offset);
    return tables.cube[red + kLevels * (green + kLevels * blue)];
  }
};

static_assert(DitherCube<2>::LevelOf(128) == 0 && DitherCube<2>::LevelOf(127) == 1 &&
              DitherCube<2>::LevelOf(0) == 1);
static_assert(DitherCube<3>::LevelOf(191) == 0 && DitherCube<3>::LevelOf(190) == 1 &&
              DitherCube<3>::LevelOf(62) == 2);
static_assert(DitherCube<4>::LevelOf(212) == 0 && DitherCube<4>::LevelOf(126) == 2 &&
              DitherCube<4>::LevelOf(41) == 3);
static_assert(DitherCube<5>::LevelOf(223) == 0 && DitherCube<5>::LevelOf(94) == 3 &&
              DitherCube<5>::LevelOf(30) == 4);
static_assert(DitherCube<6>::LevelOf(231) == 0 && DitherCube<6>::LevelOf(77) == 4 &&
              DitherCube<6>::LevelOf(26) == 5);
static_assert(DitherCube<6>::LevelOf(-40) == 5 && DitherCube<6>::LevelOf(300) == 0);
static_assert(DitherCube<2>::Offset(128) == -128 && DitherCube<3>::Offset(125) == 0 &&
              DitherCube<6>::Offset(0) == -25);

// Runs `work` with the dither function for palettes of one kind or another.
template <class Work>
auto WithGeneralDither(const tagCRLA* context, Work work) {
  return context->grayPalette == kGrayRamp ? work(DitherGray{}) : work(DitherColor{});
}

// The same, with the cubes for destinations of 3 to 8 bits that have a cube table.
template <class Work>
auto WithDither(const tagCRLA* context, std::uint8_t bitsPerPixel, Work work) {
  if (context->grayPalette == kGrayRamp || context->cubeTable == nullptr) return WithGeneralDither(context, work);
  switch (bitsPerPixel) {
    case 3:
    case 4:
      return work(DitherCube<2>{});
    case 5:
      return work(DitherCube<3>{});
    case 6:
      return work(DitherCube<4>{});
    case 7:
      return work(DitherCube<5>{});
    case 8:
      return work(DitherCube<6>{});
    default:
      return work(DitherColor{});
  }
}

}  // namespace cvt

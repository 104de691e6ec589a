// How the families of band routines differ, as one row of named choices each.
#pragma once

#include <cstdint>

namespace cvt {

// What the output's values are: this settles the depth of the output and how a band is split.
enum class Target : std::uint8_t { Palette, DirectColor };
// Size of a plane in the block size of plane output: as it is, or its low 16 bits read as signed.
enum class PlaneSize : std::uint8_t { Full, Signed16 };
// The source's progress procedure.
enum class Progress : std::uint8_t { NotAsked, AskedPerLine };
// What a failing call does with the descriptor copy, the cursors and the sub-band that it holds.
enum class OnFailure : std::uint8_t { LeaveAll, ReleaseAll };

struct Family {
  Target target;
  PlaneSize planeSize;
  Progress progress;
  OnFailure noMemory;  // a cursor or a sub-band could not be had
  OnFailure nextLink;  // convertProc answered nonzero
};

inline constexpr Family kNearestColor{Target::Palette, PlaneSize::Signed16, Progress::NotAsked,
                                      OnFailure::LeaveAll, OnFailure::LeaveAll};
inline constexpr Family kDirectColor{Target::DirectColor, PlaneSize::Full, Progress::NotAsked, OnFailure::LeaveAll,
                                     OnFailure::LeaveAll};
inline constexpr Family kErrorDiffusion{Target::Palette, PlaneSize::Full, Progress::AskedPerLine,
                                        OnFailure::ReleaseAll, OnFailure::ReleaseAll};
inline constexpr Family kMonoDither{Target::Palette, PlaneSize::Full, Progress::NotAsked, OnFailure::LeaveAll,
                                    OnFailure::LeaveAll};
// From planes to packed pixels alone, ordered dither to one bit cleans up when memory runs out.
inline constexpr Family kMonoDitherBitByte{Target::Palette, PlaneSize::Full, Progress::NotAsked,
                                           OnFailure::ReleaseAll, OnFailure::LeaveAll};
inline constexpr Family kColorDither{Target::Palette, PlaneSize::Full, Progress::NotAsked, OnFailure::ReleaseAll,
                                     OnFailure::ReleaseAll};

}  // namespace cvt

// Cases of the colour routines: what a Case has not room for, and the routines beside their twins.
#pragma once

#include "tests/library/harness.h"

namespace cvt::test {

/// A case with the context's dither tables and colour adjustments. The tables are exactly as large as the
/// routines may read.
struct ColorCase {
  Case base;
  std::uint8_t ditherWidth = 8, ditherHeight = 8;
  std::vector<std::uint8_t> matrix, steps, cube;  // no cube: null
  std::uint16_t colorAdjust1 = 0, colorAdjust2 = 0, diffusionFlags = 0;
};
void PutTables(World& world, const ColorCase& what);
Outcome RunColorCase(const ColorCase& what, BandRoutine routine, CvtConvertProc convert = ScriptedConvert);

/// What random cases have to heed.
enum class Family : std::uint8_t { Direct, Clip, MonoDither, Diffusion, ShortCut, Dither };
ColorCase RandomColorCase(Dice& dice, Family family, Sibling which);

struct ColorMember : Member {
  Family family;
};
extern const std::vector<ColorMember> kColorMembers;
/// Of any family of band routines.
const Member& MemberNamed(const std::string& name);

/// Called directly, each of the short-cut's routines wants bands that are stored as it reads them.
void StoreAsRead(Dice& dice, const ColorMember& member, ColorCase& what);

}  // namespace cvt::test

#include "tests/library/color_cases.h"

#include <algorithm>

namespace cvt::test {

namespace {

std::uint8_t* Data(const std::vector<std::uint8_t>& table) {
  return table.empty() ? nullptr : const_cast<std::uint8_t*>(table.data());
}

CvtStatus CanShortCut(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return static_cast<CvtStatus>(CvtCanShortCutDiffusion(band, source, destination, context));
}
CvtStatus CanShortCutTwin(tagRasterPacked** band, tagIGFD*, tagIGFD* destination, tagCRLA* context) {
  return static_cast<CvtStatus>(RefCanShortCut(**band, *destination, context));
}

void LimitDepth(Case& base, std::uint8_t depth) {
  base.source.bitsPerPixel = std::min(base.source.bitsPerPixel, depth);
  for (BandPlan& band : base.bands) band.depth = std::min<std::uint16_t>(band.depth, depth);
}

void AddClip(Dice& dice, Case& base) {
  const BandPlan& b = base.bands[0];
  int x0 = b.left + (dice.OneIn(3) ? 0 : dice.Between(0, b.width));
  int x1 = dice.OneIn(3) ? b.left + b.width : dice.Between(x0, b.left + b.width);
  int y0 = b.top + dice.Of({-3, -1, 0, 0, 1, 2, 5, 9, 30});
  int y1 = y0 + dice.Of({0, 1, 2, 3, 7, 12, 40});
  if (b.top > 32767) {  // rectangles are signed: such lines are above, below or not to be cut, never cut soundly
    x0 = b.left;
    x1 = b.left + b.width;
    y0 = 0;
    const BandPlan& last = base.bands.back();
    y1 = last.top >= b.top && last.top + last.lineCount < 65536 && dice.OneIn(2) ? -1 : 20;
  }
  base.source.options = static_cast<std::uint16_t>(base.source.options | kClipOption);
  base.source.clipX0 = static_cast<std::int16_t>(x0);
  base.source.clipX1 = static_cast<std::int16_t>(x1);
  base.source.clipY0 = static_cast<std::int16_t>(y0);
  base.source.clipY1 = static_cast<std::int16_t>(y1);
  base.destination.originX = base.source.clipX0;
  base.destination.originY = base.source.clipY0;
  base.destination.imageWidth = base.source.clipX1 - base.source.clipX0;
  base.destination.imageHeight = base.source.clipY1 - base.source.clipY0;
}

// Fills the tables to the sizes that the settings and the destination ask for.
void AddTables(Dice& dice, ColorCase& what, Family family) {
  const std::uint8_t depth = what.base.destination.bitsPerPixel;
  const std::size_t levels = depth < 3 || depth > 8 ? 1 : depth == 3 ? 2 : depth - 2u;
  if (dice.OneIn(2)) what.cube.resize(levels * levels * levels);
  const bool fixedBlock = what.base.halftoneMethod == kFixedBlock;
  if (fixedBlock && what.cube.empty() && family == Family::Dither && depth != 1) {  // the matrix has no size
    if (dice.OneIn(4)) what.ditherWidth = what.ditherHeight = 0;
    what.matrix.resize(64);
  } else {
    const int size = what.ditherWidth * what.ditherHeight;
    what.matrix.resize(static_cast<std::size_t>(fixedBlock ? std::max(size, 64) : size));
  }
  what.steps.resize(2048);
  for (auto* table : {&what.matrix, &what.steps, &what.cube})
    for (std::uint8_t& b : *table) b = Byte(dice.Between(0, 255));
  for (std::size_t i = 0; i < what.matrix.size(); i += 5)
    what.matrix[i] = dice.Of<std::uint8_t>({125, 126, 127, 128});
}

}  // namespace

void PutTables(World& world, const ColorCase& what) {
  tagCRLA& context = world.context;
  context.ditherMatrix = Data(what.matrix);
  context.ditherWidth = what.ditherWidth;
  context.ditherHeight = what.ditherHeight;
  context.ditherSteps = Data(what.steps);
  context.cubeTable = Data(what.cube);
  context.colorAdjust1 = what.colorAdjust1;
  context.colorAdjust2 = what.colorAdjust2;
  context.diffusionFlags = what.diffusionFlags;
}

Outcome RunColorCase(const ColorCase& what, BandRoutine routine, CvtConvertProc convert) {
  return RunCase(what.base, routine, convert, [&what](World& world) { PutTables(world, what); });
}

ColorCase RandomColorCase(Dice& dice, Family family, Sibling which) {
  ColorCase what;
  Case& base = what.base;
  base = RandomCase(dice, which);
  base.halftoneMethod = dice.Of<std::uint8_t>({0, 3, 3, 4, 255});
  if (family == Family::Diffusion || family == Family::ShortCut || dice.OneIn(6)) base.halftoneMethod = kDiffusion;
  if (family == Family::Direct) {
    base.destination.bitsPerPixel =
        Byte(dice.Of<int>({15, 16, 24, 32, dice.Between(0, 32), base.source.bitsPerPixel}));
    base.destination.bitsPerPixel =
        std::min<std::uint8_t>(base.destination.bitsPerPixel, which.toPlanes ? 64 : 112);
    base.destination.colorFlags = 0;
    if ((base.source.colorFlags & kIndexedColor) != 0) LimitDepth(base, 16);
  }
  if (base.bands[0].depth <= 16) LimitDepth(base, 26);  // channels of 9 bits have no place in a 16-bit pixel
  if (family == Family::Clip) AddClip(dice, base);
  if (family == Family::ShortCut) {
    LimitDepth(base, 26);
    base.destination.bitsPerPixel = Byte(dice.Between(4, 9));
    if (dice.OneIn(3))  // some take the short-cut and some do not
      for (BandPlan& band : base.bands) {
        const int depth = dice.Between(3, 26);
        SetDepth(band, depth, Byte(dice.Between(0, 255)));
      }
  }
  if ((family == Family::ShortCut || family == Family::Diffusion) && dice.OneIn(2)) {
    base.gammaActive = 0;
    base.grayPalette = 0;
    base.invertMono = 0;
  }
  if (!dice.OneIn(3)) what.ditherWidth = Byte(dice.Between(1, dice.Of({8, 16, 255})));
  if (!dice.OneIn(3)) what.ditherHeight = Byte(dice.Between(1, dice.Of({8, 16, 255})));
  what.colorAdjust1 = dice.OneIn(6) ? 0x100 : 0;
  what.colorAdjust2 = dice.OneIn(6) ? 1 : 0;
  what.diffusionFlags = dice.Of<std::uint16_t>({0, 0, 0, 0x7FFF, 0x8000});
  AddTables(dice, what, family);
  base.errorRow.resize(std::max(base.errorRow.size(), std::size_t{base.bands[0].width} * 3 + 1));
  const int spread = dice.Of({0, 100, 3000, 32767});
  for (std::int16_t& e : base.errorRow) e = static_cast<std::int16_t>(dice.Between(-spread, spread));
  return what;
}

void StoreAsRead(Dice& dice, const ColorMember& member, ColorCase& what) {
  const BandRoutine r = member.library;
  const int depth = r == CvtShortCutDiffusionByte   ? dice.Between(5, 8)
                    : r == CvtShortCutDiffusionWord ? dice.Between(9, 16)
                    : r == CvtShortCutDiffusionLong ? dice.Between(17, 32)
                                                    : 0;
  if (depth == 0) return;
  for (BandPlan& band : what.base.bands) SetDepth(band, depth, 0x6D);
}

const std::vector<ColorMember> kColorMembers = [] {
  std::vector<ColorMember> all = {
      {{"CvtBitRGBPacked", kBitByte, OnPlanes<CvtBitRGBPacked>, With<RefRGB, kBitByte>}, Family::Direct},
      {{"CvtByteRGBPacked", kByteByte, CvtByteRGBPacked, With<RefRGB, kByteByte>}, Family::Direct},
      {{"CvtBitRGBPlane", kBitBit, OnPlanes<CvtBitRGBPlane>, With<RefRGB, kBitBit>}, Family::Direct},
      {{"CvtByteRGBPlane", kByteBit, CvtByteRGBPlane, With<RefRGB, kByteBit>}, Family::Direct},
      {{"CvtClipPlane", kBitBit, OnPlanes<CvtClipPlane>, With<RefClip, true>}, Family::Clip},
      {{"CvtClipPacked", kByteByte, CvtClipPacked, With<RefClip, false>}, Family::Clip},
      {{"CvtCanShortCutDiffusion", kByteByte, CanShortCut, CanShortCutTwin}, Family::ShortCut},
      {{"CvtShortCutDiffusion", kByteByte, CvtShortCutDiffusion, RefShortCut}, Family::ShortCut},
      {{"CvtShortCutDiffusionByte", kByteByte, CvtShortCutDiffusionByte, With<RefShortCutStored, 1>},
       Family::ShortCut},
      {{"CvtShortCutDiffusionWord", kByteByte, CvtShortCutDiffusionWord, With<RefShortCutStored, 2>},
       Family::ShortCut},
      {{"CvtShortCutDiffusionLong", kByteByte, CvtShortCutDiffusionLong, With<RefShortCutStored, 4>},
       Family::ShortCut}};
  const auto add = [&all](const std::vector<Member>& family, Family kind) {
    for (const Member& member : family) all.push_back({member, kind});
  };
  add(FamilyOf<RefMonoDither, CvtMonochromeDitherBitByte, CvtMonochromeDitherByteBit, CvtMonochromeDitherBitBit,
               CvtMonochromeDitherByteByte>("CvtMonochromeDither"),
      Family::MonoDither);
  add(FamilyOf<RefColorDither, CvtColorDitherBitByte, CvtColorDitherByteBit, CvtColorDitherBitBit,
               CvtColorDitherByteByte>("CvtColorDither"),
      Family::Dither);
  add(FamilyOf<RefColorDiffusion, CvtColorDiffusionBitByte, CvtColorDiffusionByteBit, CvtColorDiffusionBitBit,
               CvtColorDiffusionByteByte>("CvtColorDiffusion"),
      Family::Diffusion);
  all.back().family = Family::ShortCut;  // from packed to packed alone
  return all;
}();

const Member& MemberNamed(const std::string& name) {
  for (const auto* family : {&kNearestFamily, &kMonoDiffusionFamily})
    for (const Member& member : *family)
      if (member.name == name) return member;
  return *std::find_if(kColorMembers.begin(), kColorMembers.end(),
                       [&](const Member& m) { return m.name == name; });
}

}  // namespace cvt::test

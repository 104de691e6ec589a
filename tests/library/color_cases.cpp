#include "tests/library/color_cases.h"

#include <algorithm>

namespace cvt::test {

namespace {

// RunCase takes plain procedures, so the case that is running stands here.
thread_local const ColorCase* running = nullptr;
thread_local BandRoutine due = nullptr;

std::uint8_t* Data(const std::vector<std::uint8_t>& table) {
  return table.empty() ? nullptr : const_cast<std::uint8_t*>(table.data());
}

CvtStatus WithSettings(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  if (context->ditherSteps == nullptr) {  // the image's first band
    context->ditherMatrix = Data(running->matrix);
    context->ditherWidth = running->ditherWidth;
    context->ditherHeight = running->ditherHeight;
    context->ditherSteps = Data(running->steps);
    context->cubeTable = Data(running->cube);
    context->colorAdjust1 = running->colorAdjust1;
    context->colorAdjust2 = running->colorAdjust2;
    context->diffusionFlags = running->diffusionFlags;
  }
  return due(band, source, destination, context);
}

template <auto kTwin, auto... kFirst>
CvtStatus Twin(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return kTwin(kFirst..., band, source, destination, context);
}

CvtStatus CanShortCut(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return static_cast<CvtStatus>(CvtCanShortCutDiffusion(band, source, destination, context));
}
CvtStatus CanShortCutTwin(tagRasterPacked** band, tagIGFD*, tagIGFD* destination, tagCRLA* context) {
  return static_cast<CvtStatus>(RefCanShortCut(**band, *destination, context));
}

std::uint8_t Byte(int value) { return static_cast<std::uint8_t>(value); }

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

constexpr Sibling kBitByte = {true, false}, kByteBit = {false, true}, kBitBit = {true, true},
                  kByteByte = {false, false};

}  // namespace

BandRoutine WithTables(const ColorCase& what, BandRoutine routine) {
  running = &what;
  due = routine;
  return WithSettings;
}

Outcome RunColorCase(const ColorCase& what, BandRoutine routine, CvtConvertProc convert) {
  return RunCase(what.base, WithTables(what, routine), convert);
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
        band.depth = static_cast<std::uint16_t>(dice.Between(3, 26));
        band.pixels.resize(PixelBytes(false, band.width, band.lineCount, band.depth), Byte(dice.Between(0, 255)));
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
  for (BandPlan& band : what.base.bands) {
    band.depth = static_cast<std::uint16_t>(depth);
    band.pixels.resize(PixelBytes(false, band.width, band.lineCount, band.depth), 0x6D);
  }
}

const std::vector<ColorMember> kColorMembers = {
    {"CvtBitRGBPacked", Family::Direct, kBitByte, OnPlanes<CvtBitRGBPacked>, Twin<RefRGB, kBitByte>},
    {"CvtByteRGBPacked", Family::Direct, kByteByte, CvtByteRGBPacked, Twin<RefRGB, kByteByte>},
    {"CvtBitRGBPlane", Family::Direct, kBitBit, OnPlanes<CvtBitRGBPlane>, Twin<RefRGB, kBitBit>},
    {"CvtByteRGBPlane", Family::Direct, kByteBit, CvtByteRGBPlane, Twin<RefRGB, kByteBit>},
    {"CvtClipPlane", Family::Clip, kBitBit, OnPlanes<CvtClipPlane>, Twin<RefClip, true>},
    {"CvtClipPacked", Family::Clip, kByteByte, CvtClipPacked, Twin<RefClip, false>},
    {"CvtMonochromeDitherBitByte", Family::MonoDither, kBitByte, OnPlanes<CvtMonochromeDitherBitByte>,
     Twin<RefMonoDither, kBitByte>},
    {"CvtMonochromeDitherByteBit", Family::MonoDither, kByteBit, CvtMonochromeDitherByteBit,
     Twin<RefMonoDither, kByteBit>},
    {"CvtMonochromeDitherBitBit", Family::MonoDither, kBitBit, OnPlanes<CvtMonochromeDitherBitBit>,
     Twin<RefMonoDither, kBitBit>},
    {"CvtMonochromeDitherByteByte", Family::MonoDither, kByteByte, CvtMonochromeDitherByteByte,
     Twin<RefMonoDither, kByteByte>},
    {"CvtColorDiffusionBitByte", Family::Diffusion, kBitByte, OnPlanes<CvtColorDiffusionBitByte>,
     Twin<RefColorDiffusion, kBitByte>},
    {"CvtColorDiffusionByteBit", Family::Diffusion, kByteBit, CvtColorDiffusionByteBit,
     Twin<RefColorDiffusion, kByteBit>},
    {"CvtColorDiffusionBitBit", Family::Diffusion, kBitBit, OnPlanes<CvtColorDiffusionBitBit>,
     Twin<RefColorDiffusion, kBitBit>},
    {"CvtColorDiffusionByteByte", Family::ShortCut, kByteByte, CvtColorDiffusionByteByte,
     Twin<RefColorDiffusion, kByteByte>},
    {"CvtCanShortCutDiffusion", Family::ShortCut, kByteByte, CanShortCut, CanShortCutTwin},
    {"CvtShortCutDiffusion", Family::ShortCut, kByteByte, CvtShortCutDiffusion, RefShortCut},
    {"CvtShortCutDiffusionByte", Family::ShortCut, kByteByte, CvtShortCutDiffusionByte,
     Twin<RefShortCutStored, 1>},
    {"CvtShortCutDiffusionWord", Family::ShortCut, kByteByte, CvtShortCutDiffusionWord,
     Twin<RefShortCutStored, 2>},
    {"CvtShortCutDiffusionLong", Family::ShortCut, kByteByte, CvtShortCutDiffusionLong,
     Twin<RefShortCutStored, 4>},
    {"CvtColorDitherBitByte", Family::Dither, kBitByte, OnPlanes<CvtColorDitherBitByte>,
     Twin<RefColorDither, kBitByte>},
    {"CvtColorDitherByteBit", Family::Dither, kByteBit, CvtColorDitherByteBit, Twin<RefColorDither, kByteBit>},
    {"CvtColorDitherBitBit", Family::Dither, kBitBit, OnPlanes<CvtColorDitherBitBit>,
     Twin<RefColorDither, kBitBit>},
    {"CvtColorDitherByteByte", Family::Dither, kByteByte, CvtColorDitherByteByte,
     Twin<RefColorDither, kByteByte>}};

}  // namespace cvt::test

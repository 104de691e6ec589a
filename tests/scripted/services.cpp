// Colour services, the pipeline and the procedures that the library is given, as the script says.
#include <cstring>

#include "tests/scripted/world.h"

namespace cvt::test {

std::int16_t CVT_CALL ScriptedProgress(std::uint32_t data) {
  World& here = World::Here();
  const std::int16_t answer = ++here.stops == here.script.stopAt ? here.script.stopAnswer : std::int16_t{0};
  here.Note(Call::Progress, {data, here.context.runCount, answer});
  return answer;
}

static void Scribble(World& here, tagCRLA* context) {
  for (std::size_t i = 0; i < here.values.size(); ++i) {
    context->values[i] = 0xBADBAD00 + static_cast<std::uint32_t>(i);
    context->runLengths[i] = 9;
  }
  context->runCount = 3;
}

static void ReplaceBand(World& here, tagRasterPacked** band) {
  const Block* old = here.Holding(*band);
  if (old != nullptr && old->kind == BlockKind::Band) here.Release(old->base);  // never what is the caller's
  *band = reinterpret_cast<tagRasterPacked*>(here.Take(20, BlockKind::Band) + kBandPrefixBytes);
}

std::int16_t CVT_CALL ScriptedConvert(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                      tagCRLA* context) {
  World& here = World::Here();
  const Script& script = here.script;
  const std::int16_t answer = ++here.converts == script.convertFailsAt ? script.convertAnswer : std::int16_t{0};
  here.handedOn.push_back(here.BytesOf(*band));
  tagIGFD seen = *source;
  if (const std::int64_t ordinal = here.Identify(source->palette); ordinal > 0) {  // a palette of the library's
    here.handedOn.push_back(here.BytesOf(source->palette));
    const auto number = static_cast<std::uintptr_t>(ordinal);
    std::memcpy(&seen.palette, &number, sizeof number);
  }
  here.Note(Call::Convert,
            {here.Identify(*band), static_cast<std::int64_t>(here.handedOn.size()), here.Identify(source),
             Hash(&seen, sizeof seen), here.Identify(destination), here.Identify(context), answer});
  if (script.scribbles) Scribble(here, context);
  if (script.replacesBand) ReplaceBand(here, band);
  if (script.changesSettings) {
    context->grayPalette = context->grayPalette == kGrayRamp ? std::uint8_t{0} : kGrayRamp;
    context->gammaActive = context->gammaActive == 0 ? std::uint16_t{1} : std::uint16_t{0};
  }
  return answer;
}

}  // namespace cvt::test

using cvt::test::Call;
using cvt::test::Hash;
using cvt::test::World;

std::uint32_t CVT_CALL CvtAdjustGammaValue(tagCRLA* context, IRGB* color) {
  World& here = World::Here();
  here.Note(Call::Gamma, {here.Identify(context), color->red, color->green, color->blue, here.ErrorRowHash()});
  color->red = static_cast<std::uint8_t>(255 - color->red);
  color->green = static_cast<std::uint8_t>(color->green ^ 0x55);
  color->blue = static_cast<std::uint8_t>(color->blue * 3 + 1);
  return 0xFFFFFFFF;
}

void CVT_CALL CvtSnap(tagCRLA* context) {
  World& here = World::Here();
  here.Note(Call::Snap, {here.Identify(context), context->runCount,
                         Hash(context->values, std::size_t{context->runCount} * 4)});
  for (std::size_t i = 0; i < context->runCount; ++i) context->values[i] = context->values[i] * 7 + 3;
}

std::int32_t CVT_CALL CvtClosestRGB(IRGB* color, tagIGFD* descriptor) {
  World& here = World::Here();
  const std::int32_t answer = color->green < 128 ? here.script.black : here.script.white;
  here.Note(Call::Closest, {color->red, color->green, color->blue, here.Identify(descriptor), answer});
  return answer;
}

std::uint16_t CVT_CALL CvtSearchRGBCube(std::uint8_t* table, WRGB* color) {
  World& here = World::Here();
  here.Note(Call::Cube, {here.Identify(table), color->red, color->green, color->blue});
  const int cell =
      ((color->red & 255) >> 3) * 1024 + ((color->green & 255) >> 3) * 32 + ((color->blue & 255) >> 3);
  return static_cast<std::uint16_t>(table[cell] | here.script.cubeHighBits);
}

std::uint16_t CVT_CALL CvtIsGray(tagIGFD* descriptor, std::int32_t mode) {
  World& here = World::Here();
  here.Note(Call::IsGray, {here.Identify(descriptor), mode, here.script.isGray});
  return here.script.isGray;
}

void CVT_CALL CvtAssignRasterStatus(tagRasterPacked* band, tagIGFD* source, std::uint16_t mode) {
  World& here = World::Here();
  here.Note(Call::Assign, {here.Identify(band), here.Identify(source), mode, here.Identify(here.nextBand)});
}

std::int16_t CVT_CALL CvtExecuteNextFunction(execute* next) {
  World& here = World::Here();
  const bool fails = ++here.executes == here.script.executeFailsAt;
  const std::int16_t answer = fails ? here.script.executeAnswer : std::int16_t{0};
  tagRasterPacked* band = *next->rasterSlot;
  here.handedOn.push_back(here.BytesOf(band));
  here.Note(Call::Execute,
            {here.Identify(next), here.Identify(band), static_cast<std::int64_t>(here.handedOn.size()), answer});
  *next->rasterSlot = nullptr;
  return answer;
}

// Any image, settings and failures that a host can bring, through every routine and through whole chains: each
// call, byte and field must be what the slow twin makes of it. Every block of the scripted host ends where its
// contents end, so that the address sanitizer sees what lies outside bands and tables.

#include <cstdio>
#include <cstdlib>

#include "tests/library/scale_cases.h"
#include "tests/library/translucent_cases.h"

namespace {

using namespace cvt::test;

void Compare(const std::string& name, const Case& what, const Outcome& library, const Outcome& twin) {
  const std::string difference = Difference(library, twin);
  // A band that the next link put in the place of the caller's is the caller's to release.
  const bool balances = library.statuses.back() == kCvtOk && !what.script.replacesBand;
  const bool leaks = balances && !library.leftAllocated.empty();
  if (difference.empty() && !leaks) return;
  std::fprintf(stderr, "%s: %s\n%s\n", name.c_str(), Describe(what).c_str(),
               leaks ? library.leftAllocated[0].c_str() : difference.c_str());
  std::abort();
}

template <class Item>
std::size_t Pick(Dice& dice, const std::vector<Item>& items) {
  return static_cast<std::size_t>(dice.Between(0, static_cast<int>(items.size()) - 1));
}

void NearestOrDiffusion(Dice& dice) {
  const std::vector<Member>& family = dice.OneIn(2) ? kNearestFamily : kMonoDiffusionFamily;
  const Member& member = family[Pick(dice, family)];
  const Case what = RandomCase(dice, member.which);
  Compare(member.name, what, RunCase(what, member.library), RunCase(what, member.twin));
}

void Relabel(Dice& dice) {
  Case what = RandomCase(dice, {dice.OneIn(2), dice.OneIn(2)});
  what.destination.rasterKind = dice.Of<std::uint16_t>({4, 8, 12, 0});
  Compare("Cvt1Bit1Byte", what, RunCase(what, Cvt1Bit1Byte), RunCase(what, RefRelabel));
}

void Color(Dice& dice) {
  const ColorMember& member = kColorMembers[Pick(dice, kColorMembers)];
  ColorCase what = RandomColorCase(dice, member.family, member.which);
  StoreAsRead(dice, member, what);
  Compare(member.name, what.base, RunColorCase(what, member.library), RunColorCase(what, member.twin));
}

template <const std::vector<Scaler>& kScalers, ScaleCase (*kRandom)(Dice& dice, std::size_t k)>
void Scale(Dice& dice) {
  const std::size_t k = Pick(dice, kScalers);
  const ScaleCase what = kRandom(dice, k);
  Compare(kScalers[k].name, what, RunScale(what, kScalers[k].library), RunScale(what, kScalers[k].twin));
}

void Chain(Dice& dice) {
  const ChainCase what = RandomChain(dice);
  Compare("Cvtr2r", what.image, RunChain(what, Cvtr2r), RunChain(what, RefWholeCvtr2r));
}

void Translucent(Dice& dice) {
  TranslucentCase what = RandomTranslucent(dice);
  if (Write(Writer::Library, what) != Write(Writer::Twin, what)) std::abort();
}

constexpr void (*kKinds[])(Dice&) = {NearestOrDiffusion,
                                     Relabel,
                                     Color,
                                     Scale<kScaleDrivers, RandomForDriver>,
                                     Scale<kScaleWorkers, RandomForWorker>,
                                     Scale<kSmoothWorkers, RandomForSmoothWorker>,
                                     Translucent,
                                     Chain};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  Dice dice({data + 1, size - 1});
  kKinds[data[0] % std::size(kKinds)](dice);
  return 0;
}

// The scalers against their twins, on random images in fresh worlds: every call, byte and field the same.
#include <gtest/gtest.h>

#include "tests/library/scale_harness.h"

namespace cvt::test {

namespace {

enum class Sort : std::uint8_t { Up, Down, Smooth };

struct Kind {
  Sort sort;
  bool rowsMayWrap;       // bands may cross image line 65535
  std::uint8_t prepared;  // depth that a kernel takes, or 0
};

std::uint16_t Word(std::int64_t value) { return static_cast<std::uint16_t>(value); }

int Target(Dice& dice, Sort sort, int from) {
  const bool up = sort == Sort::Up || (sort == Sort::Smooth && dice.OneIn(2));
  if (!up) return dice.OneIn(12) ? from : dice.OneIn(4) ? dice.Between(from / 8, from) : dice.Between(0, from);
  return from + dice.Of({1, 1, from, 2 * from + 1, dice.Between(1, 40), dice.OneIn(6) ? 0 : from / 2 + 1});
}

void AddPixels(Dice& dice, BandPlan& plan) {
  plan.pixels.resize(PixelBytes(plan.planes, plan.width, plan.lineCount, plan.depth));
  const int style = dice.Between(0, 2), level = dice.Between(0, 255);
  for (std::uint8_t& b : plan.pixels)
    b = static_cast<std::uint8_t>(style == 0 || (style == 1 && dice.OneIn(4)) ? dice.Between(0, 255) : level);
}

void AddImage(Dice& dice, ScaleCase& made, bool planes, const Kind& kind) {
  const int width = dice.OneIn(30) ? dice.Between(41, 400) : dice.Between(1, 40);
  const int depth = made.source.bitsPerPixel;
  int top = dice.OneIn(2) ? 0 : dice.Of({8, 1000, 32760, 40000, kind.rowsMayWrap ? 65530 : 65400});
  const int left = dice.OneIn(2) ? 0 : dice.Of({3, 90, 30000, 32769, 65530});
  for (int b = dice.Between(1, 4); b > 0; --b) {
    const int lines = dice.Between(1, 9);
    made.bands.push_back(
        {planes, Word(dice.OneIn(40) ? left + 1 : left), Word(top), Word(width), Word(lines), Word(depth), {}});
    AddPixels(dice, made.bands.back());
    top += lines + (dice.OneIn(30) ? 2 : 0);
  }
  made.capacity = Word(width + dice.Of({2, 2, 12}));
  const int lines = top - made.bands[0].top;
  made.source.imageWidth = dice.OneIn(3) ? dice.Between(1, 3 * width) : width;
  made.source.imageHeight = dice.OneIn(3) ? dice.Between(1, 3 * lines) : lines;
}

// Sizes near the edges of 16 and 32 bits; few enough output pixels all the same.
void Exaggerate(Dice& dice, ScaleCase& made, Sort sort) {
  const int from = dice.Of({3000, 30000, 32767, 32768, 40000});
  const int to = sort == Sort::Down ? dice.Between(from / 8, from) : from + dice.Of({1, 1000, 25535, 40000});
  made.source.imageHeight = from;
  made.destination.imageHeight = to;
  if (sort == Sort::Smooth) return;
  made.source.imageWidth = from;
  made.destination.imageWidth = to;
}

ScaleCase RandomScale(Dice& dice, bool planes, const Kind& kind) {
  ScaleCase made;
  static_cast<Case&>(made) = PlainCase(planes, 1, 8, 1, 1);
  made.bands.clear();
  tagIGFD &source = made.source, &destination = made.destination;
  const bool palette = kind.sort == Sort::Smooth && kind.prepared == 0 && dice.OneIn(2);
  source.bitsPerPixel = static_cast<std::uint8_t>(dice.Between(1, palette ? 16 : 32));
  if (kind.prepared != 0) source.bitsPerPixel = kind.prepared;
  source.colorFlags = palette ? 0x80 : 0x7F;
  AddImage(dice, made, planes, kind);
  destination.imageWidth = Target(dice, kind.sort, source.imageWidth);
  destination.imageHeight = Target(dice, kind.sort, source.imageHeight);
  if (dice.OneIn(8)) Exaggerate(dice, made, kind.sort);
  source.originX = dice.Of<std::int16_t>({0, 0, 5, -7, 32767, -32768});
  source.originY = dice.Of<std::int16_t>({0, 0, 5, -7, 32767, -32768});
  destination.originX = dice.Of<std::int16_t>({0, 9, -300});
  destination.originY = dice.Of<std::int16_t>({0, 9, -300});
  destination.keepColor = dice.Of<std::int16_t>({0, 1, -1, 255});
  destination.bitsPerPixel = dice.Of<std::uint8_t>({1, 8, 8, 8, 24, 15, 2});
  source.options = 0xFFFF;
  made.grayPalette = dice.Of<std::uint8_t>({0, 0, 1, 2});
  made.scaleDownMethod = dice.Of<std::uint8_t>({0, 1, 2, 2});
  made.linePixels = static_cast<std::size_t>(destination.imageWidth);
  const int row = 4 * std::max<int>(made.bands[0].width, int{destination.imageWidth});
  made.bandLimit = dice.OneIn(2) ? Word(65535) : Word(dice.Between(dice.OneIn(4) ? 2 : row, 4 * row));
  made.script.runs = dice.Of({Runs::PerPixel, Runs::Merged, Runs::WithEmpty, Runs::OneShort});
  if (dice.OneIn(6)) made.script.failAllocAt = dice.Between(1, 12);
  if (dice.OneIn(12)) made.script.failDupAt = dice.Between(1, 2);
  if (dice.OneIn(8)) made.script.convertFailsAt = dice.Between(1, 5);
  made.script.replacesBand = dice.OneIn(6);
  made.script.scribbles = dice.OneIn(3);
  made.script.changesSettings = dice.OneIn(8);
  if (dice.OneIn(40)) made.operationCode = dice.Of<std::uint16_t>({1, 19, 22, 0x114, 0x115});
  return made;
}

std::string Sizes(const ScaleCase& c) {
  const auto text = [](std::int64_t v) { return " " + std::to_string(v); };
  return text(c.source.imageWidth) + text(c.source.imageHeight) + " to" + text(c.destination.imageWidth) +
         text(c.destination.imageHeight) + ", limit" + text(c.bandLimit) + ", method" + text(c.scaleDownMethod);
}

void Compare(const ScaleCase& what, const Scaler& scaler, int number) {
  const std::string difference = Difference(RunScale(what, scaler.library), RunScale(what, scaler.twin));
  ASSERT_EQ(difference, "") << scaler.name << ", case " << number << " of seed " << Seed() << ": "
                            << Describe(what) << Sizes(what);
}

TEST(ScaleDifferential, Drivers) {
  static constexpr Kind kKinds[] = {{Sort::Up, true, 0},
                                    {Sort::Up, false, 0},
                                    {Sort::Down, true, 0},
                                    {Sort::Down, true, 0},
                                    {Sort::Smooth, false, 0}};
  for (std::size_t k = 0; k < kScaleDrivers.size(); ++k)
    for (int i = 0; i < Rounds(250) && !HasFatalFailure(); ++i) {
      Dice dice(static_cast<std::uint32_t>(i));
      const bool planes = dice.OneIn(2);
      Compare(RandomScale(dice, planes, kKinds[k]), kScaleDrivers[k], i);
    }
}

TEST(ScaleDifferential, Workers) {
  for (std::size_t k = 0; k < kScaleWorkers.size(); ++k)
    for (int i = 0; i < Rounds(100) && !HasFatalFailure(); ++i) {
      Dice dice(static_cast<std::uint32_t>(i));
      const bool enlarges = k < 4 || dice.OneIn(6);
      ScaleCase what = RandomScale(dice, k % 2 == 0, {enlarges ? Sort::Up : Sort::Down, k >= 4, 0});
      what.operationCode = 0;
      if (k < 4) what.source.clipX0 = dice.Of<std::int16_t>({0, 0, 1, 2, 7, -1});
      if (k != 2 && k != 3 && dice.OneIn(3))
        what.accumulator = static_cast<std::uint32_t>(dice.Between(0, what.source.imageHeight - 1));
      Compare(what, kScaleWorkers[k], i);
    }
}

TEST(ScaleDifferential, SmoothWorkers) {
  for (std::size_t k = 0; k < kSmoothWorkers.size(); ++k)
    for (int i = 0; i < Rounds(200) && !HasFatalFailure(); ++i) {
      Dice dice(static_cast<std::uint32_t>(i));
      ScaleCase what = RandomScale(dice, k == 0,
                                   {Sort::Smooth, false,
                                    static_cast<std::uint8_t>(k < 2    ? 0
                                                              : k == 2 ? 8
                                                                       : 32)});
      if (k < 2) what.source.clipX0 = dice.Of<std::int16_t>({0, 0, 1, 3, -1});
      Compare(what, kSmoothWorkers[k], i);
    }
}

// Outputs that fill several sub-bands, and lines that fit none.
TEST(ScaleDifferential, LinesNearTheSizeOfASubBand) {
  for (const bool planes : {false, true})
    for (const int to : {2031, 16249, 16250, 16251, 65000, 70000})
      for (const std::uint8_t depth : std::initializer_list<std::uint8_t>{1, 7, 8, 32}) {
        ScaleCase what;
        static_cast<Case&>(what) = PlainCase(planes, depth, 8, 50, 7, 0x5C);
        what.source.imageWidth = 50;
        what.destination.imageWidth = to;
        what.script.runs = Runs::Merged;
        Compare(what, kScaleDrivers[0], to);
        what.bands[0].width = what.capacity = Word(to);
        what.bands[0].pixels.assign(40000, 0x5C);
        what.source.imageHeight = 7;
        what.destination.imageHeight = 20;
        Compare(what, kScaleDrivers[1], to);
      }
}

// Wide lines, of which the colour kernel clears fewer sums than there are; some of them fit no sub-band.
TEST(ScaleDifferential, SmoothLinesOfManyPixels) {
  for (const std::size_t kernel : {2u, 3u})
    for (const int to : {16250, 16383, 16384, 20000, 66000})
      for (const std::uint16_t lines : std::initializer_list<std::uint16_t>{1, 9}) {
        const std::uint8_t depth = kernel == 2 ? 8 : 32;
        ScaleCase what;
        static_cast<Case&>(what) = PlainCase(false, depth, 8, 30, lines, 0x5C);
        what.source.imageWidth = 30;
        what.source.imageHeight = 9;
        what.destination.imageWidth = to;
        what.destination.imageHeight = 1;
        what.capacity = 32;
        what.linePixels = static_cast<std::size_t>(to);
        Compare(what, kSmoothWorkers[kernel], to);
      }
}

}  // namespace

}  // namespace cvt::test

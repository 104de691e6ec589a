// The scalers against their twins, on random images in fresh worlds: every call, byte and field the same.
#include <gtest/gtest.h>

#include "tests/library/scale_cases.h"

namespace cvt::test {

namespace {

std::uint16_t Word(std::int64_t value) { return static_cast<std::uint16_t>(value); }

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

void CompareAll(const std::vector<Scaler>& scalers, ScaleCase (*random)(Dice& dice, std::size_t k), int rounds) {
  for (std::size_t k = 0; k < scalers.size(); ++k)
    for (int i = 0; i < Rounds(rounds) && !::testing::Test::HasFatalFailure(); ++i) {
      Dice dice(static_cast<std::uint32_t>(i));
      Compare(random(dice, k), scalers[k], i);
    }
}

TEST(ScaleDifferential, Drivers) { CompareAll(kScaleDrivers, RandomForDriver, 250); }
TEST(ScaleDifferential, Workers) { CompareAll(kScaleWorkers, RandomForWorker, 100); }
TEST(ScaleDifferential, SmoothWorkers) { CompareAll(kSmoothWorkers, RandomForSmoothWorker, 200); }

// Clipped or not, scaled in both directions or smoothly, then reduced: Cvtr2r from end to end.
TEST(ScaleDifferential, ChainsOfTheDispatcher) {
  for (int i = 0; i < Rounds(600) && !HasFatalFailure(); ++i) {
    Dice dice(static_cast<std::uint32_t>(i));
    const ChainCase what = RandomChain(dice);
    ASSERT_EQ(Difference(RunChain(what, Cvtr2r), RunChain(what, RefWholeCvtr2r)), "")
        << "case " << i << " of seed " << Seed() << ": " << Describe(what.image) << Sizes(what.image);
  }
}

// Outputs that fill several sub-bands, and lines that fit none.
TEST(ScaleDifferential, LinesNearTheSizeOfASubBand) {
  for (const bool planes : {false, true})
    for (const int to : {2031, 16249, 16250, 16251, 65000, 65002, 70000})
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

// Rows of more than 16 bits of bytes. The bands hold less than their headers say.
TEST(ScaleDifferential, ReducedRowsBeyondTheSizesThatFit) {
  for (const std::size_t driver : {2u, 3u})
    for (const std::uint8_t method : std::initializer_list<std::uint8_t>{0, kDecimate}) {
      ScaleCase what;
      static_cast<Case&>(what) = PlainCase(false, 32, 8, 20000, 0);
      what.bands[0].lineCount = 4;
      what.bands[0].pixels.assign(60000, 0x5C);
      what.source.imageWidth = 20000;
      what.source.imageHeight = 4;
      what.destination.imageWidth = driver == 2 ? 17000 : 20000;
      what.destination.imageHeight = driver == 2 ? 4 : 3;
      what.linePixels = 20000;
      what.scaleDownMethod = method;
      what.script.runs = Runs::Merged;
      Compare(what, kScaleDrivers[driver], method);
    }
}

// Planes compare with 16 bits of the height, packed pixels with all of it.
TEST(ScaleDifferential, EnlargedHeightsBeyondTheSizesThatFit) {
  for (const std::size_t worker : {2u, 3u}) {
    ScaleCase what;
    static_cast<Case&>(what) = PlainCase(worker == 2, 1, 8, 2, 4, 0x5C);
    what.source.imageHeight = 70000;
    what.destination.imageHeight = 70001;
    Compare(what, kScaleWorkers[worker], 0);
  }
}

// The first band ends at output line 65536, which is 0: the second is no image's first band for all that.
TEST(ScaleDifferential, EnlargedImagesThatPassTheLastLine) {
  ScaleCase what;
  static_cast<Case&>(what) = PlainCase(false, 8, 8, 2, 4, 0x5C);
  what.bands[0].top = 32764;
  what.bands.push_back(what.bands[0]);
  what.bands[1].top = 32766;
  what.source.imageHeight = 1;
  what.destination.imageHeight = 2;
  Compare(what, kScaleDrivers[1], 0);
}

// Runs of 2800, 63000 and 4200 pixels in a band of 4464: the second one's end passes 65535.
TEST(ScaleDifferential, EnlargedLinesBeyondTheSizesThatFit) {
  for (const bool planes : {false, true}) {
    ScaleCase what;
    static_cast<Case&>(what) = PlainCase(planes, 1, 8, 50, 1);
    what.bands[0].pixels = {0xC0, 0, 0, 0, 0, 0x01, 0xC0, 0};
    what.source.imageWidth = 50;
    what.destination.imageWidth = 70000;
    what.script.runs = Runs::Merged;
    Compare(what, kScaleDrivers[0], 70000);
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

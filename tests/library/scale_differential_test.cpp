// The scalers, and whole chains, against their twins.
#include "tests/library/scale_cases.h"
#include "tests/library/sweep.h"

namespace cvt::test {

namespace {

void Compare(const ScaleCase& what, const Scaler& scaler) {
  SCOPED_TRACE(scaler.name);
  Compare(what, RunScale(what, scaler.library), RunScale(what, scaler.twin));
}

void CompareAll(const std::vector<Scaler>& scalers, ScaleCase (*random)(Dice& dice, std::size_t k), int rounds) {
  for (std::size_t k = 0; k < scalers.size(); ++k)
    Sweep(rounds, [&](Dice& dice) { Compare(random(dice, k), scalers[k]); });
}

TEST(ScaleDifferential, Drivers) { CompareAll(kScaleDrivers, RandomForDriver, 250); }
TEST(ScaleDifferential, Workers) { CompareAll(kScaleWorkers, RandomForWorker, 100); }
TEST(ScaleDifferential, SmoothWorkers) { CompareAll(kSmoothWorkers, RandomForSmoothWorker, 200); }

// Clipped or not, scaled in both directions or smoothly, then reduced: Cvtr2r from end to end.
TEST(ScaleDifferential, ChainsOfTheDispatcher) {
  Sweep(1500, [](Dice& dice) {
    const ChainCase what = RandomChain(dice);
    Compare(what.image, RunChain(what, Cvtr2r), RunChain(what, RefWholeCvtr2r));
  });
}

// Sizes near the edges of 16 bits. Bands whose pixels do not fit hold less than their headers say.
struct EdgeCase {
  const char* what;
  const Scaler& scaler;
  Case image;
  int toWidth, toHeight;
};

Case Image(bool planes, int depth, int width, int lines, int imageHeight = 0) {
  Case made = PlainCase(planes, depth, 8, width, 0);
  made.bands[0].lineCount = Word(lines);
  made.bands[0].pixels.assign(60000, 0x5C);
  made.source.imageWidth = width;
  made.source.imageHeight = imageHeight == 0 ? lines : imageHeight;
  made.script.runs = Runs::Merged;
  return made;
}

Case Decimated(Case made) {
  made.scaleDownMethod = kDecimate;
  return made;
}

// The first band ends at output line 65536, which is 0: the second is no image's first band for all that.
Case PastTheLastLine() {
  Case made = Image(false, 8, 2, 4, 1);
  made.bands[0].top = 32764;
  made.bands.push_back(made.bands[0]);
  made.bands[1].top = 32766;
  return made;
}

Case At(std::uint16_t top, Case made) {
  made.bands[0].top = top;
  return made;
}

// Runs of 2800, 63000 and 4200 pixels in a band of 4464: the second one's end passes 65535.
Case ThreeRuns(bool planes) {
  Case made = Image(planes, 1, 50, 1);
  made.bands[0].pixels = {0xC0, 0, 0, 0, 0, 0x01, 0xC0, 0};
  return made;
}

TEST(ScaleDifferential, SizesAtTheEdges) {
  const Scaler &upWidth = kScaleDrivers[0], &upHeight = kScaleDrivers[1], &downWidth = kScaleDrivers[2],
               &downHeight = kScaleDrivers[3];
  std::vector<EdgeCase> cases = {
      {"reduced rows beyond 16 bits", downWidth, Image(false, 32, 20000, 4), 17000, 4},
      {"decimated rows beyond 16 bits", downWidth, Decimated(Image(false, 32, 20000, 4)), 17000, 4},
      {"rows of reduced heights beyond 16 bits", downHeight, Image(false, 32, 20000, 4), 20000, 3},
      {"rows of decimated heights beyond 16 bits", downHeight, Decimated(Image(false, 32, 20000, 4)), 20000, 3},
      {"merged lines without a pixel", downHeight, Image(false, 8, 0, 4), 1, 2},
      {"merged to line 65535: nothing is written", downHeight, At(65533, Image(false, 8, 2, 1, 2)), 2, 1},
      {"planes compare with 16 bits of the height", kScaleWorkers[2], Image(true, 1, 2, 4, 70000), 2, 70001},
      {"packed pixels with all of it", kScaleWorkers[3], Image(false, 1, 2, 4, 70000), 2, 70001},
      {"enlarged past the last line", upHeight, PastTheLastLine(), 2, 2},
      {"enlarged lines beyond the widest, planes", upWidth, ThreeRuns(true), 70000, 1},
      {"enlarged lines beyond the widest, packed", upWidth, ThreeRuns(false), 70000, 1}};
  for (const bool planes : {false, true})
    for (const int to : {2031, 16249, 16250, 16251, 65000, 65002, 70000})
      for (const int depth : {1, 7, 8, 32}) {
        cases.push_back({"a line near the size of a sub-band", upWidth, Image(planes, depth, 50, 7), to, 7});
        cases.push_back({"lines near the size of a sub-band", upHeight, Image(planes, depth, to, 7), to, 20});
      }
  // The colour kernel clears fewer sums than such lines have; some of them fit no sub-band.
  for (const int to : {16250, 16383, 16384, 20000, 66000})
    for (const int lines : {1, 9}) {
      cases.push_back({"smooth gray lines", kSmoothWorkers[2], Image(false, 8, 30, lines, 9), to, 1});
      cases.push_back({"smooth lines in colour", kSmoothWorkers[3], Image(false, 32, 30, lines, 9), to, 1});
    }
  for (EdgeCase& c : cases) {
    SCOPED_TRACE(c.what);
    c.image.destination.imageWidth = c.toWidth;
    c.image.destination.imageHeight = c.toHeight;
    c.image.capacity = Word(c.image.capacity + 2);
    c.image.linePixels = static_cast<std::size_t>(c.toWidth);
    Compare(c.image, c.scaler);
  }
}

// They are handed on as they are, or end where they are averaged.
TEST(ScaleDifferential, BandsWithoutALine) {
  for (const bool planes : {false, true})
    for (const Scaler& scaler : kScaleDrivers) {
      Case empty = Image(planes, 8, 5, 0, 5);
      const int to = scaler.name.find("Down") == std::string::npos ? 9 : 2;
      empty.destination.imageWidth = empty.destination.imageHeight = to;
      empty.capacity = 20;
      empty.linePixels = 20;
      Compare(empty, scaler);
      EXPECT_EQ(RunScale(empty, scaler.library).statuses, (std::vector<std::int16_t>{0})) << scaler.name;
    }
}

}  // namespace

}  // namespace cvt::test

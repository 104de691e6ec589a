// Setting up conversions: what the context holds, what is refused, and that nothing is left behind.

#include "host/conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/heap.h"
#include "host/op_list.h"
#include "host/uniform_cube.h"
#include "setups.h"

namespace cvt::host {
namespace {

TEST(Conversion, SetsEveryFieldThatCvtr2rReads) {
  const tagIGFD source = Image(colorful, 2), destination = Image(shuffled, 2);
  ConversionSetup setup = SetupOf(source, destination);
  setup.bandLimit = 4321;
  const Context context = Open(setup);
  EXPECT_TRUE(context->runCount == 100 && context->convertProc == &Cvtr2r && context->gammaActive == 0);
  EXPECT_EQ((*context->next->stage)->bandLimit, 4321);
  const std::int16_t* errors = context->errorRow;
  ASSERT_GE(SioSizeSMem(context->errorRow), 3U * 100 * 2);
  EXPECT_EQ(std::count(errors, errors + 300, 0), 300);

  const std::uint32_t indices[] = {0, 1, 0x101, 2, 1};
  std::memcpy(context->values, indices, sizeof indices);
  context->runCount = 4;
  CvtSnap(context.get());
  const std::uint32_t snapped[] = {1, 0, 0, 2, 1};  // the last is no run and stays
  EXPECT_EQ(std::memcmp(context->values, snapped, sizeof snapped), 0);
}

TEST(Conversion, TellsWhetherColorsAgreeAndAreGray) {
  const struct {
    const char* what;
    tagIGFD source, destination;
    int same, gray;
  } cases[] = {{"the same colors", Image(colorful, 2), Image(colorful, 2), 1, 0},
               {"the same in another order", Image(colorful, 2), Image(shuffled, 2), 0, 0},
               {"another depth", Image(colorful, 1), Image(colorful, 2), 0, 0},
               {"direct into palette", Image(colorful, 24, 0), Image(colorful, 2), 0, 0},
               {"direct into direct", Image(colorful, 24, 0), Image(colorful, 24, 0), 1, 0},
               {"black and white", Image(blackWhite, 1), Image(blackWhite, 1), 1, 1},
               {"swapped", Image(blackWhite, 1), Image(whiteBlack, 1), 0, 1},
               {"dark and light in the same order", Image(redYellow, 1), Image(blackWhite, 1), 1, 1}};
  for (const auto& c : cases) {
    const Context context = Open(SetupOf(c.source, c.destination));
    EXPECT_EQ(context->sameColorMap, c.same) << c.what;
    EXPECT_EQ(context->grayPalette, c.gray) << c.what;
  }
}

TEST(Conversion, AppliesItsToneCurveToDirectColor) {
  const tagIGFD source = Image(colorful, 24, 0), destination = Image(colorful, 2);
  ConversionSetup setup = SetupOf(source, destination);
  setup.gamma = 2.0;
  const Context context = Open(setup);
  EXPECT_TRUE(context->gammaActive != 0);
  IRGB color{64, 255, 1};
  CvtAdjustGammaValue(context.get(), &color);
  EXPECT_EQ(color, (IRGB{128, 255, 16}));
}

TEST(Conversion, RefusesWhatItCannotMeet) {
  tagIGFD good = Image(colorful, 2), noPalette = good, noBits = good, deep = good, tooWide = good;
  noPalette.palette = nullptr;
  noBits.bitsPerPixel = 0;
  deep.bitsPerPixel = 9;
  tooWide.imageWidth = 101;
  const auto refuses = [&](auto change) {
    ConversionSetup setup = SetupOf(good, good);
    change(setup);
    return Open(setup) == nullptr;
  };
  EXPECT_TRUE(refuses([&](ConversionSetup& s) { s.source = nullptr; }));
  EXPECT_TRUE(refuses([&](ConversionSetup& s) { s.source = &noPalette; }));
  EXPECT_TRUE(refuses([&](ConversionSetup& s) { s.destination = &noBits; }));
  EXPECT_TRUE(refuses([&](ConversionSetup& s) { s.destination = &deep; }));
  EXPECT_TRUE(refuses([](ConversionSetup& s) { s.lineCapacity = 0; }));
  EXPECT_TRUE(refuses([](ConversionSetup& s) { s.next = nullptr; }));
  EXPECT_TRUE(refuses([](ConversionSetup& s) { s.bandLimit = 0; }));
  EXPECT_TRUE(refuses([&](ConversionSetup& s) { s.destination = &tooWide; }));
  const std::uint8_t matrix[64] = {};
  const auto refusesMatrix = [&](std::uint8_t method, std::uint8_t width, std::uint8_t height) {
    return refuses([&](ConversionSetup& s) {
      s.halftoneMethod = method;
      s.ditherMatrix = matrix;
      s.ditherWidth = width;
      s.ditherHeight = height;
    });
  };
  EXPECT_TRUE(refusesMatrix(0, 0, 8) && refusesMatrix(0, 8, 0) && refusesMatrix(kFixedBlock, 7, 9));
  for (double gamma : {0.0, -1.0, std::nan(""), static_cast<double>(INFINITY)})
    EXPECT_TRUE(refuses([gamma](ConversionSetup& s) { s.gamma = gamma; })) << gamma;
}

// Opens with one allocation after the other failing, until none does; how many there are.
int AllocationsOf(const ConversionSetup& setup) {
  const HeapUse before = heapUse;
  for (int failures = 0;; ++failures) {
    heapUse.failIn = failures + 1;
    Context context = Open(setup);
    const bool untouched = heapUse.failIn != 0;
    heapUse.failIn = 0;
    EXPECT_EQ(context != nullptr, untouched) << failures;
    context.reset();
    EXPECT_EQ(heapUse.liveBlocks, before.liveBlocks) << failures;
    EXPECT_EQ(heapUse.liveBytes, before.liveBytes) << failures;
    if (untouched) return failures;
  }
}

TEST(Conversion, LeavesNothingWhicheverAllocationFails) {
  const Colors cube = UniformCube(2);
  const tagIGFD source = Image(colorful, 2), same = Image(shuffled, 2);
  tagIGFD taller = Image(cube, 3);
  taller.imageHeight = 2;
  EXPECT_EQ(AllocationsOf(SetupOf(source, same)), 6);  // context, two run arrays, state, error row, search table
  ConversionSetup setup = SetupOf(source, taller);
  EXPECT_EQ(AllocationsOf(setup), 6 + 4);  // and two held lines, two smooth ones
  setup.halftoneMethod = 0;
  EXPECT_EQ(AllocationsOf(setup), 6 + 4 + 3);  // and matrix, steps, cube table
}

// One band of gray 0, 32, 64 … 224, 255 through the whole chain, onto the destination's list.
TEST(Conversion, PutsTheBandsOfAPlainConversionOnTheDestinationsList) {
  const HeapUse before = heapUse;
  Colors ramp(256);
  for (std::uint8_t v = 255; v > 0; --v) ramp[v] = {v, v, v};
  tagOpList list;
  tagIGFD source = Image(ramp, 8), destination = Image(blackWhite, 1);
  destination.opList = &list;
  auto* band = static_cast<tagRasterPacked*>(SioCreateOp(kPackedBand, kBandHeaderBytes + 10));
  *band = {0, 0, 9, 1, 8, 0};
  const std::uint8_t pixels[10] = {0, 32, 64, 96, 128, 160, 192, 224, 255, 0};
  std::memcpy(band + 1, pixels, sizeof pixels);

  tagCRLA* context = CvtOpenr2r(&source, &destination);
  EXPECT_EQ(Cvtr2r(&band, &source, &destination, context), kCvtOk);
  CvtCloser2r(context);
  SioFreeSMem(reinterpret_cast<std::uint8_t*>(band) - kBandPrefixBytes);

  ASSERT_EQ(list.count, 1U);
  const auto* result = static_cast<const tagRasterPacked*>(list.operations[0]);
  EXPECT_TRUE(result->width == 9 && result->lineCount == 1 && result->bitsPerPixel == 1);
  const auto* bits = reinterpret_cast<const std::uint8_t*>(result + 1);
  EXPECT_EQ(bits[0], 0x0F);
  EXPECT_EQ(bits[1] & 0x80, 0x80);
  EmptyOpList(&list);
  EXPECT_EQ(heapUse.liveBlocks, before.liveBlocks);

  source.imageWidth = destination.imageWidth = 65537;  // which 16 bits see as 1
  EXPECT_EQ(CvtOpenr2r(&source, &destination), nullptr);
}

}  // namespace
}  // namespace cvt::host

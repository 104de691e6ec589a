// What a context gets for ordered dither and for scaling, and when.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "host/uniform_cube.h"
#include "setups.h"

namespace cvt::host {
namespace {

TEST(ConversionTables, OfOrderedDitherAreThereWhenItIs) {
  Colors cube = UniformCube(2), notQuite = cube;
  notQuite[7].blue = 1;
  const tagIGFD source = Image(colorful, 24, 0);
  const struct {
    const char* what;
    Colors& colors;
    std::uint8_t bits, flags, method;
    bool matrix, cubeTable;
    std::size_t stepBytes;
  } cases[] = {{"ordered, four colors", colorful, 2, kIndexedColor, 0, true, false, 32},
               {"fixed block, black and white", blackWhite, 1, kIndexedColor, kFixedBlock, true, false, 4},
               {"ordered, a cube", cube, 3, kIndexedColor, 0, true, true, 64},
               {"ordered, not quite a cube", notQuite, 3, kIndexedColor, 0, true, false, 64},
               {"nearest, a cube", cube, 3, kIndexedColor, kNearest, false, false, 0},
               {"diffusion, a cube", cube, 3, kIndexedColor, kDiffusion, false, false, 0},
               {"ordered, direct color", colorful, 24, 0, 0, false, false, 0}};
  for (const auto& c : cases) {
    const tagIGFD destination = Image(c.colors, c.bits, c.flags);
    ConversionSetup setup = SetupOf(source, destination);
    setup.halftoneMethod = c.method;
    tagCRLA* context = OpenConversion(setup);
    ASSERT_NE(context, nullptr) << c.what;
    ASSERT_EQ(context->ditherMatrix != nullptr, c.matrix) << c.what;
    ASSERT_EQ(context->ditherSteps != nullptr, c.matrix) << c.what;
    EXPECT_EQ(context->cubeTable != nullptr, c.cubeTable) << c.what;
    if (c.matrix) {
      EXPECT_TRUE(context->ditherWidth == 8 && context->ditherHeight == 8) << c.what;
      EXPECT_TRUE(context->ditherMatrix[0] == 1 && context->ditherMatrix[1] == 129) << c.what;  // ranks 0, 32
      EXPECT_EQ(SioSizeSMem(context->ditherSteps), c.stepBytes) << c.what;
    }
    for (std::uint8_t i = 0; c.cubeTable && i < 8; ++i) EXPECT_EQ(context->cubeTable[i], i);
    CloseConversion(context);
  }
}

TEST(ConversionTables, HoldACopyOfTheMatrix) {
  const tagIGFD source = Image(colorful, 24, 0), destination = Image(colorful, 2);
  std::uint8_t matrix[] = {0, 128, 255, 7, 8, 9};
  ConversionSetup setup = SetupOf(source, destination);
  setup.halftoneMethod = 0;
  setup.ditherMatrix = matrix;
  setup.ditherWidth = 3;
  setup.ditherHeight = 2;
  tagCRLA* context = OpenConversion(setup);
  ASSERT_NE(context, nullptr);
  matrix[0] = 77;
  const std::uint8_t copied[] = {0, 128, 255, 7, 8, 9};
  EXPECT_TRUE(context->ditherWidth == 3 && context->ditherHeight == 2);
  EXPECT_EQ(std::memcmp(context->ditherMatrix, copied, sizeof copied), 0);
  CloseConversion(context);
}

bool IsZeroed(void* block) {
  const auto* bytes = static_cast<const std::uint8_t*>(block);
  return std::all_of(bytes, bytes + SioSizeSMem(block), [](std::uint8_t b) { return b == 0; });
}

TEST(ConversionTables, HaveLinesWhereBandsMayBeScaled) {
  const tagIGFD same = Image(colorful, 2);
  tagIGFD wider = same, shorter = same, moved = same, lowered = same, clipped = same;
  wider.imageWidth = 100;
  shorter.imageHeight = 7;
  moved.originX = 1;
  lowered.originY = -1;
  clipped.options = kClipOption;
  const tagIGFD* sources[] = {&wider, &shorter, &moved, &lowered, &clipped, &same};
  for (const tagIGFD* source : sources) {
    ConversionSetup setup = SetupOf(*source, same);
    setup.scaleDownMethod = kDecimate;
    tagCRLA* context = OpenConversion(setup);
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(context->scaleDownMethod, kDecimate);
    if (source == &same) {
      EXPECT_TRUE(context->ownedBuffer1 == nullptr && context->ownedBuffer2 == nullptr);
      EXPECT_TRUE(context->smoothCurrentLine == nullptr && context->smoothSums == nullptr);
    } else {
      ASSERT_TRUE(context->ownedBuffer1 != nullptr && context->ownedBuffer2 != nullptr);
      ASSERT_TRUE(context->smoothCurrentLine != nullptr && context->smoothSums != nullptr);
      EXPECT_GE(SioSizeSMem(context->ownedBuffer1), SioSizeSMem(context->runLengths));
      EXPECT_GE(SioSizeSMem(context->ownedBuffer2), SioSizeSMem(context->values));
      EXPECT_GE(SioSizeSMem(context->smoothCurrentLine), 4U * 100);
      EXPECT_GE(SioSizeSMem(context->smoothSums), 12U * 100);
      EXPECT_TRUE(IsZeroed(context->ownedBuffer1) && IsZeroed(context->ownedBuffer2));
      EXPECT_TRUE(IsZeroed(context->smoothCurrentLine) && IsZeroed(context->smoothSums));
    }
    CloseConversion(context);
  }
}

}  // namespace
}  // namespace cvt::host

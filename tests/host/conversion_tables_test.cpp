// What a context gets for ordered dither and for scaling, and when.

#include <gtest/gtest.h>

#include <algorithm>

#include "host/uniform_cube.h"
#include "setups.h"

namespace cvt::host {
namespace {

TEST(ConversionTables, OfOrderedDitherAreThereWhenItIs) {
  const Colors cube = UniformCube(2);
  Colors notQuite = cube;
  notQuite[7].blue = 1;
  const tagIGFD source = Image(colorful, 24, 0);
  const struct {
    const char* what;
    tagIGFD destination;
    std::uint8_t method;
    bool matrix, cubeTable;
    std::size_t stepBytes;
  } cases[] = {{"ordered, four colors", Image(colorful, 2), 0, true, false, 32},
               {"fixed block, black and white", Image(blackWhite, 1), kFixedBlock, true, false, 4},
               {"ordered, a cube", Image(cube, 3), 0, true, true, 64},
               {"ordered, not quite a cube", Image(notQuite, 3), 0, true, false, 64},
               {"nearest, a cube", Image(cube, 3), kNearest, false, false, 0},
               {"diffusion, a cube", Image(cube, 3), kDiffusion, false, false, 0},
               {"ordered, direct color", Image(colorful, 24, 0), 0, false, false, 0}};
  for (const auto& c : cases) {
    ConversionSetup setup = SetupOf(source, c.destination);
    setup.halftoneMethod = c.method;
    const Context context = Open(setup);
    ASSERT_EQ(context->ditherMatrix != nullptr, c.matrix) << c.what;
    ASSERT_EQ(context->ditherSteps != nullptr, c.matrix) << c.what;
    EXPECT_EQ(context->cubeTable != nullptr, c.cubeTable) << c.what;
    for (std::uint8_t i = 0; c.cubeTable && i < 8; ++i) EXPECT_EQ(context->cubeTable[i], i);
    if (!c.matrix) continue;
    EXPECT_TRUE(context->ditherWidth == 8 && context->ditherHeight == 8) << c.what;
    EXPECT_TRUE(context->ditherMatrix[0] == 1 && context->ditherMatrix[1] == 129) << c.what;  // ranks 0, 32
    EXPECT_EQ(SioSizeSMem(context->ditherSteps), c.stepBytes) << c.what;
  }
}

TEST(ConversionTables, HaveLinesWhereBandsMayBeScaled) {
  const tagIGFD same = Image(colorful, 2);
  tagIGFD wider = same, shorter = same, moved = same, lowered = same, clipped = same;
  wider.imageWidth = 100;
  shorter.imageHeight = 7;
  moved.originX = 1;
  lowered.originY = -1;
  clipped.options = kClipOption;
  const tagIGFD* const sources[] = {&wider, &shorter, &moved, &lowered, &clipped, &same};
  for (const tagIGFD* source : sources) {
    ConversionSetup setup = SetupOf(*source, same);
    setup.scaleDownMethod = kDecimate;
    const Context context = Open(setup);
    EXPECT_EQ(context->scaleDownMethod, kDecimate);
    const struct {
      void* block;
      std::uint32_t bytes;
    } lines[] = {{context->ownedBuffer1, SioSizeSMem(context->runLengths)},
                 {context->ownedBuffer2, SioSizeSMem(context->values)},
                 {context->smoothCurrentLine, 4 * 100},
                 {context->smoothSums, 12 * 100}};
    for (const auto& line : lines) {
      ASSERT_EQ(line.block != nullptr, source != &same);
      if (line.block == nullptr) continue;
      EXPECT_GE(SioSizeSMem(line.block), line.bytes);
      const auto* bytes = static_cast<const std::uint8_t*>(line.block);
      EXPECT_EQ(std::count(bytes, bytes + line.bytes, 0), line.bytes);
    }
  }
}

}  // namespace
}  // namespace cvt::host

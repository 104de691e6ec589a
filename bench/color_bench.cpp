// Colour to palettes: diffusion by the short-cut and the general path, ordered dither by each of its tables.

#include "bench/bench.h"
#include "host/uniform_cube.h"

namespace cvt::bench {
namespace {

const Image kGray{kWidth, kHeight, 8, GrayRamp(8)};
const Image kColor{kWidth, kHeight, kDirectDepth};

BENCHMARK_CAPTURE(WholePath, color_to_256_diffusion_short_cut, kColor,
                  Settings{.depth = 8, .palette = Colors(256), .halftone = Halftone::Diffusion});
BENCHMARK_CAPTURE(WholePath, color_to_16_diffusion_general, kColor,
                  Settings{.depth = 4, .palette = Colors(16), .halftone = Halftone::Diffusion});
BENCHMARK_CAPTURE(WholePath, color_to_256_ordered_search, kColor,
                  Settings{.depth = 8, .palette = Colors(256), .halftone = Halftone::Ordered});
BENCHMARK_CAPTURE(WholePath, color_to_256_ordered_cube, kColor,
                  Settings{.depth = 8, .palette = host::UniformCube(6), .halftone = Halftone::Ordered});
BENCHMARK_CAPTURE(WholePath, gray_to_16_grays_ordered, kGray,
                  Settings{.depth = 4, .palette = GrayRamp(4), .halftone = Halftone::Ordered});
BENCHMARK_CAPTURE(WholePath, gray_to_1_bit_ordered, kGray,
                  Settings{.depth = 1, .palette = GrayRamp(1), .halftone = Halftone::Ordered});

}  // namespace
}  // namespace cvt::bench

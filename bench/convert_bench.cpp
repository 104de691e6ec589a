// Depth and layout: error diffusion to one bit, nearest colour, packed pixels and planes.

#include "bench/bench.h"

namespace cvt::bench {
namespace {

const Image kGray{kWidth, kHeight, 8, GrayRamp(8)};
const Image kColor{kWidth, kHeight, kDirectDepth};
const Image kIndexed{kWidth, kHeight, 8, Colors(256)};
const Image kPlanes{kWidth, kHeight, 8, Colors(256), Layout::Planes};
const Settings kDiffused{.depth = 1, .palette = GrayRamp(1), .halftone = Halftone::Diffusion};

BENCHMARK_CAPTURE(WholePath, gray_to_1_bit_diffusion, kGray, kDiffused);
BENCHMARK_CAPTURE(WholePath, color_to_1_bit_diffusion, kColor, kDiffused);
BENCHMARK_CAPTURE(WholePath, color_to_256_nearest, kColor, Settings{.depth = 8, .palette = Colors(256)});
BENCHMARK_CAPTURE(WholePath, packed_to_8_planes, kGray,
                  Settings{.depth = 8, .palette = Colors(256), .layout = Layout::Planes});
BENCHMARK_CAPTURE(WholePath, planes_to_8_bit_packed, kPlanes, Settings{.depth = 8, .palette = Colors(256)});
BENCHMARK_CAPTURE(WholePath, gray_to_16_colors_nearest, kGray, Settings{.depth = 4, .palette = Colors(16)});
BENCHMARK_CAPTURE(WholePath, indexed_to_24_bit, kIndexed, Settings{.depth = kDirectDepth});
BENCHMARK_CAPTURE(WholePath, color_to_5_5_5, kColor, Settings{.depth = 16});

// A stamp as large as the image, a quarter of it transparent: the translucent writers do most of the work.
Settings Stamped(std::int32_t depth, std::vector<IRGB> palette, Layout layout) {
  const Image image{kWidth, kHeight, 2, Colors(4)};
  Settings settings{.depth = depth, .palette = std::move(palette), .layout = layout};
  settings.overlay = {image, Photograph(image), 0, 0, 3};
  return settings;
}
BENCHMARK_CAPTURE(WholePath, overlay_on_8_bits, kGray, Stamped(8, GrayRamp(8), Layout::Packed));
BENCHMARK_CAPTURE(WholePath, overlay_on_8_planes, kPlanes, Stamped(8, Colors(256), Layout::Planes));
BENCHMARK_CAPTURE(WholePath, overlay_on_24_bits, kColor, Stamped(kDirectDepth, {}, Layout::Packed));
BENCHMARK_CAPTURE(WholePath, crop_packed, kGray,
                  Settings{.depth = 8, .palette = GrayRamp(8), .crop = {100, 100, 1800, 1300}});
BENCHMARK_CAPTURE(
    WholePath, crop_planes, kPlanes,
    Settings{.depth = 8, .palette = Colors(256), .layout = Layout::Planes, .crop = {100, 100, 1800, 1300}});

constexpr BandKind kPacked8{Layout::Packed, 8}, kPacked1{Layout::Packed, 1},
    kPackedColor{Layout::Packed, kDirectDepth};
constexpr BandKind kPlanes8{Layout::Planes, 8}, kPlanes1{Layout::Planes, 1};
constexpr std::uint8_t kOrdered = 0;

BENCHMARK_CAPTURE(Routine, diffusion_packed_to_packed, kPacked8, kPacked1, kDiffusion);
BENCHMARK_CAPTURE(Routine, diffusion_packed_to_plane, kPacked8, kPlanes1, kDiffusion);
BENCHMARK_CAPTURE(Routine, diffusion_planes_to_packed, kPlanes8, kPacked1, kDiffusion);
BENCHMARK_CAPTURE(Routine, diffusion_planes_to_plane, kPlanes8, kPlanes1, kDiffusion);
BENCHMARK_CAPTURE(Routine, ordered_packed_to_plane, kPacked8, kPlanes1, kOrdered);
BENCHMARK_CAPTURE(Routine, nearest_color_to_packed, kPackedColor, kPacked8, kNearest);
BENCHMARK_CAPTURE(Routine, nearest_packed_to_planes, kPacked8, kPlanes8, kNearest);
BENCHMARK_CAPTURE(Routine, nearest_planes_to_packed, kPlanes8, kPacked8, kNearest);

}  // namespace
}  // namespace cvt::bench

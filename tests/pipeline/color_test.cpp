// Colours: direct colour in and out, palettes by diffusion and ordered dither, tone curves, written palettes.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include "host/matrices.h"
#include "host/uniform_cube.h"
#include "tests/pipeline/picture.h"

namespace cvt::test {
namespace {

using namespace cvt::pipeline;

using Values = std::vector<std::uint32_t>;

const std::vector<IRGB> kCorners = {{0, 0, 0},   {255, 0, 0},   {0, 255, 0},   {255, 255, 0},
                                    {0, 0, 255}, {255, 0, 255}, {0, 255, 255}, {255, 255, 255}};

// The mean of each channel of the lines `top` to before `end`.
std::array<double, 3> MeanColor(const Picture& picture, std::int32_t top, std::int32_t end) {
  std::array<double, 3> sum{};
  for (std::int32_t y = top; y < end; ++y)
    for (std::int32_t x = 0; x < picture.image.width; ++x) {
      const IRGB c = ColorAt(picture, x, y);
      sum[0] += c.red;
      sum[1] += c.green;
      sum[2] += c.blue;
    }
  for (double& s : sum) s /= (end - top) * picture.image.width;
  return sum;
}

// Every channel has a slope of its own, so that a swapped channel shows.
Picture Slopes(std::int32_t width, std::int32_t height) {
  return Painted({width, height, kDirectDepth}, [=](auto x, auto y) {
    return (20 + x * 200 / width) << 16 | (230 - y * 160 / height) << 8 | (60 + (x + y) * 90 / (width + height));
  });
}

TEST(DirectColor, ComesInWordsOfEveryDepth) {
  const Rows rows = RowsOf({{3, 1, kDirectDepth}, {0xFF0000, 0x0080FF, 0x081018}});
  // The second of the green one's indices is transparent; the value of the first is 1 << 9.
  const Overlay orange{{1, 1, 8, {{255, 128, 8}}}, {0}, 2}, green{{1, 1, 8, {{0, 128, 0}, {}}}, {0}, 2, 0, 1};
  const struct {
    std::int32_t depth;
    std::vector<std::uint8_t> row;
    Overlay overlay;
  } cases[] = {{15, {0x00, 0x7C, 0x1F, 0x02, 0x43, 0x04}, {}},
               {16, {0x00, 0x7C, 0x1F, 0x02, 0x43, 0x04}, {}},
               {16, {0x00, 0x7C, 0x1F, 0x02, 0x01, 0x7E}, orange},
               {16, {0x00, 0x7C, 0x1F, 0x02, 0x00, 0x02}, green},
               {32, {0, 0, 0xFF, 0, 0xFF, 0x80, 0, 0, 0x18, 0x10, 0x08, 0}, {}}};
  for (const auto& c : cases)
    EXPECT_EQ(Convert(rows, {.depth = c.depth, .overlay = c.overlay}).bytes, c.row) << c.depth;
}

TEST(Overlay, CoversWhereItIsOpaqueInEveryKindOfOutput) {
  // A stamp of three colours, one of them transparent, across the edge between bands.
  Overlay overlay{{11, 5, 2, {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}}}, {}, 9, 6, 1};
  const Picture stamp = NoisePicture(overlay.image, 31), slopes = Slopes(40, 30);
  overlay.rows = RowsOf(stamp).bytes;
  for (const Layout layout : {Layout::Packed, Layout::Planes})
    for (const std::int32_t depth : {3, 8, kDirectDepth}) {
      if (depth == kDirectDepth && layout == Layout::Planes) continue;
      Settings settings{.depth = depth, .layout = layout, .bandLines = 4};
      if (depth <= 8) settings.palette = kCorners;
      if (depth == 8) settings.palette.insert(settings.palette.begin(), 124, {9, 9, 9});  // blue is entry 128
      const Picture plain = Convert(slopes, settings);
      settings.overlay = overlay;
      const Picture covered = Convert(slopes, settings);
      for (std::int32_t y = 0; y < 30; ++y)
        for (std::int32_t x = 0; x < 40; ++x) {
          const bool inside = x >= 9 && x < 20 && y >= 6 && y < 11 && At(stamp, x - 9, y - 6) != 1;
          ASSERT_EQ(RgbAt(covered, x, y), inside ? RgbAt(stamp, x - 9, y - 6) : RgbAt(plain, x, y))
              << depth << " bits at " << x << ", " << y;
        }
    }
}

TEST(Palettes, HalftoningKeepsTheMeanColorAndUsesThePaletteAlone) {
  const Picture slopes = Slopes(240, 200), gray = Convert(slopes, {.depth = 8, .palette = GrayRamp(8)});
  const struct {
    const char* what;
    const Picture& picture;
    std::int32_t depth;
    std::vector<IRGB> palette;
    Halftone halftone;
    double tolerance;
    Layout layout = Layout::Packed;
  } cases[] = {{"3 bits by diffusion", slopes, 3, kCorners, Halftone::Diffusion, 2.55},
               {"8 bits by the short-cut", slopes, 8, kCorners, Halftone::Diffusion, 2.55},
               {"planes by diffusion", slopes, 3, kCorners, Halftone::Diffusion, 2.55, Layout::Planes},
               {"four grays by diffusion", gray, 2, GrayRamp(2), Halftone::Diffusion, 2.55},
               {"3 bits by ordered dither", slopes, 3, kCorners, Halftone::Ordered, 20},
               {"one bit by ordered dither", gray, 1, GrayRamp(1), Halftone::Ordered, 4}};
  for (const auto& c : cases) {
    const Picture out =
        Convert(c.picture, {.depth = c.depth, .palette = c.palette, .halftone = c.halftone, .layout = c.layout});
    const std::array<double, 3> wanted = MeanColor(c.picture, 0, 200), got = MeanColor(out, 0, 200);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(got[k], wanted[k], c.tolerance) << c.what << ", channel " << k;
    const std::set<std::uint32_t> used(out.pixels.begin(), out.pixels.end());
    EXPECT_GT(used.size(), c.palette.size() / 2) << c.what;
    EXPECT_LT(*used.rbegin(), c.palette.size()) << c.what;
  }
}

// A square of 16 x 16 pixels for each colour, one below the other, as large as the matrix.
Picture DitheredSquares(const std::vector<IRGB>& colors, const std::vector<IRGB>& palette, std::int32_t depth,
                        const std::vector<std::uint8_t>& matrix) {
  const Image image{16, static_cast<std::int32_t>(16 * colors.size()), kDirectDepth};
  const Picture squares =
      Painted(image, [&](auto, auto y) { return Rgb(colors[static_cast<std::size_t>(y / 16)]); });
  return Convert(
      squares,
      {.depth = depth, .palette = palette, .halftone = Halftone::Ordered, .thresholds = {16, 16, matrix}});
}

TEST(OrderedDither, LeavesTheColorsOfAUniformCubeFlat) {
  std::vector<std::uint8_t> every;  // threshold there is
  for (int i = 0; i < 256; ++i) every.push_back(static_cast<std::uint8_t>(i));
  for (std::int32_t bits = 3; bits <= 8; ++bits) {
    const std::vector<IRGB> cube = host::UniformCube(host::CubeLevels(static_cast<std::uint32_t>(bits)));
    const Picture out = DitheredSquares(cube, cube, bits, every);
    for (std::size_t i = 0; i < out.pixels.size(); ++i)
      ASSERT_EQ(out.pixels[i], i / 256) << bits << " bits, threshold " << i % 256;
  }
}

TEST(GrayRamp, RoundsItsLevels) {
  const int levels[] = {0, 36, 73, 109, 146, 182, 219, 255};
  for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(GrayRamp(3)[i].green, levels[i]) << i;
}

TEST(OrderedDither, MixesGraysToTheLevelAskedFor) {
  const struct {
    const char* what;
    std::vector<IRGB> palette;
    std::int32_t bits;
    double within;
  } cases[] = {{"four grays", GrayRamp(2), 2, 3},
               {"uneven grays", {{255, 255, 255}, {20, 20, 20}, {0, 0, 0}, {140, 140, 140}}, 2, 3},
               {"cube of 2 levels", host::UniformCube(2), 3, 3},
               {"cube of 3 levels", host::UniformCube(3), 5, 4},
               {"cube of 6 levels", host::UniformCube(6), 8, 3}};
  for (const auto& c : cases) {
    const Picture out = DitheredSquares(GrayRamp(6), c.palette, c.bits, host::MatrixNamed("bayer16")->values);
    for (std::int32_t i = 0; i < 64; ++i)
      EXPECT_NEAR(MeanColor(out, 16 * i, 16 * i + 16)[0], GrayRamp(6)[static_cast<std::size_t>(i)].red, c.within)
          << c.what;
  }
}

TEST(OrderedDither, ReadsTheGivenMatrix) {
  const Picture gray{{8, 2, 8, GrayRamp(8)}, Values(16, 100)};
  const Picture out = Convert(gray, {.depth = 1,
                                     .palette = GrayRamp(1),
                                     .halftone = Halftone::Ordered,
                                     .thresholds = {3, 2, {99, 100, 101, 0, 50, 255}}});
  EXPECT_EQ(out.pixels, (Values{1, 0, 0, 1, 0, 0, 1, 0, 1, 1, 0, 1, 1, 0, 1, 1}));
}

TEST(Palettes, MatchOneSetOfColorsAndWriteAnother) {
  const Picture picture{{2, 1, kDirectDepth}, {0xE02010, 0x1020D0}};
  const std::vector<IRGB> measured = {{16, 32, 208}, {224, 32, 16}}, nominal = {{0, 0, 255}, {255, 0, 0}};
  const Picture out = Convert(picture, {.depth = 2, .palette = measured, .writtenPalette = nominal});
  EXPECT_EQ(out.pixels, (Values{1, 0}));
  EXPECT_EQ(RgbAt(out, 0, 0), 0xFF0000);
}

TEST(Palettes, TwoColorsInOneBitAreToldByTheirColor) {
  const std::vector<IRGB> redBlue = {{255, 0, 0}, {0, 0, 255}};
  const Image image{37, 2, kDirectDepth};
  const auto blue = [](auto x, auto) { return x % 3 == 0 ? 0 : 1; };
  const Picture patches = Painted(image, [&](auto x, auto y) { return blue(x, y) == 0 ? 0xE01030 : 0x2010F0; });
  for (const Layout layout : {Layout::Packed, Layout::Planes}) {
    Settings settings{.depth = 1, .palette = redBlue, .layout = layout};
    const Picture near = Convert(patches, settings);
    EXPECT_EQ(near.image.depth, 1);
    EXPECT_EQ(near.pixels, Painted(image, blue).pixels);
    settings.threshold = 20;
    EXPECT_EQ(Convert(patches, settings).pixels, Values(74, 0)) << "all above gray 20, and red is the lighter";
    settings.threshold = 128;
    settings.halftone = Halftone::Diffusion;
    const Values diffused = Convert(Picture{image, Values(74, 0x800080)}, settings).pixels;
    EXPECT_NEAR(static_cast<double>(std::count(diffused.begin(), diffused.end(), 1U)), 37, 3);
  }
}

TEST(Gamma, BendsEveryKindOfSourceAlike) {
  const Picture grays = Painted({256, 1, 8, GrayRamp(8)}, [](auto x, auto) { return x; });
  const Picture colors = Painted({256, 1, kDirectDepth}, [](auto x, auto) { return x * 0x10101; });
  for (const double gamma : {0.5, 2.2})
    for (const Picture* picture : {&grays, &colors})
      for (const std::int32_t depth : {8, kDirectDepth}) {
        Settings settings{.depth = depth, .gamma = gamma};
        if (depth == 8) settings.palette = GrayRamp(8);
        const Picture out = Convert(*picture, settings);
        for (std::int32_t x = 0; x < 256; ++x) {
          const double wanted = 255 * std::pow(x / 255.0, 1 / gamma);
          const IRGB color = ColorAt(out, x, 0);
          for (const int channel : {color.red, color.green, color.blue})
            EXPECT_NEAR(channel, wanted, 0.51) << x << " at " << gamma;
        }
      }
}

TEST(Bits, AreToldByGammaAndThreshold) {
  const std::vector<IRGB> dim = {{0, 0, 0}, {140, 140, 140}};  // 140 becomes 77, which is black
  const Picture picture = NoisePicture({19, 5, 1, dim}, 41);
  EXPECT_EQ(Convert(picture, {.depth = 1, .palette = dim}).pixels, picture.pixels);
  EXPECT_EQ(Convert(picture, {.depth = 1, .palette = dim, .gamma = 0.5}).pixels, Values(95, 0));
  EXPECT_EQ(Convert(picture, {.depth = 1, .palette = dim, .threshold = 141}).pixels, Values(95, 0));
  const Picture whiteFirst = NoisePicture({19, 5, 1, {{255, 255, 255}, {0, 0, 0}}}, 41);
  EXPECT_EQ(Convert(whiteFirst, {.depth = 1, .palette = GrayRamp(1), .invert = true}).pixels, whiteFirst.pixels);
}

}  // namespace
}  // namespace cvt::test

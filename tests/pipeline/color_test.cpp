// Colours: direct colour in and out, palettes by diffusion and ordered dither, tone curves, written palettes.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "tests/pipeline/picture.h"

namespace cvt::test {
namespace {

using namespace cvt::pipeline;

const std::vector<IRGB> kCorners = {{0, 0, 0},   {255, 0, 0},   {0, 255, 0},   {255, 255, 0},
                                    {0, 0, 255}, {255, 0, 255}, {0, 255, 255}, {255, 255, 255}};

std::uint32_t Rgb(IRGB c) {
  return static_cast<std::uint32_t>(c.red) << 16 | static_cast<std::uint32_t>(c.green) << 8 | c.blue;
}

IRGB ColorAt(const Picture& picture, std::size_t i) {
  const std::uint32_t value = picture.pixels[i];
  if (picture.image.depth <= 8) return picture.image.palette[value];
  return {static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8),
          static_cast<std::uint8_t>(value)};
}

std::array<double, 3> MeanColor(const Picture& picture) {
  std::array<double, 3> sum{};
  for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
    const IRGB c = ColorAt(picture, i);
    sum[0] += c.red;
    sum[1] += c.green;
    sum[2] += c.blue;
  }
  for (double& s : sum) s /= static_cast<double>(picture.pixels.size());
  return sum;
}

// Every channel has a slope of its own, so that a swapped channel shows.
Picture Slopes(std::int32_t width, std::int32_t height) {
  Picture picture{{width, height, kDirectDepth}, {}};
  for (std::int32_t y = 0; y < height; ++y)
    for (std::int32_t x = 0; x < width; ++x)
      picture.pixels.push_back(
          Rgb({static_cast<std::uint8_t>(20 + x * 200 / width), static_cast<std::uint8_t>(230 - y * 160 / height),
               static_cast<std::uint8_t>(60 + (x + y) * 90 / (width + height))}));
  return picture;
}

TEST(DirectColor, ComesOutAsItWentInFromEveryKind) {
  for (const std::int32_t depth : {1, 2, 3, 4, 5, 8, kDirectDepth})
    for (const Layout layout : {Layout::Packed, Layout::Planes}) {
      if (depth == kDirectDepth && layout == Layout::Planes) continue;
      Image image{53, 31, depth, {}, layout};
      if (depth <= 8) image.palette.assign(std::size_t{1} << depth, {});
      for (std::size_t i = 0; i < image.palette.size(); ++i)
        image.palette[i] = {static_cast<std::uint8_t>(i * 7), static_cast<std::uint8_t>(i + 90),
                            static_cast<std::uint8_t>(255 - i)};
      const Picture picture = NoisePicture(image, 21);
      for (const bool invert : {false, true})
        for (const std::int32_t lines : {0, 3}) {
          const Picture out = Convert(picture, {.depth = kDirectDepth, .invert = invert, .bandLines = lines});
          for (std::size_t i = 0; i < picture.pixels.size(); ++i)
            ASSERT_EQ(out.pixels[i], Rgb(ColorAt(picture, i)) ^ (invert ? 0xFFFFFFU : 0U)) << depth << " bits";
        }
    }
}

TEST(DirectColor, ComesInWordsOfEveryDepth) {
  const Picture picture{{3, 1, kDirectDepth}, {0xFF0000, 0x0080FF, 0x081018}};
  const std::vector<std::uint8_t> rows = RowsOf(picture);
  struct Case {
    std::int32_t depth;
    std::vector<std::uint8_t> row;
    Overlay overlay = {};
  };
  const Overlay orange{{1, 1, 8, {{255, 128, 8}}}, {0}, 2, 0, -1};
  const std::vector<std::uint8_t> words = {0x00, 0x7C, 0x1F, 0x02, 0x43, 0x04};
  const Case kCases[] = {{15, words},
                         {16, words},
                         {16, {0x00, 0x7C, 0x1F, 0x02, 0x01, 0x7E}, orange},
                         {32, {0, 0, 0xFF, 0, 0xFF, 0x80, 0, 0, 0x18, 0x10, 0x08, 0}}};
  for (const Case& c : kCases) {
    RowSource source = ReadMemory(picture.image, rows.data(), rows.size());
    Image written;
    std::vector<std::uint8_t> out;
    RowSink sink = WriteMemory(&written, &out);
    ASSERT_FALSE(Failed(pipeline::Convert(source, {.depth = c.depth, .overlay = c.overlay}, sink)));
    EXPECT_EQ(out, c.row) << c.depth;
  }
}

TEST(Overlay, CoversWhereItIsOpaqueInEveryKindOfOutput) {
  // A stamp of three colours, one of them transparent, across the edge between bands.
  Overlay overlay{{11, 5, 2, {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}}}, {}, 9, 6, 1};
  const Picture stamp = NoisePicture(overlay.image, 31);
  overlay.rows = RowsOf(stamp);
  const Picture slopes = Slopes(40, 30);
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
          const std::size_t i = static_cast<std::size_t>(y * 40 + x);
          const bool inside = x >= 9 && x < 20 && y >= 6 && y < 11;
          const std::uint32_t index = inside ? At(stamp, x - 9, y - 6) : 1;
          const IRGB expected = index == 1 ? ColorAt(plain, i) : overlay.image.palette[index];
          ASSERT_EQ(Rgb(ColorAt(covered, i)), Rgb(expected)) << depth << " bits at " << x << ", " << y;
        }
    }
}

TEST(Palettes, HalftoningKeepsTheMeanColorAndUsesThePaletteAlone) {
  const Picture slopes = Slopes(240, 200);
  const Picture gray = Convert(slopes, {.depth = 8, .palette = GrayRamp(8)});
  struct Case {
    const char* what;
    const Picture* picture;
    Settings settings;
    double tolerance;
  };
  const Case kCases[] = {
      {"3 bits by diffusion", &slopes, {.depth = 3, .palette = kCorners, .halftone = Halftone::Diffusion}, 2.55},
      {"8 bits by the short-cut",
       &slopes,
       {.depth = 8, .palette = kCorners, .halftone = Halftone::Diffusion},
       2.55},
      {"planes by diffusion",
       &slopes,
       {.depth = 3, .palette = kCorners, .halftone = Halftone::Diffusion, .layout = Layout::Planes},
       2.55},
      {"four grays by diffusion",
       &gray,
       {.depth = 2, .palette = GrayRamp(2), .halftone = Halftone::Diffusion},
       2.55},
      {"3 bits by ordered dither", &slopes, {.depth = 3, .palette = kCorners, .halftone = Halftone::Ordered}, 20},
      {"four grays by ordered dither",
       &gray,
       {.depth = 2, .palette = GrayRamp(2), .halftone = Halftone::Ordered},
       6},
      {"one bit by ordered dither", &gray, {.depth = 1, .palette = GrayRamp(1), .halftone = Halftone::Ordered}, 4},
  };
  for (const Case& c : kCases) {
    const Picture out = Convert(*c.picture, c.settings);
    const std::array<double, 3> wanted = MeanColor(*c.picture), got = MeanColor(out);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(got[k], wanted[k], c.tolerance) << c.what << ", channel " << k;
    std::vector<std::uint32_t> used = out.pixels;
    std::sort(used.begin(), used.end());
    used.erase(std::unique(used.begin(), used.end()), used.end());
    EXPECT_GT(used.size(), c.settings.palette.size() / 2) << c.what;
    EXPECT_LT(used.back(), c.settings.palette.size()) << c.what;
  }
}

TEST(Palettes, HalftoningDoesNotDependOnTheBands) {
  const Picture slopes = Slopes(90, 70);
  for (const Halftone halftone : {Halftone::Diffusion, Halftone::Ordered})
    for (const std::int32_t depth : {3, 4, 8}) {
      Settings settings{.depth = depth, .palette = kCorners, .halftone = halftone};
      const Picture whole = Convert(slopes, settings);
      for (const std::int32_t lines : {1, 2, 9}) {
        settings.bandLines = lines;
        EXPECT_EQ(Convert(slopes, settings).pixels, whole.pixels) << depth << " bits, bands of " << lines;
      }
    }
}

TEST(Palettes, OrderedDitherReadsTheGivenMatrix) {
  Picture gray{{8, 2, 8, GrayRamp(8)}, std::vector<std::uint32_t>(16, 100)};
  const Picture out = Convert(gray, {.depth = 1,
                                     .palette = GrayRamp(1),
                                     .halftone = Halftone::Ordered,
                                     .thresholds = {3, 2, {99, 100, 101, 0, 255, 50}}});
  EXPECT_EQ(out.pixels, (std::vector<std::uint32_t>{1, 0, 0, 1, 0, 0, 1, 0, 1, 0, 1, 1, 0, 1, 1, 0}));
}

TEST(Palettes, MatchOneSetOfColorsAndWriteAnother) {
  const Picture picture{{2, 1, kDirectDepth}, {0xE02010, 0x1020D0}};
  const std::vector<IRGB> measured = {{16, 32, 208}, {224, 32, 16}}, nominal = {{0, 0, 255}, {255, 0, 0}};
  const Picture out = Convert(picture, {.depth = 2, .palette = measured, .writtenPalette = nominal});
  EXPECT_EQ(out.pixels, (std::vector<std::uint32_t>{1, 0}));
  EXPECT_EQ(Rgb(out.image.palette[1]), 0xFF0000U);
}

TEST(Palettes, TwoColorsInOneBitAreToldByTheirColor) {
  const std::vector<IRGB> redBlue = {{255, 0, 0}, {0, 0, 255}};
  Picture patches{{37, 2, kDirectDepth}, {}};
  for (std::uint32_t i = 0; i < 74; ++i) patches.pixels.push_back(i % 3 == 0 ? 0xE01030 : 0x2010F0);
  Picture mixed = patches;
  mixed.pixels.assign(74, 0x800080);
  for (const Layout layout : {Layout::Packed, Layout::Planes}) {
    const Picture near = Convert(patches, {.depth = 1, .palette = redBlue, .layout = layout});
    EXPECT_EQ(near.image.depth, 1);
    for (std::size_t i = 0; i < 74; ++i) EXPECT_EQ(near.pixels[i], i % 3 == 0 ? 0U : 1U);
    const Picture diffused =
        Convert(mixed, {.depth = 1, .palette = redBlue, .halftone = Halftone::Diffusion, .layout = layout});
    EXPECT_NEAR(static_cast<double>(std::count(diffused.pixels.begin(), diffused.pixels.end(), 1U)), 37, 3);
    const Picture told = Convert(patches, {.depth = 1, .palette = redBlue, .threshold = 20, .layout = layout});
    EXPECT_EQ(told.pixels, std::vector<std::uint32_t>(74, 0)) << "all above gray 20, and red is the lighter";
  }
}

TEST(Gamma, BendsEveryKindOfSourceAlike) {
  Picture grays{{256, 1, 8, GrayRamp(8)}, {}};
  Picture colors{{256, 1, kDirectDepth}, {}};
  for (std::uint32_t g = 0; g < 256; ++g) {
    grays.pixels.push_back(g);
    colors.pixels.push_back(g * 0x10101);
  }
  for (const double gamma : {0.5, 2.2})
    for (const Picture* picture : {&grays, &colors})
      for (const std::int32_t depth : {8, kDirectDepth}) {
        Settings settings{.depth = depth, .gamma = gamma};
        if (depth == 8) settings.palette = GrayRamp(8);
        const Picture out = Convert(*picture, settings);
        for (std::int32_t x = 0; x < 256; ++x)
          EXPECT_NEAR(GrayAt(out, x, 0), 255 * std::pow(x / 255.0, 1 / gamma), 0.51) << x << " at " << gamma;
      }
}

TEST(Gamma, BendsBitsBeforeTheyAreTold) {
  const std::vector<IRGB> dim = {{0, 0, 0}, {140, 140, 140}};  // 140 becomes 77, which is black
  const Picture picture = NoisePicture({19, 5, 1, dim}, 41);
  EXPECT_EQ(Convert(picture, {.depth = 1, .palette = dim}).pixels, picture.pixels);
  EXPECT_EQ(Convert(picture, {.depth = 1, .palette = dim, .gamma = 0.5}).pixels,
            std::vector<std::uint32_t>(95, 0));
}

}  // namespace
}  // namespace cvt::test

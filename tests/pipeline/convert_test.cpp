// What people get: the right pixel at the right place in the right colour, on every path.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "tests/pipeline/picture.h"

namespace cvt::test {
namespace {

using namespace cvt::pipeline;

constexpr Layout kLayouts[] = {Layout::Packed, Layout::Planes};

std::vector<IRGB> Distinct(std::size_t count) {  // colours far apart, none of them gray
  std::vector<IRGB> colors;
  for (std::size_t i = 0; i < count; ++i)
    colors.push_back({static_cast<std::uint8_t>(i * 37), static_cast<std::uint8_t>(255 - i * 11 % 256),
                      static_cast<std::uint8_t>(i * i % 251)});
  return colors;
}

std::vector<IRGB> Reversed(std::vector<IRGB> colors) {
  std::reverse(colors.begin(), colors.end());
  return colors;
}

// The diffusion as one would write it down for a whole picture, without bands.
Picture DiffuseNaively(const Picture& picture) {
  const Image& image = picture.image;
  Picture out{{image.width, image.height, 1, GrayRamp(1)}, {}};
  std::vector<int> owed(static_cast<std::size_t>(image.width) + 1, 0);
  for (std::int32_t y = 0; y < image.height; ++y) {
    std::vector<int> next(owed.size(), 0);
    int error = 0;
    for (std::int32_t x = 0; x < image.width; ++x) {
      const auto i = static_cast<std::size_t>(x);
      const int wanted = GrayAt(picture, x, y) + (7 * error >> 4) + owed[i];
      const bool white = wanted > 127;
      const int rest = wanted - (white ? 255 : 0);
      const int before = error;
      error = rest > 0 ? rest - 1 : rest + 1;
      if (x > 0) next[i - 1] += 3 * error >> 4;
      next[i] += (5 * error >> 4) + (before >> 4);
      out.pixels.push_back(white ? 1 : 0);
    }
    owed = next;
  }
  return out;
}

std::size_t NearestIn(const std::vector<IRGB>& palette, std::uint32_t rgb) {
  const auto distance = [rgb](IRGB c) {
    const auto square = [](int d) { return d * d; };
    return square(static_cast<int>(rgb >> 16 & 255) - c.red) + square(static_cast<int>(rgb >> 8 & 255) - c.green) +
           square(static_cast<int>(rgb & 255) - c.blue);
  };
  return static_cast<std::size_t>(
      std::min_element(palette.begin(), palette.end(), [&](IRGB a, IRGB b) { return distance(a) < distance(b); }) -
      palette.begin());
}

TEST(Convert, KeepsEveryPixelInItsPlaceInEveryDepthAndLayout) {
  for (std::int32_t depth = 1; depth <= 8; ++depth)
    for (const Layout from : kLayouts)
      for (const Layout to : kLayouts)
        for (const std::int32_t width : {1, 7, 8, 9, 16, 17, 33, 250}) {
          const std::vector<IRGB> colors = Distinct(std::size_t{1} << depth);
          const Picture picture = NoisePicture({width, 21, depth, colors, from}, 5);
          const Picture same = Convert(picture, {.depth = depth, .palette = colors, .layout = to, .bandLines = 4});
          EXPECT_EQ(same.pixels, picture.pixels) << depth << " bits, " << width << " wide";
          EXPECT_EQ(same.image.layout, to);
        }
}

TEST(Convert, FindsReorderedColorsInEveryPairOfDepths) {
  for (std::int32_t from = 1; from <= 8; ++from)
    for (std::int32_t to = from; to <= 8; ++to)
      for (const Layout layout : kLayouts) {
        const std::vector<IRGB> colors = Distinct(std::size_t{1} << from);
        const Picture picture = NoisePicture({19, 40, from, colors}, 6);
        const Picture out = Convert(picture, {.depth = to, .palette = Reversed(colors), .layout = layout});
        for (std::size_t i = 0; i < picture.pixels.size(); ++i)
          ASSERT_EQ(out.pixels[i], colors.size() - 1 - picture.pixels[i]) << from << " to " << to << " bits";
      }
}

TEST(Convert, DiffusesEverySourceAsOnePictureHoweverItIsCut) {
  const Image kSources[] = {{61, 43, 8, GrayRamp(8)},
                            {61, 43, 8, GrayRamp(8), Layout::Planes},
                            {61, 43, 4, Distinct(16)},
                            {61, 43, 1, {{90, 90, 90}, {200, 180, 20}}},
                            {61, 43, kDirectDepth}};
  for (const Image& image : kSources) {
    const Picture picture = NoisePicture(image, 7);
    const Picture expected = DiffuseNaively(picture);
    for (const Layout layout : kLayouts)
      for (const std::int32_t lines : {0, 1, 2, 5, 42}) {
        const Picture out = Convert(picture, {.depth = 1,
                                              .palette = GrayRamp(1),
                                              .halftone = Halftone::Diffusion,
                                              .layout = layout,
                                              .bandLines = lines});
        EXPECT_EQ(out.pixels, expected.pixels) << image.depth << " bits, bands of " << lines;
      }
  }
}

TEST(Convert, DiffusionKeepsTheMeanGray) {
  for (const std::uint32_t brightest : {255U, 200U, 128U}) {
    Picture picture{{256, 200, 8, GrayRamp(8)}, {}};
    std::uint64_t sum = 0;
    for (std::uint32_t i = 0; i < 256 * 200; ++i) {
      picture.pixels.push_back((i % 256 + i / 256) / 2 * brightest / 227);
      sum += picture.pixels.back();
    }
    const Picture out = Convert(picture, {.depth = 1, .palette = GrayRamp(1), .halftone = Halftone::Diffusion});
    const auto white = std::count(out.pixels.begin(), out.pixels.end(), 1U);
    EXPECT_NEAR(static_cast<double>(white) * 255, static_cast<double>(sum), 2.55 * 256 * 200) << brightest;
  }
}

TEST(Convert, ThresholdIsExactForGraysColorsAndPalettes) {
  Picture grays{{256, 1, 8, GrayRamp(8)}, {}};
  Picture colors{{256, 1, kDirectDepth}, {}};
  for (std::uint32_t g = 0; g < 256; ++g) {
    grays.pixels.push_back(g);
    colors.pixels.push_back(g << 16 | (255 - g) << 8 | g / 2);
  }
  for (const Picture* picture : {&grays, &colors})
    for (const std::int32_t threshold : {0, 1, 77, 128, 131, 255, 256})
      for (const bool invert : {false, true}) {
        const Picture out =
            Convert(*picture, {.depth = 1, .palette = GrayRamp(1), .threshold = threshold, .invert = invert});
        for (std::int32_t x = 0; x < 256; ++x)
          EXPECT_EQ(At(out, x, 0) != 0, (GrayAt(*picture, x, 0) >= threshold) != invert)
              << x << " at " << threshold;
      }
}

TEST(Convert, PureColorsFindTheirNearestEntry) {
  const std::vector<IRGB> palettes[] = {
      {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {128, 128, 128}},
      {{0, 0, 255}, {255, 255, 0}, {200, 30, 30}, {10, 90, 10}},
      GrayRamp(2),
      GrayRamp(8),
  };
  const std::uint32_t kPure[] = {0xFF0000, 0x00FF00, 0x0000FF, 0x000000, 0xFFFFFF, 0x808080};
  for (const std::vector<IRGB>& palette : palettes) {
    const std::int32_t depth = palette.size() > 4 ? 8 : 2;
    const bool gray = &palette >= &palettes[2];
    for (const std::uint32_t color : kPure) {
      const Picture patch{{5, 3, kDirectDepth}, std::vector<std::uint32_t>(15, color)};
      const auto level = static_cast<std::uint32_t>(GrayAt(patch, 0, 0));
      const std::size_t expected = NearestIn(palette, gray ? level * 0x10101 : color);
      for (const Layout layout : kLayouts) {
        const Picture out = Convert(patch, {.depth = depth, .palette = palette, .layout = layout});
        EXPECT_EQ(out.pixels, std::vector<std::uint32_t>(15, static_cast<std::uint32_t>(expected)))
            << std::hex << color << " among " << palette.size();
      }
    }
  }
}

TEST(Convert, InvertsWhateverThePath) {
  struct Case {
    const char* what;
    Image image;
    std::int32_t depth;
  };
  const Case kCases[] = {{"bits that are only relabelled", {29, 9, 1, GrayRamp(1)}, 1},
                         {"bits with white first", {29, 9, 1, Reversed(GrayRamp(1))}, 1},
                         {"grays to bits", {29, 9, 8, GrayRamp(8)}, 1},
                         {"grays to grays", {29, 9, 8, GrayRamp(8)}, 4},
                         {"colour to grays", {29, 9, kDirectDepth}, 8}};
  for (const Case& c : kCases) {
    const Picture picture = NoisePicture(c.image, 8);
    const Picture out = Convert(picture, {.depth = c.depth, .palette = GrayRamp(c.depth), .invert = true});
    const int step = 255 / ((1 << c.depth) - 1);
    for (std::int32_t y = 0; y < 9; ++y)
      for (std::int32_t x = 0; x < 29; ++x)
        EXPECT_LE(std::abs(255 - GrayAt(picture, x, y) - GrayAt(out, x, y)), step / 2 + 1) << c.what;
  }
}

TEST(Convert, DiffusionInvertsTheBits) {
  const Picture picture = NoisePicture({40, 30, 8, GrayRamp(8)}, 9);
  Settings settings{.depth = 1, .palette = GrayRamp(1), .halftone = Halftone::Diffusion};
  const Picture plain = Convert(picture, settings);
  settings.invert = true;
  const Picture inverted = Convert(picture, settings);
  for (std::size_t i = 0; i < plain.pixels.size(); ++i) EXPECT_EQ(plain.pixels[i] + inverted.pixels[i], 1U);
}

TEST(Convert, TakesValuesThatThePaletteHasNoColorForAsItsFirst) {
  for (const std::int32_t depth : {2, 3, 5, 8}) {
    Picture picture{{16, 1, StoredBits(depth), std::vector<IRGB>(std::size_t{1} << StoredBits(depth))}, {}};
    for (std::uint32_t x = 0; x < 16; ++x) picture.pixels.push_back(x % (1U << StoredBits(depth)));
    std::vector<std::uint8_t> rows = RowsOf(picture);
    RowSource source = ReadMemory({16, 1, depth, {{250, 9, 9}, {9, 9, 250}}}, rows.data(), rows.size());
    Image written;
    std::vector<std::uint8_t> out;
    RowSink sink = WriteMemory(&written, &out);
    ASSERT_FALSE(Failed(pipeline::Convert(source, {.depth = 8, .palette = {{9, 9, 250}, {250, 9, 9}}}, sink)));
    for (std::size_t x = 0; x < 16; ++x) EXPECT_EQ(out[x], picture.pixels[x] == 1 ? 0 : 1) << depth << " bits";
  }
}

TEST(Convert, PackRowsGivesTheRowsOfPackedOutput) {
  for (std::int32_t depth = 1; depth <= 8; ++depth) {
    const std::vector<IRGB> colors = Distinct(std::size_t{1} << depth);
    const Picture picture = NoisePicture({53, 7, depth, colors, Layout::Planes}, 10);
    const std::vector<std::uint8_t> rows = RowsOf(picture);
    RowSource source = ReadMemory(picture.image, rows.data(), RowBytes(picture.image));
    Image written;
    std::vector<std::uint8_t> out;
    RowSink sink = PackRows(WriteMemory(&written, &out));
    ASSERT_FALSE(
        Failed(pipeline::Convert(source, {.depth = depth, .palette = colors, .layout = Layout::Planes}, sink)));
    EXPECT_EQ(written.layout, Layout::Packed);
    EXPECT_EQ(PictureOf(written, out).pixels, picture.pixels) << depth;
  }
}

TEST(Explain, TellsEveryLinkWithItsSizes) {
  struct Case {
    Image image;
    Settings settings;
    std::vector<std::string> lines;
  };
  const Case kCases[] = {
      {{100, 50, 8, GrayRamp(8)},
       {.depth = 1, .palette = GrayRamp(1), .halftone = Halftone::Diffusion, .layout = Layout::Planes},
       {"source: 100 x 50, 8 bits packed, 1 band of up to 50 lines, 5000 bytes",
        "error diffusion: 100 x 50, 1 plane, 1 band of up to 50 lines, 700 bytes from one band",
        "next stage: 50 rows of 13 bytes"}},
      {{1000, 50, kDirectDepth},
       {.depth = 2, .palette = Distinct(4)},
       {"source: colour as 32-bit words; 1000 x 50, 32 bits packed, 4 bands of up to 16 lines, 64000 bytes",
        "nearest colour: 1000 x 50, 2 bits packed, 1 band of up to 16 lines, 4000 bytes from one band",
        "next stage: 50 rows of 250 bytes"}},
      {{1000, 50, 8, GrayRamp(8)},
       {.depth = 1, .palette = GrayRamp(1), .width = 4000},
       {"source: 1000 x 50, 8 bits packed, 4 bands of up to 16 lines, 16000 bytes",
        "enlarge width: 4000 x 50, 8 bits packed, 1 band of up to 16 lines, 64000 bytes from one band",
        "nearest colour: 4000 x 50, 1 plane, 1 band of up to 16 lines, 8000 bytes from one band",
        "next stage: 50 rows of 500 bytes"}},
  };
  for (const Case& c : kCases) {
    std::vector<std::string> lines;
    ASSERT_FALSE(Failed(Explain(c.image, c.settings, &lines)));
    EXPECT_EQ(lines, c.lines);
  }
}

}  // namespace
}  // namespace cvt::test

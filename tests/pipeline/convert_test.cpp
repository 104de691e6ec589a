// What people get: the right pixel at the right place in the right colour, on every path.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "tests/pipeline/picture.h"

namespace cvt::test {
namespace {

using namespace cvt::pipeline;

constexpr Layout kLayouts[] = {Layout::Packed, Layout::Planes};

std::vector<IRGB> Reversed(std::vector<IRGB> colors) {
  std::reverse(colors.begin(), colors.end());
  return colors;
}

// The diffusion as one would write it down for a whole picture, without bands.
std::vector<std::uint32_t> DiffuseNaively(const Picture& picture) {
  const Image& image = picture.image;
  std::vector<std::uint32_t> out;
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
      out.push_back(white ? 1 : 0);
    }
    owed = next;
  }
  return out;
}

IRGB Complement(IRGB color) {
  const auto invert = [](std::uint8_t channel) { return static_cast<std::uint8_t>(255 - channel); };
  return {invert(color.red), invert(color.green), invert(color.blue)};
}

std::uint32_t NearestIn(const std::vector<IRGB>& palette, IRGB wanted) {
  const auto distance = [wanted](IRGB c) {
    const int red = wanted.red - c.red, green = wanted.green - c.green, blue = wanted.blue - c.blue;
    return red * red + green * green + blue * blue;
  };
  const auto nearest =
      std::min_element(palette.begin(), palette.end(), [&](IRGB a, IRGB b) { return distance(a) < distance(b); });
  return static_cast<std::uint32_t>(nearest - palette.begin());
}

TEST(Convert, KeepsEveryColorInItsPlaceFromEveryKindToEveryKind) {
  const std::int32_t depths[] = {1, 2, 3, 4, 5, 6, 7, 8, kDirectDepth}, widths[] = {1, 7, 8, 9, 17, 33, 250};
  std::size_t n = 0;
  for (const std::int32_t from : depths)
    for (const std::int32_t to : depths)
      for (const Layout fromLayout : kLayouts)
        for (const Layout toLayout : kLayouts)
          for (const bool changed : {false, true}) {  // the palette reversed, or direct colour inverted
            const bool direct = to == kDirectDepth;
            if (to < from || (direct && toLayout == Layout::Planes)) continue;
            if (from == kDirectDepth && fromLayout == Layout::Planes) continue;
            const std::vector<IRGB> colors = Distinct(from == kDirectDepth ? 0 : std::size_t{1} << from);
            const Picture picture = NoisePicture({widths[n++ % 7], 21, from, colors, fromLayout}, 5);
            Settings settings{.depth = to, .invert = changed && direct, .layout = toLayout};
            if (!direct) settings.palette = changed ? Reversed(colors) : colors;
            settings.bandLines = static_cast<std::int32_t>(n % 3) * 2;
            const Picture out = Convert(picture, settings);
            ASSERT_EQ(out.image.layout, toLayout);
            if (toLayout == Layout::Planes) {
              EXPECT_EQ(PictureOf(Convert(RowsOf(picture), settings, true)).pixels, out.pixels) << "by PackRows";
            }
            for (std::int32_t y = 0; y < 21; ++y)
              for (std::int32_t x = 0; x < picture.image.width; ++x)
                ASSERT_EQ(RgbAt(out, x, y) ^ (settings.invert ? 0xFFFFFF : 0), RgbAt(picture, x, y))
                    << from << " to " << to << " bits, " << picture.image.width << " wide";
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
    const std::vector<std::uint32_t> expected = DiffuseNaively(picture);
    for (const Layout layout : kLayouts)
      for (const std::int32_t lines : {0, 1, 2, 5, 42}) {
        Settings settings{.depth = 1, .palette = GrayRamp(1), .halftone = Halftone::Diffusion};
        settings.layout = layout;
        settings.bandLines = lines;
        EXPECT_EQ(Convert(picture, settings).pixels, expected) << image.depth << " bits, bands of " << lines;
        settings.invert = true;
        const Picture inverted = Convert(picture, settings);
        for (std::size_t i = 0; i < expected.size(); ++i) ASSERT_EQ(inverted.pixels[i], 1 - expected[i]);
      }
  }
}

TEST(Convert, ThresholdIsExactForGraysColorsAndPalettes) {
  const Picture grays = Painted({256, 1, 8, GrayRamp(8)}, [](auto x, auto) { return x; });
  const Picture colors =
      Painted({256, 1, kDirectDepth}, [](auto x, auto) { return x << 16 | (255 - x) << 8 | x / 2; });
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
  const struct {
    std::int32_t depth;
    std::vector<IRGB> palette;
    bool gray = false;
  } cases[] = {{2, {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {128, 128, 128}}},
               {2, {{0, 0, 255}, {255, 255, 0}, {200, 30, 30}, {10, 90, 10}}},
               {2, GrayRamp(2), true},
               {8, GrayRamp(8), true}};
  const IRGB kPure[] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {0, 0, 0}, {255, 255, 255}, {128, 128, 128}};
  for (const auto& c : cases)
    for (const IRGB color : kPure)
      for (const bool invert : {false, true})
        for (const Layout layout : kLayouts) {
          const Picture patch = Painted({5, 3, kDirectDepth}, [&](auto, auto) { return Rgb(color); });
          const auto level = static_cast<std::uint8_t>(GrayAt(patch, 0, 0));
          const IRGB wanted = c.gray ? IRGB{level, level, level} : color;
          const std::uint32_t nearest = NearestIn(c.palette, invert ? Complement(wanted) : wanted);
          const Settings settings{.depth = c.depth, .palette = c.palette, .invert = invert, .layout = layout};
          EXPECT_EQ(Convert(patch, settings).pixels, std::vector<std::uint32_t>(15, nearest))
              << std::hex << Rgb(color) << " among " << c.palette.size();
        }
}

TEST(Convert, TakesValuesThatThePaletteHasNoColorForAsItsFirst) {
  for (const auto& [depth, values] : {std::pair{2, 4U}, {3, 16U}, {5, 256U}, {8, 256U}}) {
    Picture picture{{16, 1, StoredBits(depth)}, {}};
    std::vector<std::uint8_t> expected;
    for (std::uint32_t x = 0; x < 16; ++x) {
      picture.pixels.push_back(x % values);
      expected.push_back(x % values == 1 ? 0 : 1);
    }
    const Rows rows{{16, 1, depth, {{250, 9, 9}, {9, 9, 250}}}, RowsOf(picture).bytes};
    EXPECT_EQ(Convert(rows, {.depth = 8, .palette = {{9, 9, 250}, {250, 9, 9}}}).bytes, expected) << depth;
  }
}

TEST(Explain, TellsEveryLinkWithItsSizes) {
  const struct {
    Image image;
    Settings settings;
    std::vector<std::string> lines;
  } cases[] = {
      {{1000, 50, kDirectDepth},
       {.depth = 2, .palette = Distinct(4)},
       {"source: colour as 32-bit words; 1000 x 50, 32 bits packed, 4 bands of up to 16 lines, 64000 bytes",
        "nearest colour: 1000 x 50, 2 bits packed, 1 band of up to 16 lines, 4000 bytes from one band",
        "next stage: 50 rows of 250 bytes"}},
      {{1000, 50, 8, GrayRamp(8)},
       {.depth = 1, .palette = GrayRamp(1), .halftone = Halftone::Diffusion, .width = 4000},
       {"source: 1000 x 50, 8 bits packed, 4 bands of up to 16 lines, 16000 bytes",
        "enlarge width: 4000 x 50, 8 bits packed, 1 band of up to 16 lines, 64000 bytes from one band",
        "error diffusion: 4000 x 50, 1 plane, 1 band of up to 16 lines, 8000 bytes from one band",
        "next stage: 50 rows of 500 bytes"}},
      {{100, 50, 8, GrayRamp(8)},
       {.depth = 2,
        .palette = Distinct(4),
        .halftone = Halftone::Ordered,
        .crop = {8, 8, 40, 40},
        .width = 20,
        .height = 20,
        .reduce = Reduce::Decimate,
        .overlay = {{2, 1, 1, GrayRamp(1)}, {0}, 3, 5}},
       {"source: 100 x 50, 8 bits packed, 1 band of up to 50 lines, 5000 bytes",
        "clip: 40 x 40, 8 bits packed, 1 band of up to 40 lines, 1600 bytes from one band",
        "move to the origin: 40 x 40, 8 bits packed, 1 band of up to 40 lines, 1600 bytes from one band",
        "nearest colour: 40 x 40, 8 bits packed, 1 band of up to 40 lines, 1600 bytes from one band",
        "next stage: 40 rows of 40 bytes", "source: 40 x 40, 8 bits packed, 1 band of up to 40 lines, 1600 bytes",
        "decimate width: 20 x 40, 8 bits packed, 1 band of up to 40 lines, 800 bytes from one band",
        "decimate height: 20 x 20, 8 bits packed, 1 band of up to 20 lines, 400 bytes from one band",
        "ordered dither: 20 x 20, 2 bits packed, 1 band of up to 20 lines, 120 bytes from one band",
        "overlay: 2 x 1 at 3, 5", "next stage: 20 rows of 5 bytes"}},
      {{4, 6000, 8, GrayRamp(8)},
       {.depth = 8, .palette = GrayRamp(8), .height = 3000, .bandLines = 1001},
       {"in 2 parts, of which the first:",
        "source: 4 x 3000, 8 bits packed, 3 bands of up to 1001 lines, 4004 bytes",
        "smooth scaling: 4 x 1500, 8 bits packed, 1 band of up to 500 lines, 2000 bytes from one band",
        "next stage: 1500 rows of 4 bytes",
        "source: 4 x 3000, 8 bits packed, 3 bands of up to 1001 lines, 4004 bytes",
        "next stage: 3000 rows of 4 bytes"}},
  };
  for (const auto& c : cases) {
    std::vector<std::string> lines;
    ASSERT_FALSE(Failed(Explain(c.image, c.settings, &lines)));
    EXPECT_EQ(lines, c.lines);
  }
}

}  // namespace
}  // namespace cvt::test

// Where every pixel comes from when an image is cut out, enlarged or reduced, in one band or many.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "tests/pipeline/picture.h"

namespace cvt::test {
namespace {

using namespace cvt::pipeline;

using Values = std::vector<std::uint32_t>;

// What an image already is, in another size: 0 for the size that it has.
Settings Same(const Image& image, std::int32_t width = 0, std::int32_t height = 0) {
  return {
      .depth = image.depth, .palette = image.palette, .layout = image.layout, .width = width, .height = height};
}

// Images of every kind.
constexpr std::int32_t kWidth = 31, kHeight = 23;

std::vector<Image> EveryKind() {
  std::vector<Image> kinds;
  for (const std::int32_t depth : {1, 2, 4, 5, 8})
    for (const Layout layout : {Layout::Packed, Layout::Planes})
      kinds.push_back({kWidth, kHeight, depth, Distinct(std::size_t{1} << depth), layout});
  kinds.push_back({kWidth, kHeight, kDirectDepth});
  return kinds;
}

template <class Value>
void ExpectPixels(const Picture& out, std::int32_t width, std::int32_t height, Value value) {
  ASSERT_EQ(out.image.width, width);
  ASSERT_EQ(out.image.height, height);
  for (std::int32_t y = 0; y < height; ++y)
    for (std::int32_t x = 0; x < width; ++x) ASSERT_EQ(At(out, x, y), value(x, y)) << " at " << x << ", " << y;
}

// Pixel x, y comes from column `column(x)` and line `line(y)`, however the image is cut.
template <class Column, class Line>
void ExpectOfEveryKind(Settings settings, std::int32_t width, std::int32_t height, Column column, Line line) {
  for (const Image& image : EveryKind())
    for (const std::int32_t lines : {0, 1, 4, 13}) {
      // Runs of equal pixels end where their last pixel does, as below.
      if (settings.reduce == Reduce::Decimate && image.depth == 1) continue;
      SCOPED_TRACE(std::to_string(image.depth) + " bits to " + std::to_string(width) + " x " +
                   std::to_string(height) + " in bands of " + std::to_string(lines));
      const Picture picture = NoisePicture(image, 11);
      settings.depth = image.depth;
      settings.palette = image.palette;
      settings.layout = image.layout;
      settings.bandLines = lines;
      ExpectPixels(Convert(picture, settings), width, height,
                   [&](std::int32_t x, std::int32_t y) { return At(picture, column(x), line(y)); });
    }
}

TEST(Crop, CutsOutWhatWasAskedForInEveryKind) {
  for (const Crop c : {Crop{0, 0, 31, 23}, Crop{8, 3, 17, 12}, Crop{1, 22, 1, 1}, Crop{9, 0, 22, 5}})
    ExpectOfEveryKind(
        {.crop = c}, c.width, c.height, [c](std::int32_t x) { return x + c.x; },
        [c](std::int32_t y) { return y + c.y; });
}

TEST(Enlarge, ReplicatesPixelsHoweverTheImageIsCut) {
  for (const auto& [width, height] : {std::pair{62, 46}, {95, 23}, {31, 24}, {32, 70}, {200, 133}})
    ExpectOfEveryKind(
        {.width = width, .height = height}, width, height, [w = width](std::int32_t x) { return x * kWidth / w; },
        [h = height](std::int32_t y) { return y * kHeight / h; });
}

TEST(Enlarge, FillsTallOutputAcrossManyBands) {
  const Picture picture = NoisePicture({500, 90, 1, GrayRamp(1)}, 13);
  for (const std::int32_t depth : {1, 4, 8})
    for (const bool invert : {false, true}) {
      SCOPED_TRACE(depth);
      const Settings settings{
          .depth = depth, .palette = GrayRamp(depth), .invert = invert, .width = 1500, .height = 1001};
      const std::uint32_t white = (1U << depth) - 1, black = invert ? 1 : 0;
      ExpectPixels(Convert(picture, settings), 1500, 1001, [&](std::int32_t x, std::int32_t y) {
        return (At(picture, x / 3, y * 90 / 1001) ^ black) * white;
      });
    }
}

// Bands that enlarging fills are larger as planes, whose rows are padded one by one.
TEST(Enlarge, FillsPlanesAsItFillsPackedPixels) {
  const struct {
    Image image;
    std::int32_t width, height, depth;
  } cases[] = {{{250, 122, 8, GrayRamp(8)}, 500, 244, 8},
               {{100, 400, 4, GrayRamp(4)}, 100, 1600, 4},
               {{33, 515, 8, GrayRamp(8)}, 70, 905, 5},
               {{1, 50, kDirectDepth}, 1, 7500, 2}};
  for (const auto& c : cases)
    for (const Enlarge enlarge : {Enlarge::Replicate, Enlarge::Smooth}) {
      SCOPED_TRACE(c.width);
      const Picture picture = NoisePicture(c.image, 5);
      Settings settings{.depth = c.depth, .palette = GrayRamp(c.depth), .width = c.width, .height = c.height};
      settings.enlarge = enlarge;
      const Picture packed = Convert(picture, settings);
      settings.layout = Layout::Planes;
      EXPECT_EQ(Convert(picture, settings).pixels, packed.pixels);
    }
}

TEST(Decimate, TakesTheLastPixelAndLineOfEachGroup) {
  const auto lastOf = [](std::int32_t k, std::int32_t from, std::int32_t to) {
    return ((k + 1) * from + to - 1) / to - 1;
  };
  for (const auto& [width, height] : {std::pair{15, 8}, {7, 23}, {31, 6}, {30, 22}, {1, 1}})
    ExpectOfEveryKind(
        {.width = width, .height = height, .reduce = Reduce::Decimate}, width, height,
        [&, w = width](std::int32_t x) { return lastOf(x, kWidth, w); },
        [&, h = height](std::int32_t y) { return lastOf(y, kHeight, h); });
}

// Lines so long that a band holds fewer than make one: as many columns, of a narrower image, go in one step.
TEST(Decimate, GoesInStepsToTheLinesOfOneStep) {
  const Picture wide = NoisePicture({6000, 300, 8, GrayRamp(8)}, 21);
  const Picture narrow =
      Painted({9, 300, 8, GrayRamp(8)}, [&](auto x, auto y) { return static_cast<std::int32_t>(At(wide, x, y)); });
  for (const std::int32_t height : {1, 7, 20}) {
    Settings settings = Same(wide.image, 0, height);
    settings.reduce = Reduce::Decimate;
    const Picture out = Convert(wide, settings), one = Convert(narrow, settings);
    ExpectPixels(one, 9, height, [&](std::int32_t x, std::int32_t y) { return At(out, x, y); });
  }
}

// The first output line has no line above it that a thin one would differ from: it differs from the paper.
TEST(Keep, KeepsLinesAtTheTop) {
  const std::vector<IRGB> colors = {{0, 0, 0}, {255, 255, 255}};
  for (const std::int32_t depth : {1, 4, 8, kDirectDepth})
    for (const bool white : {false, true})
      for (std::int32_t line = 0; line < 8; ++line) {
        if (depth == kDirectDepth && white) continue;  // only black can be kept there
        const auto level = [&](auto, auto y) { return (y == line) == white ? 1 : 0; };
        const auto direct = [&](auto x, auto y) { return level(x, y) * 0xFFFFFF; };
        const Picture page =
            depth == kDirectDepth ? Painted({20, 40, depth}, direct) : Painted({20, 40, depth, colors}, level);
        Settings settings = Same(page.image, 7, 10);
        settings.reduce = Reduce::Keep;
        settings.keepColor = colors[white ? 1 : 0];
        const Picture out = Convert(page, settings);
        for (std::int32_t y = 0; y < 4; ++y)
          EXPECT_EQ(GrayAt(out, 3, y) == 255, (y == line / 4) == white) << depth << " bits, line " << line;
      }
}

TEST(Keep, LosesNoHairlineHoweverFarItReduces) {
  // A white page with a hairline grid on it; lines one pixel wide.
  const Picture page = Painted({300, 200, 1, {{255, 255, 255}, {0, 0, 0}}},
                               [](auto x, auto y) { return x % 40 == 5 || y % 40 == 5 ? 1 : 0; });
  for (const auto& [width, height] : {std::pair{150, 100}, {100, 67}, {111, 74}, {75, 50}, {300, 90}}) {
    SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
    Settings settings = Same(page.image, width, height);
    settings.reduce = Reduce::Keep;
    const Picture whole = Convert(page, settings);
    for (std::int32_t y = 0; y < height; ++y)
      for (std::int32_t line = 5; line < 300; line += 40) {
        const std::int32_t x = line * width / 300;
        EXPECT_TRUE(At(whole, x, y) == 1 || At(whole, std::max(x - 1, 0), y) == 1) << "column " << line;
      }
    for (std::int32_t line = 5; line < 200; line += 40)
      for (std::int32_t x = 0; x < width; ++x) EXPECT_EQ(At(whole, x, line * height / 200), 1U) << "line " << line;
    for (const std::int32_t lines : {1, 3, 10}) {
      settings.bandLines = lines;
      EXPECT_EQ(Convert(page, settings).pixels, whole.pixels) << "bands of " << lines;
    }
  }
}

// A column of the kept colour among others, of lines that fit a band by the dozen or two at a time.
TEST(Keep, KeepsTheColorThatWasAskedFor) {
  const std::vector<IRGB> colors = {{255, 255, 255}, {0, 100, 200}, {0, 0, 255}, {0, 255, 0}};
  for (const auto& [width, depth] : {std::pair{40, 2}, {40, kDirectDepth}, {6000, kDirectDepth}})
    for (const std::size_t kept : {1U, 2U}) {
      const Picture picture =
          Painted({width, 40, depth, depth == 2 ? colors : std::vector<IRGB>{}}, [&, d = depth](auto x, auto) {
            const int index = x == 11 ? 1 : x == 27 ? 2 : 0;
            return d == 2 ? index : Rgb(colors[static_cast<std::size_t>(index)]);
          });
      Settings settings = Same(picture.image, 9, 2);
      settings.reduce = Reduce::Keep;
      settings.keepColor = colors[kept];
      const Picture out = Convert(picture, settings);
      int found = 0;
      for (std::int32_t x = 0; x < 9; ++x) found += RgbAt(out, x, 1) == Rgb(colors[kept]) ? 1 : 0;
      EXPECT_EQ(found, 1) << width;
    }
}

// ---- Smooth scaling ----

// A soft picture: two crossing waves.
Picture Waves(const Image& image) {
  return Painted(image, [&](auto x, auto y) {
    const auto gray = static_cast<std::int32_t>(128 + 60 * std::sin(x * 0.05) + 60 * std::cos(y * 0.07));
    return image.depth == kDirectDepth ? gray * 0x10101 : gray;
  });
}

// The mean gray level of a rectangle, parts of pixels counted as such.
double MeanGray(const Picture& picture, double left, double top, double right, double bottom) {
  double sum = 0;
  for (auto y = static_cast<std::int32_t>(top); y < std::min(bottom, 1.0 * picture.image.height); ++y)
    for (auto x = static_cast<std::int32_t>(left); x < std::min(right, 1.0 * picture.image.width); ++x)
      sum += GrayAt(picture, x, y) * (std::min(right, x + 1.0) - std::max(left, 1.0 * x)) *
             (std::min(bottom, y + 1.0) - std::max(top, 1.0 * y));
  return sum / ((right - left) * (bottom - top));
}

double MeanGray(const Picture& picture) {
  return MeanGray(picture, 0, 0, picture.image.width, picture.image.height);
}

TEST(Smooth, ReductionIsCloseToAnAreaAverage) {
  // Pieces count with the level at their start, so a step is off by up to a source pixel of slope each way.
  constexpr double kSlope = 60 * 0.05 + 60 * 0.07;
  const struct {
    std::int32_t width, height;
    double steps;
  } sizes[] = {{200, 150, 1}, {133, 100, 1}, {128, 96, 1}, {40, 30, 1}, {7, 5, 2}};
  for (const Image& image : {Image{400, 300, 8, GrayRamp(8)}, Image{400, 300, kDirectDepth}})
    for (const auto& size : sizes) {
      const Picture picture = Waves(image);
      const Picture out = Convert(picture, Same(image, size.width, size.height));
      const double dx = 400.0 / size.width, dy = 300.0 / size.height;
      const double tolerance = kSlope * size.steps + 2;
      for (std::int32_t y = 0; y < size.height; ++y)
        for (std::int32_t x = 0; x < size.width; ++x)
          ASSERT_NEAR(GrayAt(out, x, y), MeanGray(picture, x * dx, y * dy, (x + 1) * dx, (y + 1) * dy), tolerance)
              << size.width << " x " << size.height;
      EXPECT_NEAR(MeanGray(out), MeanGray(picture), 2.5);
    }
}

TEST(Smooth, ReductionDoesNotDependOnTheBands) {
  const Picture picture = NoisePicture({120, 90, 8, GrayRamp(8)}, 15);
  for (const auto& [width, height] : {std::pair{60, 45}, {50, 37}, {120, 10}}) {
    Settings settings = Same(picture.image, width, height);
    const Picture whole = Convert(picture, settings);
    for (const std::int32_t lines : {1, 9, 20}) {
      settings.bandLines = lines;
      EXPECT_EQ(Convert(picture, settings).pixels, whole.pixels) << "bands of " << lines;
    }
  }
}

TEST(Smooth, GoesInStepsWhereABandHoldsTooFewLines) {
  const Picture picture = Waves({6000, 300, kDirectDepth});  // two lines a band
  Settings settings = Same(picture.image);
  settings.gamma = 2;  // once, however many steps there are
  const double mean = MeanGray(Convert(picture, settings));
  settings.width = 300;
  settings.height = 15;
  const Picture out = Convert(picture, settings);
  ASSERT_EQ(out.image.height, 15);
  EXPECT_NEAR(MeanGray(out), mean, 4);
}

TEST(Smooth, AveragesPixelsAndLinesToTheLast) {
  const Picture line{{4, 1, 8, GrayRamp(8)}, {0, 0, 0, 100}}, column{{1, 4, 8, GrayRamp(8)}, {0, 0, 0, 100}};
  EXPECT_EQ(Convert(line, Same(line.image, 2)).pixels, (Values{0, 50}));
  EXPECT_EQ(Convert(column, Same(column.image, 0, 2)).pixels, (Values{0, 50}));
}

// By halves every pixel is the mean of four, those at the edges too, however the image is cut.
TEST(Smooth, AveragesFromTheFirstPixelAndLine) {
  const Picture gray = NoisePicture({12, 16, 8, GrayRamp(8)}, 3);
  const Picture color =
      Painted({12, 16, kDirectDepth}, [&](auto x, auto y) { return GrayAt(gray, x, y) * 0x10101; });
  for (const Picture& picture : {gray, color})
    for (const std::int32_t lines : {0, 3, 6}) {
      Settings settings = Same(picture.image, 6, 8);
      settings.bandLines = lines;
      const Picture out = Convert(picture, settings);
      for (std::int32_t y = 0; y < 8; ++y)
        for (std::int32_t x = 0; x < 6; ++x)
          EXPECT_NEAR(GrayAt(out, x, y), MeanGray(gray, 2 * x, 2 * y, 2 * x + 2, 2 * y + 2), 1.8)
              << x << ", " << y;
    }
}

// Lines that stay as many stay where they are, but the first two, or three where bands are cut: they are one mean.
TEST(Smooth, KeepsLinesInTheirPlacesWhereOnlyColumnsAreAveraged) {
  const Picture picture = NoisePicture({12, 30, 8, GrayRamp(8)}, 3);
  for (const std::int32_t lines : {0, 7}) {
    Settings settings = Same(picture.image, 6);
    settings.bandLines = lines;
    const Picture out = Convert(picture, settings);
    const std::int32_t mixed = lines == 0 ? 2 : 3;
    for (std::int32_t y = 0; y < 30; ++y) {
      const std::int32_t from = y < mixed ? 0 : y, to = y < mixed ? mixed : y + 1;
      for (std::int32_t x = 0; x < 6; ++x)
        EXPECT_NEAR(GrayAt(out, x, y), MeanGray(picture, 2 * x, from, 2 * x + 2, to), 2) << x << ", " << y;
    }
  }
}

TEST(Smooth, AConstantImageStaysConstant) {
  for (const Image& image : {Image{37, 29, 8, GrayRamp(8)}, Image{37, 29, kDirectDepth}})
    for (const auto& [width, height] : {std::pair{10, 10}, {74, 58}, {100, 29}, {20, 100}}) {
      const std::uint32_t value = image.depth == 8 ? 201 : 0x10C8F0;
      Settings settings = Same(image, width, height);
      settings.enlarge = Enlarge::Smooth;
      const Picture out = Convert(Picture{image, Values(37 * 29, value)}, settings);
      EXPECT_EQ(out.pixels, Values(out.pixels.size(), value)) << width;
    }
}

TEST(Smooth, AveragesTheColorsOfPalettesNotTheirIndices) {
  const Picture picture =
      Painted({40, 40, 4, {{0, 0, 0}, {255, 255, 255}, {9, 200, 30}}}, [](auto x, auto y) { return (x + y) % 2; });
  for (const std::int32_t depth : {8, kDirectDepth}) {
    Settings settings{.depth = depth, .width = 10, .height = 10};
    if (depth == 8) settings.palette = GrayRamp(8);
    const Picture out = Convert(picture, settings);
    EXPECT_NEAR(MeanGray(out), 127, 14) << depth;
    for (std::int32_t x = 1; x < 10; ++x) EXPECT_NEAR(GrayAt(out, x, 5), 127, 2) << depth;
  }
}

TEST(Resolution, KeepsTheSizeOnPaper) {
  Image image{100, 40, 8, GrayRamp(8)};
  image.resolution = {300, 150};
  Settings settings{.depth = 1, .crop = {10, 0, 50, 40}, .width = 100, .height = 20};
  settings.palette = {{0, 0, 255}, {255, 255, 255}};  // through two bits, by a sink between
  const Resolution written = Convert(NoisePicture(image, 1), settings).image.resolution;
  EXPECT_TRUE(written.x == 600 && written.y == 75);
}

// ---- Averages of tall images, which go through in parts ----

Settings Averages(std::int32_t width, std::int32_t height) {
  Settings settings = Same({0, 0, 8, GrayRamp(8)}, width, height);
  settings.enlarge = Enlarge::Smooth;
  settings.bandLines = 50;
  return settings;
}

// Where the ratio is exact, the lines around a seam are those of a piece that is averaged by itself.
TEST(TallAverages, AreThoseOfPieces) {
  const struct {
    std::int32_t height, newHeight, first, rows;  // the piece
  } cases[] = {
      {8200, 4100, 3000, 2200}, {6000, 6000, 2900, 400}, {5000, 10000, 1200, 400}, {20000, 4000, 9000, 2500}};
  for (const auto& c : cases) {
    const Picture picture = NoisePicture({6, c.height, 8, GrayRamp(8)}, 5);
    const Picture whole = Convert(picture, Averages(3, c.newHeight));
    Settings piece = Averages(3, c.rows * c.newHeight / c.height);
    piece.crop = {0, c.first, 6, c.rows};
    const Picture part = Convert(picture, piece);
    const std::int32_t top = c.first * c.newHeight / c.height, edge = 4 * c.newHeight / c.height + 4;
    for (std::int32_t y = edge; y < part.image.height - edge; ++y)
      for (std::int32_t x = 0; x < 3; ++x)
        ASSERT_EQ(At(whole, x, top + y), At(part, x, y))
            << c.height << " to " << c.newHeight << ": " << x << ", " << y;
  }
}

// Where it is not, every line is about the mean of the lines that it stands for, at a seam of what lies half a
// line beside them at most: of a picture whose levels rise and fall by one from line to line.
TEST(TallAverages, LieWhereTheyShould) {
  for (const auto& [height, newHeight] : {std::pair{7001, 2503}, {4300, 4290}, {30000, 2999}, {4097, 4111}}) {
    const Picture picture =
        Painted({2, height, 8, GrayRamp(8)}, [](auto, auto y) { return 20 + std::min(y % 400, 400 - y % 400); });
    const Picture made = Convert(picture, Averages(2, newHeight));
    const double step = static_cast<double>(height) / newHeight;
    for (std::int32_t y = 1; y + 1 < newHeight; ++y)
      ASSERT_NEAR(At(made, 0, y), MeanGray(picture, 0, y * step, 1, (y + 1) * step), 1.6) << height << " " << y;
  }
}

// Of this width the first part would fit one band and the second not, being a little taller.
TEST(TallAverages, RiseEvenlyOverASeam) {
  const Picture picture = Painted({30, 4368, 8, GrayRamp(8)}, [](auto, auto y) { return 2 * y % 240; });
  Settings twice = Averages(30, 8736);
  twice.bandLines = 0;
  const Picture made = Convert(picture, twice);
  for (std::int32_t y = 4360; y < 4376; ++y) EXPECT_EQ(At(made, 9, y + 1), At(made, 9, y) + 1) << y;
}

// What follows on the averages runs through all parts: the error of diffusion is carried over the seams.
TEST(TallAverages, AreHalftonedAsOneImage) {
  const Picture picture = NoisePicture({20, 8400, 8, GrayRamp(8)}, 7);
  Settings ink = Averages(10, 4200);
  ink.depth = 1;
  ink.palette = GrayRamp(1);
  ink.halftone = Halftone::Diffusion;
  Settings after = ink;
  after.width = after.height = 0;
  EXPECT_EQ(Convert(picture, ink).pixels, Convert(Convert(picture, Averages(10, 4200)), after).pixels);
}

}  // namespace
}  // namespace cvt::test

// Where every pixel comes from when an image is cut out, enlarged or reduced, in one band or many.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "tests/pipeline/picture.h"

namespace cvt::test {
namespace {

using namespace cvt::pipeline;

std::vector<IRGB> Distinct(std::size_t count) {
  std::vector<IRGB> colors;
  for (std::size_t i = 0; i < count; ++i)
    colors.push_back({static_cast<std::uint8_t>(i * 37), static_cast<std::uint8_t>(255 - i * 11 % 256),
                      static_cast<std::uint8_t>(i * i % 251)});
  return colors;
}

// Images of every kind, to be converted to what they are.
std::vector<Image> EveryKind(std::int32_t width, std::int32_t height) {
  std::vector<Image> kinds;
  for (const std::int32_t depth : {1, 2, 4, 5, 8})
    for (const Layout layout : {Layout::Packed, Layout::Planes})
      kinds.push_back({width, height, depth, Distinct(std::size_t{1} << depth), layout});
  kinds.push_back({width, height, kDirectDepth});
  return kinds;
}

Settings Same(const Image& image) {
  return {.depth = image.depth, .palette = image.palette, .layout = image.layout};
}

template <class From>
void ExpectPixels(const Picture& out, std::int32_t width, std::int32_t height, From from,
                  const std::string& what) {
  ASSERT_EQ(out.image.width, width) << what;
  ASSERT_EQ(out.image.height, height) << what;
  for (std::int32_t y = 0; y < height; ++y)
    for (std::int32_t x = 0; x < width; ++x)
      ASSERT_EQ(At(out, x, y), from(x, y)) << what << " at " << x << ", " << y;
}

std::string Name(const Picture& picture, const Settings& settings) {
  return std::to_string(picture.image.depth) + " bits to " + std::to_string(settings.width) + " x " +
         std::to_string(settings.height) + " in bands of " + std::to_string(settings.bandLines);
}

TEST(Crop, CutsOutWhatWasAskedForInEveryKind) {
  for (const Image& image : EveryKind(61, 37))
    for (const Crop crop : {Crop{0, 0, 61, 37}, Crop{8, 3, 23, 20}, Crop{1, 36, 1, 1}, Crop{17, 0, 44, 5}})
      for (const std::int32_t lines : {0, 1, 7}) {
        const Picture picture = NoisePicture(image, 11);
        Settings settings = Same(image);
        settings.crop = crop;
        settings.bandLines = lines;
        ExpectPixels(
            Convert(picture, settings), crop.width, crop.height,
            [&](std::int32_t x, std::int32_t y) { return At(picture, x + crop.x, y + crop.y); },
            Name(picture, settings));
      }
}

TEST(Enlarge, ReplicatesPixelsHoweverTheImageIsCut) {
  for (const Image& image : EveryKind(23, 19))
    for (const auto& [width, height] : {std::pair{46, 38}, {70, 19}, {23, 20}, {24, 61}, {200, 133}})
      for (const std::int32_t lines : {0, 1, 4}) {
        const Picture picture = NoisePicture(image, 12);
        Settings settings = Same(image);
        settings.width = width;
        settings.height = height;
        settings.bandLines = lines;
        const auto from = [&, w = width, h = height](std::int32_t x, std::int32_t y) {
          return At(picture, x * 23 / w, y * 19 / h);
        };
        ExpectPixels(Convert(picture, settings), width, height, from, Name(picture, settings));
      }
}

TEST(Enlarge, FillsTallOutputAcrossManyBands) {
  const Picture picture = NoisePicture({500, 90, 1, GrayRamp(1)}, 13);
  for (const std::int32_t depth : {1, 4, 8}) {
    const Settings settings{.depth = depth, .palette = GrayRamp(depth), .width = 1500, .height = 1001};
    const Picture out = Convert(picture, settings);
    const std::uint32_t white = (1U << depth) - 1;
    ExpectPixels(
        out, 1500, 1001, [&](std::int32_t x, std::int32_t y) { return At(picture, x / 3, y * 90 / 1001) * white; },
        std::to_string(depth));
  }
}

TEST(Decimate, TakesTheLastPixelAndLineOfEachGroup) {
  const auto lastOf = [](std::int32_t k, std::int32_t from, std::int32_t to) {
    return ((k + 1) * from + to - 1) / to - 1;
  };
  for (const Image& image : EveryKind(60, 45))
    for (const auto& [width, height] : {std::pair{30, 15}, {7, 45}, {60, 11}, {59, 44}, {1, 1}})
      for (const std::int32_t lines : {0, 1, 4, 13}) {
        Picture picture = NoisePicture(image, 14);
        Settings settings = Same(image);
        settings.width = width;
        settings.height = height;
        settings.reduce = Reduce::Decimate;
        settings.bandLines = lines;
        if (image.depth == 1) continue;  // runs of equal pixels end where their last pixel does, as below
        const auto from = [&, w = width, h = height](std::int32_t x, std::int32_t y) {
          return At(picture, lastOf(x, 60, w), lastOf(y, 45, h));
        };
        ExpectPixels(Convert(picture, settings), width, height, from, Name(picture, settings));
      }
}

// A white page with a hairline grid on it; lines one pixel wide.
Picture Hairlines(std::int32_t pitch) {
  Picture page{{300, 200, 1, {{255, 255, 255}, {0, 0, 0}}}, {}};
  for (std::int32_t y = 0; y < 200; ++y)
    for (std::int32_t x = 0; x < 300; ++x) page.pixels.push_back(x % pitch == 5 || y % pitch == 5 ? 1 : 0);
  return page;
}

TEST(Keep, LosesNoHairlineHoweverFarItReduces) {
  const Picture page = Hairlines(40);
  for (const auto& [width, height] : {std::pair{150, 100}, {100, 67}, {111, 74}, {75, 50}, {300, 90}}) {
    Settings settings = Same(page.image);
    settings.width = width;
    settings.height = height;
    settings.reduce = Reduce::Keep;
    const Picture whole = Convert(page, settings);
    for (std::int32_t k = 0; k * 40 + 5 < 300; ++k) {
      const std::int32_t x = (k * 40 + 5) * width / 300;
      for (std::int32_t y = 0; y < height; ++y)
        EXPECT_TRUE(At(whole, x, y) == 1 || At(whole, std::max(x - 1, 0), y) == 1) << width << " wide, line " << k;
    }
    for (std::int32_t k = 0; k * 40 + 5 < 200; ++k) {
      const std::int32_t y = (k * 40 + 5) * height / 200;
      for (std::int32_t x = 0; x < width; ++x) EXPECT_EQ(At(whole, x, y), 1U) << height << " high, line " << k;
    }
    for (const std::int32_t lines : {1, 3, 10}) {
      settings.bandLines = lines;
      EXPECT_EQ(Convert(page, settings).pixels, whole.pixels) << "bands of " << lines;
    }
  }
}

TEST(Keep, KeepsTheColorThatWasAskedFor) {
  Picture picture{{40, 8, 2, {{255, 255, 255}, {255, 0, 0}, {0, 0, 255}, {0, 255, 0}}}, {}};
  for (std::int32_t i = 0; i < 40 * 8; ++i) picture.pixels.push_back(i % 40 == 11 ? 1 : i % 40 == 27 ? 2 : 0);
  for (const std::uint32_t kept : {1U, 2U}) {
    Settings settings = Same(picture.image);
    settings.width = 9;
    settings.reduce = Reduce::Keep;
    settings.keepColor = picture.image.palette[kept];
    const Picture out = Convert(picture, settings);
    EXPECT_EQ(std::count(out.pixels.begin(), out.pixels.end(), kept), 8);
  }
}

// ---- Smooth scaling ----

double MeanGray(const Picture& picture) {
  double sum = 0;
  for (std::int32_t y = 0; y < picture.image.height; ++y)
    for (std::int32_t x = 0; x < picture.image.width; ++x) sum += GrayAt(picture, x, y);
  return sum / (picture.image.width * picture.image.height);
}

// A soft picture: two crossing waves.
Picture Waves(const Image& image) {
  Picture picture{image, {}};
  for (std::int32_t y = 0; y < image.height; ++y)
    for (std::int32_t x = 0; x < image.width; ++x) {
      const auto gray = static_cast<std::uint32_t>(128 + 60 * std::sin(x * 0.05) + 60 * std::cos(y * 0.07));
      picture.pixels.push_back(image.depth == kDirectDepth ? gray * 0x10101 : gray);
    }
  return picture;
}

// The average of the source pixels that an output pixel covers, in gray levels.
double AreaAverage(const Picture& picture, double left, double top, double right, double bottom) {
  double sum = 0;
  for (auto y = static_cast<std::int32_t>(top); y < bottom; ++y)
    for (auto x = static_cast<std::int32_t>(left); x < right; ++x)
      sum += GrayAt(picture, x, y) * (std::min(right, x + 1.0) - std::max(left, double(x))) *
             (std::min(bottom, y + 1.0) - std::max(top, double(y)));
  return sum / ((right - left) * (bottom - top));
}

TEST(Smooth, ReductionIsCloseToAnAreaAverage) {
  // Pieces count with the level at their start, so a step is off by up to a source pixel of slope each way.
  constexpr double kSlope = 60 * 0.05 + 60 * 0.07;
  struct Size {
    std::int32_t width, height;
    double steps;
  };
  for (const Image& image : {Image{400, 300, 8, GrayRamp(8)}, Image{400, 300, kDirectDepth}})
    for (const Size size :
         {Size{200, 150, 1}, Size{133, 100, 1}, Size{128, 96, 1}, Size{40, 30, 1}, Size{7, 5, 2}}) {
      const Picture picture = Waves(image);
      Settings settings = Same(image);
      settings.width = size.width;
      settings.height = size.height;
      const Picture out = Convert(picture, settings);
      const double dx = 400.0 / size.width, dy = 300.0 / size.height;
      double worst = 0;
      for (std::int32_t y = 0; y < size.height; ++y)
        for (std::int32_t x = 0; x < size.width; ++x)
          worst = std::max(worst, std::abs(GrayAt(out, x, y) -
                                           AreaAverage(picture, x * dx, y * dy, (x + 1) * dx, (y + 1) * dy)));
      EXPECT_LT(worst, kSlope * size.steps + 2) << size.width << " x " << size.height;
      EXPECT_NEAR(MeanGray(out), MeanGray(picture), 2.5);
    }
}

TEST(Smooth, ReductionDoesNotDependOnTheBands) {
  const Picture picture = NoisePicture({120, 90, 8, GrayRamp(8)}, 15);
  for (const auto& [width, height] : {std::pair{60, 45}, {50, 37}, {120, 10}}) {
    Settings settings = Same(picture.image);
    settings.width = width;
    settings.height = height;
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

TEST(Smooth, AveragesThePixelsOfALineToTheLast) {
  const Picture line{{4, 1, 8, GrayRamp(8)}, {0, 0, 0, 100}};
  Settings settings = Same(line.image);
  settings.width = 2;
  EXPECT_EQ(Convert(line, settings).pixels, (std::vector<std::uint32_t>{0, 50}));
}

TEST(Smooth, AConstantImageStaysConstant) {
  for (const Image& image : {Image{37, 29, 8, GrayRamp(8)}, Image{37, 29, kDirectDepth}})
    for (const auto& [width, height] : {std::pair{10, 10}, {74, 58}, {100, 29}, {20, 100}}) {
      const std::uint32_t value = image.depth == 8 ? 201 : 0x10C8F0;
      const Picture picture{image, std::vector<std::uint32_t>(37 * 29, value)};
      Settings settings = Same(image);
      settings.width = width;
      settings.height = height;
      settings.enlarge = Enlarge::Smooth;
      ExpectPixels(
          Convert(picture, settings), width, height, [&](std::int32_t, std::int32_t) { return value; },
          std::to_string(width));
    }
}

TEST(Smooth, AveragesTheColorsOfPalettesNotTheirIndices) {
  Picture picture{{40, 40, 4, {{0, 0, 0}, {255, 255, 255}, {9, 200, 30}}}, {}};
  for (std::int32_t i = 0; i < 1600; ++i) picture.pixels.push_back(static_cast<std::uint32_t>((i + i / 40) % 2));
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
  Settings settings{.depth = 1, .palette = GrayRamp(1), .crop = {10, 0, 50, 40}, .width = 100, .height = 20};
  settings.palette = {{0, 0, 255}, {255, 255, 255}};  // through two bits, by a sink between
  const Resolution written = Convert(NoisePicture(image, 1), settings).image.resolution;
  EXPECT_EQ(written.x, 600);
  EXPECT_EQ(written.y, 75);
}

// ---- Averages of tall images, which go through in parts ----

Settings Averages(std::int32_t width, std::int32_t height) {
  return {.depth = 8,
          .palette = GrayRamp(8),
          .width = width,
          .height = height,
          .enlarge = Enlarge::Smooth,
          .bandLines = 50};
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

// The mean of the lines `from` to `to`, parts of lines counted as such, of the first column.
double MeanOf(const Picture& picture, double from, double to) {
  double sum = 0;
  for (auto y = static_cast<std::int32_t>(from); y < to && y < picture.image.height; ++y)
    sum += (std::min(to, y + 1.0) - std::max(from, 1.0 * y)) * At(picture, 0, y);
  return sum / (to - from);
}

// Where it is not, every line is about the mean of the lines that it stands for, at a seam of what lies half a
// line beside them at most: of a picture whose levels rise and fall by one from line to line.
TEST(TallAverages, LieWhereTheyShould) {
  for (const auto& [height, newHeight] : {std::pair{7001, 2503}, {4300, 4290}, {30000, 2999}, {4097, 4111}}) {
    Picture picture = NoisePicture({2, height, 8, GrayRamp(8)}, 1);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
      const auto wave = static_cast<std::uint32_t>(i / 2 % 400);
      picture.pixels[i] = 20 + (wave < 200 ? wave : 400 - wave);
    }
    const Picture made = Convert(picture, Averages(2, newHeight));
    const double step = static_cast<double>(height) / newHeight;
    for (std::int32_t y = 1; y + 1 < newHeight; ++y)
      ASSERT_NEAR(At(made, 0, y), MeanOf(picture, y * step, (y + 1) * step), 1.6) << height << " " << y;
  }
}

// Of this width the first part would fit one band and the second not, being a little taller.
TEST(TallAverages, RiseEvenlyOverASeam) {
  Picture picture = NoisePicture({30, 4368, 8, GrayRamp(8)}, 1);
  for (std::size_t i = 0; i < picture.pixels.size(); ++i)
    picture.pixels[i] = static_cast<std::uint32_t>(i / 30 * 2 % 240);
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

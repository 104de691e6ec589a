#include "pipeline/chart.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

namespace cvt::pipeline {
namespace {

constexpr IRGB kWhite{255, 255, 255};
constexpr IRGB kBlack{0, 0, 0};

IRGB Gray(std::int32_t level) {
  const auto channel = static_cast<std::uint8_t>(std::clamp(level, 0, 255));
  return {channel, channel, channel};
}

// ---- Text: five columns by seven rows a glyph, a row in the low five bits ----

struct Glyph {
  char letter;
  std::array<std::uint8_t, 7> rows;
};

constexpr std::array kGlyphs{
    Glyph{'A', {14, 17, 17, 31, 17, 17, 17}}, Glyph{'B', {30, 17, 17, 30, 17, 17, 30}},
    Glyph{'C', {14, 17, 16, 16, 16, 17, 14}}, Glyph{'D', {30, 17, 17, 17, 17, 17, 30}},
    Glyph{'E', {31, 16, 16, 30, 16, 16, 31}}, Glyph{'F', {31, 16, 16, 30, 16, 16, 16}},
    Glyph{'G', {14, 17, 16, 23, 17, 17, 15}}, Glyph{'H', {17, 17, 17, 31, 17, 17, 17}},
    Glyph{'I', {14, 4, 4, 4, 4, 4, 14}},      Glyph{'J', {7, 2, 2, 2, 2, 18, 12}},
    Glyph{'K', {17, 18, 20, 24, 20, 18, 17}}, Glyph{'L', {16, 16, 16, 16, 16, 16, 31}},
    Glyph{'M', {17, 27, 21, 21, 17, 17, 17}}, Glyph{'N', {17, 25, 21, 19, 17, 17, 17}},
    Glyph{'O', {14, 17, 17, 17, 17, 17, 14}}, Glyph{'P', {30, 17, 17, 30, 16, 16, 16}},
    Glyph{'Q', {14, 17, 17, 17, 21, 18, 13}}, Glyph{'R', {30, 17, 17, 30, 20, 18, 17}},
    Glyph{'S', {15, 16, 16, 14, 1, 1, 30}},   Glyph{'T', {31, 4, 4, 4, 4, 4, 4}},
    Glyph{'U', {17, 17, 17, 17, 17, 17, 14}}, Glyph{'V', {17, 17, 17, 17, 17, 10, 4}},
    Glyph{'W', {17, 17, 17, 21, 21, 27, 17}}, Glyph{'X', {17, 17, 10, 4, 10, 17, 17}},
    Glyph{'Y', {17, 17, 10, 4, 4, 4, 4}},     Glyph{'Z', {31, 1, 2, 4, 8, 16, 31}},
};
constexpr std::int32_t kGlyphPitch = 6;  // five columns and a gap
constexpr std::int32_t kGlyphRows = 7;

bool GlyphInk(char letter, std::int32_t column, std::int32_t row) {
  const auto* glyph =
      std::find_if(kGlyphs.begin(), kGlyphs.end(), [=](const Glyph& g) { return g.letter == letter; });
  return glyph != kGlyphs.end() && column < 5 &&
         (glyph->rows[static_cast<std::size_t>(row)] >> (4 - column) & 1) != 0;
}

bool TextInk(std::string_view text, std::int32_t x, std::int32_t y, std::int32_t size) {
  if (x < 0 || y < 0 || y >= kGlyphRows * size) return false;
  const auto letter = static_cast<std::size_t>(x / (kGlyphPitch * size));
  return letter < text.size() && GlyphInk(text[letter], x / size % kGlyphPitch, y / size);
}

// ---- The fields of the chart, each in coordinates of its own ----

// A hue circle bent straight: x runs through the hues, y from white over the pure hue to black.
IRGB HueField(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
  const std::int32_t position = x * 1536 / width;  // six edges of the colour cube, 256 steps each
  const auto channel = [position](std::int32_t turn) {
    const std::int32_t p = (position + turn) % 1536;
    return p < 256 ? p : p < 768 ? 255 : p < 1024 ? 1023 - p : 0;
  };
  const std::int32_t lightness = y * 511 / (height - 1);  // 0 white, 255 pure, 510 black
  const auto shade = [lightness](std::int32_t v) {
    return static_cast<std::uint8_t>(lightness < 256 ? 255 - (255 - v) * lightness / 255
                                                     : v * (511 - lightness) / 256);
  };
  return {shade(channel(512)), shade(channel(0)), shade(channel(1024))};
}

// A parabola a half wave, close to a sine: 0 to 255 for a phase of 0 to 255.
std::int32_t Wave(std::int32_t phase) {
  const std::int32_t t = phase % 128 - 64;
  const std::int32_t height = (4096 - t * t) / 32;
  return phase < 128 ? 128 + std::min(height, 127) : 128 - height;
}

// Rings whose pitch shrinks outward until it beats with the pixels.
IRGB ZonePlate(std::int32_t x, std::int32_t y, std::int32_t size) {
  const std::int32_t dx = x - size / 2;
  const std::int32_t dy = y - size / 2;
  return Gray(Wave((dx * dx + dy * dy) * 128 / size & 255));
}

// One-pixel lines from a corner, at slopes of 0 to 12 twelfths and their mirror images.
IRGB HairlineFan(std::int32_t x, std::int32_t y) {
  for (std::int32_t slope = 0; slope <= 12; ++slope)
    if (y == (x * slope + 6) / 12 || x == (y * slope + 6) / 12) return kBlack;
  return kWhite;
}

// Vertical lines of 1, 2, 3 and 4 pixels with gaps as wide, then horizontal ones, then a one-pixel check.
IRGB LineScreens(std::int32_t x, std::int32_t y, std::int32_t width) {
  const std::int32_t field = x * 9 / width;
  if (field == 8) return ((x ^ y) & 1) != 0 ? kWhite : kBlack;
  const std::int32_t pitch = field % 4 + 1;
  return ((field < 4 ? x : y) / pitch & 1) != 0 ? kWhite : kBlack;
}

IRGB Patches(std::int32_t x, std::int32_t width) {
  constexpr std::array<IRGB, 8> kColors{{{255, 0, 0},
                                         {0, 255, 0},
                                         {0, 0, 255},
                                         {0, 255, 255},
                                         {255, 0, 255},
                                         {255, 255, 0},
                                         {128, 128, 128},
                                         {222, 184, 135}}};
  return kColors[static_cast<std::size_t>(x * 8 / width)];
}

IRGB TextField(std::int32_t x, std::int32_t y) {
  constexpr std::string_view kText = "THE QUICK BROWN FOX JUMPS OVER THE LAZY DOG";
  struct Line {
    std::int32_t y, size;
    std::size_t letters;  // of the text, as many words as fit
  };
  for (const Line line : {Line{8, 1, 43}, Line{24, 2, 43}, Line{48, 3, 43}, Line{80, 4, 34}})
    if (TextInk(kText.substr(0, line.letters), x - 8, y - line.y, line.size)) return kBlack;
  return kWhite;
}

}  // namespace

IRGB ChartPixel(std::int32_t x, std::int32_t y) {
  constexpr std::int32_t kMargin = 16;
  constexpr std::int32_t kField = kChartWidth - 2 * kMargin;
  x -= kMargin;
  if (x < 0 || x >= kField) return kWhite;
  if (y >= 16 && y < 72) return Gray(x * 256 / kField);
  if (y >= 72 && y < 112) return Gray(x * 16 / kField * 17);
  if (y >= 128 && y < 288) return HueField(x, y - 128, kField, 160);
  if (y >= 304 && y < 344) return Patches(x, kField);
  if (y >= 360 && y < 472) return TextField(x, y - 360);
  if (y < 488 || y >= 704) return kWhite;
  if (x < 216) return HairlineFan(x, y - 488);
  if (x >= 232 && x < 696) return LineScreens(x - 232, y - 488, 464);
  if (x >= 712) return ZonePlate(x - 712, y - 488, 216);
  return kWhite;
}

RowSource ReadChart() {
  RowSource source;
  source.image = {kChartWidth, kChartHeight, kDirectDepth};
  source.read = [y = 0](std::uint8_t* row) mutable {
    for (std::int32_t x = 0; x < kChartWidth; ++x) {
      const IRGB color = ChartPixel(x, y);
      *row++ = color.red;
      *row++ = color.green;
      *row++ = color.blue;
    }
    ++y;
    return Ok();
  };
  return source;
}

}  // namespace cvt::pipeline

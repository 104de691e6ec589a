// What the host's tests share: palettes, distances, small images to convert and the set-ups for them.
#pragma once

#include <memory>
#include <random>
#include <vector>

#include "host/conversion.h"
#include "host/tables.h"

namespace cvt::host {

using Colors = std::vector<IRGB>;

inline const Colors blackWhite = {{0, 0, 0}, {255, 255, 255}}, whiteBlack = {{255, 255, 255}, {0, 0, 0}},
                    redYellow = {{200, 0, 0}, {255, 255, 0}},
                    colorful = {{0, 0, 0}, {255, 0, 0}, {0, 255, 0}, {9, 9, 9}},
                    shuffled = {{255, 0, 0}, {0, 0, 0}, {0, 255, 0}, {9, 9, 9}};

inline Palette Of(const Colors& colors) { return {colors.data(), colors.size()}; }

inline Colors RandomColors(std::mt19937& generator, std::size_t count, unsigned spread) {
  const auto channel = [&] { return static_cast<std::uint8_t>(generator() % spread); };
  Colors colors;
  for (std::size_t i = 0; i < count; ++i) colors.push_back({channel(), channel(), channel()});
  return colors;
}

// The squared distance of a colour, or of a point beyond all colours.
template <class Point>
std::int64_t Away(Point from, IRGB to) {
  const std::int64_t red = from.red - to.red, green = from.green - to.green, blue = from.blue - to.blue;
  return red * red + green * green + blue * blue;
}

inline tagIGFD Image(const Colors& colors, std::uint8_t bits, std::uint8_t flags = kIndexedColor) {
  tagIGFD image{};
  image.progressProc = [](std::uint32_t) -> std::int16_t { return 0; };
  image.rasterKind = kPackedKind;
  image.imageWidth = 9;
  image.imageHeight = 1;
  image.bitsPerPixel = bits;
  image.colorFlags = flags;
  image.palette = const_cast<IRGB*>(colors.data());  // nobody writes to it
  return image;
}

inline ConversionSetup SetupOf(const tagIGFD& source, const tagIGFD& destination) {
  ConversionSetup setup;
  setup.source = &source;
  setup.destination = &destination;
  setup.lineCapacity = 100;
  setup.next = [](void*, tagRasterPacked*) -> std::int16_t { return 0; };
  return setup;
}

struct Close {
  void operator()(tagCRLA* context) const { CloseConversion(context); }
};
using Context = std::unique_ptr<tagCRLA, Close>;

inline Context Open(const ConversionSetup& setup) { return Context(OpenConversion(setup)); }

}  // namespace cvt::host

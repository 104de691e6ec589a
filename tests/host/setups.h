// Small images to convert and the set-ups for them.
#pragma once

#include <vector>

#include "host/conversion.h"

namespace cvt::host {

using Colors = std::vector<IRGB>;

inline std::int16_t CVT_CALL GoOn(std::uint32_t) { return 0; }

inline std::int16_t NoteBand(void* user, tagRasterPacked* band) {
  *static_cast<tagRasterPacked**>(user) = band;
  return band->lineCount == 99 ? -77 : 0;
}

inline tagIGFD Image(Colors& colors, std::uint8_t bits, std::uint8_t flags = kIndexedColor) {
  tagIGFD image{};
  image.progressProc = GoOn;
  image.rasterKind = kPackedKind;
  image.imageWidth = 9;
  image.imageHeight = 1;
  image.bitsPerPixel = bits;
  image.colorFlags = flags;
  image.palette = colors.data();
  return image;
}

inline Colors blackWhite = {{0, 0, 0}, {255, 255, 255}}, whiteBlack = {{255, 255, 255}, {0, 0, 0}},
              redYellow = {{200, 0, 0}, {255, 255, 0}},
              colorful = {{0, 0, 0}, {255, 0, 0}, {0, 255, 0}, {9, 9, 9}},
              shuffled = {{255, 0, 0}, {0, 0, 0}, {0, 255, 0}, {9, 9, 9}};

inline ConversionSetup SetupOf(const tagIGFD& source, const tagIGFD& destination) {
  ConversionSetup setup;
  setup.source = &source;
  setup.destination = &destination;
  setup.lineCapacity = 100;
  setup.next = NoteBand;
  return setup;
}

}  // namespace cvt::host

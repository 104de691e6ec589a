#include "imageio/flatten.h"

#include <cstddef>
#include <vector>

#include "imageio/palette_kind.h"

namespace cvt::imageio {

namespace {

template <std::ptrdiff_t kBytes>
std::uint32_t SampleAt(const std::uint8_t* sample) {
  if constexpr (kBytes == 1) return sample[0];
  return static_cast<std::uint32_t>(sample[0] << 8 | sample[1]);
}

template <std::ptrdiff_t kBytes, std::ptrdiff_t kColors>
bool IsKey(const Flatten& how, const std::uint8_t* pixel) {
  if (!how.hasKey) return false;
  for (std::ptrdiff_t c = 0; c < kColors; ++c) {
    if (SampleAt<kBytes>(pixel + c * kBytes) != how.key[c]) return false;
  }
  return true;
}

enum class Alpha : std::uint8_t { None, Apart, Multiplied };

template <std::ptrdiff_t kBytes, std::ptrdiff_t kColors, Alpha kAlpha, std::ptrdiff_t kOutColors>
void FlattenPixels(const Flatten& how, const std::uint8_t* samples, std::uint8_t* row) {
  constexpr std::uint32_t kMost = kBytes == 1 ? 255 : 65535;
  const std::uint8_t under[3] = {how.background.red, how.background.green, how.background.blue};
  for (std::int32_t x = 0; x < how.width; ++x) {
    std::uint32_t alpha = kMost;
    if constexpr (kAlpha != Alpha::None) {
      alpha = SampleAt<kBytes>(samples + kColors * kBytes);
    } else if (IsKey<kBytes, kColors>(how, samples)) {
      alpha = 0;
    }
    for (std::ptrdiff_t c = 0; c < kOutColors; ++c) {
      const std::ptrdiff_t from = kColors == 1 ? 0 : c;
      const std::uint32_t sample = SampleAt<kBytes>(samples + from * kBytes);
      *row++ = kAlpha == Alpha::Multiplied ? OverMultiplied<kMost>(sample, alpha, under[c])
                                           : Over<kMost>(sample, alpha, under[c]);
    }
    samples += (kColors + (kAlpha == Alpha::None ? 0 : 1)) * kBytes;
  }
}

template <std::ptrdiff_t kBytes, Alpha kAlpha>
FlattenRow ByColors(const PixelShape& shape, bool grayOut) {
  if (shape.colors == 3) return FlattenPixels<kBytes, 3, kAlpha, 3>;
  return grayOut ? FlattenPixels<kBytes, 1, kAlpha, 1> : FlattenPixels<kBytes, 1, kAlpha, 3>;
}

template <std::ptrdiff_t kBytes>
FlattenRow ByAlpha(const PixelShape& shape, bool grayOut) {
  if (!shape.alpha) return ByColors<kBytes, Alpha::None>(shape, grayOut);
  return shape.multiplied ? ByColors<kBytes, Alpha::Multiplied>(shape, grayOut)
                          : ByColors<kBytes, Alpha::Apart>(shape, grayOut);
}

}  // namespace

FlattenRow ChooseFlatten(const PixelShape& shape, const Flatten& how, pipeline::Image* image) {
  const bool transparent = shape.alpha || how.hasKey;
  const bool gray = shape.colors == 1;
  const bool grayOut = gray && (IsGray(how.background) || !transparent);
  image->depth = grayOut ? 8 : pipeline::kDirectDepth;
  image->palette = grayOut ? pipeline::GrayRamp(8) : std::vector<IRGB>{};
  if (shape.sampleBytes == 1 && !transparent) return nullptr;
  return shape.sampleBytes == 1 ? ByAlpha<1>(shape, grayOut) : ByAlpha<2>(shape, grayOut);
}

}  // namespace cvt::imageio

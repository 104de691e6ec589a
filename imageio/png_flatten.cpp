#include "imageio/png_flatten.h"

#include <cstddef>

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

template <std::ptrdiff_t kBytes, std::ptrdiff_t kColors, bool kAlpha, std::ptrdiff_t kOutColors>
void FlattenPixels(const Flatten& how, const std::uint8_t* samples, std::uint8_t* row) {
  constexpr std::uint32_t kMost = kBytes == 1 ? 255 : 65535;
  const std::uint8_t under[3] = {how.background.red, how.background.green, how.background.blue};
  for (std::int32_t x = 0; x < how.width; ++x) {
    std::uint32_t alpha = kMost;
    if constexpr (kAlpha) {
      alpha = SampleAt<kBytes>(samples + kColors * kBytes);
    } else if (IsKey<kBytes, kColors>(how, samples)) {
      alpha = 0;
    }
    for (std::ptrdiff_t c = 0; c < kOutColors; ++c) {
      const std::ptrdiff_t from = kColors == 1 ? 0 : c;
      *row++ = Over<kMost>(SampleAt<kBytes>(samples + from * kBytes), alpha, under[c]);
    }
    samples += (kColors + (kAlpha ? 1 : 0)) * kBytes;
  }
}

template <std::ptrdiff_t kBytes, bool kAlpha>
FlattenRow ByColors(const PixelShape& shape) {
  if (shape.colors == 3) return FlattenPixels<kBytes, 3, kAlpha, 3>;
  return shape.outColors == 3 ? FlattenPixels<kBytes, 1, kAlpha, 3> : FlattenPixels<kBytes, 1, kAlpha, 1>;
}

template <std::ptrdiff_t kBytes>
FlattenRow ByAlpha(const PixelShape& shape) {
  return shape.alpha ? ByColors<kBytes, true>(shape) : ByColors<kBytes, false>(shape);
}

}  // namespace

FlattenRow FlattenRowFor(const PixelShape& shape) {
  return shape.sampleBytes == 1 ? ByAlpha<1>(shape) : ByAlpha<2>(shape);
}

}  // namespace cvt::imageio

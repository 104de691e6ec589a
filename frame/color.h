// Colours out of pixel values: palette entries, direct-colour channels and gray levels.
#pragma once

#include <cstdint>

#include "cvt/host.h"
#include "frame/ints.h"

namespace cvt {

// Which channel of a direct-colour value stands in its lowest bits.
enum class ChannelOrder : std::uint8_t { RedLowest, BlueLowest };

// A direct-colour value holds three channels of `width` bits, at most 8 of them.
struct Channels {
  std::uint32_t width;
  std::uint32_t mask;
  std::uint32_t shift;  // moves a channel to the top of a byte; the freed low bits stay 0
};

constexpr Channels ChannelsOf(std::uint8_t bitsPerPixel) {
  const std::uint32_t third = bitsPerPixel / 3U;
  const std::uint32_t width = third < 8 ? third : 8;
  return {width, (1U << width) - 1, 8 - width};
}

template <ChannelOrder kOrder>
constexpr IRGB SplitChannels(std::uint32_t value, Channels channels) {
  const std::uint8_t first = Low8((value & channels.mask) << channels.shift);
  const std::uint8_t second = Low8((value >> channels.width & channels.mask) << channels.shift);
  const std::uint8_t third = Low8((value >> 2 * channels.width & channels.mask) << channels.shift);
  return kOrder == ChannelOrder::RedLowest ? IRGB{first, second, third} : IRGB{third, second, first};
}

constexpr std::uint8_t GrayOf(IRGB color) {
  return Low8((30U * color.red + 59U * color.green + 11U * color.blue) / 100U);
}

static_assert(ChannelsOf(24).width == 8 && ChannelsOf(15).shift == 3 && ChannelsOf(2).mask == 0);
static_assert(SplitChannels<ChannelOrder::RedLowest>(5, ChannelsOf(3)).red == 128);
static_assert(SplitChannels<ChannelOrder::BlueLowest>(0xFF8040, ChannelsOf(24)).blue == 0x40);
static_assert(GrayOf({255, 255, 255}) == 255 && GrayOf({255, 0, 0}) == 76);

// How the pixel values of a call's source become colours.
struct Source {
  const IRGB* palette;
  Channels channels;
  bool indexed;  // values are palette indices, which gamma leaves alone
  bool gamma;
};

inline Source SourceOf(const tagIGFD* source, const tagCRLA* context) {
  const bool indexed = (source->colorFlags & kIndexedColor) != 0;
  return {source->palette, ChannelsOf(source->bitsPerPixel), indexed, !indexed && context->gammaActive != 0};
}

// The three decodings, one type each, so that a line loop is compiled for every one of them and tests
// nothing per pixel.
struct DecodePalette {
  template <ChannelOrder>
  static IRGB Color(const Source& source, std::uint32_t value, tagCRLA*) {
    return source.palette[value & 0xFFFF];
  }
};
struct DecodeDirect {
  template <ChannelOrder kOrder>
  static IRGB Color(const Source& source, std::uint32_t value, tagCRLA*) {
    return SplitChannels<kOrder>(value, source.channels);
  }
};
struct DecodeWithGamma {
  template <ChannelOrder kOrder>
  static IRGB Color(const Source& source, std::uint32_t value, tagCRLA* context) {
    IRGB color = SplitChannels<kOrder>(value, source.channels);
    CvtAdjustGammaValue(context, &color);
    return color;
  }
};

// Runs `work` with the decoding that a source of direct colour calls for.
template <class Work>
auto WithDirectDecoding(const Source& source, Work work) {
  return source.gamma ? work(DecodeWithGamma{}) : work(DecodeDirect{});
}

// The same for any source.
template <class Work>
auto WithDecoding(const Source& source, Work work) {
  return source.indexed ? work(DecodePalette{}) : WithDirectDecoding(source, work);
}

}  // namespace cvt

// Every value of a line becomes direct colour in the destination's channel width.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/access.h"
#include "frame/color.h"
#include "frame/layout.h"

namespace cvt {

// The inverse of SplitChannels: channels are cut to their top bits, five of them for 15 and 16 bits a pixel.
template <ChannelOrder kOrder>
constexpr std::uint32_t JoinChannels(IRGB color, Channels channels) {
  const std::uint32_t red = color.red >> channels.shift;
  const std::uint32_t green = color.green >> channels.shift;
  const std::uint32_t blue = color.blue >> channels.shift;
  const std::uint32_t lowest = kOrder == ChannelOrder::RedLowest ? red : blue;
  const std::uint32_t highest = kOrder == ChannelOrder::RedLowest ? blue : red;
  return (highest << channels.width | green) << channels.width | lowest;
}

static_assert(JoinChannels<ChannelOrder::BlueLowest>({128, 64, 1}, ChannelsOf(24)) == 0x804001);
static_assert(JoinChannels<ChannelOrder::RedLowest>({128, 64, 1}, ChannelsOf(24)) == 0x014080);
static_assert(JoinChannels<ChannelOrder::BlueLowest>({255, 128, 7}, ChannelsOf(16)) == (31 << 10 | 16 << 5));
static_assert(JoinChannels<ChannelOrder::BlueLowest>({255, 255, 255}, ChannelsOf(2)) == 0);

// Unlike elsewhere, the whole value is the index here, not its low 16 bits.
struct DecodeWholeIndex {
  template <ChannelOrder>
  static IRGB Color(const Source& source, std::uint32_t value, tagCRLA*) {
    return source.palette[value];
  }
};

// Planes hold red in the lowest channel, packed pixels blue.
template <class Layout>
inline constexpr ChannelOrder kOrderOf =
    std::is_same_v<Layout, Planes> ? ChannelOrder::RedLowest : ChannelOrder::BlueLowest;

template <class From, class To>
struct ToDirectColor {
  struct Values {
    Source source;
    Channels output;
  };

  static Values Prepare(const tagIGFD* source, const tagIGFD* destination, const tagCRLA* context) {
    return {SourceOf(source, context), ChannelsOf(destination->bitsPerPixel)};
  }

  static void ConvertLine(const Values& values, typename From::Cursor*, typename To::Cursor* output,
                          tagCRLA* context, std::uint16_t y) {
    if (values.source.indexed)
      ConvertValues<DecodeWholeIndex>(values, context);
    else
      WithDirectDecoding(values.source, [&](auto decode) { ConvertValues<decltype(decode)>(values, context); });
    WriteLine(output, context, y);
  }

 private:
  template <class Decode>
  static void ConvertValues(const Values& given, tagCRLA* context) {
    const Values values = given;
    const std::uint32_t count = context->runCount;
    std::uint32_t* colors = context->values;
    for (std::uint32_t i = 0; i < count; ++i) {
      const IRGB color = Decode::template Color<kOrderOf<From>>(values.source, colors[i], context);
      colors[i] = JoinChannels<kOrderOf<To>>(color, values.output);
    }
  }
};

}  // namespace cvt

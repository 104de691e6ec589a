// Plain mapping of a line to the destination's palette: every value becomes the index of the nearest colour.
#pragma once

#include <cstdint>

#include "frame/access.h"
#include "frame/color.h"
#include "frame/search.h"

namespace cvt {

// kOrder: which channel of a direct-colour value is lowest; planes hold red there, packed pixels blue.
template <ChannelOrder kOrder>
struct NearestColor {
  using Values = Source;

  static Values Prepare(const tagIGFD* source, const tagIGFD*, const tagCRLA* context) {
    return SourceOf(source, context);
  }

  template <class Input, class Output>
  static void ConvertLine(const Values& source, Input*, Output* output, tagCRLA* context, std::uint16_t y) {
    if (source.indexed)
      CvtSnap(context);
    else
      MapDirect(source, context);
    WriteLine(output, context, y);
  }

 private:
  static void MapDirect(const Source& source, tagCRLA* context) {
    WithSearch(context, [&](auto search) {
      WithDecoding(source, [&](auto decode) { MapValues<decltype(decode), decltype(search)>(source, context); });
    });
  }

  template <class Decode, class Search>
  static void MapValues(const Source& source, tagCRLA* context) {
    const std::uint32_t count = context->runCount;
    std::uint32_t* values = context->values;
    std::uint8_t* table = context->searchTable;
    for (std::uint32_t i = 0; i < count; ++i) {
      const IRGB color = Decode::template Color<kOrder>(source, values[i], context);
      WRGB wide{color.red, color.green, color.blue};
      values[i] = Search::Index(table, &wide);
    }
  }
};

}  // namespace cvt

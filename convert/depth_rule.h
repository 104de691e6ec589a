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
  struct Values {
    Source source;
    SearchBy search;
  };

  static Values Prepare(const tagIGFD* source, const tagIGFD*, const tagCRLA* context) {
    return {SourceOf(source, context), SearchOf(context)};
  }

  template <class Input, class Output>
  static void ConvertLine(const Values& values, Input*, Output* output, tagCRLA* context, std::uint16_t y) {
    if (values.source.indexed)
      CvtSnap(context);
    else
      MapDirect(values, context);
    WriteLine(output, context, y);
  }

 private:
  static void MapDirect(const Values& values, tagCRLA* context) {
    WithSearch(values.search, [&](auto search) {
      WithDirectDecoding(values.source, [&](auto decode) {
        MapValues<decltype(decode), decltype(search)>(values.source, context);
      });
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

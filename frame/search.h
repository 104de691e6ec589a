// The two table searches of a conversion, one type each, so that a line loop is compiled for either.
#pragma once

#include <cstdint>

#include "cvt/cvtr2r.h"

namespace cvt {

struct SearchGray {
  static std::uint16_t Index(std::uint8_t* table, WRGB* color) { return CvtSearchGrayArray(table, color); }
};
struct SearchCube {
  static std::uint16_t Index(std::uint8_t* table, WRGB* color) { return CvtSearchRGBCube(table, color); }
};

// Which of the two a conversion uses. It is settled once a call: what the stages behind it do to the context
// while the call hands on its bands changes nothing.
enum class SearchBy : std::uint8_t { GrayTable, Cube };

inline SearchBy SearchOf(const tagCRLA* context) {
  return context->grayPalette == kGrayRamp ? SearchBy::GrayTable : SearchBy::Cube;
}

template <class Work>
auto WithSearch(SearchBy search, Work work) {
  return search == SearchBy::GrayTable ? work(SearchGray{}) : work(SearchCube{});
}

}  // namespace cvt

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

// Runs `work` with the search that the context's destination colours call for.
template <class Work>
auto WithSearch(const tagCRLA* context, Work work) {
  return context->grayPalette == kGrayRamp ? work(SearchGray{}) : work(SearchCube{});
}

}  // namespace cvt

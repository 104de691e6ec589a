// The border to libpng, which reports an error by jumping back to where it was entered.
//
// A jump skips destructors. So libpng is entered through PngSucceeds alone, with work that owns nothing;
// the hooks keep the words of the error and print nothing.
#pragma once

#include <png.h>

#include <csetjmp>
#include <string>
#include <type_traits>

namespace cvt::imageio {

struct PngWords {
  char text[96];  // what libpng said last; a plain array, for it is filled in the midst of an error
};

inline void KeepPngError(png_structp png, png_const_charp words) {
  auto* kept = static_cast<PngWords*>(png_get_error_ptr(png));
  std::size_t i = 0;
  for (; words[i] != '\0' && i + 1 < sizeof kept->text; ++i) kept->text[i] = words[i];
  kept->text[i] = '\0';
  png_longjmp(png, 1);
}

inline void DropPngWarning(png_structp, png_const_charp) {}

/// Runs work that calls libpng; false when libpng gave up on the way.
template <class Work>
bool PngSucceeds(png_structp png, const Work& work) {
  static_assert(std::is_trivially_destructible_v<Work>);
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  work();
  return true;
}

}  // namespace cvt::imageio

// Letters for captions on pictures, drawn for this program: no font of the machine is needed, and every
// machine draws the same captions.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cvt::app {

inline constexpr std::int32_t kLetterWidth = 5;   // one more column parts it from the next letter
inline constexpr std::int32_t kLetterHeight = 9;  // two of them below the line

/// Whether a letter has ink at a place. What is not ASCII is a box.
bool HasInk(char letter, std::int32_t x, std::int32_t y);

/// UTF-8, one letter a character: a box for what is not ASCII.
std::string Letters(std::string_view text);

/// Lines of at most `most` letters, cut at blanks where there are some.
std::vector<std::string> Wrapped(std::string_view text, std::size_t most);

}  // namespace cvt::app

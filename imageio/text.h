// Lines of text.
#pragma once

#include <string_view>

namespace cvt::imageio {

/// A line without the blanks around it.
inline std::string_view Trimmed(std::string_view line) {
  constexpr std::string_view kBlanks = " \t\v\f\r";
  const std::size_t first = line.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return line.substr(first, line.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace cvt::imageio

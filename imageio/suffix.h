// What a file name ends in.
#pragma once

#include <string>
#include <string_view>

namespace cvt::imageio {

/// Whether `path` ends in `suffix`, which is in lower case; capitals in `path` count as small letters.
bool HasSuffix(const std::string& path, std::string_view suffix);

}  // namespace cvt::imageio

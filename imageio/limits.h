// The sizes that readers accept, and the words for those that they do not.
#pragma once

#include <cstdint>

#include "imageio/image_file.h"

namespace cvt::imageio {

// A row is held in memory whole, several times over in places. No conversion takes rows as wide as this.
inline constexpr std::int64_t kMaxWidth = 1000000;

// Rows are counted in 32 bits.
inline constexpr std::int64_t kMaxHeight = 2147483647;

/// Code::Input for an image without pixels, Code::Limit for one that is larger than the options allow.
pipeline::Status CheckSize(std::int64_t width, std::int64_t height, const ReadOptions& options);

}  // namespace cvt::imageio

// C sources that hold an image, for programs without a file system.
#pragma once

#include <memory>
#include <string>

#include "imageio/image_file.h"
#include "imageio/output_file.h"

namespace cvt::imageio {

/// As CreateImage: the bytes of raw rows as an array with a comment that explains them, the sizes as constants
/// and the palette, all named after `path`.
pipeline::RowSink WriteC(std::unique_ptr<OutputFile> file, const std::string& path);

/// What an array of the file `path` is called: its name without suffix, made an identifier of C and C++.
std::string CName(const std::string& path);

}  // namespace cvt::imageio

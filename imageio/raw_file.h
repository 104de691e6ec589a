// Rows of pixels and nothing else.
#pragma once

#include <memory>

#include "imageio/image_file.h"
#include "imageio/output_file.h"

namespace cvt::imageio {

/// As CreateImage: the rows one after another as they come, packed or in planes. Bits behind the last pixel of
/// a row, or of a plane of it, are 0.
pipeline::RowSink WriteRaw(std::unique_ptr<OutputFile> file);

}  // namespace cvt::imageio

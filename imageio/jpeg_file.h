// JPEG files, read row by row with libjpeg.
#pragma once

#include <memory>

#include "imageio/image_file.h"
#include "imageio/input_file.h"

namespace cvt::imageio {

/// As OpenImage, for a file that starts like a JPEG: grays or colours, as they are stored, whichever way up a
/// camera was held. Code::Usage where JPEG was left out of the build.
pipeline::Status OpenJpeg(std::unique_ptr<InputFile> file, const ReadOptions& options, pipeline::RowSource* source,
                          Stored* stored);

}  // namespace cvt::imageio

// TIFF files, read and written row by row with libtiff.
#pragma once

#include <memory>

#include "imageio/image_file.h"
#include "imageio/input_file.h"
#include "imageio/output_file.h"

namespace cvt::imageio {

/// Code::Usage, and what to do, where TIFF was left out of the build: then the others answer the same.
pipeline::Status HaveTiff();

/// As OpenImage, for a file that starts like a TIFF.
pipeline::Status OpenTiff(std::unique_ptr<InputFile> file, const ReadOptions& options, pipeline::RowSource* source,
                          Stored* stored);

/// As DescribeImage, for a file that starts like a TIFF.
pipeline::Status DescribeTiff(std::unique_ptr<InputFile> file, const ReadOptions& options,
                              std::vector<Description>* pages);

/// As CreateImage. Black and white becomes a fax, gray ramps of 1, 2, 4 and 8 bits gray images, other palettes
/// indexed ones. `sink->begin` answers Code::Usage for an image that the compression cannot hold.
pipeline::RowSink WriteTiff(std::unique_ptr<OutputFile> file, Compression compression);

}  // namespace cvt::imageio

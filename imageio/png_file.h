// PNG files, read and written row by row with libpng.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "imageio/image_file.h"
#include "imageio/input_file.h"
#include "imageio/output_file.h"

namespace cvt::imageio {

/// PNG counts pixels a metre.
inline constexpr double kMetresAnInch = 0.0254;

/// As OpenImage, for a file that starts like a PNG.
pipeline::Status OpenPng(std::unique_ptr<InputFile> file, const ReadOptions& options, pipeline::RowSource* source,
                         Stored* stored);

/// The palette of an indexed PNG as it is stored. Code::Input for any other file.
pipeline::Status ReadPngPalette(const std::string& path, std::vector<IRGB>* palette);

/// As CreateImage. Gray ramps of 1, 2, 4 and 8 bits become gray images, other palettes indexed ones.
pipeline::RowSink WritePng(std::unique_ptr<OutputFile> file);

}  // namespace cvt::imageio

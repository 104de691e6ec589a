// PBM, PGM, PPM and PAM files, read (binary and plain) and written (binary) row by row.
#pragma once

#include <memory>

#include "imageio/image_file.h"
#include "imageio/input_file.h"
#include "imageio/output_file.h"

namespace cvt::imageio {

/// As OpenImage, for a file that starts with P1 to P7. Bits come as black 0, white 1; opaque grays whose
/// largest value is 2^n - 1, n up to 8, in n bits; all others scaled to eight bits.
pipeline::Status OpenPnm(std::unique_ptr<InputFile> file, const ReadOptions& options, pipeline::RowSource* source,
                         Stored* stored);

/// As CreateImage. Gray ramps keep their values, other grays are written as levels of 0 to 255. Bits of a PAM
/// are 0 for black and 1 for white.
pipeline::RowSink WritePnm(std::unique_ptr<OutputFile> file, Format format);

}  // namespace cvt::imageio

// Threshold matrices from files.
#pragma once

#include <string>

#include "pipeline/convert.h"

namespace cvt::imageio {

/// Reads a PGM picture, 1 to 255 pixels each way, as a matrix: the gray of a pixel, on a scale of 0 to 255,
/// is its threshold.
///
/// Code::Input  missing, unreadable, damaged, or no PGM of that size
pipeline::Status ReadMatrix(const std::string& path, pipeline::Thresholds* thresholds);

/// Whether the suffix is that of a matrix file.
bool IsMatrixFile(const std::string& path);

}  // namespace cvt::imageio

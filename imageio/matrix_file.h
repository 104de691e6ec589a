// Threshold matrices from files.
#pragma once

#include <string>

#include "pipeline/convert.h"

namespace cvt::imageio {

/// Reads a picture of grays, 1 to 255 pixels each way, as a matrix: the gray of a pixel, on a scale of 0 to
/// 255, is its threshold. It is a PGM by its name; whatever OpenImage reads will do.
///
/// Code::Input  missing, unreadable, damaged, or no grays of that size
pipeline::Status ReadMatrix(const std::string& path, pipeline::Thresholds* thresholds);

/// Whether the suffix is that of a matrix file.
bool IsMatrixFile(const std::string& path);

}  // namespace cvt::imageio

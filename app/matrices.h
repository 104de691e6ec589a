// --matrix: names and files.
#pragma once

#include <optional>
#include <string>

#include "app/report.h"
#include "pipeline/convert.h"

namespace cvt::app {

/// Leaves the thresholds alone where nothing is wished for.
Outcome ReadMatrixWish(const std::optional<std::string>& name, pipeline::Thresholds* thresholds);

}  // namespace cvt::app

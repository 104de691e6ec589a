// --overlay and --transparent: what is laid over the output, and where.
#pragma once

#include "app/files.h"
#include "app/option_table.h"
#include "app/report.h"

namespace cvt::app {

/// Reads the overlay for an output of that size; leaves `overlay` alone where none is wished for.
/// Code::Usage for one with direct colours or that does not lie within the output, and for a transparent
/// colour or index that it does not have; a file that cannot be read fails as imageio::OpenImage says.
Outcome ReadOverlay(const Arguments& arguments, const Files& files, Extent output, pipeline::Overlay* overlay);

}  // namespace cvt::app

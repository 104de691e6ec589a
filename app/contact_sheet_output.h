// Contact sheets as they are written, their pictures complete.
#pragma once

#include <string>

#include "app/contact_sheet_plan.h"

namespace cvt::app {

/// One page with everything in it: no other file, no script, nothing from a network.
std::string SheetPage(const Sheet& sheet);

/// One picture of direct colour, into the sink from its beginning to its end.
pipeline::Status WriteSheetPicture(const Sheet& sheet, const pipeline::RowSink& sink);

}  // namespace cvt::app

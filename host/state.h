// What the host keeps for a conversion, behind tagCRLA::core and execute::core.
#pragma once

#include "host/conversion.h"
#include "host/tables.h"

namespace cvt::host {

struct HostState {
  execute next;  // the context's next stage: points at the fields below
  tagStage stage;
  tagStage* stageAddress;
  tagRasterPacked* band;  // the band that the next stage is to take
  NextStage run;
  void* user;
  std::uint8_t* searchTable;  // gray table or cube, or null
  std::uint8_t snapMap[kMostEntries];
  std::uint8_t toneCurve[kGrayLevels];
};

inline HostState* StateOf(const tagCRLA* context) { return static_cast<HostState*>(context->core); }

}  // namespace cvt::host

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
  // Blocks that CloseConversion releases, or null. The context's fields of these names are copies: what
  // becomes of those is the business of whoever drives the conversion.
  std::uint8_t* searchTable;
  std::uint8_t* ditherMatrix;
  std::uint8_t* ditherSteps;
  std::uint8_t* cubeTable;
  std::uint32_t* smoothLine;
  std::uint32_t* smoothSums;
  std::uint8_t snapMap[kMostEntries];
  std::uint8_t toneCurve[kGrayLevels];
};

inline HostState* StateOf(const tagCRLA* context) { return static_cast<HostState*>(context->core); }

}  // namespace cvt::host

// What this host keeps for a conversion; tagCRLA::core and execute::core point at it.
#pragma once

#include "cvt/cvtr2r.h"

struct Host {
  tagIGFD source, destination;
  std::int16_t (*takeBand)(const tagRasterPacked* band);  // the next stage; 0 for success
  // What the library reads of the next stage, and the variables that it points at.
  execute next;
  tagStage stage;
  tagStage* stageSlot;
  tagRasterPacked* bandSlot;
};

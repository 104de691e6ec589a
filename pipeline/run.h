// A stage at work: rows in, rows out, whatever parts it has.
#pragma once

#include <memory>
#include <vector>

#include "pipeline/parts.h"
#include "pipeline/stage.h"

namespace cvt::pipeline {

struct RunningPart {
  Part part;
  Worker worker;
};

/// Lives at one address: its parts hand their rows on through it.
struct Run {
  Stage stage = {};
  TakeRowFunction next = {};  // takes the rows of the output
  std::vector<std::unique_ptr<RunningPart>> parts = {};
  std::int32_t rowsIn = 0, rowsOut = 0;
};

/// Sets up all parts of a stage. Code::Limit when memory runs out.
Status StartRun(const Stage& stage, TakeRowFunction next, Run* run);

/// Takes the next row of the image.
Status PushRow(Run* run, const std::uint8_t* row);

}  // namespace cvt::pipeline

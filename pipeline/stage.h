// A stage at work: descriptors, context and input band, set up from its plan and given back when it goes.
// Rows are pushed in; finished rows are pushed on.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "host/conversion.h"
#include "host/op_list.h"
#include "pipeline/band.h"
#include "pipeline/plan.h"
#include "pipeline/stamp.h"

namespace cvt::pipeline {

struct CloseContext {
  void operator()(tagCRLA* context) const { host::CloseConversion(context); }
};
using TakeRowFunction = std::function<Status(std::int32_t y, const std::uint8_t* row)>;

/// What one link of a chain was given: the band, and what its descriptor says.
struct LinkSeen {
  std::int32_t width = 0, height = 0;  // of the image
  Layout layout = Layout::Packed;
  std::int32_t bits = 0;   // a pixel
  std::int32_t lines = 0;  // in the tallest band
  std::int32_t bytes = 0;  // in the largest band
  std::int32_t bands = 0;
};

/// Lives at one address: the descriptors, the context and the operation list point at one another.
struct Worker {
  Stage stage = {};
  TakeRowFunction next = {};  // takes the rows of the output
  tagOpList operations = {};
  tagIGFD source = {};
  tagIGFD destination = {};
  std::unique_ptr<tagCRLA, CloseContext> context = {};
  OwnedBand band = {};
  Stamp stamp = {};
  std::int32_t top = 0;     // of the band that is being filled
  std::int32_t filled = 0;  // its lines so far
  std::int32_t rowsIn = 0;
  std::vector<std::uint8_t> indices = {}, row = {};  // scratch rows, in and out
  std::vector<std::uint16_t> lead = {};              // averages: sums of the rows before the first that enters
  Status status = {};                                // why `next` ended the work
  std::vector<LinkSeen> links = {};                  // filled when `watched`, first link first
  std::size_t level = 0;                             // links that are running
  bool watched = false;
};

/// Sets up a worker. Code::Limit when memory runs out.
Status StartWorker(const Stage& stage, TakeRowFunction next, Worker* worker);

/// Takes the next row of the image; when it fills a band, the band goes down the chain.
Status PushRow(Worker* worker, const std::uint8_t* row);

}  // namespace cvt::pipeline

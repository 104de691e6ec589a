// A chain of conversions ready to run: descriptors, context, input band and collector, set up from a plan
// and given back when the chain goes.
#pragma once

#include <memory>

#include "host/conversion.h"
#include "host/op_list.h"
#include "pipeline/collect.h"
#include "pipeline/plan.h"

namespace cvt::pipeline {

struct CloseContext {
  void operator()(tagCRLA* context) const { host::CloseConversion(context); }
};
struct FreeBand {
  void operator()(tagRasterPacked* band) const {
    SioFreeSMem(reinterpret_cast<std::uint8_t*>(band) - kBandPrefixBytes);
  }
};

/// What one link of a chain was given: the band, and what its descriptor says.
struct LinkSeen {
  std::int32_t width = 0, height = 0;  // of the image
  Layout layout = Layout::Packed;
  std::int32_t bits = 0;   // a pixel
  std::int32_t lines = 0;  // in the tallest band
  std::int32_t bytes = 0;  // in the largest band
  std::int32_t bands = 0;
};

/// Lives at one address: the descriptors, the context and the collector point at one another.
struct Chain {
  tagOpList operations = {};
  tagIGFD source = {};
  tagIGFD destination = {};
  Collector collector = {};
  std::unique_ptr<tagCRLA, CloseContext> context = {};
  std::unique_ptr<tagRasterPacked, FreeBand> band = {};
  std::vector<std::uint8_t> row = {};  // one row as the source delivers it
  std::vector<LinkSeen> links = {};    // filled after WatchLinks, first link first
  std::size_t level = 0;               // links that are running
};

/// Sets up a chain that ends in `sink`. `plan` and `sink` must outlive it.
/// Code::Limit when memory runs out.
Status OpenChain(Plan* plan, const Settings& settings, RowSink* sink, Chain* chain);

/// Makes the chain note what each of its links is given.
void WatchLinks(Chain* chain);

/// Fills the band that starts at line `top` with the source's next rows and sends it down the chain.
Status SendBand(const Plan& plan, RowSource* source, std::int32_t top, Chain* chain);

/// Reads rows top to bottom into bands and sends them down the chain, until the image is done.
Status RunChain(const Plan& plan, RowSource* source, Chain* chain);

}  // namespace cvt::pipeline

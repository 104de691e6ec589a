#include "pipeline/convert.h"

#include "pipeline/chain.h"

namespace cvt::pipeline {

Status Convert(RowSource& source, const Settings& settings, RowSink& sink) {
  Plan plan;
  if (Status bad = MakePlan(source.image, settings, &plan); Failed(bad)) return bad;
  Chain chain;
  if (Status bad = OpenChain(&plan, settings, &sink, &chain); Failed(bad)) return bad;
  if (Status bad = sink.begin(plan.output); Failed(bad)) return bad;
  if (Status bad = RunChain(plan, &source, &chain); Failed(bad)) return bad;
  return sink.end();
}

}  // namespace cvt::pipeline

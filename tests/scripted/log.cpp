// The log's text form, for the messages of failing tests.
#include "tests/scripted/world.h"

namespace cvt::test {

namespace {

struct Shape {
  const char* name;
  std::vector<const char*> args;
};

const Shape& ShapeOf(Call call) {
  static const std::vector<Shape> kShapes = {
      {"SioAllocSMem", {"size", "block"}},
      {"SioSizeSMem", {"block"}},
      {"SioFreeSMem", {"block", "kind"}},
      {"SioCreateOp", {"code", "size", "block"}},
      {"SioPutOp", {"list", "operation"}},
      {"SioGetOpError", {"list", "answer"}},
      {"CvtDupIGFD", {"descriptor", "copy"}},
      {"CvtDisposeIGFD", {"copy"}},
      {"CvtAdjustGammaValue", {"context", "red", "green", "blue"}},
      {"CvtSnap", {"context", "runCount", "runs"}},
      {"CvtClosestRGB", {"red", "green", "blue", "descriptor", "answer"}},
      {"CvtSearchRGBCube", {"table", "red", "green", "blue"}},
      {"CvtIsGray", {"descriptor", "mode", "answer"}},
      {"CvtAssignRasterStatus", {"band", "descriptor", "mode", "slot"}},
      {"CvtExecuteNextFunction", {"next", "band", "handedOn", "answer"}},
      {"CvtReadPlaneLine", {"cursor", "geometry", "context", "x", "y", "wanted", "delivered"}},
      {"CvtReadPackedLine", {"cursor", "geometry", "context", "x", "y", "wanted", "delivered"}},
      {"CvtWritePlaneLine", {"cursor", "geometry", "context", "x", "y", "runCount", "runs"}},
      {"CvtWritePackedLine", {"cursor", "geometry", "context", "x", "y", "runCount", "runs"}},
      {"CvtWritePlanePixel", {"cursor", "geometry", "x", "y", "value", "errorRow"}},
      {"CvtWritePackedPixel", {"cursor", "geometry", "x", "y", "value", "errorRow"}},
      {"convertProc", {"band", "handedOn", "source", "sourceBytes", "destination", "context", "answer"}},
      {"progressProc", {"data", "runCount", "answer"}},
      {"CvtOpenr2r", {}},
      {"CvtCloser2r", {}}};
  return kShapes[static_cast<std::size_t>(call)];
}

}  // namespace

std::string Describe(const Entry& entry) {
  const Shape& shape = ShapeOf(entry.call);
  std::string text = shape.name;
  for (std::size_t i = 0; i < shape.args.size(); ++i)
    text += std::string(i == 0 ? "(" : ", ") + shape.args[i] + " " + std::to_string(entry.args[i]);
  return text + (shape.args.empty() ? "()" : ")");
}

}  // namespace cvt::test

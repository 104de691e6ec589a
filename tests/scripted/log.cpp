// The log's text form, for the messages of failing tests.
#include <algorithm>

#include "tests/scripted/world.h"

namespace cvt::test {

// In the order of Call.
static constexpr const char* kCalls[] = {
    "SioAllocSMem(size, block)",
    "SioSizeSMem(block)",
    "SioFreeSMem(block, kind)",
    "SioCreateOp(code, size, block)",
    "SioPutOp(list, operation)",
    "SioGetOpError(list, answer)",
    "CvtDupIGFD(descriptor, copy)",
    "CvtDisposeIGFD(copy)",
    "CvtAdjustGammaValue(context, red, green, blue)",
    "CvtSnap(context, runCount, runs)",
    "CvtClosestRGB(red, green, blue, descriptor, answer)",
    "CvtSearchRGBCube(table, red, green, blue)",
    "CvtIsGray(descriptor, mode, answer)",
    "CvtAssignRasterStatus(band, descriptor, mode, slot)",
    "CvtExecuteNextFunction(next, band, handedOn, answer)",
    "CvtReadPlaneLine(cursor, geometry, context, x, y, wanted, delivered)",
    "CvtReadPackedLine(cursor, geometry, context, x, y, wanted, delivered)",
    "CvtWritePlaneLine(cursor, geometry, context, x, y, runCount, runs)",
    "CvtWritePackedLine(cursor, geometry, context, x, y, runCount, runs)",
    "CvtWritePlanePixel(cursor, geometry, x, y, value, errorRow)",
    "CvtWritePackedPixel(cursor, geometry, x, y, value, errorRow)",
    "convertProc(band, handedOn, source, sourceBytes, destination, context, answer)",
    "progressProc(data, runCount, answer)"};

std::string Describe(const Entry& entry) {
  std::string text = kCalls[static_cast<std::size_t>(entry.call)];
  const auto args = 1 + std::count(text.begin(), text.end(), ',');
  text += ":";
  for (std::ptrdiff_t i = 0; i < args; ++i) text += " " + std::to_string(entry.args[static_cast<std::size_t>(i)]);
  return text;
}

}  // namespace cvt::test

// The operations that look something up in a conversion's tables or hand on its bands.

#include "cvt/host.h"
#include "host/state.h"

using namespace cvt::host;

void CVT_CALL CvtSnap(tagCRLA* context) {
  const std::uint8_t* map = StateOf(context)->snapMap;
  std::uint32_t* values = context->values;
  const std::size_t count = context->runCount;
  for (std::size_t i = 0; i < count; ++i) values[i] = map[values[i] % kMostEntries];
}

std::uint32_t CVT_CALL CvtAdjustGammaValue(tagCRLA* context, IRGB* color) {
  const std::uint8_t* curve = StateOf(context)->toneCurve;
  *color = {curve[color->red], curve[color->green], curve[color->blue]};
  return 0;
}

// Diffusion asks this for every pixel: no test, but a channel out of range cannot lead out of the table.
std::uint16_t CVT_CALL CvtSearchRGBCube(std::uint8_t* table, WRGB* color) {
  const auto channel = [](std::int16_t v) { return static_cast<std::uint8_t>(v); };
  return table[CubeCell(channel(color->red), channel(color->green), channel(color->blue))];
}

// Everything that a next stage of this host wants to know of a band stands in the band's own header, and
// there is no context to note it in: nothing is recorded.
void CVT_CALL CvtAssignRasterStatus(tagRasterPacked* /*band*/, tagIGFD* /*source*/, std::uint16_t /*mode*/) {}

std::int16_t CVT_CALL CvtExecuteNextFunction(execute* next) {
  const auto* state = static_cast<const HostState*>(next->core);
  return state->run(state->user, state->band);
}

// Runs one scaler on one case: the scripted world with the buffers that scaling needs.
#pragma once

#include "tests/library/harness.h"
#include "tests/reference/scale.h"

namespace cvt::test {

struct ScaleCase : Case {
  std::uint8_t scaleDownMethod = 0;
  std::uint16_t bandLimit = 65535;
  std::uint16_t operationCode = 0;  // 0: what the bands are
  std::uint32_t accumulator = 0;    // of a context that has already scaled
  std::size_t linePixels = 0;       // entries of the line arrays of smooth scaling
  std::vector<IRGB> palette;        // replaces the shared one
};

struct Scaler {
  std::string name;
  BandRoutine library, twin;
};
/// Workers run through an adapter that hands on what they make and calls them again while they ask for it, up to
/// 40 times. A first index other than 0 is taken from the source's clipX0, the prepared descriptor of kernels is
/// the source.
extern const std::vector<Scaler> kScaleDrivers;   // width up, height up, width down, height down, smooth
extern const std::vector<Scaler> kScaleWorkers;   // planes and packed of: up, down, decimated, each width, height
extern const std::vector<Scaler> kSmoothWorkers;  // prepare planes and packed, kernels gray and colour

/// The next link of a scaler that runs alone: it looks at what it gets and ends the chain.
std::int16_t CVT_CALL NextLink(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context);

/// The scaling buffers follow the input bands among the outcome's inputs; they are not left allocated.
Outcome RunScale(const ScaleCase& what, BandRoutine routine, CvtConvertProc convert = NextLink);

}  // namespace cvt::test

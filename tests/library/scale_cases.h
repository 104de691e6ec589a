// Random cases of the scalers, and of whole chains: clipped, scaled, reduced to a palette or to direct colour.
#pragma once

#include "tests/library/color_cases.h"
#include "tests/library/scale_harness.h"

namespace cvt::test {

/// k: the number of the routine in kScaleDrivers, kScaleWorkers, kSmoothWorkers.
ScaleCase RandomForDriver(Dice& dice, std::size_t k);
ScaleCase RandomForWorker(Dice& dice, std::size_t k);
ScaleCase RandomForSmoothWorker(Dice& dice, std::size_t k);

/// An image as a host gives it to Cvtr2r: what it asks for may take every link of the chain.
struct ChainCase {
  ScaleCase image;
  ColorCase tables;  // its base is not used
};
ChainCase RandomChain(Dice& dice);
Outcome RunChain(const ChainCase& what, CvtConvertProc dispatch);

}  // namespace cvt::test

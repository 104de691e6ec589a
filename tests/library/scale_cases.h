// The scalers beside their twins; random cases of them, and of whole chains: clipped, scaled, reduced to a palette
// or to direct colour.
#pragma once

#include "tests/library/color_cases.h"

namespace cvt::test {

using ScaleCase = Case;

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

Outcome RunScale(const ScaleCase& what, BandRoutine routine);

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
/// With the tables and with all that scaling needs.
Outcome RunFurnished(const Case& what, const ColorCase& tables, BandRoutine routine,
                     CvtConvertProc convert = ScriptedConvert);
Outcome RunChain(const ChainCase& what, CvtConvertProc dispatch);

}  // namespace cvt::test

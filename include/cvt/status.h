// The statuses that conversions answer: 0 for success, a negative number for a failure.
//
// A status that is not listed here came from the next stage or from its operation list and was
// passed on unchanged through every link of the chain.
#pragma once

#include <cstdint>

using CvtStatus = std::int16_t;

inline constexpr CvtStatus kCvtOk = 0;
inline constexpr CvtStatus kCvtNoContext = -100;       // the context record could not be allocated
inline constexpr CvtStatus kCvtNoRunArrays = -105;     // a run array of the context could not be allocated
inline constexpr CvtStatus kCvtNoDescriptor = -1006;   // a descriptor copy or a gray ramp could not be allocated
inline constexpr CvtStatus kCvtNoMemory = -1007;       // a cursor or a band could not be allocated
inline constexpr CvtStatus kCvtStopped = -1011;        // the source's progress procedure asked to stop
inline constexpr CvtStatus kCvtWrongDepth = -1025;     // the short-cut diffusion got a band of 4 bits or less
inline constexpr CvtStatus kCvtNextStageFull = -1034;  // the next stage's operation list can take no more

// Errors of an operation list that the pass-through reports as kCvtNextStageFull.
inline constexpr CvtStatus kSioListClosed = -254;
inline constexpr CvtStatus kSioListFull = -1008;
inline constexpr CvtStatus kSioListNoMemory = -256;

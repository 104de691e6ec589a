// Merging the source lines that fall on one output line: every pixel takes the first value among them that
// differs from what it showed on the output line before, so that no thin line is lost.
//
// The merged values stay from line to line; a flag a pixel says that it has its value for this one.
#pragma once

#include <cstdint>
#include <cstring>

#include "cvt/records.h"
#include "frame/ints.h"

namespace cvt {

struct MergeArrays {
  std::uint16_t* flags;
  std::uint32_t* values;
};

inline MergeArrays MergeArraysOf(const tagCRLA* context) {
  return {static_cast<std::uint16_t*>(context->ownedBuffer1), static_cast<std::uint32_t*>(context->ownedBuffer2)};
}

inline void ClearFlags(const tagCRLA* context, std::uint32_t pixels) {
  std::memset(context->ownedBuffer1, 0, pixels * sizeof(std::uint16_t));
}
inline void ClearValues(const tagCRLA* context, std::uint32_t pixels) {
  std::memset(context->ownedBuffer2, 0, pixels * sizeof(std::uint32_t));
}

// One run of a line, without a branch per pixel.
inline void MergeRun(std::uint16_t* flags, std::uint32_t* merged, std::uint32_t pixels, std::uint32_t value) {
  for (std::uint32_t p = 0; p < pixels; ++p) {
    const bool takes = flags[p] == 0 && merged[p] != value;
    merged[p] = takes ? value : merged[p];
    flags[p] = takes ? std::uint16_t{1} : flags[p];
  }
}

inline void MergeLine(const tagCRLA* context) {
  MergeArrays at = MergeArraysOf(context);
  const std::uint16_t* lengths = context->runLengths;
  const std::uint32_t* values = context->values;
  const std::uint32_t runs = context->runCount;
  for (std::uint32_t r = 0; r < runs; ++r) {
    const std::uint32_t pixels = lengths[r];
    MergeRun(at.flags, at.values, pixels, values[r]);
    at.flags += pixels;
    at.values += pixels;
  }
}

// The merged values as runs of equal neighbours. A line has a pixel at least.
inline void EncodeMerged(tagCRLA* context) {
  const std::uint32_t* merged = MergeArraysOf(context).values;
  std::uint16_t* lengths = context->runLengths;
  std::uint32_t* values = context->values;
  const std::uint32_t width = context->mergeWidth > 1 ? context->mergeWidth : 1;
  std::uint32_t run = 0;
  for (std::uint32_t start = 0; start < width; ++run) {
    std::uint32_t end = start + 1;
    while (end < width && merged[end] == merged[start]) ++end;
    lengths[run] = Low16(end - start);
    values[run] = merged[start];
    start = end;
  }
  context->runCount = Low16(run);
}

}  // namespace cvt

// Rescaling a line while it is runs: a run ends where its last source pixel ends, scaled, and is as long as
// what the runs before it left over.
//
// Reductions round run ends down, so that thin runs can vanish; enlargements round them up.
#pragma once

#include <cstdint>

#include "cvt/records.h"
#include "frame/ints.h"
#include "frame/reciprocal.h"
#include "scale/bands.h"

namespace cvt {

// Rescale() for many positions of one ratio.
struct RunEnds {
  Ratio ratio;
  Divisor from;
  std::uint32_t quickBelow;  // products from here on are negative; 0 where the ratio does not reduce
};

constexpr RunEnds RunEndsOf(Ratio ratio) {
  const bool reduces = ratio.from > 0 && ratio.to >= 0 && ratio.to <= ratio.from;
  return {ratio, DivisorOf(Unsigned32(ratio.from)), reduces ? kDivideLimit : 0};
}

constexpr bool IsQuick(const RunEnds& ends, std::int32_t scaled) { return Unsigned32(scaled) < ends.quickBelow; }

constexpr std::int32_t QuickEnd(const RunEnds& ends, std::int32_t scaled) {
  return Signed32(DivideSmall(Unsigned32(scaled), ends.from));
}

constexpr std::int32_t RunEnd(const RunEnds& ends, std::int32_t position) {
  const std::int32_t scaled = MulWrap32(position, ends.ratio.to);
  return IsQuick(ends, scaled) ? QuickEnd(ends, scaled) : DivTrunc(scaled, ends.ratio.from);
}

static_assert(RunEnd(RunEndsOf({10, 4}), 6) == 2 && RunEnd(RunEndsOf({3, -2}), 2) == -1);
static_assert(RunEnd(RunEndsOf({-3, -2}), 4) == 2 && RunEnd(RunEndsOf({4, 10}), 2) == 5);

// A reader may start a line with an empty run, which stays as it is.
inline std::uint32_t FirstRun(const tagCRLA* context) { return context->runLengths[0] == 0 ? 1 : 0; }

// Plain sampling: a run that covers no whole output pixel vanishes.
//
// As long as products stay small, lengths fit 16 bits and a run ends where it should: none has to wait for
// the length of the one before it. From the first product that does not on, all lengths are cut.
inline void SampleRuns(tagCRLA* context, const RunEnds& ends) {
  std::uint16_t* lengths = context->runLengths;
  const std::uint32_t runs = context->runCount;
  std::int32_t position = 0;
  std::int32_t emitted = 0;
  std::uint32_t i = FirstRun(context);
  for (; i < runs; ++i) {
    const std::int32_t scaled = MulWrap32(AddWrap32(position, lengths[i]), ends.ratio.to);
    if (!IsQuick(ends, scaled)) break;
    position = AddWrap32(position, lengths[i]);
    const std::int32_t end = QuickEnd(ends, scaled);
    lengths[i] = Low16(Unsigned32(end - emitted));
    emitted = end;
  }
  for (; i < runs; ++i) {
    position = AddWrap32(position, lengths[i]);
    lengths[i] = Low16(Unsigned32(SubWrap32(RunEnd(ends, position), emitted)));
    emitted = AddWrap32(emitted, lengths[i]);
  }
}

// The same with runs of the value `keep` never shorter than one pixel. The pixel comes from the nearest
// earlier run that has one; where there is none, the following runs make up for it.
inline void KeepRuns(tagCRLA* context, const RunEnds& ends, std::uint32_t keep) {
  constexpr std::uint16_t kOvertaken = 0xFFFF;  // -1: a kept run before this one took its only pixel
  std::uint16_t* lengths = context->runLengths;
  const std::uint32_t* values = context->values;
  const std::uint32_t runs = context->runCount;
  std::uint16_t* donor = nullptr;  // last run so far that has a pixel
  std::int32_t position = 0;
  std::int32_t emitted = 0;
  for (std::uint32_t i = FirstRun(context); i < runs; ++i) {
    position = AddWrap32(position, lengths[i]);
    std::uint16_t length = Low16(Unsigned32(SubWrap32(RunEnd(ends, position), emitted)));
    if (length == 0 && values[i] == keep) {
      if (donor != nullptr) {
        *donor = Low16(*donor - 1U);
        emitted = SubWrap32(emitted, 1);
      }
      length = 1;
    }
    if (length == kOvertaken) length = 0;
    if (length != 0) donor = &lengths[i];
    lengths[i] = length;
    emitted = AddWrap32(emitted, length);
  }
}

// Replication: output pixels that a line has once `pixels` source pixels are in, rounded up.
constexpr std::uint32_t Replicated(std::uint32_t pixels, Ratio ratio, const Divisor& from) {
  const std::uint64_t scaled = std::uint64_t{pixels} * Unsigned32(ratio.to) + Unsigned32(ratio.from) - 1;
  return scaled >> 32 == 0 ? Divide(Low32(scaled), from) : Low32(scaled / from.number);
}

static_assert(Replicated(1, {2, 5}, DivisorOf(2)) == 3 && Replicated(2, {2, 5}, DivisorOf(2)) == 5);

inline void ReplicateRuns(tagCRLA* context, Ratio ratio, const Divisor& from) {
  std::uint16_t* lengths = context->runLengths;
  const std::uint32_t runs = context->runCount;
  std::uint32_t position = 0;
  std::uint32_t emitted = 0;
  for (std::uint32_t i = 0; i < runs; ++i) {
    position += lengths[i];
    const std::uint32_t end = Replicated(position, ratio, from);
    lengths[i] = Low16(end - emitted);
    emitted = end;
  }
}

// Cuts a line at the band's width, inside the run that crosses it.
inline void ClipRuns(tagCRLA* context, std::uint16_t width) {
  std::uint16_t* lengths = context->runLengths;
  const std::uint32_t runs = context->runCount;
  std::uint16_t sum = 0;
  for (std::uint32_t i = 0; i < runs; ++i) {
    sum = Low16(std::uint32_t{sum} + lengths[i]);
    if (sum <= width) continue;
    context->runCount = Low16(i + 1);
    lengths[i] = Low16(std::uint32_t{lengths[i]} + width - sum);
    return;
  }
}

}  // namespace cvt

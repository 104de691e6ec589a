// Smooth scaling's arithmetic: area averages over a piecewise linear reconstruction of the source, in whole
// numbers without rounding.
//
// Lengths are counted in units that both sides tile: across a line a source pixel is `to` units wide and an
// output pixel `from` units; down the image likewise with the heights. Within a source pixel the level moves
// from its predecessor's to its own; every piece counts with the level at its start. Sums are unsigned and
// wrap.
#pragma once

#include <array>
#include <cstdint>

#include "cvt/records.h"
#include "frame/ints.h"
#include "frame/reciprocal.h"

namespace cvt {

// What a word of a line array, or of a prepared band, holds.
struct GrayWord {
  static constexpr std::uint32_t kChannels = 1;
  static constexpr std::uint32_t kDepth = 8;
  static constexpr std::uint32_t Channel(std::uint32_t word, std::uint32_t) { return word; }
  static constexpr std::uint32_t Place(std::uint32_t level, std::uint32_t) { return level; }
  static constexpr std::uint32_t SumBytes(std::uint32_t pixels) { return pixels * 4; }
};

// Channel 0 is blue, in the lowest byte.
struct ColorWord {
  static constexpr std::uint32_t kChannels = 3;
  static constexpr std::uint32_t kDepth = 32;
  static constexpr std::uint32_t Channel(std::uint32_t word, std::uint32_t channel) {
    return word >> 8 * channel & 0xFF;
  }
  static constexpr std::uint32_t Place(std::uint32_t level, std::uint32_t channel) {
    return (level > 255 ? 255 : level) << 8 * channel;
  }
  static constexpr std::uint32_t SumBytes(std::uint32_t pixels) { return std::uint32_t{Low16(pixels * 4)} * 3; }
};

static_assert(ColorWord::Channel(0x123456, 2) == 0x12 && ColorWord::Place(300, 1) == 0xFF00);
static_assert(ColorWord::SumBytes(100) == 1200 && GrayWord::SumBytes(100) == 400);

struct SmoothSizes {
  std::uint32_t from;
  std::uint32_t to;
  Divisor byFrom;
  Divisor byTo;
};

constexpr SmoothSizes SmoothSizesOf(std::int32_t from, std::int32_t to) {
  return {Unsigned32(from), Unsigned32(to), DivisorOf(Unsigned32(from)), DivisorOf(Unsigned32(to))};
}

// The level where `left` units of a source pixel are still to come.
constexpr std::uint32_t LevelAt(std::uint32_t previous, std::uint32_t current, std::uint32_t left,
                                const SmoothSizes& sizes) {
  return Divide((sizes.to - left) * current + left * previous, sizes.byTo);
}

static_assert(LevelAt(0, 100, 2, SmoothSizesOf(2, 4)) == 50 && LevelAt(0, 100, 4, SmoothSizesOf(2, 4)) == 0);

// A line's pixels one after another, by runs. The first run may be empty and is then passed over; any other
// empty run counts as one pixel; the last value goes on for ever.
struct RunPixels {
  const std::uint16_t* lengths;
  const std::uint32_t* values;
  std::uint32_t runs;
  std::uint32_t run;
  std::uint16_t length;
  std::uint16_t used;
  std::uint32_t value;

  // A reader that delivers nothing leaves values of any size, and their products wrap.
  static constexpr std::uint32_t WholeLevel(std::uint32_t previous, const SmoothSizes& sizes) {
    return LevelAt(previous, previous, sizes.to, sizes);
  }
  void Advance() {
    used = Low16(used + 1U);
    if (used < length) return;
    used = 0;
    ++run;
    length = run < runs ? lengths[run] : std::uint16_t{0xFFFF};
    if (run < runs) value = values[run];
  }
};

inline RunPixels RunPixelsOf(const tagCRLA* context) {
  const std::uint32_t run = context->runLengths[0] == 0 ? 1 : 0;
  return {context->runLengths, context->values, context->runCount, run, context->runLengths[run], 0,
          context->values[run]};
}

// The same for a line of single pixels. These are bytes as prepared, whose products do not wrap.
struct SinglePixels {
  const std::uint32_t* next;
  const std::uint32_t* last;
  std::uint32_t value;

  static constexpr std::uint32_t WholeLevel(std::uint32_t previous, const SmoothSizes&) { return previous; }
  void Advance() {
    if (next != last) value = *next++;
  }
};

inline bool IsSinglePixels(const tagCRLA* context) {
  const std::uint16_t* lengths = context->runLengths;
  const std::uint32_t runs = context->runCount;
  std::uint32_t others = 0;
  for (std::uint32_t i = 0; i < runs; ++i) others |= lengths[i] ^ 1U;
  return runs > 0 && others == 0;
}

inline SinglePixels SinglePixelsOf(const tagCRLA* context) {
  return {context->values + 1, context->values + context->runCount, context->values[0]};
}

template <class Word>
using Sums = std::array<std::uint32_t, Word::kChannels>;

template <class Word>
void AddPart(Sums<Word>* sums, std::uint32_t units, std::uint32_t previous, std::uint32_t current,
             std::uint32_t left, const SmoothSizes& sizes) {
  for (std::uint32_t c = 0; c < Word::kChannels; ++c)
    (*sums)[c] += units * LevelAt(Word::Channel(previous, c), Word::Channel(current, c), left, sizes);
}

template <class Word, class Pixels>
void AddWhole(Sums<Word>* sums, std::uint32_t units, std::uint32_t previous, const SmoothSizes& sizes) {
  for (std::uint32_t c = 0; c < Word::kChannels; ++c)
    (*sums)[c] += units * Pixels::WholeLevel(Word::Channel(previous, c), sizes);
}

template <class Word>
std::uint32_t Average(const Sums<Word>& sums, const Divisor& units) {
  std::uint32_t word = 0;
  for (std::uint32_t c = 0; c < Word::kChannels; ++c) word |= Word::Place(Divide(sums[c], units), c);
  return word;
}

// Averages a line of source pixels to a line of output pixels. A source pixel that is met whole counts with
// its predecessor's level.
template <class Word, class Pixels>
void ResampleLine(std::uint32_t* line, Pixels pixels, const SmoothSizes& sizes) {
  const std::uint32_t width = Low16(sizes.to);
  std::uint32_t previous = pixels.value;
  std::uint32_t left = sizes.to;  // units of the current source pixel
  for (std::uint32_t x = 0; x < width; ++x) {
    Sums<Word> sums{};
    std::uint32_t need = sizes.from;  // units of the output pixel
    AddPart<Word>(&sums, need < left ? need : left, previous, pixels.value, left, sizes);
    if (need < left) {
      left -= need;
    } else {
      for (need -= left;; need -= sizes.to) {
        previous = pixels.value;
        pixels.Advance();
        if (need < sizes.to) break;
        AddWhole<Word, Pixels>(&sums, sizes.to, previous, sizes);
      }
      AddWhole<Word, Pixels>(&sums, need, previous, sizes);
      left = sizes.to - need;
    }
    line[x] = Average<Word>(sums, sizes.byFrom);
  }
}

// How much the current and the previous line count in a piece of `units` that starts where `left` units of
// the current line are still to come.
struct LineWeights {
  std::uint32_t current;
  std::uint32_t previous;
};

constexpr LineWeights LineWeightsOf(std::uint32_t lineUnits, std::uint32_t left, std::uint32_t units) {
  return {(lineUnits - left) * units, left * units};
}

constexpr std::uint32_t Weighted(std::uint32_t current, std::uint32_t previous, LineWeights weights) {
  return current * weights.current + previous * weights.previous;
}

}  // namespace cvt

// Line writers: runs of a context go into a row of a band.
//
// A line whose runs are all of one pixel, as readers deliver most depths, is written value by value in
// loops without decisions. Any other line is written run by run, whole bytes at a time.
// Bits of the row that belong to no written pixel keep what they held.

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "cvt/host.h"
#include "host/bits.h"
#include "host/line.h"

namespace cvt::host {
namespace {

// ---- Runs ----

// Blocks are summed up without leaving the loop: that is what the compiler does many entries at a time.
bool AllOnes(const std::uint16_t* lengths, std::size_t count) {
  constexpr std::size_t kBlock = 64;
  std::size_t i = 0;
  for (; i + kBlock <= count; i += kBlock) {
    std::uint16_t differing = 0;
    for (std::size_t k = 0; k < kBlock; ++k) differing = Low16(differing | (lengths[i + k] ^ 1U));
    if (differing != 0) return false;
  }
  for (; i < count; ++i)
    if (lengths[i] != 1) return false;
  return true;
}

std::size_t PixelsIn(const std::uint16_t* lengths, std::size_t count) {
  std::size_t pixels = 0;
  for (std::size_t k = 0; k < count; ++k) pixels += lengths[k];
  return pixels;
}

// Hands the line to put(first pixel, values, count) if all its runs are one pixel; otherwise the short runs
// one by one to one(pixel, value), the others to fill(span, value). Lines that were reduced in width are
// runs of one pixel and of none in no order: both are written, and the next run goes over a run of none.
template <class Put, class One, class Fill>
void WriteLine(Span span, const tagCRLA* context, Put put, One one, Fill fill) {
  const std::uint16_t* lengths = context->runLengths;
  const std::uint32_t* values = context->values;
  const std::size_t count = context->runCount;
  const std::size_t shown = std::min(count, span.end - span.first);
  if (AllOnes(lengths, shown)) return put(span.first, values, shown);
  const std::size_t last = std::min(span.end, span.first + PixelsIn(lengths, count));
  for (std::size_t k = 0, at = span.first; at < last; ++k) {
    if (lengths[k] <= 1) {
      one(at, values[k]);
      at += lengths[k];
    } else {
      const std::size_t end = std::min(last, at + lengths[k]);
      fill(Span{at, end}, values[k]);
      at = end;
    }
  }
}

// Sets bits first to end of a row to those of a repeated byte.
void FillBits(std::uint8_t* row, Span bits, std::uint8_t pattern) {
  if (IsEmpty(bits)) return;
  const std::size_t firstByte = bits.first / 8, lastByte = (bits.end - 1) / 8;
  MergeBits(row + firstByte, CoverOf(firstByte, bits), pattern);
  if (firstByte == lastByte) return;
  std::memset(row + firstByte + 1, pattern, lastByte - firstByte - 1);
  MergeBits(row + lastByte, CoverOf(lastByte, bits), pattern);
}

// ---- Narrow pixels, by way of bytes ----

// Calls pack(row byte, chunk, cover) for every row byte that the pixels touch, with the kPerByte bytes to
// make it of and the bits of the row byte that are to change. `shift` says which eight bits of the values.
template <std::size_t kPerByte, class Pack>
void WriteChunks(Span span, const std::uint32_t* values, unsigned shift, Pack pack) {
  constexpr std::size_t kBits = 8 / kPerByte;
  std::uint8_t chunk[kChunkPixels] = {};
  for (std::size_t at = span.first; at < span.end;) {
    const std::size_t byte = at / kPerByte;
    const std::size_t stop = std::min(span.end, byte * kPerByte + kChunkPixels);
    std::uint8_t* from = chunk + at % kPerByte;
    for (std::size_t i = 0; i < stop - at; ++i) from[i] = Low8(values[i] >> shift);
    for (std::size_t b = byte; b * kPerByte < stop; ++b)
      pack(b, chunk + (b - byte) * kPerByte, CoverOf(b, {at * kBits, stop * kBits}));
    values += stop - at;
    at = stop;
  }
}

inline void PutByte(std::uint8_t* to, std::uint32_t cover, std::uint8_t bits) {
  if (cover == 0xFF)
    *to = bits;
  else
    MergeBits(to, cover, bits);
}

void PutOneBit(std::uint8_t* row, Span span, const std::uint32_t* values) {
  WriteChunks<8>(span, values, 0, [row](std::size_t byte, const std::uint8_t* pixels, std::uint32_t cover) {
    PutByte(row + byte, cover, GatherLowBits(LoadFirstHigh(pixels)));
  });
}

template <unsigned kBits>
void PutNarrow(std::uint8_t* row, Span span, const std::uint32_t* values) {
  constexpr unsigned kPerByte = 8 / kBits;
  WriteChunks<kPerByte>(span, values, 0, [row](std::size_t byte, const std::uint8_t* pixels, std::uint32_t cover) {
    std::uint32_t bits = 0;
    for (unsigned i = 0; i < kPerByte; ++i) bits = bits << kBits | (pixels[i] & ((1U << kBits) - 1));
    PutByte(row + byte, cover, Low8(bits));
  });
}

// Up to eight planes from plane `lowest` on. `planes` is their number, a constant where it is eight.
template <class Count>
void PutPlaneGroup(std::uint8_t* row, std::size_t planeBytes, Count planes, unsigned lowest, Span span,
                   const std::uint32_t* values) {
  std::uint8_t* group = row + lowest * planeBytes;
  WriteChunks<8>(span, values, lowest, [=](std::size_t byte, const std::uint8_t* pixels, std::uint32_t cover) {
    const std::uint64_t bits = Transpose8x8(LoadFirstHigh(pixels));
    if (cover == 0xFF)
      for (std::size_t k = 0; k < planes; ++k) group[k * planeBytes + byte] = Low8(bits >> (8 * k));
    else
      for (std::size_t k = 0; k < planes; ++k)
        MergeBits(group + k * planeBytes + byte, cover, Low8(bits >> (8 * k)));
  });
}

void PutPlanes(std::uint8_t* row, std::size_t planeBytes, unsigned planes, Span span,
               const std::uint32_t* values) {
  for (unsigned lowest = 0; lowest < planes; lowest += 8) {
    if (planes - lowest >= 8)
      PutPlaneGroup(row, planeBytes, std::integral_constant<std::size_t, 8>{}, lowest, span, values);
    else
      PutPlaneGroup(row, planeBytes, std::size_t{planes - lowest}, lowest, span, values);
  }
}

// ---- Lines of a layout ----

constexpr std::uint8_t BitPattern(std::uint32_t bit) { return Low8(0 - (bit & 1)); }

void WriteOneBit(std::uint8_t* row, Span span, const tagCRLA* context) {
  WriteLine(
      span, context,
      [row](std::size_t first, const std::uint32_t* values, std::size_t count) {
        PutOneBit(row, {first, first + count}, values);
      },
      [row](std::size_t x, std::uint32_t value) { MergeBits(row + x / 8, 0x80U >> x % 8, BitPattern(value)); },
      [row](Span run, std::uint32_t value) { FillBits(row, run, BitPattern(value)); });
}

void WritePlanes(std::uint8_t* row, std::size_t planeBytes, unsigned planes, Span span, const tagCRLA* context) {
  WriteLine(
      span, context,
      [=](std::size_t first, const std::uint32_t* values, std::size_t count) {
        PutPlanes(row, planeBytes, planes, {first, first + count}, values);
      },
      [=](std::size_t x, std::uint32_t value) {
        for (unsigned k = 0; k < planes; ++k)
          MergeBits(row + k * planeBytes + x / 8, 0x80U >> x % 8, BitPattern(value >> k));
      },
      [=](Span run, std::uint32_t value) {
        for (unsigned k = 0; k < planes; ++k) FillBits(row + k * planeBytes, run, BitPattern(value >> k));
      });
}

template <unsigned kBits>
void WriteNarrow(std::uint8_t* row, Span span, const tagCRLA* context) {
  constexpr std::uint64_t kMask = (1U << kBits) - 1, kRepeat = 0xFF / kMask;
  WriteLine(
      span, context,
      [row](std::size_t first, const std::uint32_t* values, std::size_t count) {
        PutNarrow<kBits>(row, {first, first + count}, values);
      },
      [row](std::size_t x, std::uint32_t value) {
        const std::size_t shift = 8 - kBits - x * kBits % 8;
        MergeBits(row + x * kBits / 8, static_cast<std::uint32_t>(kMask << shift), value << shift);
      },
      [row](Span run, std::uint32_t value) {
        FillBits(row, {run.first * kBits, run.end * kBits}, Low8((value & kMask) * kRepeat));
      });
}

template <class Word>
void WriteWords(std::uint8_t* row, Span span, const tagCRLA* context) {
  WriteLine(
      span, context,
      [row](std::size_t first, const std::uint32_t* values, std::size_t count) {
        std::uint8_t* to = row + first * sizeof(Word);
        for (std::size_t i = 0; i < count; ++i) StorePixel(to + i * sizeof(Word), static_cast<Word>(values[i]));
      },
      [row](std::size_t x, std::uint32_t value) { StorePixel(row + x * sizeof(Word), static_cast<Word>(value)); },
      [row](Span run, std::uint32_t value) {
        for (std::size_t i = run.first; i < run.end; ++i)
          StorePixel(row + i * sizeof(Word), static_cast<Word>(value));
      });
}

}  // namespace
}  // namespace cvt::host

using namespace cvt::host;

void CVT_CALL CvtWritePlaneLine(tagPlaneData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  const Span span = SpanFrom(cursor, x, y, WidthOf(cursor));
  if (IsEmpty(span)) return;
  std::uint8_t* row = cursor->data + std::size_t{RowOf(cursor, y)} * cursor->rowBytes;
  if (cursor->planeCount == 1) return WriteOneBit(row, span, context);
  WritePlanes(row, cursor->planeBytes, PlanesOf(cursor), span, context);
}

void CVT_CALL CvtWritePackedLine(tagPackedData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  const Span span = SpanFrom(cursor, x, y, WidthOf(cursor));
  if (IsEmpty(span) || cursor->rowUnits == 0) return;  // pixels of no bits have no rows
  std::uint8_t* row = cursor->data + RowOf(cursor, y) * RowBytesOf(cursor);
  switch (cursor->depthClass) {
    case 0:
      return WriteOneBit(row, span, context);
    case 1:
      return WriteNarrow<2>(row, span, context);
    case 2:
      return WriteNarrow<4>(row, span, context);
    case 3:
      return WriteWords<std::uint8_t>(row, span, context);
    case 4:
      return WriteWords<std::uint16_t>(row, span, context);
    default:
      return WriteWords<std::uint32_t>(row, span, context);
  }
}

// Line readers: a row of a band becomes runs in a context.
//
// One bit a pixel is delivered as the longest possible runs: scans and line art have long ones, and
// scaling that keeps thin lines tells a line by its run. All other depths are delivered pixel by pixel:
// neighbours seldom agree, and loops without decisions go many pixels at a time.

#include <algorithm>
#include <bit>
#include <type_traits>

#include "cvt/host.h"
#include "host/bits.h"
#include "host/line.h"

namespace cvt::host {
namespace {

// A line to be delivered: where from, where to.
struct Line {
  Span span;
  std::uint16_t* lengths;
  std::uint32_t* values;
};

template <class Cursor>
Line LineOf(const Cursor* cursor, const tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  return {SpanFrom(cursor, x, y, context->runCount), context->runLengths, context->values};
}

std::uint16_t DeliverPixels(const Line& line) {
  const std::size_t count = line.span.end - line.span.first;
  std::fill_n(line.lengths, count, std::uint16_t{1});
  return Low16(count);
}

// ---- One bit a pixel ----

// Pixels 64 * word to 64 * word + 63 of a row, the leftmost in the lowest bit; 0 behind the row's bytes.
std::uint64_t PixelWord(const std::uint8_t* row, std::size_t word, std::size_t rowBytes) {
  const std::uint8_t* at = row + 8 * word;
  if (8 * word + 8 <= rowBytes) return MirrorBytes(LoadFirstLow(at));
  std::uint64_t bytes = 0;
  for (std::size_t i = 0; 8 * word + i < rowBytes; ++i) bytes |= std::uint64_t{at[i]} << (8 * i);
  return MirrorBytes(bytes);
}

// Visits the pixels that differ from their left neighbour: each ends a run. Words without one, and the
// pixels between two of them, cost nothing.
std::uint16_t ReadRuns(const std::uint8_t* row, const Line& line) {
  const auto [first, end] = line.span;
  std::uint32_t value = std::uint32_t{row[first / 8]} >> (7 - first % 8) & 1;
  std::size_t start = first, count = 0;
  std::uint64_t previous = 0;                              // the pixel before the word
  std::uint64_t wanted = ~std::uint64_t{1} << first % 64;  // the first pixel ends nothing
  for (std::size_t word = first / 64; 64 * word < end; ++word) {
    const std::uint64_t pixels = PixelWord(row, word, (end + 7) / 8);
    if (end < 64 * word + 64) wanted &= ~(~std::uint64_t{0} << end % 64);
    for (std::uint64_t ends = (pixels ^ (pixels << 1 | previous)) & wanted; ends != 0; ends &= ends - 1) {
      const std::size_t at = 64 * word + static_cast<std::size_t>(std::countr_zero(ends));
      line.lengths[count] = Low16(at - start);
      line.values[count++] = value;
      value ^= 1;
      start = at;
    }
    previous = pixels >> 63;
    wanted = ~std::uint64_t{0};
  }
  line.lengths[count] = Low16(end - start);
  line.values[count] = value;
  return Low16(count + 1);
}

// ---- Narrow pixels, by way of bytes ----

// Calls unpack(row byte, chunk) for every row byte of the line, which makes kPerByte bytes of it, and
// take(bytes, index, count) for the pixels of each chunk.
template <std::size_t kPerByte, class Unpack, class Take>
void ReadChunks(Span span, Unpack unpack, Take take) {
  std::uint8_t chunk[kChunkPixels];
  for (std::size_t at = span.first; at < span.end;) {
    const std::size_t byte = at / kPerByte;
    const std::size_t stop = std::min(span.end, byte * kPerByte + kChunkPixels);
    for (std::size_t b = byte; b * kPerByte < stop; ++b) unpack(b, chunk + (b - byte) * kPerByte);
    take(chunk + at % kPerByte, at - span.first, stop - at);
    at = stop;
  }
}

void Widen(const std::uint8_t* bytes, std::uint32_t* values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) values[i] = bytes[i];
}

template <unsigned kBits>
void ReadNarrow(const std::uint8_t* row, const Line& line) {
  constexpr unsigned kPerByte = 8 / kBits;
  ReadChunks<kPerByte>(
      line.span,
      [row](std::size_t byte, std::uint8_t* pixels) {
        for (unsigned i = 0; i < kPerByte; ++i)
          pixels[i] = Low8(row[byte] >> (8 - kBits - kBits * i) & ((1U << kBits) - 1));
      },
      [&line](const std::uint8_t* bytes, std::size_t index, std::size_t count) {
        Widen(bytes, line.values + index, count);
      });
}

// Up to eight planes from plane `lowest` on. `planes` is their number, a constant where it is eight.
template <class Count>
void ReadPlaneGroup(const std::uint8_t* row, std::size_t planeBytes, Count planes, unsigned lowest,
                    const Line& line) {
  const std::uint8_t* group = row + lowest * planeBytes;
  ReadChunks<8>(
      line.span,
      [=](std::size_t byte, std::uint8_t* pixels) {
        std::uint64_t bits = 0;
        for (std::size_t k = 0; k < planes; ++k) bits |= std::uint64_t{group[k * planeBytes + byte]} << (8 * k);
        StoreFirstHigh(pixels, Transpose8x8(bits));
      },
      [&line, lowest](const std::uint8_t* bytes, std::size_t index, std::size_t count) {
        std::uint32_t* values = line.values + index;
        if (lowest == 0) return Widen(bytes, values, count);
        for (std::size_t i = 0; i < count; ++i) values[i] |= std::uint32_t{bytes[i]} << lowest;
      });
}

void ReadPlanes(const std::uint8_t* row, std::size_t planeBytes, unsigned planes, const Line& line) {
  if (planes == 0) std::fill_n(line.values, line.span.end - line.span.first, 0U);
  for (unsigned lowest = 0; lowest < planes; lowest += 8) {
    if (planes - lowest >= 8)
      ReadPlaneGroup(row, planeBytes, std::integral_constant<std::size_t, 8>{}, lowest, line);
    else
      ReadPlaneGroup(row, planeBytes, std::size_t{planes - lowest}, lowest, line);
  }
}

// ---- Pixels of whole bytes ----

template <class Word>
void ReadWords(const std::uint8_t* row, const Line& line) {
  const std::uint8_t* from = row + line.span.first * sizeof(Word);
  const std::size_t count = line.span.end - line.span.first;
  std::uint32_t* values = line.values;
  for (std::size_t i = 0; i < count; ++i) values[i] = LoadPixel<Word>(from + i * sizeof(Word));
}

}  // namespace
}  // namespace cvt::host

using namespace cvt::host;

std::uint16_t CVT_CALL CvtReadPlaneLine(tagPlaneData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  const Line line = LineOf(cursor, context, x, y);
  if (IsEmpty(line.span)) return 0;
  const std::uint8_t* row = cursor->data + std::size_t{RowOf(cursor, y)} * cursor->rowBytes;
  if (cursor->planeCount == 1) return ReadRuns(row, line);
  ReadPlanes(row, cursor->planeBytes, PlanesOf(cursor), line);
  return DeliverPixels(line);
}

std::uint16_t CVT_CALL CvtReadPackedLine(tagPackedData* cursor, tagCRLA* context, std::uint16_t x,
                                         std::uint16_t y) {
  const Line line = LineOf(cursor, context, x, y);
  if (IsEmpty(line.span) || cursor->rowUnits == 0) return 0;  // pixels of no bits have no rows
  const std::uint8_t* row = cursor->data + RowOf(cursor, y) * RowBytesOf(cursor);
  switch (cursor->depthClass) {
    case 0:
      return ReadRuns(row, line);
    case 1:
      ReadNarrow<2>(row, line);
      break;
    case 2:
      ReadNarrow<4>(row, line);
      break;
    case 3:
      ReadWords<std::uint8_t>(row, line);
      break;
    case 4:
      ReadWords<std::uint16_t>(row, line);
      break;
    default:
      ReadWords<std::uint32_t>(row, line);
      break;
  }
  return DeliverPixels(line);
}

// Reads PBM, PGM and PPM row by row: samples from text or bytes, then one table look-up each.
#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "imageio/limits.h"
#include "imageio/pnm_file.h"
#include "imageio/samples.h"

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Failed;
using pipeline::Image;
using pipeline::Ok;
using pipeline::Status;

namespace {

constexpr std::int64_t kLargestSample = 65535;
constexpr std::int64_t kHuge = 1000000000000;  // where numbers stop growing: beyond every limit

enum class Samples : std::uint8_t { PlainBits, Plain, Bits, Bytes, Words };

struct PnmReader {
  std::unique_ptr<InputFile> file;
  Image image;
  Samples stored = Samples::Bytes;
  std::int64_t largest = 1;  // largest value of a sample
  std::int32_t rowsRead = 0;
  std::vector<std::uint8_t> levels;    // what a sample becomes; empty: samples are delivered as they are
  std::vector<std::uint8_t> bytes;     // of a row as the file stores it
  std::vector<std::uint16_t> samples;  // of a row
};

bool IsSpace(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool IsDigit(int c) { return c >= '0' && c <= '9'; }

int SkipComment(InputFile& file) {
  int c = 0;
  do c = NextByte(file);
  while (c >= 0 && c != '\n' && c != '\r');
  return c;
}

// The next byte that is neither white space nor comment; -1 where the data ends.
int NextVisible(InputFile& file) {
  for (;;) {
    int c = NextByte(file);
    if (c == '#') c = SkipComment(file);
    if (c < 0 || !IsSpace(c)) return c;
  }
}

// A number and the one separator behind it. Where the data ends, -1; nothing where it is no number.
std::optional<std::int64_t> NextNumber(InputFile& file) {
  int c = NextVisible(file);
  if (c < 0) return -1;
  if (!IsDigit(c)) return std::nullopt;
  std::int64_t value = 0;
  for (; IsDigit(c); c = NextByte(file)) value = std::min(value * 10 + (c - '0'), kHuge);
  if (c == '#') c = SkipComment(file);
  if (c >= 0 && !IsSpace(c)) return std::nullopt;
  return value;
}

Status HeaderNumber(InputFile& file, const char* what, std::int64_t* value) {
  const std::optional<std::int64_t> number = NextNumber(file);
  if (!number) return Fail(Code::Input, std::string("the header has no valid ") + what + " (get an intact copy)");
  if (*number < 0)
    return EndOfInput(file, std::string("the file ends before its ") + what + " (get a complete copy)");
  *value = *number;
  return Ok();
}

Status EndsEarly(const PnmReader& reader) {
  return EndOfInput(*reader.file, "the file ends in row " + std::to_string(reader.rowsRead) + " of " +
                                      std::to_string(reader.image.height) + " (get a complete copy)");
}

Status BadSample(const PnmReader& reader, const char* what) {
  return Fail(Code::Input,
              std::string(what) + " in row " + std::to_string(reader.rowsRead) + " (get an intact copy)");
}

// Bits of the ramp that has `largest` as its last value, 0 when there is none.
std::int32_t RampDepth(std::int64_t largest) {
  for (std::int32_t depth = 1; depth <= 8; ++depth) {
    if (largest == (1 << depth) - 1) return depth;
  }
  return 0;
}

Status PlainBitRow(PnmReader& reader) {
  for (std::uint16_t& sample : reader.samples) {
    const int c = NextVisible(*reader.file);
    if (c < 0) return EndsEarly(reader);
    if (c != '0' && c != '1') return BadSample(reader, "there is something other than 0 and 1");
    sample = c == '1';
  }
  return Ok();
}

Status PlainRow(PnmReader& reader) {
  for (std::uint16_t& sample : reader.samples) {
    const std::optional<std::int64_t> number = NextNumber(*reader.file);
    if (!number) return BadSample(reader, "there is something that is no number");
    if (*number < 0) return EndsEarly(reader);
    sample = static_cast<std::uint16_t>(std::min(*number, kLargestSample));
    if (*number > reader.largest) return BadSample(reader, "there is a sample above the largest value");
  }
  return Ok();
}

Status BinaryRow(PnmReader& reader) {
  if (Read(*reader.file, reader.bytes.data(), reader.bytes.size()) < reader.bytes.size()) return EndsEarly(reader);
  const std::uint8_t* from = reader.bytes.data();
  std::uint16_t most = 0;
  for (std::uint16_t& sample : reader.samples) {
    sample = *from++;
    if (reader.stored == Samples::Words) sample = static_cast<std::uint16_t>(sample << 8 | *from++);
    most = std::max(most, sample);
  }
  return most > reader.largest ? BadSample(reader, "there is a sample above the largest value") : Ok();
}

// Whole bytes that need no look-up, or the complement at most.
Status DirectRow(PnmReader& reader, std::uint8_t* row) {
  const std::size_t bytes = pipeline::RowBytes(reader.image);
  if (Read(*reader.file, row, bytes) < bytes) return EndsEarly(reader);
  if (reader.stored == Samples::Bits) {
    std::transform(row, row + bytes, row, [](std::uint8_t ink) { return static_cast<std::uint8_t>(~ink); });
  }
  return Ok();
}

void DeliverRow(PnmReader& reader, std::uint8_t* row) {
  const bool whole = reader.image.depth > 4;
  std::uint8_t* to = whole ? row : reader.bytes.data();
  for (const std::uint16_t sample : reader.samples) *to++ = reader.levels[sample];
  if (!whole) PackRow(reader.bytes.data(), reader.image.width, pipeline::StoredBits(reader.image.depth), row);
}

Status ReadSamples(PnmReader& reader) {
  if (reader.stored == Samples::PlainBits) return PlainBitRow(reader);
  return reader.stored == Samples::Plain ? PlainRow(reader) : BinaryRow(reader);
}

Status ReadRow(PnmReader& reader, std::uint8_t* row) {
  Status status = reader.levels.empty() ? DirectRow(reader, row) : ReadSamples(reader);
  if (Failed(status)) return status;
  if (!reader.levels.empty()) DeliverRow(reader, row);
  ++reader.rowsRead;
  return status;
}

// What becomes of each sample: ink of bits is black, ramps keep their values, all others are scaled.
void MakeLevels(PnmReader& reader, bool bits) {
  if (bits) {
    reader.levels = {1, 0};
    return;
  }
  const bool same = RampDepth(reader.largest) == reader.image.depth;
  for (std::int64_t v = 0; v <= reader.largest; ++v) {
    const std::int64_t level = same ? v : (v * 255 + reader.largest / 2) / reader.largest;
    reader.levels.push_back(static_cast<std::uint8_t>(level));
  }
}

void PrepareRows(PnmReader& reader, bool bits) {
  const auto width = static_cast<std::size_t>(reader.image.width);
  const bool color = reader.image.depth == pipeline::kDirectDepth;
  if (reader.stored == Samples::Bits || (reader.stored == Samples::Bytes && reader.largest == 255)) return;
  MakeLevels(reader, bits);
  const std::size_t rowSamples = color ? width * 3 : width;
  reader.samples.resize(rowSamples);
  reader.bytes.resize(reader.stored == Samples::Words ? rowSamples * 2 : rowSamples);
}

Samples StoredAs(int kind, std::int64_t largest) {
  const bool bits = kind == 1 || kind == 4;
  if (kind <= 3) return bits ? Samples::PlainBits : Samples::Plain;
  if (bits) return Samples::Bits;
  return largest > 255 ? Samples::Words : Samples::Bytes;
}

Status ReadHeader(PnmReader& reader, const ReadOptions& options) {
  NextByte(*reader.file);
  const int kind = NextByte(*reader.file) - '0';
  const bool bits = kind == 1 || kind == 4;
  std::int64_t width = 0;
  std::int64_t height = 0;
  if (Status failed = HeaderNumber(*reader.file, "width", &width); Failed(failed)) return failed;
  if (Status failed = HeaderNumber(*reader.file, "height", &height); Failed(failed)) return failed;
  if (!bits) {
    if (Status failed = HeaderNumber(*reader.file, "largest value", &reader.largest); Failed(failed))
      return failed;
  }
  if (Status failed = CheckSize(width, height, options); Failed(failed)) return failed;
  if (reader.largest < 1 || reader.largest > kLargestSample) {
    return Fail(Code::Input, "the largest value of a sample is not 1 to 65535 (get an intact copy)");
  }
  reader.stored = StoredAs(kind, reader.largest);
  reader.image = {static_cast<std::int32_t>(width), static_cast<std::int32_t>(height), pipeline::kDirectDepth, {}};
  if (kind != 3 && kind != 6) {
    reader.image.depth = RampDepth(reader.largest) == 0 ? 8 : RampDepth(reader.largest);
    reader.image.palette = pipeline::GrayRamp(reader.image.depth);
  }
  PrepareRows(reader, bits);
  return Ok();
}

}  // namespace

Status OpenPnm(std::unique_ptr<InputFile> file, const ReadOptions& options, pipeline::RowSource* source) {
  auto reader = std::make_shared<PnmReader>();
  reader->file = std::move(file);
  if (Status failed = ReadHeader(*reader, options); Failed(failed)) return failed;
  source->image = reader->image;
  source->read = [reader](std::uint8_t* row) { return ReadRow(*reader, row); };
  return Ok();
}

}  // namespace cvt::imageio

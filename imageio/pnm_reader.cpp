// Reads PBM, PGM, PPM and PAM row by row: samples from text or bytes, then one table look-up each.
#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "imageio/flatten.h"
#include "imageio/limits.h"
#include "imageio/pnm_file.h"
#include "imageio/pnm_header.h"
#include "imageio/samples.h"

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Failed;
using pipeline::Image;
using pipeline::Ok;
using pipeline::Status;

namespace {

struct PnmReader {
  std::unique_ptr<InputFile> file;
  Image image;
  PnmHeader header;
  std::int32_t rowsRead = 0;
  std::vector<std::uint8_t> levels;    // what a sample becomes; empty: samples are delivered as they are
  std::vector<std::uint8_t> bytes;     // of a row as the file stores it, or as `flatten` takes it
  std::vector<std::uint16_t> samples;  // of a row
  FlattenRow flatten = nullptr;        // null: opaque
  Flatten how;
};

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

// Bits that the largest value takes.
std::int32_t BitsOf(std::int64_t largest) {
  std::int32_t bits = 1;
  while (largest >> bits != 0) ++bits;
  return bits;
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
    if (*number > reader.header.largest) return BadSample(reader, "there is a sample above the largest value");
  }
  return Ok();
}

Status BinaryRow(PnmReader& reader) {
  const std::size_t bytes = reader.samples.size() * (reader.header.stored == Samples::Words ? 2 : 1);
  if (Read(*reader.file, reader.bytes.data(), bytes) < bytes) return EndsEarly(reader);
  const std::uint8_t* from = reader.bytes.data();
  std::uint16_t most = 0;
  for (std::uint16_t& sample : reader.samples) {
    sample = *from++;
    if (reader.header.stored == Samples::Words) sample = static_cast<std::uint16_t>(sample << 8 | *from++);
    most = std::max(most, sample);
  }
  return most > reader.header.largest ? BadSample(reader, "there is a sample above the largest value") : Ok();
}

// Whole bytes that need no look-up, or the complement at most.
Status DirectRow(PnmReader& reader, std::uint8_t* row) {
  const std::size_t bytes = pipeline::RowBytes(reader.image);
  if (Read(*reader.file, row, bytes) < bytes) return EndsEarly(reader);
  if (reader.header.stored == Samples::Bits) {
    std::transform(row, row + bytes, row, [](std::uint8_t ink) { return static_cast<std::uint8_t>(~ink); });
  }
  return Ok();
}

// Opacity needs exact samples: all are scaled to sixteen bits before one is laid over another.
void FlattenSamples(PnmReader& reader, std::uint8_t* row) {
  const std::int64_t largest = reader.header.largest;
  std::uint8_t* to = reader.bytes.data();
  for (const std::uint16_t sample : reader.samples) {
    const std::int64_t scaled = (sample * kLargestSample + largest / 2) / largest;
    *to++ = static_cast<std::uint8_t>(scaled >> 8);
    *to++ = static_cast<std::uint8_t>(scaled & 255);
  }
  reader.flatten(reader.how, reader.bytes.data(), row);
}

void DeliverRow(PnmReader& reader, std::uint8_t* row) {
  const bool whole = reader.image.depth > 4;
  std::uint8_t* to = whole ? row : reader.bytes.data();
  for (const std::uint16_t sample : reader.samples) *to++ = reader.levels[sample];
  if (!whole) PackRow(reader.bytes.data(), reader.image.width, pipeline::StoredBits(reader.image.depth), row);
}

Status ReadSamples(PnmReader& reader) {
  if (reader.header.stored == Samples::PlainBits) return PlainBitRow(reader);
  return reader.header.stored == Samples::Plain ? PlainRow(reader) : BinaryRow(reader);
}

Status ReadRow(PnmReader& reader, std::uint8_t* row) {
  const bool direct = reader.samples.empty();
  Status status = direct ? DirectRow(reader, row) : ReadSamples(reader);
  if (Failed(status)) return status;
  if (reader.flatten != nullptr) {
    FlattenSamples(reader, row);
  } else if (!direct) {
    DeliverRow(reader, row);
  }
  ++reader.rowsRead;
  return status;
}

// What becomes of each sample: ink of bits is black, ramps keep their values, all others are scaled.
void MakeLevels(PnmReader& reader) {
  const std::int64_t largest = reader.header.largest;
  if (reader.header.stored == Samples::PlainBits) {
    reader.levels = {1, 0};
    return;
  }
  const bool same = RampDepth(largest) == reader.image.depth;
  for (std::int64_t v = 0; v <= largest; ++v) {
    const std::int64_t level = same ? v : (v * 255 + largest / 2) / largest;
    reader.levels.push_back(static_cast<std::uint8_t>(level));
  }
}

void ChooseImage(PnmReader& reader, const ReadOptions& options) {
  const PnmHeader& header = reader.header;
  reader.image.width = static_cast<std::int32_t>(header.width);
  reader.image.height = static_cast<std::int32_t>(header.height);
  reader.image.depth = pipeline::kDirectDepth;
  if (header.alpha) {
    reader.how = {reader.image.width, options.background};
    reader.flatten = ChooseFlatten({2, header.colors, true}, reader.how, &reader.image);
  } else if (header.colors == 1) {
    reader.image.depth = RampDepth(header.largest) == 0 ? 8 : RampDepth(header.largest);
    reader.image.palette = pipeline::GrayRamp(reader.image.depth);
  }
}

void PrepareRows(PnmReader& reader) {
  const PnmHeader& header = reader.header;
  const bool bytes = header.stored == Samples::Bytes && header.largest == 255;
  if (header.stored == Samples::Bits || (bytes && !header.alpha)) return;
  if (!header.alpha) MakeLevels(reader);
  const auto colors = static_cast<std::size_t>(header.colors);
  const std::size_t pixelSamples = header.alpha ? colors + 1 : colors;
  reader.samples.resize(static_cast<std::size_t>(reader.image.width) * pixelSamples);
  reader.bytes.resize(reader.samples.size() * 2);
}

}  // namespace

Status OpenPnm(std::unique_ptr<InputFile> file, const ReadOptions& options, pipeline::RowSource* source,
               Stored* stored) {
  auto reader = std::make_shared<PnmReader>();
  reader->file = std::move(file);
  const auto readHeader = Peek(*reader->file, 2) == "P7" ? ReadPamHeader : ReadPnmHeader;
  if (Status failed = readHeader(*reader->file, &reader->header); Failed(failed)) return failed;
  const PnmHeader& header = reader->header;
  if (Status failed = CheckSize(header.width, header.height, options); Failed(failed)) return failed;
  ChooseImage(*reader, options);
  PrepareRows(*reader);
  *stored = {BitsOf(header.largest), header.alpha};
  source->image = reader->image;
  source->read = [reader](std::uint8_t* row) { return ReadRow(*reader, row); };
  return Ok();
}

}  // namespace cvt::imageio

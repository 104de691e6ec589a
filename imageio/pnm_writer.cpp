// Writes binary PBM, PGM, PPM and PAM row by row. The rows of a PAM are those of a PGM or PPM.
#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "imageio/palette_kind.h"
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

constexpr std::int32_t kNone = 0;  // as the largest value: the header tells none

struct PnmWriter {
  std::unique_ptr<OutputFile> file;
  Format format = Format::Pnm;  // as wished, then that of the rows: Pbm, Pgm or Ppm
  Image image;
  bool inkIsZero = false;                  // PBM: the bits are stored as their complement
  std::array<std::uint8_t, 256> levels{};  // PGM: the sample of an index
  std::vector<std::uint8_t> indices;
  std::vector<std::uint8_t> row;
};

Format SmallestThatFits(const Image& image) {
  if (IsBlackAndWhite(image)) return Format::Pbm;
  return IsGray(image) ? Format::Pgm : Format::Ppm;
}

Status CheckFits(Format format, const Image& image) {
  if (format == Format::Pbm && !IsBlackAndWhite(image)) {
    return Fail(Code::Usage,
                "a PBM holds black and white in one bit (choose --depth 1 --palette bw, or another format)");
  }
  if (format == Format::Pgm && !IsGray(image)) {
    return Fail(Code::Usage, "a PGM holds grays only (choose --depth 8 --palette gray, or a PPM or PNG)");
  }
  return Ok();
}

// A ramp is its own scale; other grays are levels of 0 to 255.
std::int32_t ChooseLevels(PnmWriter& writer) {
  writer.levels = SameValues();
  if (IsRamp(writer.image, writer.image.depth)) return (1 << writer.image.depth) - 1;
  for (std::size_t i = 0; i < writer.image.palette.size(); ++i) writer.levels[i] = writer.image.palette[i].red;
  return 255;
}

// A PAM has a byte for each bit, 1 for white.
std::int32_t ChooseBits(PnmWriter& writer) {
  for (std::size_t i = 0; i < 2; ++i) writer.levels[i] = writer.image.palette[i].red == 0 ? 0 : 1;
  return 1;
}

std::string PnmHeaderText(const char* magic, const Image& image, std::int32_t largest) {
  const std::string size = std::to_string(image.width) + " " + std::to_string(image.height) + "\n";
  return magic + ("\n" + size) + (largest == kNone ? "" : std::to_string(largest) + "\n");
}

std::string PamHeaderText(const char* type, std::int32_t samples, const Image& image, std::int32_t largest) {
  return "P7\nWIDTH " + std::to_string(image.width) + "\nHEIGHT " + std::to_string(image.height) + "\nDEPTH " +
         std::to_string(samples) + "\nMAXVAL " + std::to_string(largest) + "\nTUPLTYPE " + type + "\nENDHDR\n";
}

std::string ChoosePam(PnmWriter& writer) {
  const Format fits = SmallestThatFits(writer.image);
  writer.format = fits == Format::Ppm ? Format::Ppm : Format::Pgm;
  if (fits == Format::Ppm) return PamHeaderText("RGB", 3, writer.image, 255);
  if (fits == Format::Pbm) return PamHeaderText("BLACKANDWHITE", 1, writer.image, ChooseBits(writer));
  return PamHeaderText("GRAYSCALE", 1, writer.image, ChooseLevels(writer));
}

std::string ChoosePnm(PnmWriter& writer) {
  if (writer.format == Format::Pgm) return PnmHeaderText("P5", writer.image, ChooseLevels(writer));
  if (writer.format == Format::Ppm) return PnmHeaderText("P6", writer.image, 255);
  writer.inkIsZero = writer.image.palette[0].red == 0;
  return PnmHeaderText("P4", writer.image, kNone);
}

Status Begin(PnmWriter& writer, const Image& image) {
  writer.image = image;
  if (writer.format == Format::Pnm) writer.format = SmallestThatFits(image);
  if (Status failed = CheckFits(writer.format, image); Failed(failed)) return failed;
  const std::string header = writer.format == Format::Pam ? ChoosePam(writer) : ChoosePnm(writer);
  const auto width = static_cast<std::size_t>(image.width);
  writer.indices.resize(width);
  writer.row.resize(writer.format == Format::Ppm ? width * 3 : std::max(width, pipeline::RowBytes(image)));
  return Write(*writer.file, header) ? Ok() : WriteFailure(*writer.file);
}

std::size_t MakeBits(PnmWriter& writer, const std::uint8_t* row) {
  const std::size_t bytes = pipeline::RowBytes(writer.image);
  const std::uint8_t flip = writer.inkIsZero ? 0xff : 0;
  std::transform(row, row + bytes, writer.row.begin(),
                 [flip](std::uint8_t byte) { return static_cast<std::uint8_t>(byte ^ flip); });
  ClearTail(writer.image.width, 1, writer.row.data());
  return bytes;
}

std::size_t MakeGrays(PnmWriter& writer, const std::uint8_t* row) {
  UnpackRow(row, writer.image.width, pipeline::StoredBits(writer.image.depth), writer.levels, writer.row.data());
  return static_cast<std::size_t>(writer.image.width);
}

std::size_t MakeColors(PnmWriter& writer, const std::uint8_t* row) {
  if (writer.image.depth > 8) {
    std::copy_n(row, writer.row.size(), writer.row.begin());
    return writer.row.size();
  }
  const std::int32_t bits = pipeline::StoredBits(writer.image.depth);
  UnpackRow(row, writer.image.width, bits, SameValues(), writer.indices.data());
  std::uint8_t* to = writer.row.data();
  for (const std::uint8_t index : writer.indices) {
    const IRGB color = writer.image.palette[index];
    *to++ = color.red;
    *to++ = color.green;
    *to++ = color.blue;
  }
  return writer.row.size();
}

Status WriteRow(PnmWriter& writer, const std::uint8_t* row) {
  std::size_t bytes = 0;
  if (writer.format == Format::Pbm) bytes = MakeBits(writer, row);
  if (writer.format == Format::Pgm) bytes = MakeGrays(writer, row);
  if (writer.format == Format::Ppm) bytes = MakeColors(writer, row);
  return Write(*writer.file, writer.row.data(), bytes) ? Ok() : WriteFailure(*writer.file);
}

}  // namespace

pipeline::RowSink WritePnm(std::unique_ptr<OutputFile> file, Format format) {
  auto writer = std::make_shared<PnmWriter>();
  writer->file = std::move(file);
  writer->format = format;
  return {[writer](const Image& image) { return Begin(*writer, image); },
          [writer](std::int32_t, const std::uint8_t* row) { return WriteRow(*writer, row); },
          [writer] { return Commit(*writer->file); }};
}

}  // namespace cvt::imageio

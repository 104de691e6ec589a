// Writes binary PBM, PGM and PPM row by row.
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

struct PnmWriter {
  std::unique_ptr<OutputFile> file;
  Format format = Format::Pnm;
  Image image;
  bool inkIsZero = false;                  // PBM: the bits are stored as their complement
  std::array<std::uint8_t, 256> levels{};  // PGM: the gray of an index
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
    return Fail(Code::Usage, "a PGM holds grays only (choose --palette gray, or a PPM or PNG)");
  }
  return Ok();
}

bool WriteText(OutputFile& file, const std::string& text) {
  return Write(file, reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

// A ramp is its own scale; other grays are levels of 0 to 255.
std::int32_t ChooseLevels(PnmWriter& writer) {
  writer.levels = SameValues();
  if (IsRamp(writer.image, writer.image.depth)) return (1 << writer.image.depth) - 1;
  for (std::size_t i = 0; i < writer.image.palette.size(); ++i) writer.levels[i] = writer.image.palette[i].red;
  return 255;
}

Status Begin(PnmWriter& writer, const Image& image) {
  writer.image = image;
  if (writer.format == Format::Pnm) writer.format = SmallestThatFits(image);
  if (Status failed = CheckFits(writer.format, image); Failed(failed)) return failed;
  const std::string size = std::to_string(image.width) + " " + std::to_string(image.height) + "\n";
  std::string header = "P6\n" + size + "255\n";
  if (writer.format == Format::Pbm) {
    writer.inkIsZero = image.palette[0].red == 0;
    header = "P4\n" + size;
  } else if (writer.format == Format::Pgm) {
    header = "P5\n" + size + std::to_string(ChooseLevels(writer)) + "\n";
  }
  const auto width = static_cast<std::size_t>(image.width);
  writer.indices.resize(width);
  writer.row.resize(writer.format == Format::Ppm ? width * 3 : std::max(width, pipeline::RowBytes(image)));
  return WriteText(*writer.file, header) ? Ok() : WriteFailure(*writer.file);
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

// Writes an image as a C source row by row.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "imageio/c_file.h"
#include "imageio/palette_kind.h"
#include "imageio/samples.h"

namespace cvt::imageio {

using pipeline::Image;
using pipeline::Layout;
using pipeline::Ok;
using pipeline::Status;

namespace {

constexpr std::size_t kBytesALine = 12;

struct CWriter {
  std::unique_ptr<OutputFile> file;
  std::string name;
  Image image;
  std::vector<std::uint8_t> row;
  std::string text;  // of a row
};

void AppendHex(std::uint8_t byte, std::string* text) {
  constexpr char kDigits[] = "0123456789abcdef";
  *text += kDigits[byte >> 4];
  *text += kDigits[byte & 15];
}

std::string ColorText(IRGB color) {
  std::string text = "#";
  for (const std::uint8_t level : {color.red, color.green, color.blue}) AppendHex(level, &text);
  return text;
}

std::string Counted(std::size_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string PackedText(std::int32_t depth) {
  if (depth == 32) return "Packed, four bytes a pixel: blue, green, red, 0.";
  if (depth == 24) return "Packed, three bytes a pixel: red, green, blue.";
  if (depth > 8) {
    return "Packed, two bytes a pixel, the low byte first: red in bits 14 to 10, green in\n"
           " * bits 9 to 5, blue in bits 4 to 0.";
  }
  const std::int32_t bits = pipeline::StoredBits(depth);
  if (bits == 8) return "Packed, one byte a pixel.";
  return "Packed, each pixel in " + Counted(static_cast<std::size_t>(bits), "bit") +
         ", the leftmost in the top bits of the first byte.";
}

std::string LayoutText(const Image& image) {
  if (image.layout == Layout::Packed) return PackedText(image.depth);
  return "Planes of " + Counted(pipeline::PlaneRowBytes(image.width), "byte") +
         ", one for each bit of a pixel: in each row first the plane of the lowest\n"
         " * bits, last that of the highest. The leftmost pixel is in the top bit of the first byte.";
}

// What the values of pixels are; nothing for direct colour.
std::string ValuesText(const CWriter& writer) {
  const std::vector<IRGB>& palette = writer.image.palette;
  if (palette.empty()) return "";
  std::string text = " * A pixel is its place in " + writer.name + "_palette";
  if (IsBlackAndWhite(writer.image)) {
    const bool blackFirst = palette[0].red == 0;
    text += blackFirst ? ": 0 is black, 1 is white" : ": 0 is white, 1 is black";
  } else if (writer.image.depth == 1) {
    text += ": 0 is " + ColorText(palette.front()) + ", 1 is " + ColorText(palette.back());
  }
  return text + ".\n";
}

std::string CommentText(const CWriter& writer) {
  const Image& image = writer.image;
  return "/* " + std::to_string(image.width) + " x " + std::to_string(image.height) + " pixels, " +
         Counted(static_cast<std::size_t>(image.depth), "bit") + " a pixel.\n *\n * Rows from top to bottom, " +
         Counted(pipeline::RowBytes(image), "byte") + " each. Bits behind the last pixel are 0.\n * " +
         LayoutText(image) + "\n" + ValuesText(writer) + " */\n";
}

std::string ConstantsText(const CWriter& writer) {
  std::string stem = writer.name;
  std::transform(stem.begin(), stem.end(), stem.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  const auto constant = [&stem](const char* what, std::size_t value) {
    return "#define " + stem + what + " " + std::to_string(value) + "\n";
  };
  const Image& image = writer.image;
  return constant("_WIDTH", static_cast<std::size_t>(image.width)) +
         constant("_HEIGHT", static_cast<std::size_t>(image.height)) +
         constant("_BITS", static_cast<std::size_t>(image.depth)) +
         constant("_ROW_BYTES", pipeline::RowBytes(image)) +
         (image.palette.empty() ? "" : constant("_COLORS", image.palette.size()));
}

std::string PaletteText(const CWriter& writer) {
  if (writer.image.palette.empty()) return "";
  std::string text = "/* Red, green, blue. */\nconst uint8_t " + writer.name + "_palette[][3] = {\n";
  for (const IRGB& color : writer.image.palette) {
    const char* before = "  {0x";
    for (const std::uint8_t level : {color.red, color.green, color.blue}) {
      text += std::exchange(before, ", 0x");
      AppendHex(level, &text);
    }
    text += "},\n";
  }
  return text + "};\n\n";
}

Status WriteText(CWriter& writer, const std::string& text) {
  return Write(*writer.file, text) ? Ok() : WriteFailure(*writer.file);
}

Status Begin(CWriter& writer, const Image& image) {
  writer.image = image;
  return WriteText(writer, CommentText(writer) + "#include <stdint.h>\n\n" + ConstantsText(writer) + "\n" +
                               PaletteText(writer) + "const uint8_t " + writer.name + "[] = {\n");
}

Status WriteRow(CWriter& writer, const std::uint8_t* row) {
  writer.row.assign(row, row + pipeline::RowBytes(writer.image));
  ClearTails(writer.image, writer.row.data());
  writer.text.clear();
  for (std::size_t i = 0; i < writer.row.size(); ++i) {
    writer.text += i % kBytesALine == 0 ? "  0x" : " 0x";
    AppendHex(writer.row[i], &writer.text);
    const bool last = i + 1 == writer.row.size() || (i + 1) % kBytesALine == 0;
    writer.text += last ? ",\n" : ",";
  }
  return WriteText(writer, writer.text);
}

Status End(CWriter& writer) {
  if (Status failed = WriteText(writer, "};\n"); Failed(failed)) return failed;
  return Commit(*writer.file);
}

}  // namespace

pipeline::RowSink WriteC(std::unique_ptr<OutputFile> file, const std::string& path) {
  auto writer = std::make_shared<CWriter>();
  writer->file = std::move(file);
  writer->name = CName(path);
  return {[writer](const Image& image) { return Begin(*writer, image); },
          [writer](std::int32_t, const std::uint8_t* row) { return WriteRow(*writer, row); },
          [writer] { return End(*writer); }};
}

}  // namespace cvt::imageio

// Writes PNG row by row: pixels, palette, resolution and nothing else, so that equal images make equal files.
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "imageio/palette_kind.h"
#include "imageio/png_file.h"
#include "imageio/png_guard.h"
#include "imageio/samples.h"

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Image;
using pipeline::Ok;
using pipeline::Status;

namespace {

struct PngWriter {
  PngWriter() = default;
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;
  ~PngWriter() { png_destroy_write_struct(&png, &info); }

  PngWords words{"libpng cannot start"};
  png_structp png = nullptr;
  png_infop info = nullptr;
  std::unique_ptr<OutputFile> file;
  Image image;
  std::vector<png_color> palette;
  std::vector<std::uint8_t> row;
};

void WriteBytes(png_structp png, png_bytep from, std::size_t bytes) {
  if (!Write(*static_cast<OutputFile*>(png_get_io_ptr(png)), from, bytes)) png_error(png, "writing failed");
}

void FlushNothing(png_structp) {}  // the file is flushed when it is complete

Status Broken(const PngWriter& writer) {
  if (writer.file->error != 0) return WriteFailure(*writer.file);
  return Fail(Code::Output,
              std::string("the PNG cannot be written: ") + writer.words.text + " (try another format)");
}

// Pixels a metre; 0 where there are too few or too many to tell.
png_uint_32 PerMetre(double perInch) {
  const double perMetre = std::round(perInch / kMetresAnInch);
  return perMetre >= 1 && perMetre <= PNG_UINT_31_MAX ? static_cast<png_uint_32>(perMetre) : 0;
}

bool WriteHeader(PngWriter& writer) {
  writer.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &writer.words, KeepPngError, DropPngWarning);
  if (writer.png == nullptr) return false;
  png_structp png = writer.png;
  writer.info = png_create_info_struct(png);
  if (writer.info == nullptr) return false;
  const Image& image = writer.image;
  const bool direct = image.depth > 8;
  const int bits = direct ? 8 : pipeline::StoredBits(image.depth);
  const int gray = IsRamp(image, bits) ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_PALETTE;
  const int colorType = direct ? PNG_COLOR_TYPE_RGB : gray;
  const png_uint_32 x = PerMetre(image.resolution.x);
  const png_uint_32 y = PerMetre(image.resolution.y);
  return PngSucceeds(png, [&writer, png, colorType, bits, x, y] {
    png_set_write_fn(png, writer.file.get(), WriteBytes, FlushNothing);
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(png, writer.info, static_cast<png_uint_32>(writer.image.width),
                 static_cast<png_uint_32>(writer.image.height), bits, colorType, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (colorType == PNG_COLOR_TYPE_PALETTE) {
      png_set_PLTE(png, writer.info, writer.palette.data(), static_cast<int>(writer.palette.size()));
    }
    if (x != 0 && y != 0) png_set_pHYs(png, writer.info, x, y, PNG_RESOLUTION_METER);
    png_write_info(png, writer.info);
  });
}

Status Begin(PngWriter& writer, const Image& image) {
  writer.image = image;
  for (const IRGB& color : image.palette) writer.palette.push_back({color.red, color.green, color.blue});
  return WriteHeader(writer) ? Ok() : Broken(writer);
}

Status WriteRow(PngWriter& writer, const std::uint8_t* row) {
  writer.row.assign(row, row + pipeline::RowBytes(writer.image));
  ClearTail(writer.image.width, pipeline::StoredBits(writer.image.depth), writer.row.data());
  const std::uint8_t* cleared = writer.row.data();
  return PngSucceeds(writer.png, [&writer, cleared] { png_write_row(writer.png, cleared); }) ? Ok()
                                                                                             : Broken(writer);
}

Status End(PngWriter& writer) {
  if (!PngSucceeds(writer.png, [&writer] { png_write_end(writer.png, nullptr); })) return Broken(writer);
  return Commit(*writer.file);
}

}  // namespace

pipeline::RowSink WritePng(std::unique_ptr<OutputFile> file) {
  auto writer = std::make_shared<PngWriter>();
  writer->file = std::move(file);
  return {[writer](const Image& image) { return Begin(*writer, image); },
          [writer](std::int32_t, const std::uint8_t* row) { return WriteRow(*writer, row); },
          [writer] { return End(*writer); }};
}

}  // namespace cvt::imageio

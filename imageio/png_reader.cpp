// Reads PNG row by row. The samples are taken from libpng as they are stored; flattening and rounding are
// done here, exactly, and palettes are flattened in place of the pixels that use them.
#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "imageio/flatten.h"
#include "imageio/limits.h"
#include "imageio/png_file.h"
#include "imageio/png_guard.h"
#include "imageio/samples.h"

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Failed;
using pipeline::Image;
using pipeline::Ok;
using pipeline::Status;

namespace {

constexpr png_alloc_size_t kMaxChunkBytes = 8 << 20;

struct PngReader {
  PngReader() = default;
  PngReader(const PngReader&) = delete;
  PngReader& operator=(const PngReader&) = delete;
  ~PngReader() { png_destroy_read_struct(&png, &info, nullptr); }

  PngWords words{"libpng cannot start"};
  png_structp png = nullptr;
  png_infop info = nullptr;
  std::unique_ptr<InputFile> file;
  ReadOptions options;
  Image image;
  std::int32_t rowsRead = 0;
  int passes = 1;                  // 7: interlaced
  std::size_t storedBytes = 0;     // in a row as the file stores it
  std::vector<std::uint8_t> rows;  // one stored row to be flattened, or all rows of an interlaced image
  FlattenRow flatten = nullptr;    // null: rows are delivered as they are stored
  Flatten how;
  std::vector<std::uint8_t> pixels;  // a row to be searched for colours that the palette lacks, else empty
};

void ReadBytes(png_structp png, png_bytep to, std::size_t bytes) {
  if (Read(*static_cast<InputFile*>(png_get_io_ptr(png)), to, bytes) < bytes)
    png_error(png, "the data ends early");
}

Status Damaged(const PngReader& reader) {
  return EndOfInput(*reader.file,
                    std::string("the PNG is damaged: ") + reader.words.text + " (get an intact copy of it)");
}

bool ReadHeader(PngReader& reader) {
  reader.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reader.words, KeepPngError, DropPngWarning);
  if (reader.png == nullptr) return false;
  png_structp png = reader.png;
  reader.info = png_create_info_struct(png);
  if (reader.info == nullptr) return false;
  return PngSucceeds(png, [&reader, png] {
    png_set_read_fn(png, reader.file.get(), ReadBytes);
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);  // CheckSize names the limits
    png_set_chunk_malloc_max(png, kMaxChunkBytes);
    png_set_crc_action(png, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
    // Chunks that say nothing about the pixels are checked and dropped before anything is made of them.
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    constexpr png_byte kResolution[] = {'p', 'H', 'Y', 's', 0};
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_AS_DEFAULT, kResolution, 1);
    png_read_info(png, reader.info);
  });
}

Status CheckBuffer(const PngReader& reader) {
  const auto needed = static_cast<std::int64_t>(reader.storedBytes) * reader.image.height;
  if (reader.passes == 1 || needed <= reader.options.maxBufferBytes) return Ok();
  constexpr std::int64_t kMiB = 1 << 20;
  return Fail(Code::Limit, "the PNG is interlaced and needs " + std::to_string((needed + kMiB - 1) / kMiB) +
                               " MiB of memory, the limit is " +
                               std::to_string(reader.options.maxBufferBytes / kMiB) +
                               " MiB (raise it with --max-memory, or save the image without interlacing)");
}

IRGB OverBackground(const png_color& color, png_byte alpha, IRGB background) {
  return {Over<255>(color.red, alpha, background.red), Over<255>(color.green, alpha, background.green),
          Over<255>(color.blue, alpha, background.blue)};
}

// The colours that pixels can name, as they are stored.
std::vector<png_color> StoredPalette(const PngReader& reader) {
  png_colorp colors = nullptr;
  int count = 0;
  png_get_PLTE(reader.png, reader.info, &colors, &count);
  return {colors, colors + std::min(count, 1 << png_get_bit_depth(reader.png, reader.info))};
}

void TakePalette(PngReader& reader) {
  png_bytep alphas = nullptr;
  int alphaCount = 0;
  png_get_tRNS(reader.png, reader.info, &alphas, &alphaCount, nullptr);
  int i = 0;
  for (const png_color& color : StoredPalette(reader)) {
    const png_byte alpha = i < alphaCount ? alphas[i] : png_byte{255};
    reader.image.palette.push_back(OverBackground(color, alpha, reader.options.background));
    ++i;
  }
  if (i < 1 << reader.image.depth) reader.pixels.resize(static_cast<std::size_t>(reader.image.width));
}

// Gray of up to eight bits: the one transparent gray, if any, is just another palette entry.
void TakeRamp(PngReader& reader) {
  reader.image.palette = pipeline::GrayRamp(reader.image.depth);
  const std::size_t key = reader.how.key[0];
  if (reader.how.hasKey && key < reader.image.palette.size())
    reader.image.palette[key] = reader.options.background;
}

void TakeKey(PngReader& reader, int colorType) {
  png_color_16p key = nullptr;
  reader.how.width = reader.image.width;
  reader.how.background = reader.options.background;
  if (colorType == PNG_COLOR_TYPE_PALETTE) return;
  reader.how.hasKey = png_get_tRNS(reader.png, reader.info, nullptr, nullptr, &key) != 0 && key != nullptr;
  if (!reader.how.hasKey) return;
  const bool gray = colorType == PNG_COLOR_TYPE_GRAY;
  reader.how.key[0] = gray ? key->gray : key->red;
  reader.how.key[1] = key->green;
  reader.how.key[2] = key->blue;
}

void TakeResolution(PngReader& reader) {
  png_uint_32 x = 0;
  png_uint_32 y = 0;
  int unit = PNG_RESOLUTION_UNKNOWN;
  png_get_pHYs(reader.png, reader.info, &x, &y, &unit);
  if (unit == PNG_RESOLUTION_METER) reader.image.resolution = {x * kMetresAnInch, y * kMetresAnInch};
}

void TakeSamples(PngReader& reader, int colorType, int bitDepth) {
  const bool gray = (colorType & PNG_COLOR_MASK_COLOR) == 0;
  const bool alpha = (colorType & PNG_COLOR_MASK_ALPHA) != 0;
  reader.flatten = ChooseFlatten({bitDepth / 8, gray ? 1 : 3, alpha}, reader.how, &reader.image);
}

Stored StoredAs(const PngReader& reader) {
  const bool alpha = (png_get_color_type(reader.png, reader.info) & PNG_COLOR_MASK_ALPHA) != 0;
  return {png_get_bit_depth(reader.png, reader.info),
          alpha || png_get_valid(reader.png, reader.info, PNG_INFO_tRNS) != 0};
}

Status TakeHeader(PngReader& reader) {
  const png_uint_32 width = png_get_image_width(reader.png, reader.info);
  const png_uint_32 height = png_get_image_height(reader.png, reader.info);
  if (Status failed = CheckSize(width, height, reader.options); Failed(failed)) return failed;
  const int colorType = png_get_color_type(reader.png, reader.info);
  const int bitDepth = png_get_bit_depth(reader.png, reader.info);
  reader.image = {static_cast<std::int32_t>(width), static_cast<std::int32_t>(height), bitDepth, {}};
  reader.storedBytes = png_get_rowbytes(reader.png, reader.info);
  TakeResolution(reader);
  TakeKey(reader, colorType);
  if (colorType == PNG_COLOR_TYPE_PALETTE) {
    TakePalette(reader);
  } else if (colorType == PNG_COLOR_TYPE_GRAY && bitDepth <= 8) {
    TakeRamp(reader);
  } else {
    TakeSamples(reader, colorType, bitDepth);
  }
  if (!PngSucceeds(reader.png, [&reader] { reader.passes = png_set_interlace_handling(reader.png); })) {
    return Damaged(reader);
  }
  return CheckBuffer(reader);
}

bool ReadAllRows(PngReader& reader) {
  reader.rows.resize(reader.storedBytes * static_cast<std::size_t>(reader.image.height));
  return PngSucceeds(reader.png, [&reader] {
    for (int pass = 0; pass < reader.passes; ++pass) {
      std::uint8_t* row = reader.rows.data();
      for (std::int32_t y = 0; y < reader.image.height; ++y, row += reader.storedBytes) {
        png_read_row(reader.png, row, nullptr);
      }
    }
  });
}

// The row as the file stores it; null when the data is damaged. Rows that need no work go to `row` at once.
const std::uint8_t* StoredRow(PngReader& reader, std::uint8_t* row) {
  if (reader.passes > 1) {
    if (reader.rowsRead == 0 && !ReadAllRows(reader)) return nullptr;
    return reader.rows.data() + reader.storedBytes * static_cast<std::size_t>(reader.rowsRead);
  }
  if (reader.flatten != nullptr) {
    reader.rows.resize(reader.storedBytes);
    row = reader.rows.data();
  }
  return PngSucceeds(reader.png, [&reader, row] { png_read_row(reader.png, row, nullptr); }) ? row : nullptr;
}

Status CheckIndices(PngReader& reader, const std::uint8_t* row) {
  if (reader.pixels.empty()) return Ok();
  UnpackRow(row, reader.image.width, reader.image.depth, SameValues(), reader.pixels.data());
  const std::size_t largest = *std::max_element(reader.pixels.begin(), reader.pixels.end());
  if (largest < reader.image.palette.size()) return Ok();
  return Fail(Code::Input, "the PNG is damaged: row " + std::to_string(reader.rowsRead) + " uses colour " +
                               std::to_string(largest) + ", the palette has " +
                               std::to_string(reader.image.palette.size()) + " (get an intact copy of it)");
}

Status ReadRow(PngReader& reader, std::uint8_t* row) {
  const std::uint8_t* stored = StoredRow(reader, row);
  if (stored == nullptr) return Damaged(reader);
  if (reader.flatten != nullptr) {
    reader.flatten(reader.how, stored, row);
  } else if (stored != row) {
    std::memcpy(row, stored, reader.storedBytes);
  }
  if (Status failed = CheckIndices(reader, row); Failed(failed)) return failed;
  if (++reader.rowsRead < reader.image.height) return Ok();
  // The end holds check sums of the last rows.
  return PngSucceeds(reader.png, [&reader] { png_read_end(reader.png, nullptr); }) ? Ok() : Damaged(reader);
}

}  // namespace

Status OpenPng(std::unique_ptr<InputFile> file, const ReadOptions& options, pipeline::RowSource* source,
               Stored* stored) {
  auto reader = std::make_shared<PngReader>();
  reader->file = std::move(file);
  reader->options = options;
  if (!ReadHeader(*reader)) return Damaged(*reader);
  if (Status failed = TakeHeader(*reader); Failed(failed)) return failed;
  *stored = StoredAs(*reader);
  source->image = reader->image;
  source->read = [reader](std::uint8_t* row) { return ReadRow(*reader, row); };
  return Ok();
}

Status ReadPngPalette(const std::string& path, std::vector<IRGB>* palette) {
  PngReader reader;
  if (Status failed = OpenInput(path, &reader.file); Failed(failed)) return failed;
  if (Peek(*reader.file, 2) != "\x89P") return Fail(Code::Input, "this is no PNG (give an indexed PNG)");
  if (!ReadHeader(reader)) return Damaged(reader);
  if (png_get_color_type(reader.png, reader.info) != PNG_COLOR_TYPE_PALETTE) {
    return Fail(Code::Input, "this PNG has no palette (give an indexed PNG)");
  }
  for (const png_color& color : StoredPalette(reader)) palette->push_back({color.red, color.green, color.blue});
  return Ok();
}

}  // namespace cvt::imageio

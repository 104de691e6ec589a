// Reads TIFF row by row. Samples are taken from libtiff as they are stored and brought together here: libtiff's
// own conversion to RGBA takes the whole image, loses depths and palettes, and rounds twice.
#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "imageio/flatten.h"
#include "imageio/limits.h"
#include "imageio/tiff_file.h"
#include "imageio/tiff_page.h"
#include "imageio/tiff_stream.h"

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Failed;
using pipeline::Image;
using pipeline::Ok;
using pipeline::Status;

namespace {

constexpr std::int64_t kMiB = 1 << 20;
constexpr std::size_t kMaxSamples = 4;

// Where every sample has a plane of its own, each is read through a handle of its own: a handle that goes to
// and fro decodes a strip from its start each time.
struct Plane {
  TiffStream stream{.words = "libtiff finds no page in it"};
  TiffHandle tiff;
  std::vector<std::uint8_t> tiles;  // of a tiled image: the rows of one row of tiles
};

// What is known of a page once it is taken.
struct TakenPage {
  TiffPage page;
  Image image;
  std::int32_t rowsRead = 0;
  std::uint32_t tileWidth = 0;  // 0: strips
  std::uint32_t tileHeight = 0;
  std::vector<std::uint8_t> tile;
  std::vector<std::uint16_t> wanted;   // the samples of a pixel; empty: rows are delivered as they are stored
  std::vector<std::uint8_t> stored;    // a row of a plane
  std::vector<std::uint8_t> together;  // a row of the wanted samples
  FlattenRow flatten = nullptr;        // null: the wanted samples are delivered
  Flatten how;
};

struct TiffReader : TakenPage {
  std::unique_ptr<InputFile> file;
  ReadOptions options;
  Plane planes[kMaxSamples];
};

std::string Counted(std::int64_t pages) {
  return "the file has " + std::to_string(pages) + (pages == 1 ? " page" : " pages");
}

// Counts the pages, all of which takes a while, and goes to the one that is wanted, 0: the first.
Status GoToPage(Plane& plane, std::int32_t wanted, std::int64_t* pages) {
  *pages = TIFFNumberOfDirectories(plane.tiff.get());
  if (*pages == 0) return Damaged(plane.stream);
  if (wanted > *pages) return Fail(Code::Usage, Counted(*pages) + " (choose another with --page)");
  if (wanted <= 1 || TIFFSetDirectory(plane.tiff.get(), static_cast<tdir_t>(wanted - 1)) == 1) return Ok();
  return Damaged(plane.stream);
}

// The stream of the plane knows where its bytes are.
Status OpenPlane(const TiffReader& reader, Plane& plane, std::int64_t* pages) {
  plane.tiff = OpenTiffStream(plane.stream, "rm", reader.options.maxBufferBytes + kMiB);
  if (!plane.tiff) return Damaged(plane.stream);
  return GoToPage(plane, reader.options.page, pages);
}

// Colours of a JPEG come as red, green and blue.
void ChooseColorMode(Plane& plane) {
  if (TagsOf(plane.tiff.get()).photometric != PHOTOMETRIC_YCBCR) return;
  TIFFSetField(plane.tiff.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
}

Status OpenOtherPlanes(TiffReader& reader) {
  std::int64_t pages = 0;
  for (std::size_t k = 1; reader.page.planes && k < reader.wanted.size(); ++k) {
    const TiffStream& first = reader.planes[0].stream;
    reader.planes[k].stream.descriptor = first.descriptor;
    reader.planes[k].stream.start = first.start;
    reader.planes[k].stream.size = first.size;
    if (Status failed = OpenPlane(reader, reader.planes[k], &pages); Failed(failed)) return failed;
  }
  return Ok();
}

Status TooLarge(const TiffReader& reader, const std::string& what) {
  return Fail(Code::Limit, what + " of the TIFF needs more memory than the " +
                               std::to_string(reader.options.maxBufferBytes / kMiB) +
                               " MiB allowed (raise it with --max-memory)");
}

// A strip is held as it is stored, a row of tiles as pixels.
Status CheckMemory(TiffReader& reader) {
  TIFF* tiff = reader.planes[0].tiff.get();
  const auto planes = reader.page.planes ? static_cast<std::int64_t>(reader.wanted.size()) : 1;
  const std::int64_t limit = reader.options.maxBufferBytes / planes;
  if (StoredBytes(reader.page, reader.page.width) > limit) return TooLarge(reader, "a row");
  const bool tiled = TIFFIsTiled(tiff) != 0;
  const std::uint32_t pieces = tiled ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
  for (std::uint32_t i = 0; i < pieces; ++i) {
    const std::uint64_t bytes = std::min(TIFFGetStrileByteCount(tiff, i), reader.planes[0].stream.size);
    if (static_cast<std::int64_t>(bytes) > limit) return TooLarge(reader, tiled ? "a tile" : "a strip");
  }
  return Ok();
}

Status PrepareTiles(TiffReader& reader) {
  TIFF* tiff = reader.planes[0].tiff.get();
  if (TIFFIsTiled(tiff) == 0) return Ok();
  TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &reader.tileWidth);
  TIFFGetField(tiff, TIFFTAG_TILELENGTH, &reader.tileHeight);
  if (reader.tileWidth == 0 || reader.tileHeight == 0 || reader.tileWidth % 16 != 0) {
    return Fail(Code::Input, "the TIFF is damaged: its tiles have no valid size (get an intact copy of it)");
  }
  const std::int64_t across = (reader.page.width - 1) / reader.tileWidth + 1;
  const auto planes = reader.page.planes ? static_cast<std::int64_t>(reader.wanted.size()) : 1;
  const std::int64_t tileBytes = TIFFTileSize(tiff);
  if (tileBytes <= 0 || tileBytes > reader.options.maxBufferBytes / (across * planes + 1)) {
    return TooLarge(reader, "a row of tiles");
  }
  reader.tile.resize(static_cast<std::size_t>(tileBytes));
  return Ok();
}

Status PrepareStrips(TiffReader& reader) {
  Plane& plane = reader.planes[0];
  if (reader.tileWidth != 0 || TIFFScanlineSize(plane.tiff.get()) == StoredBytes(reader.page, reader.page.width)) {
    return Ok();
  }
  return Fail(Code::Input, "the TIFF is damaged: its rows have no valid size (get an intact copy of it)");
}

// Indices and grays of up to eight bits, and colours as we have them, need no work.
void ChooseSamples(TiffReader& reader) {
  const TiffPage& page = reader.page;
  if (page.bits <= 8 && page.samples == page.colors && !page.planes) return;
  for (std::uint16_t c = 0; c < page.colors; ++c) reader.wanted.push_back(c);
  if (page.alpha != 0) reader.wanted.push_back(page.alpha);
}

Status TakeColors(TiffReader& reader) {
  const TiffPage& page = reader.page;
  if (page.photometric == PHOTOMETRIC_PALETTE) {
    reader.image.palette = PaletteOf(reader.planes[0].tiff.get(), page);
    if (!reader.image.palette.empty()) return Ok();
    return Fail(Code::Input, "the TIFF is damaged: it lacks its palette (get an intact copy of it)");
  }
  if (page.bits < 8) {
    reader.image.palette = pipeline::GrayRamp(page.bits);
    return Ok();
  }
  reader.how.width = reader.image.width;
  reader.how.background = reader.options.background;
  reader.flatten =
      ChooseFlatten({page.bits / 8, page.colors, page.alpha != 0, page.multiplied}, reader.how, &reader.image);
  return Ok();
}

Status TakePage(TiffReader& reader) {
  static_cast<TakenPage&>(reader) = {};  // of the page before nothing is left
  ChooseColorMode(reader.planes[0]);
  TIFF* tiff = reader.planes[0].tiff.get();
  reader.page = TagsOf(tiff);
  const TiffPage& page = reader.page;
  if (Status failed = CheckSize(page.width, page.height, reader.options); Failed(failed)) return failed;
  if (Status failed = CheckKind(page); Failed(failed)) return failed;
  reader.image.width = static_cast<std::int32_t>(page.width);
  reader.image.height = static_cast<std::int32_t>(page.height);
  reader.image.depth = page.bits;
  reader.image.resolution = ResolutionOf(tiff);
  if (Status failed = TakeColors(reader); Failed(failed)) return failed;
  ChooseSamples(reader);
  if (Status failed = CheckMemory(reader); Failed(failed)) return failed;
  if (Status failed = PrepareTiles(reader); Failed(failed)) return failed;
  if (Status failed = PrepareStrips(reader); Failed(failed)) return failed;
  reader.stored.resize(static_cast<std::size_t>(StoredBytes(page, page.width)));
  reader.together.resize(static_cast<std::size_t>(page.width) * reader.wanted.size() * (page.bits / 8U));
  return Ok();
}

// Reading of the chosen page, or of the first.
Status StartReading(TiffReader& reader, std::unique_ptr<InputFile> file, const ReadOptions& options,
                    std::int64_t* pages) {
  reader.file = std::move(file);
  reader.options = options;
  if (Status failed = FindBytes(reader.planes[0].stream, &reader.file); Failed(failed)) return failed;
  return OpenPlane(reader, reader.planes[0], pages);
}

bool ReadTiles(TiffReader& reader, Plane& plane, std::uint32_t y, std::uint16_t sample) {
  const std::size_t rowBytes = reader.stored.size();
  const auto tileRowBytes = static_cast<std::size_t>(StoredBytes(reader.page, reader.tileWidth));
  const std::uint32_t rows = std::min(reader.tileHeight, reader.page.height - y);
  plane.tiles.resize(rowBytes * rows);
  for (std::size_t at = 0, x = 0; at < rowBytes; at += tileRowBytes, x += reader.tileWidth) {
    const auto left = static_cast<std::uint32_t>(x);
    if (TIFFReadTile(plane.tiff.get(), reader.tile.data(), left, y, 0, sample) < 0) return false;
    const std::size_t bytes = std::min(tileRowBytes, rowBytes - at);
    for (std::uint32_t r = 0; r < rows; ++r) {
      std::memcpy(plane.tiles.data() + r * rowBytes + at, reader.tile.data() + r * tileRowBytes, bytes);
    }
  }
  return true;
}

// A row of a plane as it is stored.
bool ReadStored(TiffReader& reader, Plane& plane, std::uint16_t sample, std::uint8_t* row) {
  const auto y = static_cast<std::uint32_t>(reader.rowsRead);
  plane.stream.complains = false;
  if (reader.tileWidth == 0) {
    return TIFFReadScanline(plane.tiff.get(), row, y, sample) == 1 && !plane.stream.complains;
  }
  const std::uint32_t within = y % reader.tileHeight;
  if (within == 0 && (!ReadTiles(reader, plane, y, sample) || plane.stream.complains)) return false;
  std::memcpy(row, plane.tiles.data() + within * reader.stored.size(), reader.stored.size());
  return true;
}

// Puts one sample of every pixel into its place, words with the high byte first.
void Place(const TiffReader& reader, std::size_t k, std::uint8_t flip, std::uint8_t* to) {
  const std::size_t bytes = reader.page.bits / 8U;
  const std::size_t step = bytes * (reader.page.planes ? 1U : reader.page.samples);
  const std::uint8_t* from = reader.stored.data() + (reader.page.planes ? 0 : reader.wanted[k] * bytes);
  to += k * bytes;
  for (std::int32_t x = 0; x < reader.image.width; ++x) {
    std::uint16_t sample = *from;
    if (bytes == 2) {
      std::memcpy(&sample, from, 2);
      *to = static_cast<std::uint8_t>(sample >> 8 ^ flip);
    }
    to[bytes - 1] = static_cast<std::uint8_t>(sample ^ flip);
    from += step;
    to += reader.wanted.size() * bytes;
  }
}

Status ReadRow(TiffReader& reader, std::uint8_t* row) {
  const std::uint8_t flip = reader.page.photometric == PHOTOMETRIC_MINISWHITE ? 0xff : 0;
  Plane& first = reader.planes[0];
  if (reader.wanted.empty()) {
    if (!ReadStored(reader, first, 0, row)) return Damaged(first.stream);
    const auto turn = [flip](std::uint8_t byte) { return static_cast<std::uint8_t>(byte ^ flip); };
    if (flip != 0) std::transform(row, row + reader.stored.size(), row, turn);
  }
  std::uint8_t* together = reader.flatten == nullptr ? row : reader.together.data();
  for (std::size_t k = 0; k < reader.wanted.size(); ++k) {
    Plane& plane = reader.planes[reader.page.planes ? k : 0];
    const std::uint16_t sample = reader.page.planes ? reader.wanted[k] : std::uint16_t{0};
    const bool needed = k == 0 || reader.page.planes;
    if (needed && !ReadStored(reader, plane, sample, reader.stored.data())) return Damaged(plane.stream);
    Place(reader, k, flip, together);
  }
  if (reader.flatten != nullptr) reader.flatten(reader.how, together, row);
  ++reader.rowsRead;
  return Ok();
}

}  // namespace

Status HaveTiff() { return Ok(); }

Status OpenTiff(std::unique_ptr<InputFile> file, const ReadOptions& options, pipeline::RowSource* source,
                Stored* stored) {
  auto reader = std::make_shared<TiffReader>();
  std::int64_t pages = 0;
  if (Status failed = StartReading(*reader, std::move(file), options, &pages); Failed(failed)) return failed;
  if (options.page == 0 && pages > 1) return Fail(Code::Usage, Counted(pages) + " (choose one with --page)");
  if (Status failed = TakePage(*reader); Failed(failed)) return failed;
  if (Status failed = OpenOtherPlanes(*reader); Failed(failed)) return failed;
  *stored = {reader->page.bits, reader->page.alpha != 0};
  source->image = reader->image;
  source->read = [reader](std::uint8_t* row) { return ReadRow(*reader, row); };
  return Ok();
}

Status DescribeTiff(std::unique_ptr<InputFile> file, const ReadOptions& options, std::vector<Description>* pages) {
  TiffReader reader;
  std::int64_t count = 0;
  if (Status failed = StartReading(reader, std::move(file), options, &count); Failed(failed)) return failed;
  const std::int64_t last = options.page == 0 ? count : 1;
  for (std::int64_t i = 0; i < last; ++i) {
    Plane& plane = reader.planes[0];
    if (i > 0 && TIFFReadDirectory(plane.tiff.get()) != 1) return Damaged(plane.stream);
    if (Status failed = TakePage(reader); Failed(failed)) return failed;
    pages->push_back({"TIFF", reader.image, {reader.page.bits, reader.page.alpha != 0}});
  }
  return Ok();
}

}  // namespace cvt::imageio

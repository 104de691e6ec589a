// Writes TIFF row by row: pixels, palette, resolution and nothing else, so that equal images make equal files.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "imageio/palette_kind.h"
#include "imageio/samples.h"
#include "imageio/spool.h"
#include "imageio/tiff_file.h"
#include "imageio/tiff_stream.h"

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Image;
using pipeline::Ok;
using pipeline::Status;

namespace {

constexpr std::size_t kStripBytes = 65536;
constexpr std::size_t kColors = 256;

// Above this the classic form, which ends at 4 GiB, may be too small: no compression adds more than half.
constexpr std::uint64_t kMaxClassicBytes = 2800000000;

struct TiffWriter {
  TiffWriter() = default;
  TiffWriter(const TiffWriter&) = delete;
  TiffWriter& operator=(const TiffWriter&) = delete;
  ~TiffWriter() {
    tiff.reset();
    if (spool >= 0) ::close(spool);
  }

  std::unique_ptr<OutputFile> file;
  Compression compression = Compression::Default;
  int spool = -1;  // where the TIFF grows when the output cannot go back
  TiffStream stream;
  TiffHandle tiff;
  Image image;
  std::uint16_t bits = 8;
  std::uint16_t photometric = PHOTOMETRIC_RGB;
  std::uint8_t flip = 0;  // 0xff: bits are stored as their complement
  std::vector<std::uint8_t> row;
};

Status Broken(TiffWriter& writer) {
  writer.file->error = writer.stream.error;
  if (writer.file->error != 0) return WriteFailure(*writer.file);
  return Fail(Code::Output,
              std::string("the TIFF cannot be written: ") + writer.stream.words + " (try another format)");
}

std::uint16_t PhotometricOf(const Image& image, std::int32_t bits) {
  if (pipeline::IsDirect(image.depth)) return PHOTOMETRIC_RGB;
  if (IsRamp(image, bits)) return PHOTOMETRIC_MINISBLACK;
  Image turned = image;
  std::reverse(turned.palette.begin(), turned.palette.end());
  return IsRamp(turned, bits) ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_PALETTE;
}

Status ChooseKind(TiffWriter& writer) {
  const Image& image = writer.image;
  const bool fax = IsBlackAndWhite(image);
  writer.bits =
      static_cast<std::uint16_t>(pipeline::IsDirect(image.depth) ? 8 : pipeline::StoredBits(image.depth));
  writer.photometric = PhotometricOf(image, writer.bits);
  if (writer.compression == Compression::Default) writer.compression = fax ? Compression::G4 : Compression::Lzw;
  if (writer.compression != Compression::G4) return Ok();
  if (!fax) {
    return Fail(Code::Usage,
                "G4 holds black and white in one bit (choose --depth 1 --palette bw, or another --compress)");
  }
  // Fax readers are used to ink being 1, whatever the photometric tag says.
  writer.flip = writer.photometric == PHOTOMETRIC_MINISBLACK ? 0xff : 0;
  writer.photometric = PHOTOMETRIC_MINISWHITE;
  return Ok();
}

std::uint16_t SchemeOf(Compression compression) {
  if (compression == Compression::None) return COMPRESSION_NONE;
  if (compression == Compression::Lzw) return COMPRESSION_LZW;
  return compression == Compression::Deflate ? COMPRESSION_ADOBE_DEFLATE : COMPRESSION_CCITTFAX4;
}

// Differences of neighbours are small in grays and colours; those of indices mean nothing.
bool WantsDifferences(const TiffWriter& writer) {
  const bool packs = writer.compression == Compression::Lzw || writer.compression == Compression::Deflate;
  return packs && writer.bits == 8 && writer.photometric != PHOTOMETRIC_PALETTE;
}

bool SetPalette(TiffWriter& writer) {
  if (writer.photometric != PHOTOMETRIC_PALETTE) return true;
  std::uint16_t red[kColors] = {};
  std::uint16_t green[kColors] = {};
  std::uint16_t blue[kColors] = {};
  constexpr std::uint16_t kStep = 257;  // from one of 256 levels to the next of 65536
  std::size_t i = 0;
  for (const IRGB& color : writer.image.palette) {
    red[i] = static_cast<std::uint16_t>(color.red * kStep);
    green[i] = static_cast<std::uint16_t>(color.green * kStep);
    blue[i++] = static_cast<std::uint16_t>(color.blue * kStep);
  }
  return TIFFSetField(writer.tiff.get(), TIFFTAG_COLORMAP, red, green, blue) == 1;
}

// Whole numbers again for those that went through pixels a metre.
double Snapped(double resolution) {
  constexpr double kNear = 0.01;
  return std::abs(resolution - std::round(resolution)) < kNear ? std::round(resolution) : resolution;
}

bool SetResolution(TiffWriter& writer) {
  const pipeline::Resolution& resolution = writer.image.resolution;
  if (resolution.x <= 0 || resolution.y <= 0) return true;
  TIFF* tiff = writer.tiff.get();
  return TIFFSetField(tiff, TIFFTAG_XRESOLUTION, Snapped(resolution.x)) == 1 &&
         TIFFSetField(tiff, TIFFTAG_YRESOLUTION, Snapped(resolution.y)) == 1 &&
         TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) == 1;
}

bool SetTags(TiffWriter& writer) {
  const Image& image = writer.image;
  const int samples = writer.photometric == PHOTOMETRIC_RGB ? 3 : 1;
  const std::size_t stripRows = std::max(std::size_t{1}, kStripBytes / pipeline::RowBytes(image));
  const std::pair<std::uint32_t, std::uint32_t> tags[] = {
      {TIFFTAG_IMAGEWIDTH, image.width},
      {TIFFTAG_IMAGELENGTH, image.height},
      {TIFFTAG_BITSPERSAMPLE, writer.bits},
      {TIFFTAG_SAMPLESPERPIXEL, samples},
      {TIFFTAG_PHOTOMETRIC, writer.photometric},
      {TIFFTAG_COMPRESSION, SchemeOf(writer.compression)},
      {TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG},
      {TIFFTAG_ROWSPERSTRIP, std::min(stripRows, static_cast<std::size_t>(image.height))}};
  TIFF* tiff = writer.tiff.get();
  for (const auto& [tag, value] : tags) {
    if (TIFFSetField(tiff, tag, value) != 1) return false;
  }
  if (WantsDifferences(writer) && TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) != 1) return false;
  return SetPalette(writer) && SetResolution(writer);
}

Status Begin(TiffWriter& writer, const Image& image) {
  writer.image = image;
  if (Status failed = ChooseKind(writer); pipeline::Failed(failed)) return failed;
  writer.stream.descriptor = writer.file->descriptor;
  if (writer.file->target.empty()) {
    writer.stream.descriptor = writer.spool = CreateSpool();
    if (writer.spool < 0) writer.stream.error = errno;
  }
  writer.row.resize(pipeline::RowBytes(image));
  // Little-endian on every machine.
  const bool huge = writer.row.size() * static_cast<std::uint64_t>(image.height) > kMaxClassicBytes;
  writer.tiff = OpenTiffStream(writer.stream, huge ? "w8l" : "wl", 0);
  return writer.tiff && SetTags(writer) ? Ok() : Broken(writer);
}

// libtiff takes differences in place: it gets a copy.
Status WriteRow(TiffWriter& writer, std::int32_t y, const std::uint8_t* row) {
  const std::uint8_t flip = writer.flip;
  std::transform(row, row + writer.row.size(), writer.row.begin(),
                 [flip](std::uint8_t byte) { return static_cast<std::uint8_t>(byte ^ flip); });
  ClearTail(writer.image.width, pipeline::StoredBits(writer.image.depth), writer.row.data());
  const int written = TIFFWriteScanline(writer.tiff.get(), writer.row.data(), static_cast<std::uint32_t>(y), 0);
  return written == 1 && writer.stream.error == 0 ? Ok() : Broken(writer);
}

Status CopySpool(TiffWriter& writer) {
  std::vector<std::uint8_t> piece(kStripBytes);
  TiffStream& stream = writer.stream;
  stream.position = 0;
  while (stream.position < stream.size) {
    const tmsize_t bytes = ReadStream(stream, piece.data(), static_cast<tmsize_t>(piece.size()));
    if (bytes <= 0) return Broken(writer);
    if (!Write(*writer.file, piece.data(), static_cast<std::size_t>(bytes))) return WriteFailure(*writer.file);
  }
  return Ok();
}

Status End(TiffWriter& writer) {
  const bool written = TIFFWriteDirectory(writer.tiff.get()) == 1;
  writer.tiff.reset();
  if (!written || writer.stream.error != 0) return Broken(writer);
  if (writer.spool >= 0) {
    if (Status failed = CopySpool(writer); pipeline::Failed(failed)) return failed;
  }
  return Commit(*writer.file);
}

}  // namespace

pipeline::RowSink WriteTiff(std::unique_ptr<OutputFile> file, Compression compression) {
  auto writer = std::make_shared<TiffWriter>();
  writer->file = std::move(file);
  writer->compression = compression;
  return {[writer](const Image& image) { return Begin(*writer, image); },
          [writer](std::int32_t y, const std::uint8_t* row) { return WriteRow(*writer, y, row); },
          [writer] { return End(*writer); }};
}

}  // namespace cvt::imageio

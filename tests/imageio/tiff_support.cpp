#include "tiff_support.h"

#include <algorithm>

namespace cvt::imageio::test {

namespace {

constexpr std::uint32_t kTile = 16;

// One row of a strip or tile: `count` samples from `from`, `step` apart.
std::string Row(const TiffParts& parts, const std::uint16_t* from, std::size_t count, std::size_t step) {
  Samples samples;
  for (std::size_t i = 0; i < count; ++i) samples.push_back(from[i * step]);
  return PackedBits(samples, parts.bits) + std::string(parts.bits > 16 ? count * 2 : 0, '\0');
}

void SetTags(TIFF* tiff, const TiffParts& parts) {
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, parts.width);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, parts.height);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, parts.bits);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, parts.samples);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, parts.photometric);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, parts.compression);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, parts.planes ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
  if (!parts.extra.empty()) TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, parts.extra.size(), parts.extra.data());
  if (parts.compression == COMPRESSION_JPEG) TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
  for (const auto& [tag, value] : parts.tags) TIFFSetField(tiff, static_cast<std::uint32_t>(tag), value);
  if (parts.x != 0) TIFFSetField(tiff, TIFFTAG_XRESOLUTION, parts.x);
  if (parts.y != 0) TIFFSetField(tiff, TIFFTAG_YRESOLUTION, parts.y);
  if (parts.stripRows != 0) {
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, parts.stripRows);
  } else {
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, kTile);
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, kTile);
  }
  if (parts.photometric != PHOTOMETRIC_PALETTE || parts.bits > 8) return;
  std::uint16_t red[256], green[256], blue[256];
  for (int i = 0; i < 256; ++i) {
    red[i] = static_cast<std::uint16_t>(7 * i % 256 * parts.colorStep);
    green[i] = static_cast<std::uint16_t>((255 - i) * parts.colorStep);
    blue[i] = static_cast<std::uint16_t>(i * parts.colorStep);
  }
  TIFFSetField(tiff, TIFFTAG_COLORMAP, red, green, blue);
}

void WriteTile(TIFF* tiff, const TiffParts& parts, const std::uint16_t* samples, std::uint32_t left,
               std::uint32_t top, std::uint16_t plane) {
  const auto perPixel = static_cast<std::size_t>(parts.samples);
  std::string tile;
  for (std::uint32_t y = top; y < top + kTile; ++y) {
    Samples row;  // pixels outside of the image repeat its last ones
    for (std::uint32_t x = left; x < left + kTile; ++x) {
      const std::size_t at = std::min(y, parts.height - 1) * parts.width + std::min(x, parts.width - 1);
      const std::uint16_t* pixel = samples + at * perPixel;
      row.insert(row.end(), parts.planes ? pixel + plane : pixel,
                 parts.planes ? pixel + plane + 1 : pixel + perPixel);
    }
    tile += Row(parts, row.data(), row.size(), 1);
  }
  TIFFWriteTile(tiff, tile.data(), left, top, 0, plane);
}

void WritePlane(TIFF* tiff, const TiffParts& parts, const std::uint16_t* samples, std::uint16_t plane) {
  const auto perPixel = static_cast<std::size_t>(parts.samples);
  for (std::uint32_t y = 0; y < parts.height; ++y) {
    const std::uint16_t* from = samples + y * parts.width * perPixel + plane;
    std::string row =
        parts.planes ? Row(parts, from, parts.width, perPixel) : Row(parts, from, parts.width * perPixel, 1);
    if (parts.stripRows != 0) TIFFWriteScanline(tiff, row.data(), y, plane);
    for (std::uint32_t x = 0; parts.stripRows == 0 && y % kTile == 0 && x < parts.width; x += kTile) {
      WriteTile(tiff, parts, samples, x, y, plane);
    }
  }
}

}  // namespace

void WriteTiffFile(const std::string& path, const TiffParts& parts, const Samples& samples) {
  TIFF* tiff = TIFFOpen(path.c_str(), parts.mode);
  const std::uint16_t* from = samples.data();
  for (int page = 0; page < parts.pages; ++page) {
    SetTags(tiff, parts);
    for (int plane = 0; plane < (parts.planes ? parts.samples : 1); ++plane) {
      WritePlane(tiff, parts, from, static_cast<std::uint16_t>(plane));
    }
    TIFFWriteDirectory(tiff);
    from += std::size_t{parts.width} * parts.height * static_cast<std::size_t>(parts.samples);
  }
  TIFFClose(tiff);
}

std::string PackedBits(const Samples& samples, int bits) {
  if (bits >= 16) return {reinterpret_cast<const char*>(samples.data()), samples.size() * 2};
  std::string bytes;
  std::uint32_t held = 1;  // the leading one tells how many bits there are
  for (const std::uint16_t sample : samples) {
    for (int bit = bits - 1; bit >= 0; --bit) {
      held = held << 1 | (sample >> bit & 1U);
      if (held < 256) continue;
      bytes += static_cast<char>(held);
      held = 1;
    }
  }
  while (held != 1 && held < 256) held <<= 1;
  if (held != 1) bytes += static_cast<char>(held);
  return bytes;
}

Samples Scrambled(const TiffParts& parts) {
  Samples samples(std::size_t{parts.width} * parts.height * static_cast<std::size_t>(parts.samples));
  std::uint32_t state = 1;
  for (std::uint16_t& sample : samples) {
    state = state * 1664525 + 1013904223;
    sample = static_cast<std::uint16_t>(state >> 16 & ((1U << parts.bits) - 1));
  }
  return samples;
}

}  // namespace cvt::imageio::test

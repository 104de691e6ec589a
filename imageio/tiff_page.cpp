#include "imageio/tiff_page.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Ok;
using pipeline::Status;

namespace {

bool IsFax(std::uint16_t compression) {
  return compression == COMPRESSION_CCITTRLE || compression == COMPRESSION_CCITTRLEW ||
         compression == COMPRESSION_CCITTFAX3 || compression == COMPRESSION_CCITTFAX4;
}

void TakePhotometric(TIFF* tiff, TiffPage& page) {
  if (TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &page.photometric) == 0) {
    // Left out by programs that hold it for plain.
    page.photometric = IsFax(page.compression) ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
    if (page.samples >= 3) page.photometric = PHOTOMETRIC_RGB;
  }
  page.colors = page.photometric == PHOTOMETRIC_RGB || page.photometric == PHOTOMETRIC_YCBCR ? 3 : 1;
}

void TakeAlpha(TIFF* tiff, TiffPage& page) {
  std::uint16_t count = 0;
  const std::uint16_t* kinds = nullptr;
  if (TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) == 0) return;
  if (page.colors + count > page.samples) return;
  const std::uint16_t* const end = kinds + count;
  const std::uint16_t* const found = std::find_if(
      kinds, end, [](std::uint16_t k) { return k == EXTRASAMPLE_ASSOCALPHA || k == EXTRASAMPLE_UNASSALPHA; });
  if (found == end) return;
  page.alpha = static_cast<std::uint16_t>(page.samples - count + (found - kinds));
  page.multiplied = *found == EXTRASAMPLE_ASSOCALPHA;
}

bool IsReadDepth(const TiffPage& page) {
  if (page.bits == 16) return page.photometric != PHOTOMETRIC_PALETTE && page.photometric != PHOTOMETRIC_YCBCR;
  const bool small = page.bits == 1 || page.bits == 2 || page.bits == 4;
  return page.bits == 8 || (small && page.samples == 1);
}

// What a page holds and rows do not; null where there is no such thing.
const char* StrangeColors(const TiffPage& page) {
  const std::uint16_t kind = page.photometric;
  if (kind == PHOTOMETRIC_SEPARATED) return "CMYK colours";
  if (kind == PHOTOMETRIC_CIELAB || kind == PHOTOMETRIC_ICCLAB || kind == PHOTOMETRIC_ITULAB) return "Lab colours";
  if (kind == PHOTOMETRIC_YCBCR && (page.compression != COMPRESSION_JPEG || page.samples != 3 || page.planes)) {
    return "YCbCr colours other than those of ordinary JPEG";
  }
  if (kind == PHOTOMETRIC_MASK || kind > PHOTOMETRIC_YCBCR) return "something that is no gray, index or RGB";
  if (page.alpha != 0 && (kind == PHOTOMETRIC_PALETTE || kind == PHOTOMETRIC_MINISWHITE)) {
    return "transparency beside indices or inverted grays";
  }
  return nullptr;
}

Status Strange(const std::string& what) {
  return Fail(Code::Input, "the TIFF holds " + what + " (save it as 8-bit gray, indexed or RGB)");
}

bool IsKnown(float resolution) { return std::isfinite(resolution) && resolution > 0; }

}  // namespace

TiffPage TagsOf(TIFF* tiff) {
  TiffPage page;
  std::uint16_t planes = PLANARCONFIG_CONTIG;
  TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &page.width);
  TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &page.height);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &page.bits);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &page.samples);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &page.compression);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &page.sampleFormat);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_ORIENTATION, &page.orientation);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planes);
  page.planes = planes == PLANARCONFIG_SEPARATE && page.samples > 1;
  TakePhotometric(tiff, page);
  TakeAlpha(tiff, page);
  return page;
}

Status CheckKind(const TiffPage& page) {
  if (TIFFIsCODECConfigured(page.compression) == 0 || page.compression == COMPRESSION_OJPEG) {
    return Fail(Code::Input, "the TIFF is compressed in a way that is not read (save it with LZW or Deflate)");
  }
  if (page.orientation != ORIENTATION_TOPLEFT) {
    return Fail(Code::Input, "the TIFF is to be turned or mirrored before it is looked at (save it upright)");
  }
  if (page.sampleFormat != SAMPLEFORMAT_UINT && page.sampleFormat != SAMPLEFORMAT_VOID) {
    return Strange("samples that are no whole numbers from 0 up");
  }
  if (const char* what = StrangeColors(page)) return Strange(what);
  if (page.samples < page.colors) return Strange(std::to_string(page.samples) + " samples a colour");
  if (!IsReadDepth(page)) return Strange("samples of " + std::to_string(page.bits) + " bits");
  return Ok();
}

std::vector<IRGB> PaletteOf(TIFF* tiff, const TiffPage& page) {
  std::vector<IRGB> palette;
  const std::uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
  if (TIFFGetField(tiff, TIFFTAG_COLORMAP, &red, &green, &blue) == 0) return palette;
  const int count = 1 << page.bits;
  // Levels have 16 bits; some programs write 8.
  const auto isSmall = [](std::uint16_t level) { return level < 256; };
  const bool small = std::all_of(red, red + count, isSmall) && std::all_of(green, green + count, isSmall) &&
                     std::all_of(blue, blue + count, isSmall);
  const auto level = [small](std::uint16_t v) { return static_cast<std::uint8_t>(small ? v : v >> 8); };
  for (int i = 0; i < count; ++i) palette.push_back({level(red[i]), level(green[i]), level(blue[i])});
  return palette;
}

pipeline::Resolution ResolutionOf(TIFF* tiff) {
  float x = 0;
  float y = 0;
  std::uint16_t unit = RESUNIT_INCH;
  TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &x);
  TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &y);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
  if (!IsKnown(x) || !IsKnown(y) || unit == RESUNIT_NONE) return {};
  const double inch = unit == RESUNIT_CENTIMETER ? 2.54 : 1;
  return {x * inch, y * inch};
}

}  // namespace cvt::imageio

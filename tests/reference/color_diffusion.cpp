// Twins of error diffusion to a palette and of its short-cut.
#include "tests/reference/band.h"

namespace cvt::test {

namespace {

using Triple = std::int64_t[3];

std::int16_t Word(std::int64_t value) { return static_cast<std::int16_t>(value); }

std::int64_t Quantised(std::int64_t error) { return error > 0 ? error / 4 * 4 : -(-error / 4 * 4); }

// Colour plus what is owed to it, clamped; `row` is the pixel's place in the error row.
WRGB Wanted(const IRGB& color, const Triple& carry, const std::int16_t* row) {
  const std::int64_t channels[3] = {color.red, color.green, color.blue};
  std::int16_t wanted[3];
  for (int c = 0; c < 3; ++c) wanted[c] = Word(RefClampChannel(channels[c] + ((7 * carry[c] + row[c]) >> 4)));
  return {wanted[0], wanted[1], wanted[2]};
}

// Shares of the pixel's error below-left and below; `write` comes before the previous pixel's last share.
template <class Write>
void Spread(const WRGB& wanted, const IRGB& got, Triple& carry, std::int16_t* row, bool first, Write write) {
  const std::int64_t missed[3] = {wanted.red - got.red, wanted.green - got.green, wanted.blue - got.blue};
  for (int c = 0; c < 3; ++c) {
    const std::int64_t e = Quantised(missed[c]);
    if (!first) row[c - 3] = Word(row[c - 3] + 3 * e);
    row[c] = Word(5 * e);
  }
  write();
  for (int c = 0; c < 3; ++c) {
    row[c] = Word(row[c] + carry[c]);
    carry[c] = Quantised(missed[c]);
  }
}

std::uint32_t Little(const std::uint8_t* at, int bytes) {
  std::uint32_t value = 0;
  for (int i = 0; i < bytes; ++i) value |= std::uint32_t{at[i]} << 8 * i;
  return value;
}

IRGB StoredColor(const tagIGFD& source, int pixelBytes, std::uint32_t value) {
  if (pixelBytes == 1) return source.palette[value];
  if (pixelBytes == 4)
    return {static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8),
            static_cast<std::uint8_t>(value)};
  const std::uint32_t width = source.bitsPerPixel / 3u;
  std::uint8_t channels[3];
  for (std::uint32_t c = 0; c < 3; ++c) {
    const std::uint32_t field = value >> c * width & ((1u << width) - 1);
    const std::uint32_t byte = field << (8 - width) & 0xFF;
    channels[c] = static_cast<std::uint8_t>(byte | byte >> width);
  }
  return {channels[2], channels[1], channels[0]};
}

}  // namespace

CvtStatus RefColorDiffusion(Sibling which, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                            tagCRLA* context) {
  if (!which.fromPlanes && !which.toPlanes && RefCanShortCut(**band, *destination, context) != 0)
    return RefShortCut(band, source, destination, context);
  const bool gray = context->grayPalette == 1;
  const RefSource from = RefSourceOf(*source, *context, which.fromPlanes);
  RefJob job = RefPaletteJob(which, PlaneSize::Full, **band, *source, *destination);
  job.convertLine = [&](RefCursor in, RefCursor out, std::uint16_t y) -> CvtStatus {
    RefReadLine(in, context, y);
    Triple carry = {0, 0, 0};
    std::int64_t x = 0;
    if (source->progressProc(source->progressData) != 0) return kCvtStopped;
    for (std::uint32_t r = 0; r < context->runCount; ++r) {
      const IRGB color = from.ColorOf(context, context->values[r]);
      for (std::uint32_t n = 0; n < context->runLengths[r]; ++n, ++x) {
        std::int16_t* row = context->errorRow + 3 * x;
        WRGB wanted = Wanted(color, carry, row);
        const std::uint16_t index =
            gray ? RefSearchGray(context->searchTable, wanted) : CvtSearchRGBCube(context->searchTable, &wanted);
        Spread(wanted, destination->palette[index], carry, row, x == 0,
               [&] { RefWritePixel(out, in.Left() + x, y, index); });
      }
    }
    return kCvtOk;
  };
  return RefRunJob(job, *band, source, destination, context);
}

std::uint16_t RefCanShortCut(const tagRasterPacked& band, const tagIGFD& destination, tagCRLA* context) {
  if ((context->diffusionFlags & 0x8000) != 0) return 1;
  if (band.bitsPerPixel < 5) return 0;
  if (destination.bitsPerPixel > 8 || destination.bitsPerPixel < 5) return 0;
  if (context->gammaActive != 0 || context->grayPalette != 0 || context->invertMono != 0) return 0;
  if (context->halftoneMethod != 2) return 0;
  context->diffusionFlags = static_cast<std::uint16_t>(context->diffusionFlags | 0x8000);
  return 1;
}

CvtStatus RefShortCut(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  const std::uint16_t depth = (*band)->bitsPerPixel;
  if (depth > 16) return RefShortCutStored(4, band, source, destination, context);
  if (depth > 8) return RefShortCutStored(2, band, source, destination, context);
  if (depth > 4) return RefShortCutStored(1, band, source, destination, context);
  return kCvtWrongDepth;
}

CvtStatus RefShortCutStored(int pixelBytes, tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                            tagCRLA* context) {
  tagIGFD* copy = CvtDupIGFD(source);
  if (copy == nullptr) return kCvtNoDescriptor;
  copy->rasterKind = 0;
  const std::uint16_t width = (*band)->width, lines = (*band)->lineCount;
  auto* in = reinterpret_cast<std::uint8_t*>(*band) + 12;
  auto* out = in;
  for (std::uint32_t y = 0; y < lines; ++y) {
    Triple carry = {0, 0, 0};
    for (std::uint32_t x = 0; x < width; ++x) {
      const IRGB color = StoredColor(*source, pixelBytes, Little(in, pixelBytes));
      in += pixelBytes;
      std::int16_t* row = context->errorRow + 3 * x;
      WRGB wanted = Wanted(color, carry, row);
      const std::uint16_t index = CvtSearchRGBCube(context->searchTable, &wanted);
      Spread(wanted, destination->palette[index], carry, row, x == 0,
             [&] { *out = static_cast<std::uint8_t>(index); });
      out += 1;
    }
    if (width % 2 != 0) out += 1;
    if (width % 2 != 0 && pixelBytes == 1) in += 1;
  }
  (*band)->bitsPerPixel = 8;
  const CvtStatus status = context->convertProc(band, copy, destination, context);
  CvtDisposeIGFD(copy);
  return status;
}

}  // namespace cvt::test

// A picture in memory becomes black and white by error diffusion and is shown as text, by a program that is a
// host of its own: services.cpp and lines.cpp provide every operation of cvt/host.h.

#include <cstdio>
#include <cstring>

#include "host.h"

namespace {

constexpr std::uint16_t kWidth = 64, kHeight = 16, kBandLines = 4;

IRGB grays[256];
IRGB blackAndWhite[2] = {{0, 0, 0}, {255, 255, 255}};

// A dark spot that fades to white.
std::uint8_t GrayAt(int x, int y) {
  const int across = x - 32, down = 2 * (y - 8), gray = (across * across + down * down) / 4;
  return static_cast<std::uint8_t>(gray < 255 ? gray : 255);
}

std::int16_t CVT_CALL KeepGoing(std::uint32_t /*progressData*/) { return 0; }

tagIGFD Describe(std::uint8_t bitsPerPixel, IRGB* palette) {
  tagIGFD image{};
  image.progressProc = KeepGoing;
  image.rasterKind = kPackedKind;
  image.imageWidth = kWidth;
  image.imageHeight = kHeight;
  image.bitsPerPixel = bitsPerPixel;
  image.colorFlags = kIndexedColor;
  image.palette = palette;
  return image;
}

std::int16_t ShowBand(const tagRasterPacked* band) {
  const auto* row = reinterpret_cast<const std::uint8_t*>(band) + kBandHeaderBytes;
  for (int y = 0; y < band->lineCount; ++y, row += (band->width + 15) / 16 * 2) {  // rows end with a 16-bit word
    for (int x = 0; x < band->width; ++x) std::putchar((row[x / 8] >> (7 - x % 8) & 1) != 0 ? '.' : '#');
    std::putchar('\n');
  }
  return 0;
}

void SetUpHost(Host* host) {
  for (int i = 0; i < 256; ++i) std::memset(&grays[i], i, sizeof(IRGB));
  *host = {};
  host->source = Describe(8, grays);
  host->destination = Describe(1, blackAndWhite);
  host->takeBand = ShowBand;
  host->next = {&host->stageSlot, &host->bandSlot, host};
  host->stage.bandLimit = 0xFFFF;
  host->stageSlot = &host->stage;
}

// The library makes the line buffer; every other field is the host's to fill. CvtDestroyCRLA releases all.
tagCRLA* OpenContext(Host* host) {
  tagCRLA* context = nullptr;
  const bool made = CvtCreateCRLA(&context, kWidth) == kCvtOk;
  if (context == nullptr) return nullptr;
  tagCRLA fields{};
  if (made) {
    fields.runLengths = context->runLengths;
    fields.values = context->values;
    fields.runCount = kWidth;
    fields.errorRow = static_cast<std::int16_t*>(SioAllocSMem(kWidth * sizeof(std::int16_t)));
  }
  fields.halftoneMethod = kDiffusion;
  fields.next = &host->next;
  fields.convertProc = Cvtr2r;  // each link hands its bands back to the dispatcher, until nothing is left to do
  fields.core = host;
  *context = fields;
  if (fields.errorRow != nullptr) {
    std::memset(fields.errorRow, 0, kWidth * sizeof(std::int16_t));
    return context;
  }
  CvtDestroyCRLA(context);
  return nullptr;
}

CvtStatus ConvertBand(Host* host, tagCRLA* context, std::uint16_t top) {
  auto* band = static_cast<tagRasterPacked*>(SioCreateOp(kPackedBand, kBandHeaderBytes + kWidth * kBandLines));
  if (band == nullptr) return kCvtNoMemory;
  *band = {0, top, kWidth, kBandLines, 8, 0};
  auto* pixels = reinterpret_cast<std::uint8_t*>(band) + kBandHeaderBytes;
  for (int i = 0; i < kWidth * kBandLines; ++i) pixels[i] = GrayAt(i % kWidth, top + i / kWidth);

  const CvtStatus status = Cvtr2r(&band, &host->source, &host->destination, context);
  SioFreeSMem(reinterpret_cast<std::uint8_t*>(band) - kBandPrefixBytes);
  return status;
}

}  // namespace

int main() {
  Host host;
  SetUpHost(&host);
  tagCRLA* context = OpenContext(&host);
  CvtStatus status = context == nullptr ? kCvtNoContext : kCvtOk;
  for (std::uint16_t top = 0; top < kHeight && status == kCvtOk; top += kBandLines)
    status = ConvertBand(&host, context, top);
  if (context != nullptr) CvtDestroyCRLA(context);
  if (status != kCvtOk) std::fprintf(stderr, "own_host: the conversion ended with status %d\n", status);
  return status == kCvtOk ? 0 : 1;
}

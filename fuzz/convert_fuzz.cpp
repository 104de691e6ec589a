// Any image with any settings: converted or refused, and everything given back. The same image in bands of
// one line must come out the same, with one stated exception.

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "host/heap.h"
#include "pipeline/convert.h"

namespace {

using namespace cvt::pipeline;

struct Bytes {
  const std::uint8_t* data;
  std::size_t left;
};

std::uint8_t Take(Bytes* bytes) {
  if (bytes->left == 0) return 0;
  --bytes->left;
  return *bytes->data++;
}

std::vector<IRGB> TakeColors(Bytes* bytes, std::size_t count) {
  std::vector<IRGB> colors;
  while (colors.size() < count) colors.push_back({Take(bytes), Take(bytes), Take(bytes)});
  return colors;
}

Image TakeImage(Bytes* bytes) {
  Image image;
  image.width = Take(bytes) % 80;
  image.height = Take(bytes) % 40;
  image.depth = Take(bytes) % 10;
  if (image.depth == 9) image.depth = kDirectDepth;
  image.layout = static_cast<Layout>(Take(bytes) % 2);
  if (image.depth <= 8) image.palette = TakeColors(bytes, Take(bytes) % 20);
  return image;
}

Settings TakeSettings(Bytes* bytes) {
  constexpr std::int32_t kDepths[] = {1, 2, 3, 4, 5, 8, 9, 15, 24, 32};
  Settings settings;
  settings.depth = kDepths[Take(bytes) % 10];
  settings.palette = TakeColors(bytes, Take(bytes) % 20);
  settings.halftone = static_cast<Halftone>(Take(bytes) % 3);
  settings.threshold = Take(bytes) * 2 - 100;
  settings.invert = Take(bytes) % 2 != 0;
  settings.layout = static_cast<Layout>(Take(bytes) % 2);
  settings.reduce = static_cast<Reduce>(Take(bytes) % 3);
  settings.enlarge = static_cast<Enlarge>(Take(bytes) % 2);
  if (Take(bytes) % 2 != 0) settings.width = Take(bytes);
  if (Take(bytes) % 2 != 0) settings.height = Take(bytes);
  if (Take(bytes) % 4 == 0)
    settings.crop = {Take(bytes) % 40, Take(bytes) % 20, Take(bytes) % 40, Take(bytes) % 20};
  return settings;
}

struct Result {
  Code code;
  Image image;
  std::vector<std::uint8_t> rows;
};

Result Run(const Image& image, const Settings& settings, Bytes pixels) {
  RowSource source{image, [&pixels, bytes = RowBytes(image)](std::uint8_t* row) {
                     for (std::size_t i = 0; i < bytes; ++i) row[i] = Take(&pixels);
                     return Ok();
                   }};
  Result result;
  RowSink sink = WriteMemory(&result.image, &result.rows);
  result.code = Convert(source, settings, sink).code;
  return result;
}

// Smooth scaling to a multiple of the height is the one conversion whose result depends on the bands.
bool MayDifferByBands(const Image& image, const Settings& settings, const Image& output) {
  const std::int32_t height = settings.crop.width > 0 ? settings.crop.height : image.height;
  const bool smooth = settings.reduce == Reduce::Smooth || settings.enlarge == Enlarge::Smooth;
  return smooth && output.height % height == 0;
}

// Bits behind the last pixel of a row are undefined.
void ClearPadding(const Image& output, std::vector<std::uint8_t>* rows) {
  const bool planes = output.layout == Layout::Planes;
  const std::size_t rowBytes = planes ? PlaneRowBytes(output.width) : RowBytes(output);
  const int used = output.width * (planes ? 1 : StoredBits(output.depth)) % 8;
  if (used == 0) return;
  for (std::size_t i = rowBytes - 1; i < rows->size(); i += rowBytes)
    (*rows)[i] &= static_cast<std::uint8_t>(0xFF00 >> used);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes bytes{data, size};
  const Image image = TakeImage(&bytes);
  Settings settings = TakeSettings(&bytes);
  const std::int64_t before = cvt::host::heapUse.liveBlocks;
  Result tall = Run(image, settings, bytes);
  settings.bandLines = 1;
  Result low = Run(image, settings, bytes);
  if (tall.code != low.code || cvt::host::heapUse.liveBlocks != before) std::abort();
  if (tall.code != Code::Ok) return 0;
  if (MayDifferByBands(image, settings, tall.image)) return 0;
  ClearPadding(tall.image, &tall.rows);
  ClearPadding(low.image, &low.rows);
  if (tall.rows != low.rows) std::abort();
  return 0;
}

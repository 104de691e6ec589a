// Any bytes as an image file: read to the end or refused, never more than it says.

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "imageio/image_file.h"

using namespace cvt::pipeline;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const int file = memfd_create("image", 0);
  if (file < 0 || write(file, data, size) != static_cast<ssize_t>(size)) std::abort();
  cvt::imageio::ReadOptions options;
  options.maxPixels = 1 << 20;
  options.maxBufferBytes = 1 << 22;
  RowSource source;
  if (!Failed(cvt::imageio::OpenImage("/proc/self/fd/" + std::to_string(file), options, &source))) {
    const Image& image = source.image;
    const bool indexed = image.depth <= 8;
    if (image.width < 1 || image.height < 1 || (indexed && image.palette.empty())) std::abort();
    std::vector<std::uint8_t> row(RowBytes(image));
    for (std::int32_t y = 0; y < image.height; ++y)
      if (Failed(source.read(row.data()))) break;
  }
  close(file);
  return 0;
}

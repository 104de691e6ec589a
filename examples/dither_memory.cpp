// An image in memory becomes black and white by error diffusion, and is shown as text.

#include <cstdint>
#include <cstdio>
#include <vector>

#include "pipeline/convert.h"

using namespace cvt::pipeline;

// A dark spot that fades to white.
static std::uint8_t GrayAt(int x, int y) {
  const int across = x - 32, down = 2 * (y - 8), gray = (across * across + down * down) / 4;
  return static_cast<std::uint8_t>(gray < 255 ? gray : 255);
}

int main() {
  std::vector<std::uint8_t> grays(64 * 16);
  for (int i = 0; i < 64 * 16; ++i) grays[static_cast<std::size_t>(i)] = GrayAt(i % 64, i / 64);

  Image written;
  std::vector<std::uint8_t> bits;
  RowSource source = ReadMemory({64, 16, 8, GrayRamp(8)}, grays.data(), 64);
  RowSink sink = WriteMemory(&written, &bits);
  Settings settings{.depth = 1, .palette = GrayRamp(1), .halftone = Halftone::Diffusion};
  if (const Status status = Convert(source, settings, sink); Failed(status)) {
    std::fprintf(stderr, "%s\n", status.message.c_str());
    return 1;
  }

  for (std::size_t i = 0; i < bits.size() * 8; ++i) {
    std::putchar((bits[i / 8] >> (7 - i % 8) & 1) != 0 ? '.' : '#');
    if (i % 64 == 63) std::putchar('\n');
  }
}

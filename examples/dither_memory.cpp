// An image in memory becomes black and white by error diffusion, and is shown as text.

#include <cstdint>
#include <cstdio>
#include <vector>

#include "pipeline/convert.h"

using namespace cvt::pipeline;

int main() {
  std::vector<std::uint8_t> grays(64 * 16);
  for (std::size_t i = 0; i < grays.size(); ++i) grays[i] = static_cast<std::uint8_t>(i % 64 * 4);

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
    std::putchar((bits[i / 8] >> (7 - i % 8) & 1) != 0 ? '#' : '.');
    if (i % 64 == 63) std::putchar('\n');
  }
}

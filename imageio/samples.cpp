#include "imageio/samples.h"

#include <cstring>

namespace cvt::imageio {

namespace {

constexpr std::uint8_t Low8(std::uint32_t value) { return static_cast<std::uint8_t>(value); }

template <std::uint32_t kBits>
void Unpack(const std::uint8_t* row, std::uint32_t width, const std::uint8_t* table, std::uint8_t* pixels) {
  constexpr std::uint32_t kPerByte = 8 / kBits;
  constexpr std::uint32_t kMask = (1U << kBits) - 1;
  const std::uint32_t whole = width / kPerByte;
  for (std::uint32_t i = 0; i < whole; ++i) {
    for (std::uint32_t k = 0; k < kPerByte; ++k) *pixels++ = table[row[i] >> (8 - kBits * (k + 1)) & kMask];
  }
  for (std::uint32_t k = 0; k < width % kPerByte; ++k) {
    *pixels++ = table[row[whole] >> (8 - kBits * (k + 1)) & kMask];
  }
}

template <std::uint32_t kBits>
void Pack(const std::uint8_t* pixels, std::uint32_t width, std::uint8_t* row) {
  constexpr std::uint32_t kPerByte = 8 / kBits;
  for (std::uint32_t whole = width / kPerByte; whole > 0; --whole) {
    std::uint32_t byte = 0;
    for (std::uint32_t k = 0; k < kPerByte; ++k) byte = byte << kBits | *pixels++;
    *row++ = Low8(byte);
  }
  const std::uint32_t rest = width % kPerByte;
  if (rest == 0) return;
  std::uint32_t byte = 0;
  for (std::uint32_t k = 0; k < rest; ++k) byte = byte << kBits | *pixels++;
  *row = Low8(byte << kBits * (kPerByte - rest));
}

}  // namespace

void UnpackRow(const std::uint8_t* row, std::int32_t width, std::int32_t bits,
               const std::array<std::uint8_t, 256>& table, std::uint8_t* pixels) {
  const auto count = static_cast<std::uint32_t>(width);
  if (bits == 1) Unpack<1>(row, count, table.data(), pixels);
  if (bits == 2) Unpack<2>(row, count, table.data(), pixels);
  if (bits == 4) Unpack<4>(row, count, table.data(), pixels);
  if (bits == 8) Unpack<8>(row, count, table.data(), pixels);
}

void PackRow(const std::uint8_t* pixels, std::int32_t width, std::int32_t bits, std::uint8_t* row) {
  const auto count = static_cast<std::uint32_t>(width);
  if (bits == 1) Pack<1>(pixels, count, row);
  if (bits == 2) Pack<2>(pixels, count, row);
  if (bits == 4) Pack<4>(pixels, count, row);
  if (bits == 8) std::memcpy(row, pixels, count);
}

void ClearTail(std::int32_t width, std::int32_t bits, std::uint8_t* row) {
  const std::int64_t used = static_cast<std::int64_t>(width) * bits;
  const auto tail = static_cast<std::uint32_t>(used % 8);
  if (tail != 0) row[used / 8] = Low8(row[used / 8] & 0xff00U >> tail);
}

void ClearTails(const pipeline::Image& image, std::uint8_t* row) {
  if (image.layout == pipeline::Layout::Packed) {
    return ClearTail(image.width, pipeline::StoredBits(image.depth), row);
  }
  for (std::int32_t plane = 0; plane < image.depth; ++plane) {
    ClearTail(image.width, 1, row);
    row += pipeline::PlaneRowBytes(image.width);
  }
}

std::array<std::uint8_t, 256> SameValues() {
  std::array<std::uint8_t, 256> table{};
  for (std::uint32_t i = 0; i < 256; ++i) table[i] = Low8(i);
  return table;
}

}  // namespace cvt::imageio

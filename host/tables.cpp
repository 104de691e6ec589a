// Search cube, gray table and snap map.

#include "host/tables.h"

#include <algorithm>
#include <limits>

#include "host/bits.h"

namespace cvt::host {
namespace {

bool IsMono(Palette palette) { return palette.count == 2; }

std::uint8_t MonoEntry(Palette mono, MonoRule rule, std::int32_t gray) {
  const bool white = (gray >= rule.threshold) != rule.invert;
  return Low8(white ? WhiteOf(mono) : 1U - WhiteOf(mono));
}

constexpr std::int32_t Square(std::int32_t v) { return v * v; }

std::int32_t Distance(IRGB a, IRGB b) {
  return Square(a.red - b.red) + Square(a.green - b.green) + Square(a.blue - b.blue);
}

std::size_t NearestGray(Palette palette, std::int32_t gray) {
  std::size_t nearest = 0;
  std::int32_t best = std::numeric_limits<std::int32_t>::max();
  for (std::size_t i = 0; i < palette.count; ++i) {
    const std::int32_t away = Square(GrayLevel(palette.colors[i]) - gray);
    if (away >= best) continue;
    best = away;
    nearest = i;
  }
  return nearest;
}

// ---- Cube ----

constexpr std::uint8_t Widened(std::size_t fiveBits) { return Low8(fiveBits << 3 | fiveBits >> 2); }
static_assert(Widened(0) == 0 && Widened(31) == 255 && Widened(16) == 132);

IRGB ColorOfCell(std::size_t cell) {
  return {Widened(cell >> 10 & 31), Widened(cell >> 5 & 31), Widened(cell & 31)};
}

// The distances of all entries to the cells of one row, 32 cells that differ in blue only. An entry's index
// rides in the low 8 bits of its distance: the least number is the nearest entry, the lowest of equals, and
// finding it takes no decision, so that the compiler does several cells at a time.
constexpr std::size_t kRowCells = 32;
struct BlueKeys {
  std::int32_t key[kMostEntries][kRowCells];
};

void FillBlueKeys(Palette palette, BlueKeys* keys) {
  for (std::size_t i = 0; i < palette.count; ++i)
    for (std::size_t b = 0; b < kRowCells; ++b)
      keys->key[i][b] = Square(Widened(b) - palette.colors[i].blue) * 256 + static_cast<std::int32_t>(i);
}

void SearchRow(Palette palette, const BlueKeys& keys, std::uint8_t* row, IRGB color) {
  std::int32_t best[kRowCells];
  std::fill_n(best, kRowCells, std::numeric_limits<std::int32_t>::max());
  for (std::size_t i = 0; i < palette.count; ++i) {
    const IRGB entry = palette.colors[i];
    const std::int32_t others = (Square(entry.red - color.red) + Square(entry.green - color.green)) * 256;
    for (std::size_t b = 0; b < kRowCells; ++b) best[b] = std::min(best[b], others + keys.key[i][b]);
  }
  for (std::size_t b = 0; b < kRowCells; ++b) row[b] = Low8(static_cast<std::uint32_t>(best[b]));
}

// Gives every cell that palette colours lie in to one of them.
void SettleOwners(Palette palette, std::uint8_t* table) {
  for (std::size_t i = 0; i < palette.count; ++i) {
    const IRGB color = palette.colors[i];
    const std::size_t cell = CubeCell(color.red, color.green, color.blue);
    const IRGB holder = palette.colors[table[cell]];
    const bool holderLivesHere = CubeCell(holder.red, holder.green, holder.blue) == cell;
    const IRGB center = ColorOfCell(cell);
    if (!holderLivesHere || Distance(color, center) < Distance(holder, center)) table[cell] = Low8(i);
  }
}

}  // namespace

Palette PaletteOf(const tagIGFD* descriptor) {
  // A band has no indices of more than 16 bits.
  const unsigned bits = std::min(unsigned{descriptor->bitsPerPixel}, 16U);
  return {descriptor->palette, std::size_t{1} << bits};
}

std::int32_t GrayLevel(IRGB color) { return (30 * color.red + 59 * color.green + 11 * color.blue) / 100; }

bool AllGray(Palette palette) {
  return std::all_of(palette.colors, palette.colors + palette.count,
                     [](IRGB c) { return c.red == c.green && c.green == c.blue; });
}

std::uint8_t WhiteOf(Palette mono) { return GrayLevel(mono.colors[0]) > GrayLevel(mono.colors[1]) ? 0 : 1; }

std::size_t NearestEntry(Palette palette, IRGB color) {
  std::size_t nearest = 0;
  std::int32_t best = std::numeric_limits<std::int32_t>::max();
  for (std::size_t i = 0; i < palette.count; ++i) {
    const std::int32_t away = Distance(palette.colors[i], color);
    if (away >= best) continue;
    best = away;
    nearest = i;
  }
  return nearest;
}

std::size_t CubeCell(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
  return std::size_t{red} >> 3 << 10 | std::size_t{green} >> 3 << 5 | std::size_t{blue} >> 3;
}

void BuildGrayTable(Palette destination, MonoRule rule, std::uint8_t* table) {
  for (std::size_t v = 0; v < kGrayLevels; ++v) {
    const auto gray = static_cast<std::int32_t>(v);
    table[v] = IsMono(destination) ? MonoEntry(destination, rule, gray) : Low8(NearestGray(destination, gray));
  }
}

void BuildCube(Palette destination, MonoRule rule, std::uint8_t* table) {
  if (IsMono(destination)) {
    for (std::size_t cell = 0; cell < kCubeCells; ++cell)
      table[cell] = MonoEntry(destination, rule, GrayLevel(ColorOfCell(cell)));
    return;
  }
  BlueKeys keys;
  FillBlueKeys(destination, &keys);
  for (std::size_t cell = 0; cell < kCubeCells; cell += kRowCells)
    SearchRow(destination, keys, table + cell, ColorOfCell(cell));
  SettleOwners(destination, table);
}

void BuildSnapMap(Palette source, Palette destination, MonoRule rule, std::uint8_t* map) {
  const bool byGray = AllGray(destination);
  for (std::size_t i = 0; i < source.count; ++i) {
    const IRGB color = source.colors[i];
    if (IsMono(destination))
      map[i] = MonoEntry(destination, rule, GrayLevel(color));
    else
      map[i] = Low8(byGray ? NearestGray(destination, GrayLevel(color)) : NearestEntry(destination, color));
  }
}

}  // namespace cvt::host

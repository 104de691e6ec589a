// Threshold matrices.

#include "host/matrices.h"

#include <algorithm>
#include <numeric>

#include "host/bits.h"

namespace cvt::host {
namespace {

// The threshold of the place that is the rank-th to turn white, the first being 0: one below the first gray
// level at which `places` * level / 255, rounded, exceeds the rank.
constexpr std::uint8_t ThresholdOf(std::uint32_t rank, std::uint32_t places) {
  return Low8((255 * (2 * rank + 1) + 2 * places - 1) / (2 * places) - 1);
}
static_assert(ThresholdOf(0, 4) == 31 && ThresholdOf(3, 4) == 223 && ThresholdOf(255, 256) == 254);

// A matrix of twice the size repeats the smaller one four times; within each place of the smaller one, the
// four come in the order top left, bottom right, top right, bottom left. So the lowest bits of the place decide
// the highest of the rank.
constexpr std::uint32_t BayerRank(std::uint32_t x, std::uint32_t y, std::uint32_t size) {
  std::uint32_t rank = 0;
  for (std::uint32_t half = 1; half < size; half *= 2, x /= 2, y /= 2)
    rank = rank * 4 + ((x ^ y) & 1) * 2 + (y & 1);
  return rank;
}
static_assert(BayerRank(0, 0, 2) == 0 && BayerRank(1, 1, 2) == 1 && BayerRank(1, 0, 2) == 2);

// ---- Clustered dots ----

// Places are counted in eighths, so that a dot's middle can lie a little beside the middle of its square: then
// no two places of a dot are equally far, and it grows in one piece.
constexpr std::int32_t kUnit = 8;
constexpr std::int32_t kMiddle = kUnit * 3 / 2 - 1, kMiddleRow = kUnit * 3 / 2 - 2;  // of the square 0 to 3

struct Screen {
  std::int32_t size;          // of the tile
  std::int32_t across;        // from a dot to the next one in the tile, along both axes
  std::int32_t toHole;        // from a dot to a hole, along x
  std::int32_t toHoleInRows;  // and along y
};

// Squared distance of a place from the nearest dot's middle, or from a middle moved by `x` and `y`.
std::int32_t AwayFromDots(const Screen& screen, std::int32_t x, std::int32_t y) {
  const std::int32_t tile = screen.size * kUnit;
  const auto around = [tile](std::int32_t v) {
    const std::int32_t forward = (v % tile + tile) % tile;
    return std::min(forward, tile - forward);
  };
  std::int32_t nearest = 2 * tile * tile;
  for (std::int32_t dot = 0; dot < screen.size; dot += screen.across) {
    const std::int32_t dx = around(x - kMiddle - dot * kUnit), dy = around(y - kMiddleRow - dot * kUnit);
    nearest = std::min(nearest, dx * dx + dy * dy);
  }
  return nearest;
}

// Places turn white in the order of this number: holes first, the middles of the black dots last.
std::int32_t ClusterOrder(const Screen& screen, std::size_t place) {
  const std::int32_t at = static_cast<std::int32_t>(place);
  const std::int32_t x = at % screen.size * kUnit, y = at / screen.size * kUnit;
  return AwayFromDots(screen, x - screen.toHole * kUnit, y - screen.toHoleInRows * kUnit) -
         AwayFromDots(screen, x, y);
}

Matrix MakeCluster(const Screen& screen) {
  const std::size_t side = static_cast<std::uint32_t>(screen.size), places = side * side;
  std::vector<std::size_t> ranked(places);
  std::iota(ranked.begin(), ranked.end(), std::size_t{0});
  std::stable_sort(ranked.begin(), ranked.end(), [&screen](std::size_t a, std::size_t b) {
    return ClusterOrder(screen, a) < ClusterOrder(screen, b);
  });
  Matrix matrix{Low8(side), Low8(side), std::vector<std::uint8_t>(places)};
  for (std::uint32_t rank = 0; rank < places; ++rank)
    matrix.values[ranked[rank]] = ThresholdOf(rank, static_cast<std::uint32_t>(places));
  return matrix;
}

Matrix MakeBayer(std::uint32_t size) {
  Matrix matrix{Low8(size), Low8(size), std::vector<std::uint8_t>(std::size_t{size} * size)};
  FillBayer(size, matrix.values.data());
  return matrix;
}

}  // namespace

void FillBayer(std::uint32_t size, std::uint8_t* values) {
  for (std::uint32_t y = 0; y < size; ++y)
    for (std::uint32_t x = 0; x < size; ++x) *values++ = ThresholdOf(BayerRank(x, y, size), size * size);
}

std::optional<Matrix> MatrixNamed(std::string_view name) {
  if (name == "bayer2") return MakeBayer(2);
  if (name == "bayer4") return MakeBayer(4);
  if (name == "bayer8") return MakeBayer(8);
  if (name == "bayer16") return MakeBayer(16);
  if (name == "cluster4") return MakeCluster({4, 4, 2, 2});
  if (name == "cluster8") return MakeCluster({8, 4, 4, 0});
  return std::nullopt;
}

}  // namespace cvt::host

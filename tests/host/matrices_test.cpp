// Threshold matrices and uniform cubes, against figures worked by hand and what makes them good.

#include "host/matrices.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "host/uniform_cube.h"
#include "setups.h"

namespace cvt::host {
namespace {

std::size_t WhiteAt(const Matrix& matrix, int gray) {
  return static_cast<std::size_t>(std::count_if(matrix.values.begin(), matrix.values.end(),
                                                [gray](std::uint8_t threshold) { return threshold < gray; }));
}

TEST(Matrices, TurnAsManyPlacesWhiteAsTheGrayLevelSays) {
  for (const std::string_view name : kMatrixNames) {
    const Matrix matrix = MatrixNamed(name).value();
    const auto places = static_cast<int>(matrix.values.size());
    ASSERT_EQ(places, matrix.width * matrix.height) << name;
    EXPECT_EQ(name.substr(name.find_first_of("0123456789")), std::to_string(matrix.width)) << name;
    for (int gray = 0; gray <= 255; ++gray) {
      const int excess = static_cast<int>(WhiteAt(matrix, gray)) * 255 - gray * places;
      EXPECT_LE(2 * std::abs(excess), 255) << name << " at " << gray;
    }
    EXPECT_EQ(WhiteAt(matrix, 0), 0U) << name;
    EXPECT_EQ(WhiteAt(matrix, 255), matrix.values.size()) << name;
  }
  EXPECT_FALSE(MatrixNamed("bayer3").has_value());
}

// A matrix of twice the size is four copies of the smaller one, which the smallest one tells apart.
TEST(Matrices, FollowBayersOrder) {
  EXPECT_EQ(MatrixNamed("bayer2")->values, (std::vector<std::uint8_t>{31, 159, 223, 95}));
  const auto rank = [](const Matrix& matrix, std::size_t x, std::size_t y) {
    return static_cast<int>(matrix.values[y * matrix.width + x] * matrix.values.size() / 256);
  };
  const Matrix two = MatrixNamed("bayer2").value();
  for (const auto& [half, name] : {std::pair{"bayer2", "bayer4"}, {"bayer4", "bayer8"}, {"bayer8", "bayer16"}}) {
    const Matrix small = MatrixNamed(half).value(), large = MatrixNamed(name).value();
    const std::size_t side = small.width;
    for (std::size_t y = 0; y < 2 * side; ++y)
      for (std::size_t x = 0; x < 2 * side; ++x)
        EXPECT_NEAR(rank(large, x, y), 4 * rank(small, x % side, y % side) + rank(two, x / side, y / side),
                    side == 8 ? 1 : 0)  // 256 places share 255 thresholds
            << name;
  }
}

// Pieces that the places on one side of a level form in the repeated tile, neighbours by edge.
int PiecesOf(const Matrix& matrix, int gray, bool white) {
  const std::size_t side = matrix.width;
  std::vector<bool> left;
  for (std::uint8_t threshold : matrix.values) left.push_back((threshold < gray) == white);
  int pieces = 0;
  for (std::size_t start = 0; start < left.size(); ++start) {
    std::vector<std::size_t> open{start};
    pieces += left[start] ? 1 : 0;
    while (!open.empty()) {
      const std::size_t at = open.back(), x = at % side, y = at / side;
      open.pop_back();
      if (!left[at]) continue;
      left[at] = false;
      for (std::size_t step : {std::size_t{1}, side - 1}) {
        open.push_back(y * side + (x + step) % side);
        open.push_back((y + step) % side * side + x);
      }
    }
  }
  return pieces;
}

TEST(Matrices, GrowClustersInOnePieceEach) {
  constexpr int kOrder[16] = {3, 10, 8, 2, 11, 15, 14, 9, 6, 13, 12, 4, 1, 7, 5, 0};
  for (std::size_t i = 0; i < 16; ++i) EXPECT_EQ(MatrixNamed("cluster4")->values[i] / 16, kOrder[i]) << i;
  for (const auto& [name, dots] : {std::pair{"cluster4", 1}, {"cluster8", 2}}) {
    const Matrix matrix = MatrixNamed(name).value();
    for (int gray = 1; gray < 255; ++gray)  // of the color that is fewer
      EXPECT_LE(PiecesOf(matrix, gray, gray < 128), dots) << name << " at " << gray;
  }
}

TEST(UniformCube, HasRedFirstAndWhiteAtTheFront) {
  const Colors web = UniformCube(6);
  ASSERT_EQ(web.size(), 216U);
  EXPECT_EQ(web.front(), (IRGB{255, 255, 255}));
  EXPECT_EQ(web[1 + 6 * 2 + 36 * 5], (IRGB{204, 153, 0}));
  const std::uint8_t fifths[] = {255, 191, 128, 64, 0};
  for (std::uint32_t level = 0; level < 5; ++level) EXPECT_EQ(CubeChannel(level, 5), fifths[level]);
}

TEST(UniformCube, IsRecognisedByItsColorsInOrder) {
  const std::uint32_t levels[] = {0, 0, 0, 2, 2, 3, 4, 5, 6, 0, 0};
  for (std::uint32_t bits = 0; bits <= 10; ++bits) EXPECT_EQ(CubeLevels(bits), levels[bits]) << bits;
  Colors colors = UniformCube(3);
  EXPECT_TRUE(StartsWithCube({colors.data(), 27}, 3));
  EXPECT_FALSE(StartsWithCube({colors.data(), 26}, 3));
  EXPECT_FALSE(StartsWithCube({colors.data(), 27}, 2));
  EXPECT_FALSE(StartsWithCube({colors.data(), 27}, 0));
  colors.push_back({1, 2, 3});
  EXPECT_TRUE(StartsWithCube({colors.data(), 28}, 3));
  colors[26].blue = 1;
  EXPECT_FALSE(StartsWithCube({colors.data(), 28}, 3));
}

}  // namespace
}  // namespace cvt::host

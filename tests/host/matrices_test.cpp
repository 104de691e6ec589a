// Threshold matrices and uniform cubes, against figures worked by hand and what makes them good.

#include "host/matrices.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/uniform_cube.h"

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
  EXPECT_FALSE(MatrixNamed("").has_value());
}

TEST(Matrices, FollowBayersOrder) {
  EXPECT_EQ(MatrixNamed("bayer2")->values, (std::vector<std::uint8_t>{31, 159, 223, 95}));
  constexpr int kOrder[16] = {0, 8, 2, 10, 12, 4, 14, 6, 3, 11, 1, 9, 15, 7, 13, 5};
  const Matrix matrix = MatrixNamed("bayer4").value();
  for (std::size_t i = 0; i < 16; ++i) EXPECT_EQ(matrix.values[i] / 16, kOrder[i]) << i;
}

// At every level each quarter of the tile has its share of the white places, and each quarter of that too.
TEST(Matrices, SpreadBayersPlacesEvenly) {
  for (const std::string_view name : {"bayer8", "bayer16"}) {
    const Matrix matrix = MatrixNamed(name).value();
    const std::size_t side = matrix.width, blocks = side / 2;  // blocks of 2 x 2 in both directions
    for (int gray = 0; gray <= 255; ++gray) {
      std::vector<int> white(blocks * blocks);
      for (std::size_t i = 0; i < matrix.values.size(); ++i)
        white[i / side / 2 * blocks + i % side / 2] += matrix.values[i] < gray ? 1 : 0;
      const auto [least, most] = std::minmax_element(white.begin(), white.end());
      EXPECT_LE(*most - *least, 1) << name << " at " << gray;
    }
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
  const struct {
    const char* name;
    int dots;
  } cases[] = {{"cluster4", 1}, {"cluster8", 2}};
  for (const auto& c : cases) {
    const Matrix matrix = MatrixNamed(c.name).value();
    for (int gray = 1; gray < 255; ++gray) {
      const bool whiteIsFewer = gray < 128;
      EXPECT_LE(PiecesOf(matrix, gray, whiteIsFewer), c.dots) << c.name << " at " << gray;
    }
  }
}

TEST(UniformCube, HasRedFirstAndWhiteAtTheFront) {
  const std::vector<IRGB> eight = UniformCube(2), web = UniformCube(6);
  const int expected[8][3] = {{255, 255, 255}, {0, 255, 255}, {255, 0, 255}, {0, 0, 255},
                              {255, 255, 0},   {0, 255, 0},   {255, 0, 0},   {0, 0, 0}};
  ASSERT_EQ(eight.size(), 8U);
  for (std::size_t i = 0; i < 8; ++i)
    EXPECT_TRUE(eight[i].red == expected[i][0] && eight[i].green == expected[i][1] &&
                eight[i].blue == expected[i][2])
        << i;
  ASSERT_EQ(web.size(), 216U);
  EXPECT_TRUE(web[1 + 6 * 2 + 36 * 5].red == 204 && web[1 + 6 * 2 + 36 * 5].green == 153 &&
              web[1 + 6 * 2 + 36 * 5].blue == 0);
  const std::uint8_t fifths[] = {255, 191, 128, 64, 0};
  for (std::uint32_t level = 0; level < 5; ++level) EXPECT_EQ(CubeChannel(level, 5), fifths[level]);
}

TEST(UniformCube, IsRecognisedByItsColorsInOrder) {
  const std::uint32_t levels[] = {0, 0, 0, 2, 2, 3, 4, 5, 6, 0, 0};
  for (std::uint32_t bits = 0; bits <= 10; ++bits) EXPECT_EQ(CubeLevels(bits), levels[bits]) << bits;
  std::vector<IRGB> colors = UniformCube(3);
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

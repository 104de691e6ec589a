// The chart must stay what it is: results on it are compared across machines.

#include "pipeline/chart.h"

#include <gtest/gtest.h>

namespace cvt::test {
namespace {

using namespace cvt::pipeline;

TEST(Chart, ShowsItsFieldsWhereTheyBelong) {
  const struct {
    const char* what;
    std::int32_t x, y;
    int red, green, blue;
  } pixels[] = {{"margin", 5, 5, 255, 255, 255},
                {"gradient starts black", 16, 20, 0, 0, 0},
                {"gradient ends white", 943, 20, 255, 255, 255},
                {"middle of the gradient", 480, 20, 128, 128, 128},
                {"eighth gray step", 450, 100, 119, 119, 119},
                {"red patch", 20, 320, 255, 0, 0},
                {"blue patch", 300, 320, 0, 0, 255},
                {"top of the hues is white", 400, 128, 255, 255, 255},
                {"green in the middle of the hues", 326, 207, 2, 255, 3},
                {"bar of the T of the second line", 24, 384, 0, 0, 0},
                {"hairline corner", 16, 488, 0, 0, 0},
                {"one-pixel check", 661, 489, 0, 0, 0},
                {"centre of the zone plate", 836, 596, 128, 128, 128}};
  for (const auto& p : pixels) {
    const IRGB color = ChartPixel(p.x, p.y);
    EXPECT_TRUE(color.red == p.red && color.green == p.green && color.blue == p.blue) << p.what;
  }
}

TEST(Chart, ReadsRowByRow) {
  RowSource chart = ReadChart();
  std::vector<std::uint8_t> row(RowBytes(chart.image));
  for (std::int32_t y = 0; y <= 320; ++y) ASSERT_FALSE(Failed(chart.read(row.data())));
  EXPECT_EQ(std::vector<std::uint8_t>(row.begin() + 60, row.begin() + 63), (std::vector<std::uint8_t>{255, 0, 0}));
}

}  // namespace
}  // namespace cvt::test

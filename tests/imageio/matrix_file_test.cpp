#include "imageio/matrix_file.h"

#include <gtest/gtest.h>

#include "support.h"

namespace cvt::imageio::test {
namespace {

struct Case {
  const char* what;
  std::string file;
  std::int32_t width, height;  // 0: refused
  std::string expected;        // hex, or what the message says
};

const Case kCases[] = {
    {"plain", "P2 3 2 255  1 2 3  40 50 255", 3, 2, "0102032832ff"},
    {"binary", "P5\n2 1\n255\nAB", 2, 1, "4142"},
    {"fewer grays are scaled", "P2 4 1 3  0 1 2 3", 4, 1, "0055aaff"},
    {"grays of no whole bits as well", "P2 2 1 100  50 100", 2, 1, "80ff"},
    {"255 wide", "P5\n255 1\n255\n" + std::string(255, 'A'), 255, 1, Hex(std::string(255, 'A'))},
    {"256 wide", "P5\n256 1\n255\n" + std::string(256, 'A'), 0, 0, "256 x 1 thresholds"},
    {"256 high", "P5\n1 256\n255\n" + std::string(256, 'A'), 0, 0, "1 x 256 thresholds"},
    {"colours", "P3 1 1 255  1 2 3", 0, 0, "colours"},
    {"ends early", "P2 2 1 255  1", 0, 0, "row 0 of 1"},
    {"no picture", "1 2 3", 0, 0, "known format"}};

TEST(MatrixFile, GivesItsThresholds) {
  const Folder folder;
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    pipeline::Thresholds matrix;
    const pipeline::Status status = ReadMatrix(folder.Write("m.pgm", c.file), &matrix);
    if (c.width == 0) {
      ExpectRefusal(status, pipeline::Code::Input, c.expected);
      continue;
    }
    EXPECT_EQ(status.message, "");
    EXPECT_EQ(matrix.width, c.width);
    EXPECT_EQ(matrix.height, c.height);
    EXPECT_EQ(Hex(std::string(matrix.values.begin(), matrix.values.end())), c.expected);
  }
}

}  // namespace
}  // namespace cvt::imageio::test

#include "imageio/matrix_file.h"

#include <gtest/gtest.h>

#include "support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::Code;

struct Case {
  const char* what;
  std::string file;
  Code code;
  std::int32_t width, height;
  std::string values;  // hex
};

const Case kCases[] = {{"plain", "P2 3 2 255  1 2 3  40 50 255", Code::Ok, 3, 2, "0102032832ff"},
                       {"binary", "P5\n2 1\n255\nAB", Code::Ok, 2, 1, "4142"},
                       {"fewer grays are scaled", "P2 4 1 3  0 1 2 3", Code::Ok, 4, 1, "0055aaff"},
                       {"grays of no whole bits as well", "P2 2 1 100  50 100", Code::Ok, 2, 1, "80ff"},
                       {"255 thresholds wide", "P5\n255 1\n255\n" + std::string(255, 'A'), Code::Ok, 255, 1,
                        Hex(std::string(255, 'A'))},
                       {"256 wide", "P5\n256 1\n255\n" + std::string(256, 'A'), Code::Input, 0, 0, ""},
                       {"256 high", "P5\n1 256\n255\n" + std::string(256, 'A'), Code::Input, 0, 0, ""},
                       {"colours", "P3 1 1 255  1 2 3", Code::Input, 0, 0, ""},
                       {"ends early", "P2 2 1 255  1", Code::Input, 0, 0, ""},
                       {"no picture", "1 2 3", Code::Input, 0, 0, ""}};

TEST(MatrixFile, GivesItsThresholds) {
  const Folder folder;
  for (const Case& c : kCases) {
    pipeline::Thresholds matrix;
    const pipeline::Status status = ReadMatrix(folder.Write("m.pgm", c.file), &matrix);
    ASSERT_EQ(status.code, c.code) << c.what << ": " << status.message;
    if (c.code != Code::Ok) continue;
    EXPECT_EQ(matrix.width, c.width) << c.what;
    EXPECT_EQ(matrix.height, c.height) << c.what;
    ASSERT_EQ(matrix.values.size(), static_cast<std::size_t>(c.width * c.height)) << c.what;
    const std::string values(matrix.values.begin(), matrix.values.end());
    EXPECT_EQ(Hex(values), c.values) << c.what;
  }
}

TEST(MatrixFile, IsMissing) {
  pipeline::Thresholds matrix;
  EXPECT_EQ(ReadMatrix(Folder().Path("none.pgm"), &matrix).code, Code::Input);
}

}  // namespace
}  // namespace cvt::imageio::test

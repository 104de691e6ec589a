// JPEGs that libjpeg wrote, read row by row.
#include <gtest/gtest.h>

#include <cstdio>
// Before the header of libjpeg, which needs the above.
#include <jpeglib.h>

#include <cstdlib>

#include "support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::Code;

constexpr int kWidth = 37;
constexpr int kHeight = 21;

struct Parts {
  std::string what;
  J_COLOR_SPACE stored;
  int samples;
  bool progressive = false;
  int densityUnit = 0;
};

std::string Written(const Parts& parts, const std::vector<jpeg_scan_info>& scans = {}) {
  jpeg_compress_struct jpeg;
  jpeg_error_mgr errors;
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_compress(&jpeg);
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&jpeg, &bytes, &size);
  jpeg.image_width = kWidth;
  jpeg.image_height = kHeight;
  jpeg.input_components = parts.samples;
  jpeg.in_color_space = parts.samples == 1 ? JCS_GRAYSCALE : parts.samples == 3 ? JCS_RGB : JCS_CMYK;
  jpeg_set_defaults(&jpeg);
  jpeg_set_colorspace(&jpeg, parts.stored);
  if (parts.progressive) jpeg_simple_progression(&jpeg);
  if (!scans.empty()) {
    jpeg.scan_info = scans.data();
    jpeg.num_scans = static_cast<int>(scans.size());
  }
  jpeg.density_unit = static_cast<UINT8>(parts.densityUnit);
  jpeg.X_density = 100;
  jpeg.Y_density = 50;
  jpeg_start_compress(&jpeg, TRUE);
  for (int y = 0; y < kHeight; ++y) {
    std::vector<JSAMPLE> row;
    for (int i = 0; i < kWidth * parts.samples; ++i) row.push_back(static_cast<JSAMPLE>(i * i + y * 9));
    JSAMPROW rows[] = {row.data()};
    jpeg_write_scanlines(&jpeg, rows, 1);
  }
  jpeg_finish_compress(&jpeg);
  jpeg_destroy_compress(&jpeg);
  std::string file(reinterpret_cast<char*>(bytes), size);
  std::free(bytes);
  return file;
}

// The whole image as libjpeg gives it without being asked for anything.
std::vector<std::string> WholeImage(const std::string& file) {
  jpeg_decompress_struct jpeg;
  jpeg_error_mgr errors;
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&jpeg);
  jpeg_mem_src(&jpeg, reinterpret_cast<const unsigned char*>(file.data()), file.size());
  jpeg_read_header(&jpeg, TRUE);
  jpeg_start_decompress(&jpeg);
  std::vector<std::string> rows;
  while (jpeg.output_scanline < jpeg.output_height) {
    std::string row(std::size_t{jpeg.output_width} * static_cast<std::size_t>(jpeg.output_components), '\0');
    JSAMPROW to[] = {reinterpret_cast<JSAMPLE*>(row.data())};
    jpeg_read_scanlines(&jpeg, to, 1);
    rows.push_back(Hex(row));
  }
  jpeg_finish_decompress(&jpeg);
  jpeg_destroy_decompress(&jpeg);
  return rows;
}

const Parts kParts[] = {{"gray", JCS_GRAYSCALE, 1, false, 0},
                        {"progressive gray", JCS_GRAYSCALE, 1, true, 1},
                        {"YCbCr", JCS_YCbCr, 3, false, 2},
                        {"progressive YCbCr", JCS_YCbCr, 3, true, 0},
                        {"RGB", JCS_RGB, 3, false, 0}};

TEST(ReadJpeg, DeliversGraysAndColours) {
  const Folder folder;
  for (const Parts& parts : kParts) {
    SCOPED_TRACE(parts.what);
    const std::string file = Written(parts);
    const Loaded loaded = Load(folder.Write("a", file));
    ASSERT_EQ(loaded.status.message, "");
    EXPECT_EQ(loaded.image.depth, parts.samples == 1 ? 8 : 24);
    EXPECT_EQ(loaded.image.palette.size(), parts.samples == 1 ? 256U : 0U);
    EXPECT_EQ(loaded.rows, WholeImage(file));
    // Only those with a header of their own tell a density.
    constexpr double kExpected[] = {0, 100, 254};
    EXPECT_DOUBLE_EQ(loaded.image.resolution.x, kExpected[parts.densityUnit]);
    EXPECT_DOUBLE_EQ(loaded.image.resolution.y, kExpected[parts.densityUnit] / 2);
  }
}

// 37 x 21 in colour, the luma sampled twice as often: 8 x 4 blocks of 128 bytes, 4 x 4 of each chroma.
TEST(ReadJpeg, HoldsNoMoreThanTheBudgetWhenProgressive) {
  const Folder folder;
  const std::string progressive = folder.Write("a", Written(kParts[3]));
  const std::string plain = folder.Write("b", Written(kParts[2]));
  ReadOptions options;
  options.maxBufferBytes = 64 * 128;
  EXPECT_EQ(Load(progressive, options).status.message, "");
  --options.maxBufferBytes;
  ExpectRefusal(Load(progressive, options).status, Code::Limit, "--max-memory");
  EXPECT_EQ(Load(plain, options).status.message, "");
  options.maxPixels = kWidth * kHeight - 1;
  ExpectRefusal(Load(plain, options).status, Code::Limit, "--max-pixels");
}

// A gray one with every bit of every coefficient on its own.
std::string OfHundredsOfScans() {
  std::vector<jpeg_scan_info> scans = {{1, {0}, 0, 0, 0, 0}};
  for (int k = 1; k < 64; ++k) {
    for (int bit = 8; bit >= 0; --bit) scans.push_back({1, {0}, k, k, bit == 8 ? 0 : bit + 1, bit});
  }
  return Written(kParts[1], scans);
}

// A gray one with another byte behind the mark of its frame.
std::string WithInFrame(std::size_t at, char value) {
  std::string file = Written(kParts[0]);
  file[file.find("\xff\xc0") + at] = value;
  return file;
}

TEST(ReadJpeg, SaysWhatItDoesNotRead) {
  const Folder folder;
  const std::pair<std::string, const char*> cases[] = {{Written({"CMYK", JCS_CMYK, 4}), "CMYK"},
                                                       {Written({"YCCK", JCS_YCCK, 4}), "CMYK"},
                                                       {OfHundredsOfScans(), "500 scans"},
                                                       {WithInFrame(4, 12), "unusual kind"},       // bits
                                                       {WithInFrame(1, '\xc3'), "unusual kind"}};  // lossless
  for (const auto& [file, says] : cases) ExpectRefusal(Load(folder.Write("a", file)).status, Code::Input, says);
}

// Other pixels can come of changed bytes unnoticed.
TEST(ReadJpeg, DamageEndsInOneClearLineAtWorst) {
  const Folder folder;
  for (const Parts& parts : kParts) {
    const std::string file = Written(parts);
    for (std::size_t at = 0; at < file.size(); at += 3) {
      SCOPED_TRACE(parts.what + std::to_string(at));
      ExpectRefusal(Load(folder.Write("a", file.substr(0, at))).status, Code::Input, "");
      ExpectSuccessOrOneClearLine(Load(folder.Write("a", Changed(file, at, 0x41))).status);
    }
  }
}

}  // namespace
}  // namespace cvt::imageio::test

// What the TIFF writer makes of images, read back by libtiff.
#include <gtest/gtest.h>
#include <tiffio.h>

#include "support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::GrayRamp;
using pipeline::Image;

constexpr int kFax = COMPRESSION_CCITTFAX4, kLzw = COMPRESSION_LZW, kDeflate = COMPRESSION_ADOBE_DEFLATE;
constexpr int kNone = COMPRESSION_NONE;
constexpr int kInk = PHOTOMETRIC_MINISWHITE, kGray = PHOTOMETRIC_MINISBLACK, kIndex = PHOTOMETRIC_PALETTE;
constexpr int kColor = PHOTOMETRIC_RGB;

struct Case {
  const char* what;
  std::int32_t width, depth;
  std::vector<IRGB> palette;
  const char* row;
  Compression compression;
  int bits, photometric, stored, predictor;  // tags
  const char* colors;                        // of the pixels
};

const std::vector<IRGB> kDirect;
const std::vector<IRGB> kPaperFirst = Colors("ffffff 000000");
const std::vector<IRGB> kFlag = Colors("ff0000 ffffff 0000ff");

const Case kCases[] = {
    {"ink first is a fax", 9, 1, GrayRamp(1), "5a80", Compression::Default, 1, kInk, kFax, 1,
     "000000 ffffff 000000 ffffff ffffff 000000 ffffff 000000 ffffff"},
    {"paper first too", 3, 1, kPaperFirst, "40", Compression::G4, 1, kInk, kFax, 1, "ffffff 000000 ffffff"},
    {"no fax when asked for another", 3, 1, GrayRamp(1), "40", Compression::Lzw, 1, kGray, kLzw, 1,
     "000000 ffffff 000000"},
    {"paper first as it is", 3, 1, kPaperFirst, "40", Compression::None, 1, kInk, kNone, 1,
     "ffffff 000000 ffffff"},
    {"two colours", 2, 1, Colors("102030 405060"), "40", Compression::Default, 1, kIndex, kLzw, 1,
     "102030 405060"},
    {"2-bit gray", 4, 2, GrayRamp(2), "1b", Compression::Default, 2, kGray, kLzw, 1,
     "000000 555555 aaaaaa ffffff"},
    {"3-bit gray is no ramp of 4 bits", 2, 3, GrayRamp(3), "17", Compression::Deflate, 4, kIndex, kDeflate, 1,
     "242424 ffffff"},
    {"4-bit gray", 2, 4, GrayRamp(4), "1f", Compression::None, 4, kGray, kNone, 1, "111111 ffffff"},
    {"8-bit gray", 3, 8, GrayRamp(8), "0780ff", Compression::Default, 8, kGray, kLzw, 2, "070707 808080 ffffff"},
    {"three colours", 3, 2, kFlag, "18", Compression::Default, 2, kIndex, kLzw, 1, "ff0000 ffffff 0000ff"},
    {"five bits", 3, 5, kFlag, "000201", Compression::Default, 8, kIndex, kLzw, 1, "ff0000 0000ff ffffff"},
    {"direct colours", 2, 24, kDirect, "010203 fdfeff", Compression::Default, 8, kColor, kLzw, 2, "010203 fdfeff"},
    {"deflated colours", 2, 24, kDirect, "010203 fdfeff", Compression::Deflate, 8, kColor, kDeflate, 2,
     "010203 fdfeff"}};

// The colours of all pixels and the tags, in libtiff's own reading.
std::string ReadByLibtiff(const std::string& path, std::vector<int>* tags) {
  TIFF* tiff = TIFFOpen(path.c_str(), "r");
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
  TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
  const int asked[] = {TIFFTAG_BITSPERSAMPLE, TIFFTAG_PHOTOMETRIC, TIFFTAG_COMPRESSION, TIFFTAG_PREDICTOR};
  for (const int tag : asked) {
    std::uint16_t value = 1;
    TIFFGetField(tiff, static_cast<std::uint32_t>(tag), &value);
    tags->push_back(value);
  }
  std::vector<std::uint32_t> pixels(std::size_t{width} * height);
  TIFFReadRGBAImageOriented(tiff, width, height, pixels.data(), ORIENTATION_TOPLEFT, 1);
  TIFFClose(tiff);
  std::string colors;
  for (const std::uint32_t p : pixels) {
    for (const std::uint32_t level : {TIFFGetR(p), TIFFGetG(p), TIFFGetB(p)}) colors += static_cast<char>(level);
  }
  return Hex(colors);
}

WriteOptions With(Compression compression) {
  WriteOptions options;
  options.existing = Existing::Replace;
  options.compression = compression;
  return options;
}

TEST(WriteTiff, KeepsPixelsAndColoursInTheSmallestKind) {
  const Folder folder;
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    const Image image{c.width, 2, c.depth, c.palette};
    ASSERT_EQ(Save(folder.Path("a.tif"), With(c.compression), image, {c.row, c.row}).message, "");
    std::vector<int> tags;
    const std::string colors = Hex(Bytes(c.colors));
    EXPECT_EQ(ReadByLibtiff(folder.Path("a.tif"), &tags), colors + colors);
    EXPECT_EQ(tags, (std::vector<int>{c.bits, c.photometric, c.stored, c.predictor}));
  }
}

TEST(WriteTiff, CutsTallImagesIntoStrips) {
  const Folder folder;
  const Image image{1000, 200, 8, GrayRamp(8)};
  std::vector<std::string> rows;
  for (int y = 0; y < 200; ++y) rows.push_back(Hex(std::string(1000, static_cast<char>(y))));
  for (const Compression compression : {Compression::None, Compression::Lzw, Compression::Deflate}) {
    ASSERT_EQ(Save(folder.Path("a.TIFF"), With(compression), image, rows).message, "");
    EXPECT_EQ(Load(folder.Path("a.TIFF")).rows, rows);
    TIFF* tiff = TIFFOpen(folder.Path("a.TIFF").c_str(), "r");
    EXPECT_EQ(TIFFNumberOfStrips(tiff), 4U);  // of 65 rows
    TIFFClose(tiff);
  }
}

TEST(WriteTiff, CarriesTheResolutionInDotsAnInch) {
  const Folder folder;
  const std::pair<double, double> cases[] = {{299.9994, 300}, {72.5, 72.5}, {0, 0}};
  for (const auto& [given, written] : cases) {
    Image image{1, 1, 8, GrayRamp(8)};
    image.resolution = {given, given / 2};
    ASSERT_EQ(Save(folder.Path("a.tif"), With(Compression::Default), image, {"41"}).message, "");
    EXPECT_EQ(Load(folder.Path("a.tif")).image.resolution.x, written);
    EXPECT_EQ(Load(folder.Path("a.tif")).image.resolution.y, written / 2);
  }
}

TEST(WriteTiff, IsTheSameInAPipe) {
  const Folder folder;
  const Image image{9, 1, 1, GrayRamp(1)};
  ASSERT_EQ(Save(folder.Path("a.tif"), {}, image, {"a580"}).message, "");
  testing::internal::CaptureStdout();
  ASSERT_EQ(Save("-", {Format::Tiff}, image, {"a580"}).message, "");
  EXPECT_EQ(Hex(testing::internal::GetCapturedStdout()), Hex(folder.Read("a.tif")));
}

}  // namespace
}  // namespace cvt::imageio::test

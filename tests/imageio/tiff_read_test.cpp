// What the TIFF reader makes of files that libtiff wrote.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>

#include "support.h"
#include "tiff_support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::Code;

constexpr int kAssociated = EXTRASAMPLE_ASSOCALPHA;
constexpr int kUnassociated = EXTRASAMPLE_UNASSALPHA;

struct Kind {
  const char* what;
  TiffParts parts;
  int depth;
};

TiffParts Of(int bits, int samples, int photometric, std::vector<std::uint16_t> extra = {}) {
  return {37, 21, bits, samples, photometric, std::move(extra)};
}

const Kind kKinds[] = {{"1-bit gray", Of(1, 1, PHOTOMETRIC_MINISBLACK), 1},
                       {"1-bit ink", Of(1, 1, PHOTOMETRIC_MINISWHITE), 1},
                       {"2-bit gray", Of(2, 1, PHOTOMETRIC_MINISBLACK), 2},
                       {"4-bit ink", Of(4, 1, PHOTOMETRIC_MINISWHITE), 4},
                       {"8-bit gray", Of(8, 1, PHOTOMETRIC_MINISBLACK), 8},
                       {"8-bit ink", Of(8, 1, PHOTOMETRIC_MINISWHITE), 8},
                       {"16-bit gray", Of(16, 1, PHOTOMETRIC_MINISBLACK), 8},
                       {"16-bit ink", Of(16, 1, PHOTOMETRIC_MINISWHITE), 8},
                       {"1-bit index", Of(1, 1, PHOTOMETRIC_PALETTE), 1},
                       {"2-bit index", Of(2, 1, PHOTOMETRIC_PALETTE), 2},
                       {"4-bit index", Of(4, 1, PHOTOMETRIC_PALETTE), 4},
                       {"8-bit index", Of(8, 1, PHOTOMETRIC_PALETTE), 8},
                       {"8-bit RGB", Of(8, 3, PHOTOMETRIC_RGB), 24},
                       {"16-bit RGB", Of(16, 3, PHOTOMETRIC_RGB), 24},
                       {"8-bit RGB and more", Of(8, 5, PHOTOMETRIC_RGB, {0, 0}), 24},
                       {"16-bit gray and more", Of(16, 2, PHOTOMETRIC_MINISBLACK, {0}), 8},
                       {"8-bit index and more", Of(8, 2, PHOTOMETRIC_PALETTE, {0}), 8},
                       {"8-bit RGB with alpha", Of(8, 4, PHOTOMETRIC_RGB, {kUnassociated}), 24},
                       {"16-bit RGB, alpha last", Of(16, 5, PHOTOMETRIC_RGB, {0, kUnassociated}), 24},
                       {"8-bit gray with alpha", Of(8, 2, PHOTOMETRIC_MINISBLACK, {kUnassociated}), 8}};

// A sample of a pixel as it shall be delivered, over white: by the formulas, in floating point.
std::uint32_t Delivered(const TiffParts& parts, const std::uint16_t* pixel, int s) {
  const double most = std::pow(2, parts.bits) - 1;
  double value = pixel[s];
  if (parts.photometric == PHOTOMETRIC_MINISWHITE) value = most - value;
  if (parts.bits == 16) value = value * 255 / 65535;
  if (!parts.extra.empty() && parts.extra.back() != 0) {
    const double alpha = pixel[parts.samples - 1] / most;
    value = value * alpha + 255 * (1 - alpha);
  }
  return static_cast<std::uint32_t>(std::lround(value));
}

std::vector<std::string> DeliveredRows(const TiffParts& parts, int depth, const Samples& samples) {
  const int bits = depth == 24 ? 8 : depth;
  std::vector<std::string> rows;
  for (const std::uint16_t* pixel = samples.data(); rows.size() < parts.height;) {
    std::string row;
    std::uint32_t held = 1;  // the leading one tells how many bits there are
    for (std::uint32_t x = 0; x < parts.width; ++x, pixel += parts.samples) {
      for (int s = 0; s < (depth == 24 ? 3 : 1); ++s) {
        held = held << bits | Delivered(parts, pixel, s);
        if (held < 256) continue;
        row += static_cast<char>(held);
        held = 1;
      }
    }
    while (held != 1 && held < 256) held <<= 1;
    if (held != 1) row += static_cast<char>(held);
    rows.push_back(Hex(row));
  }
  return rows;
}

std::vector<int> Compressions(const TiffParts& parts) {
  std::vector<int> all = {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS};
  if (parts.bits == 1) {
    all.insert(all.end(), {COMPRESSION_CCITTRLE, COMPRESSION_CCITTFAX3, COMPRESSION_CCITTFAX4});
  }
  return all;
}

TEST(ReadTiff, GivesTheSamePixelsHoweverTheyAreStored) {
  const Folder folder;
  for (const Kind& kind : kKinds) {
    const Samples samples = Scrambled(kind.parts);
    const std::vector<std::string> rows = DeliveredRows(kind.parts, kind.depth, samples);
    for (const int compression : Compressions(kind.parts)) {
      for (const std::uint32_t stripRows : {0U, 8U, 21U}) {
        for (const bool planes : {false, true}) {
          TiffParts parts = kind.parts;
          parts.compression = compression;
          parts.stripRows = stripRows;
          parts.mode = planes ? "w8b" : "wl";
          parts.planes = planes && parts.samples > 1;
          WriteTiffFile(folder.Path("a"), parts, samples);
          const Loaded loaded = Load(folder.Path("a"));
          ASSERT_EQ(loaded.status.message, "") << kind.what;
          ASSERT_EQ(loaded.image.depth, kind.depth) << kind.what;
          ASSERT_EQ(loaded.rows, rows) << kind.what << ", compression " << compression << ", " << stripRows
                                       << " rows a strip, " << parts.mode;
        }
      }
    }
  }
}

TEST(ReadTiff, GivesTheColoursOfPalettesAndRamps) {
  const Folder folder;
  for (const Kind& kind : kKinds) {
    WriteTiffFile(folder.Path("a"), kind.parts, Scrambled(kind.parts));
    const std::vector<IRGB> palette = Load(folder.Path("a")).image.palette;
    std::vector<IRGB> expected = kind.depth == 24 ? std::vector<IRGB>{} : pipeline::GrayRamp(kind.depth);
    for (std::size_t i = 0; kind.parts.photometric == PHOTOMETRIC_PALETTE && i < expected.size(); ++i) {
      const auto level = [](std::size_t v) { return static_cast<std::uint8_t>(v); };
      expected[i] = {level(7 * i), level(255 - i), level(i)};
    }
    EXPECT_EQ(Hex(palette), Hex(expected)) << kind.what;
  }
}

struct AlphaCase {
  const char* what;
  int bits, photometric, alpha;
  Samples pixel;
  IRGB background;
  const char* row;
};

constexpr IRGB kRed{255, 0, 0};
constexpr IRGB kGray200{200, 200, 200};

const AlphaCase kAlphaCases[] = {
    {"half over red", 8, PHOTOMETRIC_RGB, kUnassociated, {10, 20, 30, 128}, kRed, "840a0f"},
    {"the colour is halved already", 8, PHOTOMETRIC_RGB, kAssociated, {5, 10, 15, 128}, kRed, "840a0f"},
    {"opaque", 8, PHOTOMETRIC_RGB, kAssociated, {1, 2, 255, 255}, kRed, "0102ff"},
    {"more colour than there can be", 8, PHOTOMETRIC_RGB, kAssociated, {255, 255, 255, 0}, kGray200, "c8c8c8"},
    {"16 bits", 16, PHOTOMETRIC_RGB, kAssociated, {0x8000, 0, 257, 0x8000}, kRed, "ff0001"},
    {"gray over gray", 8, PHOTOMETRIC_MINISBLACK, kAssociated, {50, 51}, kGray200, "d2"},
    {"gray over red is in colour", 8, PHOTOMETRIC_MINISBLACK, kAssociated, {0, 0}, kRed, "ff0000"}};

TEST(ReadTiff, LaysTransparencyOnTheBackground) {
  const Folder folder;
  for (const AlphaCase& c : kAlphaCases) {
    const int samples = static_cast<int>(c.pixel.size());
    for (const bool planes : {false, true}) {
      TiffParts parts{1, 1, c.bits, samples, c.photometric, {static_cast<std::uint16_t>(c.alpha)}};
      parts.planes = planes;
      WriteTiffFile(folder.Path("a"), parts, c.pixel);
      ReadOptions options;
      options.background = c.background;
      EXPECT_EQ(Load(folder.Path("a"), options).rows, std::vector<std::string>{c.row}) << c.what;
    }
  }
}

TEST(ReadTiff, ReadsJpegInside) {
  const Folder folder;
  for (const int photometric : {PHOTOMETRIC_YCBCR, PHOTOMETRIC_RGB, PHOTOMETRIC_MINISBLACK}) {
    for (const std::uint32_t stripRows : {0U, 16U}) {
      TiffParts parts{40, 40, 8, photometric == PHOTOMETRIC_MINISBLACK ? 1 : 3, photometric};
      parts.compression = COMPRESSION_JPEG;
      parts.stripRows = stripRows;
      WriteTiffFile(folder.Path("a"), parts, Samples(std::size_t{4800}, 128));
      const Loaded loaded = Load(folder.Path("a"));
      ASSERT_EQ(loaded.status.message, "");
      const std::string gray = Hex(std::string(40 * static_cast<std::size_t>(parts.samples), '\x80'));
      EXPECT_EQ(loaded.rows, std::vector<std::string>(40, gray)) << photometric << ", " << stripRows;
    }
  }
}

struct Refused {
  const char* what;
  TiffParts parts;
  std::int32_t page;
  Code code;
  const char* says;
};

TiffParts With(TiffParts parts, int tag, int value) {
  parts.stripRows = 21;
  parts.tags.emplace_back(tag, value);
  return parts;
}

TiffParts Pages(int pages) {
  TiffParts parts = With(Of(8, 1, PHOTOMETRIC_MINISBLACK), TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  parts.pages = pages;
  return parts;
}

const Refused kRefused[] = {
    {"32 bits", Of(32, 1, PHOTOMETRIC_MINISBLACK), 0, Code::Input, "32 bits"},
    {"3 bits", Of(3, 1, PHOTOMETRIC_PALETTE), 0, Code::Input, "3 bits"},
    {"4-bit RGB", Of(4, 3, PHOTOMETRIC_RGB), 0, Code::Input, "4 bits"},
    {"floats", With(Of(16, 1, PHOTOMETRIC_MINISBLACK), TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP), 0, Code::Input,
     "no whole numbers"},
    {"CMYK", Of(8, 4, PHOTOMETRIC_SEPARATED), 0, Code::Input, "CMYK"},
    {"Lab", Of(8, 3, PHOTOMETRIC_CIELAB), 0, Code::Input, "Lab"},
    {"mask", Of(1, 1, PHOTOMETRIC_MASK), 0, Code::Input, "no gray, index or RGB"},
    {"YCbCr", Of(8, 3, PHOTOMETRIC_YCBCR), 0, Code::Input, "YCbCr"},
    {"RGB of two samples", Of(8, 2, PHOTOMETRIC_RGB), 0, Code::Input, "2 samples"},
    {"index with alpha", Of(8, 2, PHOTOMETRIC_PALETTE, {kUnassociated}), 0, Code::Input, "transparency"},
    {"turned", With(Of(8, 1, PHOTOMETRIC_MINISBLACK), TIFFTAG_ORIENTATION, ORIENTATION_RIGHTTOP), 0, Code::Input,
     "upright"},
    {"three pages", Pages(3), 0, Code::Usage, "the file has 3 pages (choose one with --page)"},
    {"fourth of three", Pages(3), 4, Code::Usage, "the file has 3 pages"},
    {"second of one", Pages(1), 2, Code::Usage, "the file has 1 page "}};

TEST(ReadTiff, SaysWhatItDoesNotRead) {
  const Folder folder;
  for (const Refused& c : kRefused) {
    WriteTiffFile(folder.Path("a"), c.parts, Samples(37 * 21 * 8, 0));
    ReadOptions options;
    options.page = c.page;
    const pipeline::Status status = Load(folder.Path("a"), options).status;
    EXPECT_EQ(status.code, c.code) << c.what << ": " << status.message;
    EXPECT_NE(status.message.find(c.says), std::string::npos) << c.what << ": " << status.message;
    EXPECT_TRUE(status.message.ends_with(')')) << c.what << ": " << status.message;
  }
}

TEST(ReadTiff, ReadsThePageThatIsAskedFor) {
  const Folder folder;
  TIFF* tiff = TIFFOpen(folder.Path("a").c_str(), "w");
  for (char page = '1'; page <= '3'; ++page) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 1);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFWriteScanline(tiff, &page, 0, 0);
    TIFFWriteDirectory(tiff);
  }
  TIFFClose(tiff);
  for (std::int32_t page = 1; page <= 3; ++page) {
    ReadOptions options;
    options.page = page;
    EXPECT_EQ(Load(folder.Path("a"), options).rows, std::vector<std::string>{"3" + std::to_string(page)});
  }
  const std::string pgm = folder.Write("b", "P5 1 1 255\nA");
  ReadOptions options;
  options.page = 1;
  EXPECT_EQ(Load(pgm, options).status.code, Code::Ok);
  options.page = 2;
  EXPECT_EQ(Load(pgm, options).status.code, Code::Usage);
}

TEST(ReadTiff, KnowsTheResolutionWhereThereIsAUnit) {
  const Folder folder;
  const std::pair<int, double> cases[] = {{RESUNIT_INCH, 100}, {RESUNIT_CENTIMETER, 254}, {RESUNIT_NONE, 0}};
  for (const auto& [unit, resolution] : cases) {
    TiffParts parts = With(Of(1, 1, PHOTOMETRIC_MINISWHITE), TIFFTAG_RESOLUTIONUNIT, unit);
    WriteTiffFile(folder.Path("a"), parts, Scrambled(parts));
    EXPECT_EQ(Load(folder.Path("a")).image.resolution.x, 0);
    TIFF* tiff = TIFFOpen(folder.Path("a").c_str(), "r+");
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 100.0);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 50.0);
    TIFFRewriteDirectory(tiff);
    TIFFClose(tiff);
    const Loaded loaded = Load(folder.Path("a"));
    EXPECT_DOUBLE_EQ(loaded.image.resolution.x, resolution);
    EXPECT_DOUBLE_EQ(loaded.image.resolution.y, resolution / 2);
  }
}

TEST(ReadTiff, ReadsFromAPipe) {
  const Folder folder;
  const TiffParts parts = Pages(1);
  WriteTiffFile(folder.Path("a"), parts, Scrambled(parts));
  const std::string file = folder.Read("a");
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ASSERT_EQ(::write(ends[1], file.data(), file.size()), static_cast<ssize_t>(file.size()));
  ::close(ends[1]);
  EXPECT_EQ(Load("/proc/self/fd/" + std::to_string(ends[0])).rows, Load(folder.Path("a")).rows);
  ::close(ends[0]);
}

struct Budget {
  const char* what;
  TiffParts parts;
  std::int64_t bytes;  // that suffice; one less does not
};

TiffParts Packed(TiffParts parts, std::uint32_t stripRows, int compression) {
  parts.stripRows = stripRows;
  parts.compression = compression;
  return parts;
}

TEST(ReadTiff, HoldsNoMoreThanTheBudget) {
  const Folder folder;
  // Three tiles across and one in work; two rows of packets; a strip that must not be larger than the file.
  const Budget budgets[] = {{"tiles", Of(8, 1, PHOTOMETRIC_MINISBLACK), 4 * 256},
                            {"strips", Packed(Of(8, 1, PHOTOMETRIC_MINISBLACK), 2, COMPRESSION_PACKBITS), 0}};
  for (Budget budget : budgets) {
    WriteTiffFile(folder.Path("a"), budget.parts, Scrambled(budget.parts));
    if (budget.bytes == 0) {
      TIFF* tiff = TIFFOpen(folder.Path("a").c_str(), "r");
      for (std::uint32_t i = 0; i < TIFFNumberOfStrips(tiff); ++i) {
        budget.bytes = std::max(budget.bytes, static_cast<std::int64_t>(TIFFGetStrileByteCount(tiff, i)));
      }
      TIFFClose(tiff);
    }
    ReadOptions options;
    options.maxBufferBytes = budget.bytes;
    EXPECT_EQ(Load(folder.Path("a"), options).status.message, "") << budget.what;
    options.maxBufferBytes = budget.bytes - 1;
    const pipeline::Status status = Load(folder.Path("a"), options).status;
    EXPECT_EQ(status.code, Code::Limit) << budget.what;
    EXPECT_NE(status.message.find("--max-memory"), std::string::npos) << status.message;
  }
}

// Pixels that nothing guards can change unnoticed; all else is one clear line.
TEST(ReadTiff, DamageEndsInOneClearLineAtWorst) {
  const Folder folder;
  TiffParts planes = Packed(Of(8, 3, PHOTOMETRIC_RGB), 8, COMPRESSION_ADOBE_DEFLATE);
  planes.planes = true;
  const TiffParts files[] = {Packed(Of(1, 1, PHOTOMETRIC_MINISWHITE), 21, COMPRESSION_CCITTFAX4),
                             Packed(Of(1, 1, PHOTOMETRIC_MINISWHITE), 8, COMPRESSION_CCITTFAX3),
                             Packed(Of(4, 1, PHOTOMETRIC_PALETTE), 0, COMPRESSION_LZW),
                             Packed(Of(8, 3, PHOTOMETRIC_YCBCR), 16, COMPRESSION_JPEG), planes};
  for (const TiffParts& parts : files) {
    WriteTiffFile(folder.Path("a"), parts, Scrambled(parts));
    const std::string file = folder.Read("a");
    ASSERT_EQ(Load(folder.Path("a")).status.message, "");
    for (std::size_t at = 0; at < file.size(); at += 1 + file.size() / 300) {
      const pipeline::Status cut = Load(folder.Write("b", file.substr(0, at))).status;
      const bool whole = at + 4 >= file.size();  // but for where there would be a second page
      EXPECT_TRUE(cut.code == Code::Input || whole) << at << " bytes of compression " << parts.compression;
      for (const char flip : {'\x41', '\xff'}) {
        std::string changed = file;
        changed[at] = static_cast<char>(changed[at] ^ flip);
        const pipeline::Status status = Load(folder.Write("b", changed)).status;
        if (!Failed(status)) continue;
        EXPECT_TRUE(status.message.ends_with(')')) << status.message;
        EXPECT_EQ(status.message.find('\n'), std::string::npos) << status.message;
      }
    }
  }
}

}  // namespace
}  // namespace cvt::imageio::test

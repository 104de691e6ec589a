// What the TIFF reader makes of files that libtiff wrote.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
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
std::uint16_t Delivered(const TiffParts& parts, const std::uint16_t* pixel, int s) {
  const double most = std::pow(2, parts.bits) - 1;
  double value = pixel[s];
  if (parts.photometric == PHOTOMETRIC_MINISWHITE) value = most - value;
  if (parts.bits == 16) value = value * 255 / 65535;
  if (!parts.extra.empty() && parts.extra.back() != 0) {
    const double alpha = pixel[parts.samples - 1] / most;
    value = value * alpha + 255 * (1 - alpha);
  }
  return static_cast<std::uint16_t>(std::lround(value));
}

std::vector<std::string> DeliveredRows(const TiffParts& parts, int depth, const Samples& samples) {
  std::vector<std::string> rows;
  for (const std::uint16_t* pixel = samples.data(); rows.size() < parts.height;) {
    Samples row;
    for (std::uint32_t x = 0; x < parts.width; ++x, pixel += parts.samples) {
      for (int s = 0; s < (depth == 24 ? 3 : 1); ++s) row.push_back(Delivered(parts, pixel, s));
    }
    rows.push_back(Hex(PackedBits(row, std::min(depth, 8))));
  }
  return rows;
}

TiffParts Packed(TiffParts parts, std::uint32_t stripRows, int compression) {
  parts.stripRows = stripRows;
  parts.compression = compression;
  return parts;
}

std::vector<int> Compressions(const TiffParts& parts) {
  std::vector<int> all = {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS};
  if (parts.bits == 1) {
    all.insert(all.end(), {COMPRESSION_CCITTRLE, COMPRESSION_CCITTFAX3, COMPRESSION_CCITTFAX4});
  }
  return all;
}

std::vector<IRGB> DeliveredPalette(const Kind& kind) {
  std::vector<IRGB> palette = kind.depth == 24 ? std::vector<IRGB>{} : pipeline::GrayRamp(kind.depth);
  for (std::size_t i = 0; kind.parts.photometric == PHOTOMETRIC_PALETTE && i < palette.size(); ++i) {
    const auto level = [](std::size_t v) { return static_cast<std::uint8_t>(v); };
    palette[i] = {level(7 * i), level(255 - i), level(i)};
  }
  return palette;
}

TEST(ReadTiff, GivesTheSamePixelsHoweverTheyAreStored) {
  const Folder folder;
  for (const Kind& kind : kKinds) {
    const Samples samples = Scrambled(kind.parts);
    const std::vector<std::string> rows = DeliveredRows(kind.parts, kind.depth, samples);
    const std::string palette = Hex(DeliveredPalette(kind));
    for (const int compression : Compressions(kind.parts)) {
      for (const std::uint32_t stripRows : {0U, 8U, 21U}) {
        for (const bool planes : {false, true}) {
          TiffParts parts = Packed(kind.parts, stripRows, compression);
          parts.mode = planes ? "w8b" : "wl";
          parts.planes = planes && parts.samples > 1;
          parts.colorStep = planes ? 1 : 257;  // some programs write levels of 8 bits
          WriteTiffFile(folder.Path("a"), parts, samples);
          const Loaded loaded = Load(folder.Path("a"));
          ASSERT_EQ(loaded.status.message, "") << kind.what;
          ASSERT_EQ(loaded.image.depth, kind.depth) << kind.what;
          ASSERT_EQ(Hex(loaded.image.palette), palette) << kind.what;
          ASSERT_EQ(loaded.rows, rows) << kind.what << ", compression " << compression << ", " << stripRows
                                       << " rows a strip, " << parts.mode;
        }
      }
    }
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
  const char* says;
  TiffParts parts;
  Code code = Code::Input;
  std::int32_t page = 0;
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
    {"32 bits", "32 bits", Of(32, 1, PHOTOMETRIC_MINISBLACK)},
    {"3 bits", "3 bits", Of(3, 1, PHOTOMETRIC_PALETTE)},
    {"4-bit RGB", "4 bits", Of(4, 3, PHOTOMETRIC_RGB)},
    {"floats", "no whole numbers",
     With(Of(16, 1, PHOTOMETRIC_MINISBLACK), TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP)},
    {"CMYK", "CMYK", Of(8, 4, PHOTOMETRIC_SEPARATED)},
    {"Lab", "Lab", Of(8, 3, PHOTOMETRIC_CIELAB)},
    {"mask", "no gray, index or RGB", Of(1, 1, PHOTOMETRIC_MASK)},
    {"YCbCr", "YCbCr", Of(8, 3, PHOTOMETRIC_YCBCR)},
    {"RGB of two samples", "2 samples", Of(8, 2, PHOTOMETRIC_RGB)},
    {"index with alpha", "transparency", Of(8, 2, PHOTOMETRIC_PALETTE, {kUnassociated})},
    {"turned", "upright", With(Of(8, 1, PHOTOMETRIC_MINISBLACK), TIFFTAG_ORIENTATION, ORIENTATION_RIGHTTOP)},
    {"three pages", "the file has 3 pages (choose one with --page)", Pages(3), Code::Usage},
    {"fourth of three", "the file has 3 pages", Pages(3), Code::Usage, 4},
    {"second of one", "the file has 1 page ", Pages(1), Code::Usage, 2}};

TEST(ReadTiff, SaysWhatItDoesNotRead) {
  const Folder folder;
  for (const Refused& c : kRefused) {
    SCOPED_TRACE(c.what);
    WriteTiffFile(folder.Path("a"), c.parts, Samples(37 * 21 * 8, 0));
    ReadOptions options;
    options.page = c.page;
    ExpectRefusal(Load(folder.Path("a"), options).status, c.code, c.says);
  }
}

TEST(ReadTiff, ReadsThePageThatIsAskedFor) {
  const Folder folder;
  TiffParts parts;
  parts.stripRows = 1;
  parts.pages = 3;
  WriteTiffFile(folder.Path("a"), parts, {0x31, 0x32, 0x33});
  for (std::int32_t page = 1; page <= 3; ++page) {
    ReadOptions options;
    options.page = page;
    EXPECT_EQ(Load(folder.Path("a"), options).rows, std::vector<std::string>{"3" + std::to_string(page)});
  }
}

struct Unit {
  int unit;
  double x, y;          // as stored
  double readX, readY;  // an inch
};
constexpr Unit kUnits[] = {{RESUNIT_INCH, 100, 50, 100, 50},
                           {RESUNIT_CENTIMETER, 100, 50, 254, 127},
                           {RESUNIT_NONE, 100, 50, 0, 0},
                           {RESUNIT_INCH, 0, 50, 0, 0}};

TEST(ReadTiff, KnowsTheResolutionWhereThereIsAUnit) {
  const Folder folder;
  for (const Unit& c : kUnits) {
    TiffParts parts = With(Of(1, 1, PHOTOMETRIC_MINISWHITE), TIFFTAG_RESOLUTIONUNIT, c.unit);
    parts.x = c.x;
    parts.y = c.y;
    WriteTiffFile(folder.Path("a"), parts, Scrambled(parts));
    const pipeline::Resolution resolution = Load(folder.Path("a")).image.resolution;
    EXPECT_DOUBLE_EQ(resolution.x, c.readX) << "unit " << c.unit;
    EXPECT_DOUBLE_EQ(resolution.y, c.readY) << "unit " << c.unit;
  }
}

TEST(ReadTiff, ReadsFromAPipeAndLeavesNothingAside) {
  const Folder folder;
  const Folder aside;
  const TiffParts parts = Pages(1);
  WriteTiffFile(folder.Path("a"), parts, Scrambled(parts));
  const std::string file = folder.Read("a");
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ASSERT_EQ(::write(ends[1], file.data(), file.size()), static_cast<ssize_t>(file.size()));
  ::close(ends[1]);
  ::setenv("TMPDIR", aside.path.c_str(), 1);
  EXPECT_EQ(Load("/proc/self/fd/" + std::to_string(ends[0])).rows, Load(folder.Path("a")).rows);
  ::unsetenv("TMPDIR");
  ::close(ends[0]);
  EXPECT_TRUE(aside.Names().empty());
}

struct Budget {
  TiffParts parts;
  std::int64_t bytes;  // that suffice; one less does not
};

// Three tiles across and one in work; a strip as it is stored: of two rows, each with a byte for its length.
const Budget kBudgets[] = {{Of(8, 1, PHOTOMETRIC_MINISBLACK), 4 * 256},
                           {Packed(Of(8, 1, PHOTOMETRIC_MINISBLACK), 2, COMPRESSION_PACKBITS), 2 * 38}};

TEST(ReadTiff, HoldsNoMoreThanTheBudget) {
  const Folder folder;
  for (const Budget& budget : kBudgets) {
    WriteTiffFile(folder.Path("a"), budget.parts, Scrambled(budget.parts));
    ReadOptions options;
    options.maxBufferBytes = budget.bytes;
    EXPECT_EQ(Load(folder.Path("a"), options).status.message, "");
    --options.maxBufferBytes;
    ExpectRefusal(Load(folder.Path("a"), options).status, Code::Limit, "--max-memory");
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
      SCOPED_TRACE(std::to_string(at) + " bytes of compression " + std::to_string(parts.compression));
      const pipeline::Status cut = Load(folder.Write("b", file.substr(0, at))).status;
      const bool whole = at + 4 >= file.size();  // but for where there would be a second page
      if (!whole) ExpectRefusal(cut, Code::Input, "");
      for (const int bits : {0x41, 0xff}) {
        ExpectSuccessOrOneClearLine(Load(folder.Write("b", Changed(file, at, bits))).status);
      }
    }
  }
}

}  // namespace
}  // namespace cvt::imageio::test

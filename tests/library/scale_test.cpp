// The scalers against figures worked out by hand.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/library/scale_cases.h"

namespace cvt::test {

namespace {

enum Driver : std::size_t { kUpWidth, kUpHeight, kDownWidth, kDownHeight };

/// Lines of 8-bit pixels, a character each, '.' for value 0; "|" stands between bands.
Case Picture(const std::vector<std::string>& lines, int width, int height) {
  const std::size_t pixels = lines[0].size();
  Case what = PlainCase(false, 8, 8, static_cast<int>(pixels), 0);
  what.bands.clear();
  std::vector<std::uint32_t> values;
  std::uint16_t row = 0;
  const auto endBand = [&] {
    what.bands.push_back(BandOf(false, 8, pixels, values));
    what.bands.back().top = Word(row - what.bands.back().lineCount);
    values.clear();
  };
  for (const std::string& line : lines) {
    if (line == "|") {
      endBand();
      continue;
    }
    ++row;
    for (const char c : line) values.push_back(c == '.' ? 0 : static_cast<std::uint8_t>(c));
  }
  endBand();
  what.source.imageWidth = static_cast<std::int32_t>(pixels);
  what.source.imageHeight = row;
  what.destination.imageWidth = width != 0 ? width : static_cast<std::int32_t>(pixels);
  what.destination.imageHeight = height != 0 ? height : row;
  what.capacity = Word(what.capacity + 2);
  what.linePixels = static_cast<std::size_t>(what.destination.imageWidth);
  what.destination.keepColor = '1';
  what.grayPalette = 1;
  return what;
}

/// The same with a pixel a line.
Case Column(const std::string& pixels, int height) {
  std::vector<std::string> lines;
  for (const char c : pixels) lines.emplace_back(1, c);
  return Picture(lines, 0, height);
}

/// The first lines, or columns, of an image that is larger than they are.
Case StartOf(int width, int height, Case what) {
  what.source.imageWidth = width;
  what.source.imageHeight = height;
  return what;
}

/// The same with the second band elsewhere.
Case SecondAt(std::uint16_t top, Case what) {
  what.bands[1].top = top;
  return what;
}

/// Every band handed on: "top+lines" and its lines, without padding.
std::string Given(const Outcome& outcome) {
  std::string text;
  for (const auto& block : outcome.handedOn) {
    const int width = WordAt(block, 8), lines = WordAt(block, 10);
    text += (text.empty() ? "" : " ") + std::to_string(WordAt(block, 6)) + "+" + std::to_string(lines);
    for (int y = 0; y < lines; ++y) {
      const auto line = block.begin() + 16 + y * (width + width % 2);
      text += " " + std::string(line, line + width);
    }
  }
  std::replace(text.begin(), text.end(), '\0', '.');
  return text;
}

struct PlainRow {
  const char* what;
  Driver driver;
  std::uint8_t method;
  Case picture;
  const char* given;
};
const PlainRow kPlainRows[] = {
    {"two pixels on five: three and two", kUpWidth, 0, Picture({"ab"}, 5, 0), "0+1 aaabb"},
    {"a pixel that does not fit is dropped", kUpWidth, 0, StartOf(4, 1, Picture({"abc"}, 5, 0)), "0+1 aab"},
    {"a filled sub-band is followed by an empty one", kUpHeight, 0, Column("ab", 4), "0+4 a a b b 4+0"},
    {"a line goes on in the next sub-band", kUpHeight, 0, Column("a|b", 3), "0+1 a 1+1 a 2+0 2+1 b"},
    {"the kept pixel is taken from the run before", kDownWidth, 0, Picture({".....1...."}, 4, 0), "0+1 .1.."},
    {"another pixel vanishes", kDownWidth, 0, Picture({".....2...."}, 4, 0), "0+1 ...."},
    {"at the start the pixel is taken from what follows", kDownWidth, 0, Picture({"12........"}, 4, 0),
     "0+1 1..."},
    {"sampling keeps nothing", kDownWidth, 2, Picture({".....12222"}, 4, 0), "0+1 ..22"},
    {"three lines, then two", kDownHeight, 0, Column("..1..", 2), "0+2 1 ."},
    {"the fourth line is in the second group", kDownHeight, 0, Column("...1.", 2), "0+2 . 1"},
    {"a thin line survives", kDownHeight, 0, Column(".1..", 2), "0+2 1 ."},
    {"each band gives what is merged so far", kDownHeight, 0, Column("...|.1.|...|.", 1),
     "0+1 . 0+1 1 0+1 . 0+1 ."},
    {"a band that goes on: its first line is not new", kDownHeight, 0, Column("11|1.", 2), "0+1 1 1+1 ."},
    {"a band that does not", kDownHeight, 0, SecondAt(3, Column("11|1.", 2)), "0+1 1 1+1 1"},
    {"the last line of every group", kDownHeight, 2, Column("abcde", 2), "0+2 c e"},
    {"no line ends in the first band", kDownHeight, 2, Column("ab|cde", 2), "0+0 0+2 e e"}};

TEST(Scale, ShowsTheRightPixels) {
  for (const PlainRow& row : kPlainRows)
    for (const Runs runs : {Runs::PerPixel, Runs::Merged}) {
      Case what = row.picture;
      what.scaleDownMethod = row.method;
      what.script.runs = runs;
      EXPECT_EQ(Given(RunScale(what, kScaleDrivers[row.driver].library)), row.given) << row.what;
    }
}

// An image of 10 at -5 goes to 30 at 40: a band at 7 lies at 21, and unsigned -5 * 30 / 10 is 429496714.
TEST(Scale, MovesBandsIntoTheDestination) {
  for (const auto& [width, left] : {std::pair{30, 21 + 40 - 429496714 % 65536 + 65536}, {10, 7 + 45}}) {
    Case what = StartOf(10, 1, Picture({"ab"}, width, 0));
    what.bands[0].left = 7;
    what.source.originX = -5;
    what.destination.originX = 40;
    EXPECT_EQ(WordAt(RunScale(what, kScaleDrivers[kUpWidth].library).handedOn[0], 4), left) << width;
  }
}

struct LevelRow {
  Case picture;         // the levels are the characters: \n is 10, ( 40, M 77, d 100
  const char* written;  // line and level of each pixel
};
const LevelRow kLevels[] = {{Column(".d", 4), "0:0 1:0 2:0 3:50 4:100"},  // the fifth is dropped
                            {Column(".|d", 4), "0:0 1:0 2:0 2:0 3:0"},
                            {Column("\n\n\n\n((((", 2), "0:10 1:32"},
                            {Picture({"..dd"}, 2, 0), "0:0 0:50"},
                            {Picture({".d"}, 4, 0), "0:0 0:0 0:0 0:50"},
                            {Picture({"MMM"}, 2, 0), "0:77 0:77"},
                            // 2699832239 of 3273 * 4910 units: one short of level 168, and beyond 31 bits
                            {StartOf(1, 3273, Column("\xA7\xA8\xA8", 4910)), "0:167 1:167 2:167 3:167"}};

TEST(ScaleSmooth, WeighsLinesAndPixels) {
  for (const LevelRow& row : kLevels) {
    std::string written;
    for (const Entry& pixel : RunScale(row.picture, kSmoothWorkers[2].library).Calls(Call::PackedPixel))
      written += " " + std::to_string(pixel.args[3]) + ":" + std::to_string(pixel.args[4]);
    EXPECT_EQ(written, std::string(" ") + row.written);
  }
}

struct PreparedRow {
  const char* what;
  std::uint8_t depth, colorFlags, preparedDepth;
  std::uint32_t pixel;
  int low, high;  // words of the prepared pixel
};
constexpr PreparedRow kPrepared[] = {{"five bits a channel, gray", 15, 0, 8, 0x7FFF, 248, 0},
                                     {"red is highest", 15, 0, 24, 0x7C01, 0x0008, 0xF8},
                                     {"less than three bits have no channels", 2, 0, 24, 3, 0, 0},
                                     {"a palette", 8, 0x80, 24, 2, 0x141E, 0x0A},
                                     {"the gray of a palette", 2, 0x80, 8, 2, 18, 0}};

TEST(ScaleSmooth, PreparesLevelsAndColors) {
  std::vector<IRGB> palette(256, {0, 0, 0});
  palette[2] = {10, 20, 30};
  for (const PreparedRow& row : kPrepared) {
    Case what = Picture({"."}, 0, 0);
    what.bands = {BandOf(false, row.depth, 1, {row.pixel})};
    what.source.palette = palette.data();
    what.source.colorFlags = row.colorFlags;
    what.source.bitsPerPixel = row.depth;
    what.destination.bitsPerPixel = row.preparedDepth;
    const auto band = RunScale(what, kSmoothWorkers[1].library).handedOn.at(0);
    const bool gray = row.preparedDepth == 8;  // the rest of the row is as it was allocated
    EXPECT_EQ(gray ? band.at(16) : WordAt(band, 16), row.low) << row.what;
    EXPECT_EQ(gray ? 0 : WordAt(band, 18), row.high) << row.what;
  }
}

}  // namespace

}  // namespace cvt::test

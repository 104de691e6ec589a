// The scalers against figures worked out by hand.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/library/scale_harness.h"

namespace cvt::test {

namespace {

enum Driver : std::size_t { kUpWidth, kUpHeight, kDownWidth, kDownHeight, kSmooth };

/// Lines of 8-bit pixels, a character each, '.' for value 0; "|" stands between bands.
ScaleCase Picture(const std::vector<std::string>& lines, int width, int height) {
  ScaleCase what;
  static_cast<Case&>(what) = PlainCase(false, 8, 8, 1, 0);
  what.bands.clear();
  std::uint16_t row = 0;
  const auto pixels = static_cast<std::uint16_t>(lines[0].size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i == 0 || lines[i] == "|") what.bands.push_back({false, 0, row, pixels, 0, 8, {}});
    if (lines[i] == "|") continue;
    ++row;
    ++what.bands.back().lineCount;
    for (const char c : lines[i]) what.bands.back().pixels.push_back(c == '.' ? 0 : static_cast<std::uint8_t>(c));
    if (pixels % 2 != 0) what.bands.back().pixels.push_back(0);
  }
  what.source.imageWidth = what.destination.imageWidth = pixels;
  what.source.imageHeight = what.destination.imageHeight = row;
  if (width != 0) what.destination.imageWidth = width;
  if (height != 0) what.destination.imageHeight = height;
  what.capacity = static_cast<std::uint16_t>(pixels + 2);
  what.linePixels = static_cast<std::size_t>(what.destination.imageWidth);
  what.destination.keepColor = '1';
  what.grayPalette = 1;
  return what;
}

/// The same with a pixel a line.
ScaleCase Column(const std::string& pixels, int height) {
  std::vector<std::string> lines;
  for (const char c : pixels) lines.emplace_back(1, c);
  return Picture(lines, 0, height);
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
  ScaleCase picture;
  const char* given;
};
const PlainRow kPlainRows[] = {
    {"two pixels on five: three and two", kUpWidth, 0, Picture({"ab"}, 5, 0), "0+1 aaabb"},
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
    {"at the very end too", kDownHeight, 0, Column("...1", 2), "0+2 . 1"},
    {"each band gives what is merged so far", kDownHeight, 0, Column("...|.1.|...|.", 1),
     "0+1 . 0+1 1 0+1 . 0+1 ."},
    {"a band that goes on: its first line is not new", kDownHeight, 0, Column("11|1.", 2), "0+1 1 1+1 ."},
    {"the last line of every group", kDownHeight, 2, Column("abcde", 2), "0+2 c e"},
    {"no line ends in the first band", kDownHeight, 2, Column("ab|cde", 2), "0+0 0+2 e e"}};

TEST(Scale, ShowsTheRightPixels) {
  for (const PlainRow& row : kPlainRows)
    for (const Runs runs : {Runs::PerPixel, Runs::Merged}) {
      ScaleCase what = row.picture;
      what.scaleDownMethod = row.method;
      what.script.runs = runs;
      EXPECT_EQ(Given(RunScale(what, kScaleDrivers[row.driver].library)), row.given) << row.what;
    }
}

TEST(Scale, ForgetsWhatABandDoesNotContinue) {
  ScaleCase what = Column("11|1.", 2);
  what.bands[1].top = 3;
  what.source.imageHeight = 4;
  EXPECT_EQ(Given(RunScale(what, kScaleDrivers[kDownHeight].library)), "0+1 1 1+1 1");
}

TEST(Scale, DropsThePixelThatDoesNotFit) {  // 4 on 5: three pixels become four, and the band holds three
  ScaleCase what = Picture({"abc"}, 5, 0);
  what.source.imageWidth = 4;
  EXPECT_EQ(Given(RunScale(what, kScaleDrivers[kUpWidth].library)), "0+1 aab");
}

TEST(Scale, SplitsAtSixtyFiveThousandBytes) {
  ScaleCase what = Picture({std::string(500, 'x')}, 1000, 0);
  what.bands[0].lineCount = 100;
  what.bands[0].pixels.assign(50000, 'x');
  const Outcome outcome = RunScale(what, kScaleDrivers[kUpWidth].library);
  ASSERT_EQ(outcome.handedOn.size(), 2u);
  EXPECT_EQ(WordAt(outcome.handedOn[1], 6), 50);
  for (const auto& band : outcome.handedOn) EXPECT_EQ(band.size(), 50016u);
}

TEST(Scale, AsksForeverWhenABandEndsBeforeTheNextLine) {
  ScaleCase what = Column("abcd|ef", 12);
  what.bands[1].top = 0;
  const Outcome outcome = RunScale(what, kScaleWorkers[3].library);
  EXPECT_EQ(outcome.statuses, (std::vector<std::int16_t>{0, 1}));
  EXPECT_EQ(WordAt(outcome.handedOn.back(), 10), 0);
}

TEST(Scale, RelabelsPackedBandsAsTheyAreStored) {
  for (std::size_t driver = kUpWidth; driver <= kDownHeight; ++driver)
    for (const std::uint8_t method : std::initializer_list<std::uint8_t>{0, kDecimate}) {
      ScaleCase what = Picture({"abcd"}, driver <= kUpHeight ? 20 : 2, driver <= kUpHeight ? 20 : 2);
      what.source.imageHeight = 12;
      what.bands[0].width = 1;
      what.bands[0].depth = 24;
      what.scaleDownMethod = method;
      EXPECT_EQ(WordAt(RunScale(what, kScaleDrivers[driver].library).inputs[0], 12), 32) << driver;
    }
}

// An image of 10 at -5 goes to 30 at 40: a band at 7 lies at 21, and unsigned -5 * 30 / 10 is 429496714.
TEST(Scale, MovesBandsIntoTheDestination) {
  ScaleCase what = Picture({"ab"}, 30, 0);
  what.source.imageWidth = 10;
  what.bands[0].left = 7;
  what.source.originX = -5;
  what.destination.originX = 40;
  const int left = WordAt(RunScale(what, kScaleDrivers[kUpWidth].library).handedOn[0], 4);
  EXPECT_EQ(left, 21 + 40 - 429496714 % 65536 + 65536);
  what.destination.imageWidth = 10;
  const Outcome moved = RunScale(what, kScaleDrivers[kUpWidth].library);
  EXPECT_EQ(WordAt(moved.handedOn[0], 4), 7 + 45);
  EXPECT_EQ(moved.log.size(), 3u);  // copy, convertProc, disposal
}

TEST(Scale, PutsOtherOperationsOnTheList) {
  for (std::size_t driver = kUpWidth; driver <= kDownHeight; ++driver) {
    ScaleCase what = driver <= kUpHeight ? Picture({"ab", "cd"}, 9, 9) : Picture({"ab", "cd"}, 1, 1);
    what.operationCode = 22;
    const Outcome outcome = RunScale(what, kScaleDrivers[driver].library);
    ASSERT_EQ(outcome.log.size(), 3u) << driver;
    EXPECT_EQ(outcome.log[1], (Entry{Call::PutOp, {-5, 7}})) << driver;  // the list; the seventh block
    EXPECT_TRUE(outcome.leftAllocated.empty() && outcome.statuses[0] == kCvtOk) << driver;
  }
}

// The first lines of an image that is higher than they are.
ScaleCase StartOf(int height, ScaleCase what) {
  what.source.imageHeight = height;
  return what;
}

struct LevelRow {
  ScaleCase picture;    // the levels are the characters: \n is 10, ( 40, M 77, d 100
  const char* written;  // line and level of each pixel
};
const LevelRow kLevels[] = {{Column(".d", 4), "0:0 1:0 2:0 3:50 4:100"},  // the fifth is dropped
                            {Column(".|d", 4), "0:0 1:0 2:0 2:0 3:0"},
                            {Column("\n\n\n\n((((", 2), "0:10 1:32"},
                            {Picture({"..dd"}, 2, 0), "0:0 0:50"},
                            {Picture({".d"}, 4, 0), "0:0 0:0 0:0 0:50"},
                            {Picture({"MMM"}, 2, 0), "0:77 0:77"},
                            // 2699832239 of 3273 * 4910 units: one short of level 168, and beyond 31 bits
                            {StartOf(3273, Column("\xA7\xA8\xA8", 4910)), "0:167 1:167 2:167 3:167"}};

TEST(ScaleSmooth, WeighsLinesAndPixels) {
  for (const LevelRow& row : kLevels) {
    std::string written;
    for (const Entry& pixel : RunScale(row.picture, kSmoothWorkers[2].library).Calls(Call::PackedPixel))
      written += " " + std::to_string(pixel.args[3]) + ":" + std::to_string(pixel.args[4]);
    EXPECT_EQ(written, std::string(" ") + row.written);
  }
}

TEST(ScaleSmooth, DoesNotReadABandThatEndsNoLine) {
  const Outcome outcome = RunScale(Column("abc|def|ghi|j", 1), kSmoothWorkers[2].library);
  std::vector<std::int64_t> rows;
  for (const Entry& read : outcome.Calls(Call::ReadPacked)) rows.push_back(read.args[4]);
  EXPECT_EQ(rows, (std::vector<std::int64_t>{0, 9}));  // the first line of all, and the band that ends a line
}

struct PreparedRow {
  const char* what;
  std::uint8_t depth, colorFlags, preparedDepth;
  std::uint32_t pixel;
  std::int64_t value;
};
constexpr PreparedRow kPrepared[] = {{"five bits a channel, gray", 15, 0, 8, 0x7FFF, 248},
                                     {"five bits a channel", 15, 0, 24, 0x7FFF, 0xF8F8F8},
                                     {"red is highest", 15, 0, 24, 0x7C00, 0xF80000},
                                     {"less than three bits have no channels", 2, 0, 24, 3, 0},
                                     {"a palette", 8, 0x80, 24, 2, 0x0A141E},
                                     {"the gray of a palette", 2, 0x80, 8, 2, 18}};

TEST(ScaleSmooth, PreparesLevelsAndColors) {
  for (const PreparedRow& row : kPrepared) {
    ScaleCase what = Picture({"."}, 0, 0);
    what.palette.assign(256, {0, 0, 0});
    what.palette[2] = {10, 20, 30};
    what.source.colorFlags = row.colorFlags;
    what.bands[0].depth = what.source.bitsPerPixel = row.depth;
    what.destination.bitsPerPixel = row.preparedDepth;
    const std::uint32_t stored = row.depth < 8 ? row.pixel << (8 - row.depth) : row.pixel;
    for (std::size_t k = 0; k < 2; ++k) what.bands[0].pixels[k] = static_cast<std::uint8_t>(stored >> 8 * k);
    const auto band = RunScale(what, kSmoothWorkers[1].library).handedOn.at(0);
    std::int64_t value = WordAt(band, 16);
    if (row.preparedDepth == 8) value &= 255;  // the rest of the row is as it was allocated
    if (row.preparedDepth != 8) value |= std::int64_t{WordAt(band, 18)} << 16;
    EXPECT_EQ(value, row.value) << row.what;
  }
}

// Four bytes a line within 12: n is 4 at first, L 10 / 4 = 2, and 4 lines would be left for the last.
TEST(ScaleSmooth, CutsWhatItPrepares) {
  ScaleCase what = Picture(std::vector<std::string>(10, "abcd"), 0, 0);
  what.bandLimit = 12;
  std::string pieces;
  for (const auto& band : RunScale(what, kSmoothWorkers[1].library).handedOn)
    pieces += std::to_string(WordAt(band, 6)) + "+" + std::to_string(WordAt(band, 10)) + " ";
  EXPECT_EQ(pieces, "0+2 2+2 4+2 6+2 8+2 ");
  what.bandLimit = 3;
  EXPECT_EQ(RunScale(what, kSmoothWorkers[1].library).statuses[0], kCvtNoMemory);
}

TEST(ScaleSmooth, ChoosesGrayOrColor) {
  // Source and destination depth, grayPalette, the host's answer; depth of the result, whether the host is asked.
  static constexpr std::uint8_t kRows[][6] = {{1, 8, 0, 0, 8, 0},  {8, 1, 0, 0, 8, 0},  {8, 8, 1, 0, 8, 0},
                                              {8, 8, 0, 0, 32, 1}, {8, 8, 2, 0, 32, 1}, {8, 8, 0, 1, 8, 1}};
  for (const auto& row : kRows) {
    ScaleCase what = Picture({"ab"}, 1, 0);
    what.source.bitsPerPixel = row[0];
    what.destination.bitsPerPixel = row[1];
    what.grayPalette = row[2];
    what.script.isGray = row[3] == 0 ? 0 : 256;
    const Outcome outcome = RunScale(what, kScaleDrivers[kSmooth].library);
    EXPECT_EQ(WordAt(outcome.handedOn.at(0), 12), row[4]) << int{row[0]} << int{row[1]} << int{row[2]};
    EXPECT_EQ(outcome.Calls(Call::IsGray).size(), row[5]);
  }
}

// Six columns from `from` on become `width` columns from `to` on: averaged where they end elsewhere.
TEST(ScaleSmooth, IsDueWhereTheImagesEndsDiffer) {
  static constexpr std::int16_t kRows[][4] = {{0, 0, 5, 1}, {0, 1, 6, 1}, {0, 1, 5, 0}, {-1, 0, 5, 0}};
  for (const auto& [from, to, width, smooth] : kRows) {
    ScaleCase what = Picture({"abcdef"}, width, 0);
    what.source.options = kSmoothOption;
    what.source.originX = from;
    what.destination.originX = to;
    EXPECT_NE(RunScale(what, Cvtr2r).Calls(Call::PackedPixel).empty(), smooth == 1) << from << " to " << to;
  }
}

}  // namespace

}  // namespace cvt::test

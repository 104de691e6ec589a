// Direct colour, clipping, dithers and diffusion to palettes, against figures worked out by hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>

#include "tests/library/color_cases.h"

namespace cvt::test {

namespace {

using Bytes = std::vector<std::uint8_t>;
using Ints = std::vector<int>;

// One band, its pixels as given, and tables of thresholds 126 that a test fills in.
ColorCase Packed(int from, int to, int width, int lines, const Bytes& pixels) {
  ColorCase what;
  what.base = PlainCase(false, from, to, width, lines);
  what.base.source.palette = GrayRamp();
  what.base.halftoneMethod = kDiffusion;
  what.base.errorRow.assign(3u * what.base.capacity, 0);
  std::copy(pixels.begin(), pixels.end(), what.base.bands[0].pixels.begin());
  what.matrix.assign(64, 126);
  what.steps.assign(2048, 0);
  return what;
}

Bytes Pixels(const Bytes& band) { return {band.begin() + 16, band.end()}; }

struct StoreCase {
  const char* what;
  const char* routine;
  int from, to;
  std::uint8_t colorFlags;
  std::uint32_t value;
  Bytes stored;
};
const StoreCase kStores[] = {
    {"planes: red and green", "CvtBitRGBPacked", 3, 24, 0, 3, {0, 128, 128, 0}},
    {"a gray of a palette in five bits", "CvtByteRGBPacked", 8, 16, kIndexedColor, 255, {0xFF, 0x7F}},
    {"blue 31, green 31, red 0, and a bit too many", "CvtByteRGBPacked", 16, 24, 0, 0x83FF, {248, 248, 0, 0}},
    {"an index of more than 16 bits", "CvtBitRGBPacked", 17, 24, kIndexedColor, 65538, {3, 2, 1, 0}}};

TEST(DirectColor, StoresChannels) {
  std::vector<IRGB> palette(GrayRamp(), GrayRamp() + 256);
  palette.resize(65539);
  palette[65538] = {1, 2, 3};
  for (const StoreCase& c : kStores) {
    const Member& member = MemberNamed(c.routine);
    Case what = PlainCase(member.which.fromPlanes, c.from, c.to, 1, 1);
    what.bands = {BandOf(member.which.fromPlanes, c.from, 1, {c.value})};
    what.source.colorFlags = c.colorFlags;
    what.source.palette = palette.data();
    EXPECT_EQ(Pixels(RunCase(what, member.library).handedOn.at(0)), c.stored) << c.what;
  }
}

tagIGFD handedDescriptor;  // of the last band
CvtStatus CVT_CALL KeepDescriptor(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                  tagCRLA* context) {
  handedDescriptor = *source;
  return ScriptedConvert(band, source, destination, context);
}

struct ClipRow {
  const char* what;
  std::uint16_t top;
  int width;
  std::int16_t x0, y0, x1, y1;
  const char* piece;
  int complete;
  std::size_t reads;
};
constexpr ClipRow kClips[] = {{"inside, to the last line", 4, 8, 3, 4, 11, 14, "4+10", 0, 0},
                              {"ends where the clip starts", 0, 8, 3, 10, 11, 14, "10+0", 0, 0},
                              {"below", 11, 8, 3, 4, 11, 10, "11+0", 1, 0},
                              {"above: line 65540 is line 4", 65530, 9, 3, 5, 11, 20, "65530+0", 0, 0},
                              {"starts where the clip ends", 11, 9, 3, 4, 11, 11, "11+0", 1, 0},
                              {"clip within the band", 0, 8, 3, 4, 11, 7, "4+3", 1, 3},
                              {"same lines, fewer columns", 0, 8, 4, 0, 10, 10, "0+10", 1, 10},
                              // line 32768 counts as -32768: as many lines are read as lie between it and 32770
                              {"beyond line 32767", 32760, 8, 3, -32768, 11, -32700, "32768+2", 0, 65538}};

TEST(Clip, KeepsTheSharedLines) {
  for (const ClipRow& c : kClips)
    for (const bool planes : {true, false}) {
      if (planes && c.reads > 10) continue;  // planes would be moved by as many rows
      SCOPED_TRACE(c.what);
      Case what = PlainCase(planes, 8, 8, c.width, 10);
      what.bands[0].left = 3;
      what.bands[0].top = c.top;
      tagIGFD& source = what.source;
      source.clipX0 = c.x0;
      source.clipY0 = c.y0;
      source.clipX1 = c.x1;
      source.clipY1 = c.y1;
      const Outcome outcome =
          RunCase(what, MemberNamed(planes ? "CvtClipPlane" : "CvtClipPacked").library, KeepDescriptor);
      EXPECT_EQ(outcome.Pieces(), c.piece);
      EXPECT_EQ(int{handedDescriptor.clipComplete}, c.complete);
      EXPECT_EQ(outcome.Calls(planes ? Call::ReadPlane : Call::ReadPacked).size(), c.reads);
    }
}

TEST(Clip, PacksPlanesTogether) {
  Case what = PlainCase(true, 2, 8, 40, 2);
  what.bands[0].pixels = {1, 2, 3, 4, 5, 0, 11, 12, 13, 14, 15, 0, 21, 22, 23, 24, 25, 0, 31, 32, 33, 34, 35, 0};
  what.source.clipX0 = 8;
  what.source.clipX1 = 24;
  what.source.clipY1 = 2;
  const Bytes band = RunCase(what, MemberNamed("CvtClipPlane").library).handedOn.at(0);
  EXPECT_EQ(WordAt(band, 8), 16);  // its width
  EXPECT_EQ(WordAt(band, 14), 4);  // planeBytes
  EXPECT_EQ(Bytes(band.begin() + 16, band.begin() + 24), (Bytes{2, 3, 12, 13, 22, 23, 32, 33}));
}

TEST(MonoDither, AnchorsThresholdsAtTheImage) {
  ColorCase what = Packed(8, 1, 6, 1, {100, 100, 100, 100, 101, 0});
  what.base.bands[0].left = 5;
  what.base.bands[0].top = 3;
  what.base.halftoneMethod = kFixedBlock;  // means nothing here
  what.matrix = {9, 9, 9, 9, 255, 99, 100, 0};
  what.ditherWidth = 4;
  what.ditherHeight = 2;
  EXPECT_EQ(RunColorCase(what, CvtMonochromeDitherByteByte).Args(Call::PackedPixel, 4),
            (Ints{1, 0, 1, 0, 1, 0}));  // columns 1 2 3 0 1 2 of row 1; a tie is black
}

// 65 rows of 512 bytes, which nearest colour alone would take for a negative number.
TEST(PlaneOutput, AsksForPlanesOfMoreThan32767Bytes) {
  for (const char* name : {"CvtMonochromeDitherBitBit", "CvtColorDitherBitBit", "CvtByteRGBPlane"}) {
    ColorCase what = Packed(1, 1, 4096, 65, {});
    what.base.bands[0].planes = MemberNamed(name).which.fromPlanes;
    what.base.script.failAllocAt = 2;  // the band; the cursor is the first
    EXPECT_EQ(RunColorCase(what, MemberNamed(name).library).Args(Call::CreateOp, 1), Ints{33292}) << name;
  }
}

struct ErrorRow {
  const char* what;
  Bytes grays;
  std::int16_t owed;   // for the first pixel, times 16
  std::uint8_t shown;  // the palette is nothing but this gray
  std::vector<std::int16_t> after;
};
const ErrorRow kErrors[] = {{"3 is too little", {3}, 0, 0, {0}},
                            {"7 counts as 4", {7}, 0, 0, {20}},
                            {"-7 counts as -4", {3}, 0, 10, {-20}},
                            {"errors count from 255", {250}, 640, 200, {260}},
                            {"errors count from 0", {5}, -160, 20, {-100}},
                            {"-1 sixteenth is -1", {8}, -1, 3, {20}},
                            {"weights 7 3 5 1", {15, 10}, 0, 0, {96, 72}}};

TEST(ColorDiffusion, SpreadsErrorsInStepsOfFour) {
  for (const char* name : {"CvtColorDiffusionByteByte", "CvtColorDiffusionByteBit", "CvtShortCutDiffusionByte"})
    for (const ErrorRow& c : kErrors) {
      ColorCase what = Packed(8, 8, static_cast<int>(c.grays.size()), 1, c.grays);
      std::vector<IRGB> shown(65536, {c.shown, c.shown, c.shown});
      what.base.destination.palette = shown.data();
      what.base.gammaActive = 1;  // for direct colour; keeps the short-cut away
      for (std::size_t i = 0; i < 3; ++i) what.base.errorRow[i] = c.owed;
      std::vector<std::int16_t> after;
      for (const std::int16_t e : c.after) after.insert(after.end(), {e, e, e});
      EXPECT_EQ(RunColorCase(what, MemberNamed(name).library).errorRow, after) << c.what << ", " << name;
    }
}

TEST(ColorDiffusion, ScalesFiveBitsPlainlyAndTheShortCutInFull) {
  ColorCase what = Packed(15, 8, 1, 1, {0x1F, 0x42});  // blue 31, green 16, red 16
  what.base.source.colorFlags = 0;
  for (const bool shortCut : {true, false}) {
    what.base.invertMono = shortCut ? 0 : 1;
    const Entry sought = RunColorCase(what, CvtColorDiffusionByteByte).Calls(Call::Cube).at(0);
    EXPECT_EQ(sought.args[1], shortCut ? 132 : 128);
    EXPECT_EQ(sought.args[3], shortCut ? 255 : 248);
  }
}

std::int16_t otherErrorRow[6];
CvtStatus CVT_CALL ChangeErrorRow(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                  tagCRLA* context) {
  context->errorRow = otherErrorRow;
  return ScriptedConvert(band, source, destination, context);
}

TEST(ColorDiffusion, KeepsToTheErrorRowThatACallStartsWith) {
  RunColorCase(Packed(4, 8, 2, 2, {0x77, 0, 0x77, 0}), CvtColorDiffusionByteByte,
               ChangeErrorRow);  // two sub-bands
  for (const std::int16_t entry : otherErrorRow) EXPECT_EQ(entry, 0);
}

TEST(ShortCut, StaysTakenAndThenRefusesFourBits) {
  ColorCase what = Packed(24, 5, 3, 1, {1, 2, 3, 77, 4, 5, 6, 77, 7, 8, 9, 77});
  what.base.bands.push_back({false, 0, 1, 3, 1, 4, {0x12, 0x30}});
  const Outcome outcome = RunColorCase(what, CvtColorDiffusionByteByte);
  EXPECT_EQ(outcome.statuses, (std::vector<std::int16_t>{kCvtOk, kCvtWrongDepth}));
  EXPECT_EQ(WordAt(outcome.handedOn.at(0), 12), 8);  // its depth
  EXPECT_EQ(outcome.inputs.at(0).at(19), 77);        // the byte that completes the row
  EXPECT_EQ(Pixels(outcome.inputs.at(1)), (Bytes{0x12, 0x30}));
  EXPECT_EQ(outcome.Args(Call::Cube, 1).at(0), 3);  // red stands third
}

TEST(ShortCut, IsRefusedWhateverTheSettingsBitsAre) {
  for (const auto& [gamma, invert, gray, taken] :
       {std::array{0, 0, 0, 1}, {0x100, 0, 0, 0}, {0, 2, 0, 0}, {0, 0, 2, 0}}) {
    ColorCase what = Packed(8, 8, 1, 1, {});
    what.base.gammaActive = Word(gamma);
    what.base.invertMono = Byte(invert);
    what.base.grayPalette = Byte(gray);
    EXPECT_EQ(RunColorCase(what, MemberNamed("CvtCanShortCutDiffusion").library).statuses.at(0), taken);
  }
}

struct PushCase {
  const char* what;
  IRGB color;
  std::uint8_t threshold, direction;
  int red, green, blue;
};
constexpr PushCase kPushes[] = {{"dark, up", {50, 60, 70}, 254, 7, 114, 124, 134},
                                {"dark, down", {50, 60, 70}, 62, 0, 18, 28, 38},
                                {"red falls", {200, 50, 60}, 62, 3, 168, 82, 92},
                                {"blue rises", {200, 210, 60}, 254, 1, 136, 146, 124},
                                {"even octants round up", {204, 210, 60}, 135, 1, 199, 205, 65},
                                {"126 moves nothing", {1, 200, 130}, 126, 2, 1, 200, 130},
                                {"held to 255", {200, 250, 255}, 254, 7, 255, 255, 255}};

TEST(ColorDither, PushesColorsAlongTheirDiagonal) {
  for (const PushCase& c : kPushes) {
    ColorCase what = Packed(8, 8, 1, 1, {});
    std::vector<std::uint8_t> table(kTableBytes, 1);
    const int cell = c.red / 8 * 1024 + c.green / 8 * 32 + c.blue / 8;
    table[static_cast<std::size_t>(cell)] = 9;
    if (c.threshold != 126) what.steps[8u + c.direction] = 64;  // of entry 1
    what.matrix = {126, 126, 126, 126, 126, c.threshold};
    what.ditherWidth = 3;
    what.ditherHeight = 2;
    World world({}, 1, {0});
    PutTables(world, what);
    world.context.searchTable = table.data();
    IRGB color = c.color;
    EXPECT_EQ(CvtGetDitherIndex(nullptr, nullptr, &world.context, 3 * 7 + 2, 2 * 5 + 1, &color), 9) << c.what;
  }
}

struct CubeCase {
  int depth;
  std::uint8_t threshold;   // that pushes nothing
  std::vector<int> levels;  // the least value of each level but the last, the brightest first
};
const CubeCase kCubes[] = {{3, 0, {128}},
                           {4, 0, {128}},
                           {5, 127, {191, 63}},
                           {6, 124, {212, 127, 42}},
                           {7, 129, {223, 159, 95, 31}},
                           {8, 130, {231, 180, 129, 78, 27}}};

TEST(ColorDither, PlacesEveryLevelInTheCube) {
  Bytes ramp(256);
  std::iota(ramp.begin(), ramp.end(), std::uint8_t{0});
  for (const CubeCase& c : kCubes) {
    ColorCase what = Packed(8, c.depth, 256, 1, ramp);
    what.matrix.assign(64, c.threshold);
    const std::size_t n = c.levels.size() + 1;
    what.cube.assign(n * n * n, 99);
    for (std::size_t level = 0; level < n; ++level)
      what.cube[level * (1 + n + n * n)] = static_cast<std::uint8_t>(level);
    const Ints levels = RunColorCase(what, CvtColorDitherByteByte).Args(Call::PackedPixel, 4);
    for (int v = 0; v < 256; ++v)
      EXPECT_EQ(levels.at(static_cast<std::size_t>(v)),
                std::count_if(c.levels.begin(), c.levels.end(), [v](int least) { return v < least; }))
          << v << " of " << n;
  }
}

// 3 rows of 2 thresholds: signed, -128 and 127. Row 0 serves column 2, row 1 column 0.
TEST(ColorDither, LooksOneColumnAheadAndTurnsTheMatrixForCubes) {
  ColorCase what = Packed(8, 3, 3, 2, {128, 128, 128, 0, 127, 127, 127, 0});
  what.cube = {0, 9, 9, 9, 9, 9, 9, 1};
  what.matrix = {128, 0, 0, 127, 0, 0};
  what.ditherWidth = 2;
  what.ditherHeight = 3;
  EXPECT_EQ(RunColorCase(what, CvtColorDitherByteByte).Args(Call::PackedPixel, 4), (Ints{0, 0, 1, 0, 1, 1}));
}

}  // namespace

}  // namespace cvt::test

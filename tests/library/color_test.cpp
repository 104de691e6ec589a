// Direct colour, clipping, dithers and diffusion to palettes, against figures worked out by hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "tests/library/color_cases.h"

namespace cvt::test {

namespace {

using Bytes = std::vector<std::uint8_t>;

BandRoutine RoutineNamed(const std::string& name) {
  for (const ColorMember& member : kColorMembers)
    if (name == member.name) return member.library;
  return nullptr;
}

const std::vector<IRGB>& Grays() {
  static const std::vector<IRGB> ramp = [] {
    std::vector<IRGB> made(256);
    for (std::size_t n = 0; n < 256; ++n) {
      const auto level = static_cast<std::uint8_t>(n);
      made[n] = {level, level, level};
    }
    return made;
  }();
  return ramp;
}

// One band, its pixels as given, and tables of thresholds 126 that a test fills in.
ColorCase Packed(std::uint8_t from, std::uint8_t to, std::uint16_t width, std::uint16_t lines,
                 const Bytes& pixels) {
  ColorCase what;
  what.base = PlainCase(false, from, to, width, lines);
  what.base.source.palette = const_cast<IRGB*>(Grays().data());
  what.base.halftoneMethod = kDiffusion;
  what.base.errorRow.assign(3u * width, 0);
  std::copy(pixels.begin(), pixels.end(), what.base.bands[0].pixels.begin());
  what.matrix.assign(64, 126);
  what.steps.assign(2048, 0);
  return what;
}

std::vector<int> Args(const Outcome& outcome, Call call, std::size_t which) {
  std::vector<int> found;
  for (const Entry& entry : outcome.Calls(call)) found.push_back(static_cast<int>(entry.args[which]));
  return found;
}

// Left, top, width, lines, depth of a band that was handed on, and the bytes of its pixels.
std::array<int, 5> Header(const Bytes& band) {
  std::array<int, 5> words{};
  for (std::size_t i = 0; i < words.size(); ++i) words[i] = WordAt(band, 4 + 2 * i);
  return words;
}
Bytes Pixels(const Bytes& band) { return {band.begin() + 16, band.end()}; }

struct SplitCase {
  const char* routine;
  std::uint8_t from, to;
  std::uint16_t lines;
  std::vector<int> pieces;
};
const SplitCase kSplits[] = {{"CvtBitRGBPacked", 3, 24, 10, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1}},
                             {"CvtByteRGBPacked", 8, 24, 10, {2, 2, 2, 2, 2}},
                             {"CvtByteRGBPlane", 8, 16, 7, {1, 1, 1, 1, 1, 1, 1}},
                             {"CvtByteRGBPacked", 16, 24, 7, {4, 3}},
                             {"CvtByteRGBPacked", 16, 24, 1, {1, 0}},
                             {"CvtByteRGBPacked", 24, 32, 7, {7}},
                             {"CvtByteRGBPacked", 8, 24, 0, {}},
                             {"CvtByteRGBPacked", 32, 16, 3, {3}}};

TEST(DirectColor, CutsBandsEvenly) {
  for (const SplitCase& c : kSplits) {
    Case what = PlainCase(std::string(c.routine).find("CvtBit") == 0, c.from, c.to, 5, c.lines);
    std::vector<int> pieces;
    for (const Bytes& band : RunCase(what, RoutineNamed(c.routine)).handedOn) pieces.push_back(Header(band)[3]);
    EXPECT_EQ(pieces, c.pieces) << c.routine << ' ' << int{c.from} << " to " << int{c.to};
  }
}

TEST(DirectColor, StoresChannels) {
  Case planes = PlainCase(true, 3, 24, 1, 1);
  planes.source.colorFlags = 0;
  planes.bands[0].pixels = {0x80, 0, 0x80, 0, 0, 0};  // 3: red and green
  EXPECT_EQ(Pixels(RunCase(planes, RoutineNamed("CvtBitRGBPacked")).handedOn.at(0)), (Bytes{0, 128, 128, 0}));
  EXPECT_EQ(Pixels(RunColorCase(Packed(8, 16, 1, 1, {255}), CvtByteRGBPacked).handedOn[0]), (Bytes{0xFF, 0x7F}));
  ColorCase fives = Packed(16, 24, 1, 2, {0xFF, 0x83, 0, 0});  // blue 31, green 31, red 0, and a bit too many
  fives.base.source.colorFlags = 0;
  EXPECT_EQ(Pixels(RunColorCase(fives, CvtByteRGBPacked).handedOn.at(0)), (Bytes{248, 248, 0, 0}));
  std::vector<IRGB> palette(65539, {9, 9, 9});
  palette[65538] = {1, 2, 3};
  Case deep = PlainCase(true, 17, 24, 1, 1);  // indices of more than 16 bits
  deep.source.palette = palette.data();
  deep.bands[0].pixels[2 * 1] = deep.bands[0].pixels[2 * 16] = 0x80;
  EXPECT_EQ(Pixels(RunCase(deep, RoutineNamed("CvtBitRGBPacked")).handedOn.at(0)), (Bytes{3, 2, 1, 0}));
}

TEST(DirectColor, HandsOnWhatHasTheDepthAlready) {
  const Outcome same = RunColorCase(Packed(8, 8, 3, 1, {1, 2, 3}), CvtByteRGBPacked);
  EXPECT_TRUE(same.log.size() == 3 && same.handedOn.at(0) == same.inputs.at(0));
  for (const auto word : {&ColorCase::colorAdjust1, &ColorCase::colorAdjust2}) {
    ColorCase adjusted = Packed(8, 8, 3, 1, {1, 2, 3});
    adjusted.*word = 0x100;
    EXPECT_GT(RunColorCase(adjusted, CvtByteRGBPacked).log.size(), 3u);
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
  std::uint16_t top, width;
  std::int16_t x0, y0, x1, y1;
  int topAfter, lines, complete;
  std::size_t reads;
};
constexpr ClipRow kClips[] = {{"inside, to the last line", 4, 8, 3, 4, 11, 14, 4, 10, 0, 0},
                              {"above", 0, 8, 3, 11, 11, 14, 0, 0, 0, 0},
                              {"ends where the clip starts", 0, 8, 3, 10, 11, 14, 10, 0, 0, 0},
                              {"below", 11, 8, 3, 4, 11, 10, 11, 0, 1, 0},
                              {"starts where the clip ends", 11, 9, 3, 4, 11, 11, 11, 0, 1, 0},
                              {"clip within the band", 0, 8, 3, 4, 11, 7, 4, 3, 1, 3},
                              {"clip from within the band", 0, 8, 3, 2, 11, 20, 2, 8, 0, 8},
                              {"same lines, fewer columns", 0, 8, 4, 0, 10, 10, 0, 10, 1, 10}};

TEST(Clip, KeepsTheSharedLines) {
  for (const ClipRow& c : kClips)
    for (const bool planes : {true, false}) {
      Case what = PlainCase(planes, 8, 8, c.width, 10);
      what.bands[0].left = 3;
      what.bands[0].top = c.top;
      tagIGFD& source = what.source;
      source.options = 0xFFFF;
      source.clipX0 = c.x0;
      source.clipY0 = c.y0;
      source.clipX1 = c.x1;
      source.clipY1 = c.y1;
      const Outcome outcome =
          RunCase(what, RoutineNamed(planes ? "CvtClipPlane" : "CvtClipPacked"), KeepDescriptor);
      EXPECT_EQ(Header(outcome.handedOn.at(0))[1], c.topAfter) << c.what;
      EXPECT_EQ(Header(outcome.handedOn.at(0))[3], c.lines) << c.what;
      EXPECT_EQ(int{handedDescriptor.clipComplete}, c.complete) << c.what;
      EXPECT_EQ(outcome.Calls(planes ? Call::ReadPlane : Call::ReadPacked).size(), c.reads) << c.what;
      EXPECT_EQ(int{handedDescriptor.options}, 0xFF7F);
      EXPECT_EQ(std::int32_t{handedDescriptor.imageWidth}, c.x1 - c.x0);
    }
}

// Line 32768 is chosen and counts as -32768 from there on: as many lines are read as lie between it and 32770.
TEST(Clip, ReadsTheChosenLineAsSigned) {
  Case what = PlainCase(false, 8, 8, 8, 10);
  what.bands[0].top = 32760;
  what.source.clipX1 = 8;
  what.source.clipY0 = -32768;
  what.source.clipY1 = -32700;
  const Outcome outcome = RunCase(what, RoutineNamed("CvtClipPacked"));
  EXPECT_EQ(outcome.Calls(Call::ReadPacked).size(), 65538u);
  EXPECT_EQ(Header(outcome.handedOn.at(0)), (std::array<int, 5>{0, 32768, 8, 2, 8}));
}

TEST(Clip, PacksPlanesTogether) {
  Case what = PlainCase(true, 2, 8, 40, 2);
  what.bands[0].pixels = {1, 2, 3, 4, 5, 0, 11, 12, 13, 14, 15, 0, 21, 22, 23, 24, 25, 0, 31, 32, 33, 34, 35, 0};
  what.source.clipX0 = 8;
  what.source.clipX1 = 24;
  what.source.clipY1 = 2;
  const Bytes band = RunCase(what, RoutineNamed("CvtClipPlane")).handedOn.at(0);
  EXPECT_EQ(Header(band), (std::array<int, 5>{8, 0, 16, 2, 2}));
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
  EXPECT_EQ(Args(RunColorCase(what, CvtMonochromeDitherByteByte), Call::PackedPixel, 4),
            (std::vector<int>{1, 0, 1, 0, 1, 0}));  // columns 1 2 3 0 1 2 of row 1; a tie is black
}

struct ErrorRow {
  const char* what;
  Bytes grays;
  std::int16_t owed;   // for the first pixel, times 16
  std::uint8_t shown;  // the palette is nothing but this gray
  std::vector<std::int16_t> after;
};
const ErrorRow kErrors[] = {{"3 is too little", {3}, 0, 0, {0}},
                            {"so is -3", {7}, 0, 10, {0}},
                            {"7 counts as 4", {7}, 0, 0, {20}},
                            {"-7 counts as -4", {3}, 0, 10, {-20}},
                            {"errors count from 255", {250}, 640, 200, {260}},
                            {"errors count from 0", {5}, -160, 20, {-100}},
                            {"-1 sixteenth is -1", {8}, -1, 3, {20}},
                            {"weights 7 3 5 1", {7, 7}, 0, 0, {44, 44}}};

TEST(ColorDiffusion, SpreadsErrorsInStepsOfFour) {
  for (const char* name : {"CvtColorDiffusionByteByte", "CvtColorDiffusionByteBit", "CvtShortCutDiffusionByte"})
    for (const ErrorRow& c : kErrors) {
      ColorCase what = Packed(8, 8, static_cast<std::uint16_t>(c.grays.size()), 1, c.grays);
      const std::vector<IRGB> shown(65536, {c.shown, c.shown, c.shown});
      what.base.destination.palette = const_cast<IRGB*>(shown.data());
      what.base.gammaActive = 1;  // for direct colour; keeps the short-cut away
      for (std::size_t i = 0; i < 3; ++i) what.base.errorRow[i] = c.owed;
      std::vector<std::int16_t> after;
      for (const std::int16_t e : c.after) after.insert(after.end(), {e, e, e});
      EXPECT_EQ(RunColorCase(what, RoutineNamed(name)).errorRow, after) << c.what << ", " << name;
    }
}

TEST(ColorDiffusion, ScalesFiveBitsPlainlyAndTheShortCutInFull) {
  ColorCase what = Packed(15, 8, 1, 1, {0x1F, 0x42});  // blue 31, green 16, red 16
  what.base.source.colorFlags = 0;
  using Sought = std::array<std::int64_t, 3>;
  const auto sought = [&what](BandRoutine routine) {
    const Entry call = RunColorCase(what, routine).Calls(Call::Cube).at(0);
    return Sought{call.args[1], call.args[2], call.args[3]};
  };
  EXPECT_EQ(sought(CvtColorDiffusionByteByte), (Sought{132, 132, 255}));
  what.base.invertMono = 1;
  EXPECT_EQ(sought(CvtColorDiffusionByteByte), (Sought{128, 128, 248}));
  what.diffusionFlags = kShortCutLatch;
  EXPECT_EQ(sought(CvtColorDiffusionByteByte), (Sought{132, 132, 255}));
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

TEST(ShortCut, IsForFiveBitsAndMoreToFiveToEight) {
  struct Row {
    std::uint8_t from, to;
    CvtStatus taken;
  };
  for (const Row row : {Row{4, 8, 0}, {5, 8, 1}, {32, 8, 1}, {8, 4, 0}, {8, 5, 1}, {8, 9, 0}}) {
    const Outcome asked =
        RunColorCase(Packed(row.from, row.to, 1, 1, {}), RoutineNamed("CvtCanShortCutDiffusion"));
    EXPECT_EQ(asked.statuses.at(0), row.taken) << int{row.from} << " to " << int{row.to};
  }
}

TEST(ShortCut, StaysTakenAndThenRefusesFourBits) {
  ColorCase what = Packed(24, 5, 3, 1, {1, 2, 3, 77, 4, 5, 6, 77, 7, 8, 9, 77});
  what.base.bands.push_back({false, 0, 1, 3, 1, 4, {0x12, 0x30}});
  const Outcome outcome = RunColorCase(what, CvtColorDiffusionByteByte);
  EXPECT_EQ(outcome.statuses, (std::vector<std::int16_t>{kCvtOk, kCvtWrongDepth}));
  EXPECT_EQ(Header(outcome.handedOn.at(0))[4], 8);
  EXPECT_EQ(outcome.inputs.at(0).at(19), 77);  // the byte that completes the row
  EXPECT_EQ(Pixels(outcome.inputs.at(1)), (Bytes{0x12, 0x30}));
  EXPECT_EQ(Args(outcome, Call::Cube, 1).at(0), 3);  // red stands third
}

struct PushCase {
  const char* what;
  IRGB color;
  std::uint8_t threshold;
  std::size_t direction;
  int red, green, blue;
};
constexpr PushCase kPushes[] = {{"bright, up", {150, 160, 170}, 254, 7, 214, 224, 234},
                                {"dark, up", {50, 60, 70}, 254, 7, 114, 124, 134},
                                {"dark, down", {50, 60, 70}, 62, 0, 18, 28, 38},
                                {"red falls", {200, 50, 60}, 62, 3, 168, 82, 92},
                                {"blue rises", {200, 210, 60}, 254, 1, 136, 146, 124},
                                {"126 moves nothing", {1, 200, 130}, 126, 2, 1, 200, 130},
                                {"held to 255", {200, 250, 255}, 254, 7, 255, 255, 255}};

TEST(ColorDither, PushesColorsAlongTheirDiagonal) {
  for (const PushCase& c : kPushes) {
    ColorCase what = Packed(8, 8, 1, 1, {});
    std::vector<std::uint8_t> table(kTableBytes, 1);
    table[static_cast<std::size_t>(c.red / 8 * 1024 + c.green / 8 * 32 + c.blue / 8)] = 9;
    if (c.threshold != 126) what.steps[8 + c.direction] = 64;  // of entry 1
    what.matrix = {126, 126, 126, 126, 126, c.threshold};
    World world({}, 1, {0});
    world.context.searchTable = table.data();
    world.context.ditherMatrix = what.matrix.data();
    world.context.ditherWidth = 3;
    world.context.ditherHeight = 2;
    world.context.ditherSteps = what.steps.data();
    world.context.cubeTable = what.matrix.data();  // not asked
    IRGB color = c.color;
    EXPECT_EQ(CvtGetDitherIndex(nullptr, nullptr, &world.context, 3 * 7 + 2, 2 * 5 + 1, &color), 9) << c.what;
  }
}

struct CubeCase {
  std::uint8_t depth, threshold;  // a threshold that pushes nothing
  int levels, top, step;          // level of a channel: (top - channel) / step
};
constexpr CubeCase kCubes[] = {{3, 0, 2, 255, 128},  {4, 0, 2, 255, 128},  {5, 127, 3, 318, 128},
                               {6, 124, 4, 296, 85}, {7, 129, 5, 286, 64}, {8, 130, 6, 281, 51}};

TEST(ColorDither, PlacesEveryLevelInTheCube) {
  Bytes ramp(256);
  for (std::size_t v = 0; v < 256; ++v) ramp[v] = static_cast<std::uint8_t>(v);
  for (const CubeCase& c : kCubes) {
    ColorCase what = Packed(8, c.depth, 256, 1, ramp);
    what.matrix.assign(64, c.threshold);
    const auto n = static_cast<std::size_t>(c.levels);
    what.cube.assign(n * n * n, 99);
    for (std::size_t level = 0; level < n; ++level)
      what.cube[level * (1 + n + n * n)] = static_cast<std::uint8_t>(level);
    const std::vector<int> levels = Args(RunColorCase(what, CvtColorDitherByteByte), Call::PackedPixel, 4);
    for (int v = 0; v < 256; ++v)
      EXPECT_EQ(levels.at(static_cast<std::size_t>(v)), (c.top - v) / c.step) << v << " of " << n;
  }
}

TEST(ColorDither, LooksOneColumnAheadAndTurnsTheMatrixForCubes) {
  ColorCase what = Packed(8, 3, 3, 2, {128, 128, 128, 0, 127, 127, 127, 0});
  what.cube = {0, 9, 9, 9, 9, 9, 9, 1};
  what.matrix = {0, 128, 0, 0, 127, 0};  // 3 rows of 2: signed, -128 and 127
  what.ditherWidth = 2;
  what.ditherHeight = 3;
  EXPECT_EQ(Args(RunColorCase(what, CvtColorDitherByteByte), Call::PackedPixel, 4),
            (std::vector<int>{0, 0, 0, 1, 1, 1}));
  what.matrix = {128, 0, 0, 127, 0, 0};  // row 0 serves column 2, row 1 column 0
  EXPECT_EQ(Args(RunColorCase(what, CvtColorDitherByteByte), Call::PackedPixel, 4),
            (std::vector<int>{0, 0, 1, 0, 1, 1}));
}

}  // namespace

}  // namespace cvt::test

// The cases: plain ones by hand and random ones by number.
#include <bit>
#include <cstdlib>

#include "tests/library/harness.h"

namespace cvt::test {

namespace {

std::uint32_t Variable(const char* name, std::uint32_t otherwise) {
  const char* text = std::getenv(name);
  return text == nullptr ? otherwise : static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10));
}

int RandomDepth(Dice& dice) {
  return dice.OneIn(3) ? dice.Between(1, 32) : dice.Of({1, 2, 3, 4, 8, 8, 8, 15, 16, 24, 32});
}

Script RandomScript(Dice& dice) {
  Script s;
  s.runs = dice.Of({Runs::PerPixel, Runs::Merged, Runs::Merged, Runs::WithEmpty, Runs::OneShort});
  if (dice.OneIn(6)) s.failAllocAt = dice.Between(1, 14);
  if (dice.OneIn(20)) s.failDupAt = dice.Between(1, 2);
  if (dice.OneIn(8)) s.stopAt = dice.Between(1, 20);
  s.stopAnswer = dice.Of<std::int16_t>({1, -1, 256, -32768});
  if (dice.OneIn(8)) s.convertFailsAt = dice.Between(1, 6);
  s.convertAnswer = dice.Of<std::int16_t>({-77, 1, 256, 32767, -32768});
  if (dice.OneIn(8)) s.executeFailsAt = dice.Between(1, 6);
  if (dice.OneIn(4))
    for (int i = 0; i < 9; ++i) s.listErrors.push_back(dice.Of<std::int16_t>({0, 0, -254, -1008, -256, -1, 5}));
  s.replacesBand = dice.OneIn(6);
  s.scribbles = dice.OneIn(3);
  s.changesSettings = dice.OneIn(8);
  s.watchesErrorRow = dice.OneIn(4);
  s.black = dice.Of({0, 1, 3, -1, 0x12340001, 70000, 255});
  s.white = dice.Of({1, 0, 1, 7, -1, 0x56780001, 65535});
  s.cubeHighBits = dice.Of<std::uint16_t>({0, 0, 0xC300});
  return s;
}

void AddBands(Dice& dice, Case& made, bool planes, bool leftIsRowIndex) {
  const bool large = dice.OneIn(40);
  const int width = large ? dice.Between(71, 1500) : dice.OneIn(6) ? dice.Between(64, 140) : dice.Between(0, 63);
  const int top = dice.OneIn(10) ? dice.Between(65500, 65535) : dice.Of({0, 0, 8, 1000});
  int left = dice.OneIn(2) ? 0 : dice.Between(0, 90);
  if (!leftIsRowIndex && dice.OneIn(10)) left = dice.Of({65535, dice.Between(65400, 65535)});
  const int depth = dice.OneIn(8) ? dice.Between(0, 32) : std::min<int>(made.source.bitsPerPixel, 32);
  int line = top;
  for (int b = dice.Of({1, 1, 2, 3}); b > 0; --b) {
    const int lines = dice.OneIn(12) ? 0 : dice.Between(1, large ? 4 : 12);
    BandPlan plan{planes, Word(left), Word(line), Word(width), Word(lines), Word(depth), {}};
    plan.pixels.resize(PixelBytes(planes, plan.width, plan.lineCount, plan.depth) + (dice.OneIn(6) ? 1 : 0));
    FillPixels(dice, plan.pixels);
    made.bands.push_back(std::move(plan));
    line += lines;
  }
  made.capacity = Word(width + dice.Of({0, 0, 10}));
  made.errorRow.resize(static_cast<std::size_t>(leftIsRowIndex ? left + width : width));
  const int spread = dice.Of({0, 0, 100, 32767});
  for (std::int16_t& e : made.errorRow) e = static_cast<std::int16_t>(dice.Between(-spread, spread));
}

tagIGFD PlainDescriptor(std::uint8_t depth, std::uint16_t kind) {
  tagIGFD made{};
  made.opList = SharedList();
  made.progressProc = ScriptedProgress;
  made.progressData = 0x1234ABCD;
  made.rasterKind = kind;
  made.imageWidth = 640;
  made.imageHeight = 480;
  made.bitsPerPixel = depth;
  made.colorFlags = kIndexedColor;
  made.palette = SharedPalette();
  return made;
}

}  // namespace

std::uint32_t Seed() { return Variable("CVTR2R_TEST_SEED", 20260712); }
int Rounds(int ordinaryNumber) { return ordinaryNumber * static_cast<int>(Variable("CVTR2R_TEST_ROUNDS", 1)); }

Dice::Dice(std::uint32_t number) {
  std::seed_seq seeds{Seed(), number};
  engine_.seed(seeds);
}

std::uint32_t Dice::Taken(std::uint32_t choices) {
  std::uint32_t number = 0;
  for (std::uint32_t reach = 1; reach < choices && !bytes_.empty(); reach *= 256) {
    number = number * 256 + bytes_.front();
    bytes_ = bytes_.subspan(1);
  }
  return number;
}

std::size_t PixelBytes(bool planes, std::uint16_t width, std::uint16_t lines, std::uint16_t depth) {
  const std::size_t planeRow = (width + 15u) / 16 * 2;
  if (planes) return planeRow * lines * depth;
  std::size_t stored = depth == 0 ? 0 : 1;
  while (stored < depth) stored *= 2;
  return (width * stored + 15) / 16 * 2 * lines;
}

void SetDepth(BandPlan& band, int depth, std::uint8_t fill) {
  band.depth = Word(depth);
  band.pixels.resize(PixelBytes(band.planes, band.width, band.lineCount, band.depth), fill);
}

BandPlan BandOf(bool planes, int depth, std::size_t width, const std::vector<std::uint32_t>& values) {
  const std::size_t lines = values.size() / width, stored = std::bit_ceil(static_cast<std::size_t>(depth));
  BandPlan band{planes, 0, 0, Word(static_cast<int>(width)), Word(static_cast<int>(lines)), 0, {}};
  SetDepth(band, depth, 0);
  const std::size_t rowBytes = band.pixels.size() / lines / (planes ? static_cast<std::size_t>(depth) : 1);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::size_t x = i % width, y = i / width;
    for (std::size_t k = 0; k < static_cast<std::size_t>(depth); ++k) {
      const std::size_t bit = stored < 8 ? x * stored + stored - 1 - k : x * stored + (k / 8 * 8 + 7 - k % 8);
      std::uint8_t& byte =
          planes ? band.pixels[(k * lines + y) * rowBytes + x / 8] : band.pixels[y * rowBytes + bit / 8];
      if ((values[i] >> k & 1) != 0) byte = Byte(byte | 0x80 >> (planes ? x : bit) % 8);
    }
  }
  return band;
}

IRGB* GrayRamp() {
  static std::vector<IRGB> ramp = [] {
    std::vector<IRGB> made(256);
    for (std::int64_t n = 0; n < 256; ++n) made[static_cast<std::size_t>(n)] = {Byte(n), Byte(n), Byte(n)};
    return made;
  }();
  return ramp.data();
}

Case PlainCase(bool planes, int sourceDepth, int destinationDepth, int width, int lines, std::uint8_t fill) {
  Case made;
  made.source = PlainDescriptor(Byte(sourceDepth), planes ? kPlaneKind : kPackedKind);
  made.destination = PlainDescriptor(Byte(destinationDepth), kPackedKind);
  made.bands = {{planes, 0, 0, Word(width), Word(lines), 0, {}}};
  SetDepth(made.bands[0], sourceDepth, fill);
  made.capacity = Word(width);
  made.errorRow.assign(made.capacity, 0);
  return made;
}

void FillPixels(Dice& dice, std::vector<std::uint8_t>& pixels) {
  const int style = dice.Between(0, 3);
  const int level = dice.Between(0, 255);
  for (std::uint8_t& b : pixels) {
    if (style == 0) b = Byte(dice.Between(0, 255));
    if (style == 1) b = Byte(level);
    if (style == 2) b = dice.OneIn(5) ? Byte(dice.Between(0, 255)) : Byte(level);
    if (style == 3) b = dice.Of<std::uint8_t>({0, 255, 127, 128});
  }
}

Case RandomCase(Dice& dice, Sibling which) {
  const int sourceDepth = dice.OneIn(50) ? dice.Between(33, 255) : RandomDepth(dice);
  const int destinationDepth =
      dice.OneIn(6) ? dice.Between(0, 255) : dice.Of({0, 1, 1, 2, 3, 4, 5, 8, 8, 9, 16, 24});
  Case made;
  made.source = PlainDescriptor(Byte(sourceDepth), which.fromPlanes ? kPlaneKind : kPackedKind);
  made.destination = PlainDescriptor(Byte(destinationDepth), which.toPlanes ? kPlaneKind : kPackedKind);
  made.source.colorFlags = dice.Of<std::uint8_t>({0x80, 0xFF, 0x7F, 0, 0});
  made.source.options = dice.OneIn(8) ? 0x3F : 0;
  made.source.keepColor = static_cast<std::int16_t>(dice.Between(-9, 9));
  made.halftoneMethod = dice.Of({kNearest, kDiffusion});
  made.sameColorMap = dice.Of<std::uint8_t>({0, 1, 2});
  made.invertMono = dice.Of<std::uint8_t>({0, 1, 2});
  made.grayPalette = dice.Of<std::uint8_t>({0, 1, 2});
  made.gammaActive = dice.Of<std::uint16_t>({0, 1, 2, 0x100});
  made.script = RandomScript(dice);
  AddBands(dice, made, which.fromPlanes, which.fromPlanes && !which.toPlanes);
  return made;
}

std::string Describe(const Case& c) {
  const BandPlan& b = c.bands[0];
  std::string text = b.planes ? "planes" : "packed";
  const auto add = [&text](const char* names, std::initializer_list<std::int64_t> values) {
    text += std::string(", ") + names;
    for (const std::int64_t v : values) text += " " + std::to_string(v);
  };
  const auto addImage = [&add](const tagIGFD& i) {
    add("kind, depth, colour flags, options", {i.rasterKind, i.bitsPerPixel, i.colorFlags, i.options});
    add("size", {i.imageWidth, i.imageHeight});
  };
  add("bands", {static_cast<int>(c.bands.size())});
  add("left, top, width, lines, depth", {b.left, b.top, b.width, b.lineCount, b.depth});
  addImage(c.source);
  addImage(c.destination);
  add("methods", {c.halftoneMethod, c.scaleDownMethod});
  add("same colours, invert, gray, gamma", {c.sameColorMap, c.invertMono, c.grayPalette, c.gammaActive});
  add("capacity, limit", {c.capacity, c.bandLimit});
  add("runs", {static_cast<int>(c.script.runs)});
  add("failing block, copy, link", {c.script.failAllocAt, c.script.failDupAt, c.script.convertFailsAt});
  return text;
}

}  // namespace cvt::test

#include "tests/library/scale_cases.h"

#include <algorithm>
#include <cstring>

namespace cvt::test {

namespace {

enum class Sort : std::uint8_t { Up, Down, Smooth };

struct Kind {
  Sort sort;
  bool rowsMayWrap;       // bands may cross image line 65535
  std::uint8_t prepared;  // depth that a kernel takes, or 0
};

int Target(Dice& dice, Sort sort, int from) {
  const bool up = sort == Sort::Up || (sort == Sort::Smooth && dice.OneIn(2));
  if (!up) return dice.OneIn(12) ? from : dice.OneIn(4) ? dice.Between(from / 8, from) : dice.Between(0, from);
  return from + dice.Of({1, 1, from, 2 * from + 1, dice.Between(1, 40), dice.OneIn(6) ? 0 : from / 2 + 1});
}

void AddImage(Dice& dice, ScaleCase& made, bool planes, const Kind& kind) {
  const int width = dice.OneIn(30) ? dice.Between(41, 400) : dice.Between(1, 40);
  const int depth = made.source.bitsPerPixel;
  int top = dice.OneIn(2) ? 0 : dice.Of({8, 1000, 32760, 40000, kind.rowsMayWrap ? 65530 : 65400});
  const int left = dice.OneIn(2) ? 0 : dice.Of({3, 90, 30000, 32769, 65530});
  for (int b = dice.Between(1, 4); b > 0; --b) {
    const int lines = dice.Between(1, 9);
    made.bands.push_back(
        {planes, Word(dice.OneIn(40) ? left + 1 : left), Word(top), Word(width), Word(lines), Word(depth), {}});
    SetDepth(made.bands.back(), depth, 0);
    FillPixels(dice, made.bands.back().pixels);
    top += lines + (dice.OneIn(30) ? 2 : 0);
  }
  made.capacity = Word(width + dice.Of({2, 2, 12}));
  const int lines = top - made.bands[0].top;
  made.source.imageWidth = dice.OneIn(3) ? dice.Between(1, 3 * width) : width;
  made.source.imageHeight = dice.OneIn(3) ? dice.Between(1, 3 * lines) : lines;
}

// Sizes near the edges of 16 and 32 bits; few enough output pixels all the same.
void Exaggerate(Dice& dice, ScaleCase& made, Sort sort) {
  const int from = dice.Of({3000, 30000, 32767, 32768, 40000});
  const int to = sort == Sort::Down ? dice.Between(from / 8, from) : from + dice.Of({1, 1000, 25535, 40000});
  made.source.imageHeight = from;
  made.destination.imageHeight = to;
  if (sort == Sort::Smooth) return;
  made.source.imageWidth = from;
  made.destination.imageWidth = to;
}

ScaleCase RandomScale(Dice& dice, bool planes, const Kind& kind) {
  ScaleCase made = PlainCase(planes, 1, 8, 1, 1);
  made.bands.clear();
  tagIGFD &source = made.source, &destination = made.destination;
  const bool palette = kind.sort == Sort::Smooth && kind.prepared == 0 && dice.OneIn(2);
  source.bitsPerPixel = static_cast<std::uint8_t>(dice.Between(1, palette ? 16 : 32));
  if (kind.prepared != 0) source.bitsPerPixel = kind.prepared;
  source.colorFlags = palette ? 0x80 : 0x7F;
  AddImage(dice, made, planes, kind);
  destination.imageWidth = Target(dice, kind.sort, source.imageWidth);
  destination.imageHeight = Target(dice, kind.sort, source.imageHeight);
  if (dice.OneIn(8)) Exaggerate(dice, made, kind.sort);
  source.originX = dice.Of<std::int16_t>({0, 0, 5, -7, 32767, -32768});
  source.originY = dice.Of<std::int16_t>({0, 0, 5, -7, 32767, -32768});
  destination.originX = dice.Of<std::int16_t>({0, 9, -300});
  destination.originY = dice.Of<std::int16_t>({0, 9, -300});
  destination.keepColor = dice.Of<std::int16_t>({0, 1, -1, 255});
  destination.bitsPerPixel = dice.Of<std::uint8_t>({1, 8, 8, 8, 24, 15, 2});
  source.options = 0xFFFF;
  source.keepColor = 3;
  std::memset(source.keepColorWords, 7, sizeof source.keepColorWords);
  made.grayPalette = dice.Of<std::uint8_t>({0, 0, 1, 2});
  made.scaleDownMethod = dice.Of<std::uint8_t>({0, 1, 2, 2});
  made.linePixels = static_cast<std::size_t>(destination.imageWidth);
  const int row = 4 * std::max<int>(made.bands[0].width, int{destination.imageWidth});
  made.bandLimit = dice.OneIn(2) ? Word(65535) : Word(dice.Between(dice.OneIn(4) ? 2 : row, 4 * row));
  made.script.runs = dice.Of({Runs::PerPixel, Runs::Merged, Runs::WithEmpty, Runs::OneShort});
  if (dice.OneIn(6)) made.script.failAllocAt = dice.Between(1, 12);
  if (dice.OneIn(12)) made.script.failDupAt = dice.Between(1, 2);
  if (dice.OneIn(8)) made.script.convertFailsAt = dice.Between(1, 5);
  made.script.isGray = dice.Of<std::uint16_t>({0, 0, 1, 0x100});
  made.script.replacesBand = dice.OneIn(6);
  made.script.scribbles = dice.OneIn(3);
  made.script.changesSettings = dice.OneIn(8);
  if (dice.OneIn(40)) made.operationCode = dice.Of<std::uint16_t>({1, 19, 22, 0x114, 0x115});
  return made;
}

// The number of runs that is held while an image is enlarged in height is this procedure's to keep.
thread_local CvtConvertProc dispatchOfChain = nullptr;
std::int16_t CVT_CALL KeepRunCount(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination,
                                   tagCRLA* context) {
  const std::uint16_t runs = context->runCount;
  const std::int16_t status = dispatchOfChain(band, source, destination, context);
  context->runCount = runs;
  return status;
}

// Puts the bands where scaled columns stay within the error row, and gives every pixel a colour.
void Settle(Dice& dice, ScaleCase& made) {
  const int left = made.bands[0].left % 100, top = made.bands[0].top % 2000;
  const int shift = made.bands[0].top - top;
  const int depth = (made.source.colorFlags & kIndexedColor) != 0 ? 16 : 26;
  made.source.bitsPerPixel = std::min<std::uint8_t>(made.source.bitsPerPixel, static_cast<std::uint8_t>(depth));
  for (BandPlan& band : made.bands) {
    band.left = Word(left);
    band.top = Word(band.top - shift);
    band.width = std::max<std::uint16_t>(band.width, 1);
    SetDepth(band, std::clamp<int>(band.depth, 1, depth), 0xA7);
  }
  made.source.originX = static_cast<std::int16_t>(dice.Of({0, left}));
  made.source.originY = static_cast<std::int16_t>(dice.Of({0, top}));
}

// Cuts a part out of the image; answers whether it did.
bool AddClip(Dice& dice, ScaleCase& made, int lines) {
  if (!dice.OneIn(3)) return false;
  const BandPlan& first = made.bands[0];
  const int x = first.left + dice.Between(0, first.width - 1), y = first.top + dice.Between(-2, lines);
  tagIGFD& source = made.source;
  source.options = static_cast<std::uint16_t>(source.options | kClipOption);
  source.clipX0 = static_cast<std::int16_t>(x);
  source.clipX1 = static_cast<std::int16_t>(dice.Between(x + 1, first.left + first.width));
  source.clipY0 = static_cast<std::int16_t>(std::max(y, 0));
  source.clipY1 = static_cast<std::int16_t>(source.clipY0 + dice.Between(1, lines + 2));
  return true;
}

// The size that is wanted, as seen from the size that is there: the same, less or more.
std::int32_t Wanted(Dice& dice, std::int32_t from) {
  if (dice.OneIn(3)) return from;
  return std::max(1, Target(dice, dice.OneIn(2) ? Sort::Up : Sort::Down, from));
}

void AddSizes(Dice& dice, ScaleCase& made) {
  const BandPlan &first = made.bands.front(), &last = made.bands.back();
  const int lines = std::max(1, last.top + last.lineCount - first.top);
  tagIGFD &source = made.source, &destination = made.destination;
  source.imageWidth = first.width;  // reduced lines of less than the image can lose their last pixel
  source.imageHeight = lines + (dice.OneIn(4) ? dice.Between(0, 9) : 0);
  const bool clips = AddClip(dice, made, lines);
  const std::int32_t width = clips ? source.clipX1 - source.clipX0 : source.imageWidth;
  const std::int32_t height = clips ? source.clipY1 - source.clipY0 : source.imageHeight;
  destination.imageWidth = Wanted(dice, width);
  destination.imageHeight = Wanted(dice, height);
  const int x = clips ? source.clipX0 : source.originX, y = clips ? source.clipY0 : source.originY;
  destination.originX = static_cast<std::int16_t>(dice.Of({x, x, 0, 9}));
  destination.originY = static_cast<std::int16_t>(dice.Of({y, y, 0, 300}));
  if (dice.OneIn(3)) source.options = static_cast<std::uint16_t>(source.options | kSmoothOption);
  const int widest = std::max<int>(first.width, int{destination.imageWidth});
  const int columns = (first.left + widest + 2) * std::max(1, (destination.imageWidth + width - 1) / width);
  made.capacity = Word(std::max<int>(made.capacity, widest + 2));
  made.linePixels = made.capacity;
  made.errorRow.resize(3 * static_cast<std::size_t>(columns + destination.originX + 10));
  made.bandLimit = dice.OneIn(2) ? Word(65535) : Word(4 * widest * dice.Between(1, 4));
}

}  // namespace

ScaleCase RandomForDriver(Dice& dice, std::size_t k) {
  static constexpr Kind kKinds[] = {{Sort::Up, true, 0},
                                    {Sort::Up, false, 0},
                                    {Sort::Down, true, 0},
                                    {Sort::Down, true, 0},
                                    {Sort::Smooth, false, 0}};
  return RandomScale(dice, dice.OneIn(2), kKinds[k]);
}

ScaleCase RandomForWorker(Dice& dice, std::size_t k) {
  const bool enlarges = k < 4 || dice.OneIn(6);
  ScaleCase what = RandomScale(dice, k % 2 == 0, {enlarges ? Sort::Up : Sort::Down, k >= 4, 0});
  what.operationCode = 0;
  if (k < 4) what.source.clipX0 = dice.Of<std::int16_t>({0, 0, 1, 2, 7, -1});
  if (k != 2 && k != 3 && dice.OneIn(3))
    what.accumulator = static_cast<std::uint32_t>(dice.Between(0, what.source.imageHeight - 1));
  return what;
}

ScaleCase RandomForSmoothWorker(Dice& dice, std::size_t k) {
  static constexpr std::uint8_t kPrepared[] = {0, 0, 8, 32};
  ScaleCase what = RandomScale(dice, k == 0, {Sort::Smooth, false, kPrepared[k]});
  if (k < 2) what.source.clipX0 = dice.Of<std::int16_t>({0, 0, 1, 3, -1});
  if (k > 1 && dice.OneIn(8)) what.accumulator = 1;  // of a line that some other image began
  return what;
}

ChainCase RandomChain(Dice& dice) {
  ChainCase made;
  const Sibling which = {dice.OneIn(2), dice.OneIn(2)};
  const auto family = dice.Of({Family::Direct, Family::MonoDither, Family::Diffusion, Family::Dither});
  made.tables = RandomColorCase(dice, family, which);
  ScaleCase& image = made.image = made.tables.base;
  if (family == Family::Direct) image.destination.bitsPerPixel = dice.Of<std::uint8_t>({15, 16, 24, 32});
  if (dice.OneIn(4)) image.halftoneMethod = kNearest;
  if (family == Family::MonoDither) image.destination.bitsPerPixel = 1;
  image.source.colorFlags = dice.Of<std::uint8_t>({0, kIndexedColor});
  image.destination.keepColor = dice.Of<std::int16_t>({0, 1, -1, 255});
  image.scaleDownMethod = dice.Of<std::uint8_t>({0, 1, 2, 2});
  image.script.watchesErrorRow = false;  // too long to be looked at with every pixel
  Settle(dice, image);
  AddSizes(dice, image);
  return made;
}

Outcome RunFurnished(const Case& what, const ColorCase& tables, BandRoutine routine, CvtConvertProc convert) {
  return RunCase(what, routine, convert, [&](World& world) {
    FurnishForScaling(world, what.capacity, std::max<std::size_t>(what.capacity, what.linePixels));
    PutTables(world, tables);
  });
}

Outcome RunChain(const ChainCase& what, CvtConvertProc dispatch) {
  dispatchOfChain = dispatch;
  return RunFurnished(what.image, what.tables, dispatch, KeepRunCount);
}

}  // namespace cvt::test

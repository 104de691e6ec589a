#include "tests/library/translucent_cases.h"

#include <algorithm>

namespace cvt::test {

Written Write(Writer writer, const TranslucentCase& what) {
  World world({}, Word(static_cast<int>(what.line.size())), {0});
  for (std::size_t i = 0; i < what.line.size(); ++i) {
    world.runLengths[i] = what.line[i].length;
    world.values[i] = what.line[i].value;
  }
  std::vector<std::uint8_t> transparent = what.transparent;
  transparent.resize(1 << 20);
  tagRasterPacked* band = world.MakeBand(what.plan);
  const bool library = writer == Writer::Library;
  const auto write = [&](auto routine, auto* cursor, auto... first) {
    return routine(first..., cursor, &world.context, what.x, what.y, transparent.data());
  };
  Written result{};
  if (what.plan.planes) {
    tagPlaneData* cursor = RefOpenPlane(reinterpret_cast<tagRasterPlane*>(band));
    if (what.planeCount != 0) cursor->planeCount = what.planeCount;
    result.count = library ? write(CvtWritePlaneTranslucentLine, cursor) : write(RefTranslucentPlanes, cursor);
  } else {
    tagPackedData* cursor = RefOpenPacked(band);
    if (what.way == Way::Word)
      result.count =
          library ? write(CvtWritePackedTransluceLineWord, cursor) : write(RefTranslucentStored, cursor, 2);
    else if (what.way == Way::Long)
      result.count =
          library ? write(CvtWritePackedTransluceLineLong, cursor) : write(RefTranslucentStored, cursor, 4);
    else
      result.count = library ? write(CvtWritePackedTranslucentLine, cursor) : write(RefTranslucentPacked, cursor);
  }
  result.bytes = world.BytesOf(band);
  result.bytes.erase(result.bytes.begin(), result.bytes.begin() + 16);
  return result;
}

TranslucentCase RandomTranslucent(Dice& dice) {
  TranslucentCase made;
  const bool planes = dice.OneIn(3);
  const int depth = planes ? dice.Between(0, 32) : dice.Between(1, 32);
  const int width = dice.OneIn(10) ? dice.Between(0, 2000) : dice.Between(0, 90), lines = dice.Between(1, 3);
  const int left = dice.Of({0, 0, 3, 40000}), top = dice.Of({0, 7, 60000});
  made.plan = {planes, Word(left), Word(top), Word(width), Word(lines), Word(depth), {}};
  const bool inside = width > 0 && !dice.OneIn(8);
  made.x = Word(inside ? dice.Between(left, left + width - 1) : dice.Of({left - 1, left + width}));
  made.y = Word(dice.OneIn(8) ? dice.Of({top - 1, top + lines}) : dice.Between(top, top + lines - 1));
  int room = inside ? left + width - made.x : 0;
  while (made.line.size() < 40 && !dice.OneIn(12)) {
    const int length = std::min(room, dice.Of({0, 1, 2, dice.Between(0, 20), dice.Between(0, 60), 2000}));
    const int value = dice.OneIn(2) ? dice.Between(0, 3) : dice.Between(0, (1 << std::min(depth, 12)) - 1);
    made.line.push_back({Word(length), static_cast<std::uint32_t>(value)});
    if (dice.OneIn(6)) made.line.back().value = static_cast<std::uint32_t>(dice.Between(0, 0xFFFFF));
    room -= length;
  }
  if (dice.OneIn(5)) made.line.insert(made.line.end(), {{40000, 4}, {40000, 4}});
  made.plan.pixels.resize(PixelBytes(planes, made.plan.width, made.plan.lineCount, made.plan.depth));
  for (std::uint8_t& b : made.plan.pixels) b = static_cast<std::uint8_t>(dice.Between(0, 255));
  made.transparent.resize(1 << 20);
  for (std::size_t v = 0; v < 4096; ++v)
    made.transparent[v] = dice.OneIn(3) ? static_cast<std::uint8_t>(v | 1) : std::uint8_t{0};
  made.transparent[4] = 1;
  return made;
}

}  // namespace cvt::test

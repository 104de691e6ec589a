// Line and pixel access of the scripted host, one pixel at a time. Bytes outside a band's block read as
// zero and are not written: some sizes are cut by contract, and then a band is smaller than its header says.
#include "tests/scripted/world.h"

namespace {

using cvt::test::Block;
using cvt::test::Call;
using cvt::test::Hash;
using cvt::test::Runs;
using cvt::test::World;

struct Pixels {
  std::uint8_t* data;
  std::size_t room;

  explicit Pixels(std::uint8_t* first) : data(first), room(0) {
    const Block* block = World::Here().Holding(first);
    if (block != nullptr) room = static_cast<std::size_t>(block->base + block->size - first);
  }
  std::uint8_t Get(std::size_t at) const { return at < room ? data[at] : std::uint8_t{0}; }
  void Put(std::size_t at, std::uint32_t value, std::uint32_t mask) const {
    if (at < room) data[at] = static_cast<std::uint8_t>((data[at] & ~mask) | (value & mask));
  }
};

std::size_t ByteOf(const tagPlaneData& c, std::uint32_t plane, std::size_t x, std::size_t row) {
  return std::size_t{c.planeBytes} * plane + row * c.rowBytes + x / 8;
}

std::uint32_t GetPixel(const tagPlaneData& c, const Pixels& pixels, std::size_t x, std::size_t row) {
  std::uint32_t value = 0;
  for (std::uint32_t k = 0; k < c.planeCount && k < 32; ++k)
    value |= (std::uint32_t{pixels.Get(ByteOf(c, k, x, row))} >> (7 - x % 8) & 1) << k;
  return value;
}

void PutPixel(const tagPlaneData& c, const Pixels& pixels, std::size_t x, std::size_t row, std::uint32_t value) {
  for (std::uint32_t k = 0; k < c.planeCount; ++k) {
    const bool set = k < 32 && (value >> k & 1) != 0;
    pixels.Put(ByteOf(c, k, x, row), set ? 0xFF : 0, 0x80u >> x % 8);
  }
}

std::size_t FirstBit(const tagPackedData& c, std::size_t x, std::size_t row) {
  return row * c.rowUnits * (c.depthClass == 5 ? 32 : 16) + (x << c.depthClass);
}

std::uint32_t GetPixel(const tagPackedData& c, const Pixels& pixels, std::size_t x, std::size_t row) {
  const std::size_t first = FirstBit(c, x, row), bits = std::size_t{1} << c.depthClass;
  if (bits < 8) return std::uint32_t{pixels.Get(first / 8)} >> (8 - bits - first % 8) & ((1u << bits) - 1);
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < bits / 8; ++i) value |= std::uint32_t{pixels.Get(first / 8 + i)} << 8 * i;
  return value;
}

void PutPixel(const tagPackedData& c, const Pixels& pixels, std::size_t x, std::size_t row, std::uint32_t value) {
  const std::size_t first = FirstBit(c, x, row), bits = std::size_t{1} << c.depthClass;
  if (bits < 8) {
    const std::size_t shift = 8 - bits - first % 8;
    return pixels.Put(first / 8, value << shift, ((1u << bits) - 1) << shift);
  }
  for (std::size_t i = 0; i < bits / 8; ++i) pixels.Put(first / 8 + i, value >> 8 * i, 0xFF);
}

std::int64_t Geometry(const tagPlaneData& c) {
  const std::int64_t fields[] = {c.rowBytes, c.left, c.top, c.right, c.bottom, c.planeCount, c.planeBytes};
  return Hash(fields, sizeof fields);
}

std::int64_t Geometry(const tagPackedData& c) {
  const std::int64_t fields[] = {c.rowUnits, c.left, c.top, c.right, c.bottom, c.depthClass};
  return Hash(fields, sizeof fields);
}

template <class Cursor>
std::uint16_t ReadLine(Call call, Cursor* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  World& here = World::Here();
  const Runs style = here.script.runs;
  const Pixels pixels(cursor->data);
  const std::size_t column = static_cast<std::uint16_t>(x - cursor->left);
  const std::size_t row = static_cast<std::uint16_t>(y - cursor->top);
  const std::uint32_t wanted = context->runCount;
  const std::uint32_t end = style == Runs::OneShort && wanted > 0 ? wanted - 1 : wanted;
  const std::size_t capacity = here.runLengths.size();
  std::size_t spare = capacity - std::min<std::size_t>(capacity, end);
  std::uint16_t count = 0;
  const auto add = [&](std::uint32_t length, std::uint32_t value) {  // never beyond the capacity
    if (count == capacity) return;
    context->runLengths[count] = static_cast<std::uint16_t>(length);
    context->values[count++] = value;
  };
  for (std::uint32_t i = 0; i < end;) {
    const std::uint32_t value = GetPixel(*cursor, pixels, column + i, row);
    std::uint32_t length = 1;
    if (style != Runs::PerPixel)
      while (i + length < end && GetPixel(*cursor, pixels, column + i + length, row) == value) ++length;
    spare += length - 1;
    if (style == Runs::WithEmpty && spare > 0) {
      add(0, value ^ 1);
      --spare;
    }
    add(length, value);
    i += length;
  }
  here.Note(call, {here.Identify(cursor), Geometry(*cursor), here.Identify(context), x, y, wanted, count});
  return count;
}

template <class Cursor>
void WriteLine(Call call, Cursor* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  World& here = World::Here();
  const std::size_t count = context->runCount;
  const std::int64_t runs =
      Hash(context->values, count * 4, static_cast<std::uint64_t>(Hash(context->runLengths, count * 2)));
  here.Note(call,
            {here.Identify(cursor), Geometry(*cursor), here.Identify(context), x, y, context->runCount, runs});
  const Pixels pixels(cursor->data);
  const std::size_t width = static_cast<std::uint16_t>(cursor->right - cursor->left);
  const std::size_t row = static_cast<std::uint16_t>(y - cursor->top);
  std::size_t column = static_cast<std::uint16_t>(x - cursor->left);
  for (std::size_t r = 0; r < count; ++r)
    for (std::uint32_t n = 0; n < context->runLengths[r]; ++n, ++column)
      if (column < width) PutPixel(*cursor, pixels, column, row, context->values[r]);
}

template <class Cursor>
void WritePixel(Call call, Cursor* cursor, std::uint16_t x, std::uint16_t y, std::uint32_t value) {
  World& here = World::Here();
  here.Note(call, {here.Identify(cursor), Geometry(*cursor), x, y, value, here.ErrorRowHash()});
  if (x < cursor->left || x >= cursor->right || y < cursor->top || y >= cursor->bottom) return;
  const auto column = static_cast<std::size_t>(x - cursor->left), row = static_cast<std::size_t>(y - cursor->top);
  PutPixel(*cursor, Pixels(cursor->data), column, row, value);
}

}  // namespace

std::uint16_t CVT_CALL CvtReadPlaneLine(tagPlaneData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  return ReadLine(Call::ReadPlane, cursor, context, x, y);
}
std::uint16_t CVT_CALL CvtReadPackedLine(tagPackedData* cursor, tagCRLA* context, std::uint16_t x,
                                         std::uint16_t y) {
  return ReadLine(Call::ReadPacked, cursor, context, x, y);
}
void CVT_CALL CvtWritePlaneLine(tagPlaneData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  WriteLine(Call::WritePlane, cursor, context, x, y);
}
void CVT_CALL CvtWritePackedLine(tagPackedData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  WriteLine(Call::WritePacked, cursor, context, x, y);
}
void CVT_CALL CvtWritePlanePixel(tagPlaneData* cursor, std::uint16_t x, std::uint16_t y, std::uint32_t value) {
  WritePixel(Call::PlanePixel, cursor, x, y, value);
}
void CVT_CALL CvtWritePackedPixel(tagPackedData* cursor, std::uint16_t x, std::uint16_t y, std::uint32_t value) {
  WritePixel(Call::PackedPixel, cursor, x, y, value);
}

// Lines and pixels of bands: one pixel at a time, as simple as can be. Written for bands of 1 to 8 bits.

#include "cvt/host.h"

namespace {

// Coordinates count from the band's first column and line, and have 16 bits.
struct Place {
  std::uint16_t column, row;
};

template <class Cursor>
Place PlaceOf(const Cursor* cursor, std::uint16_t x, std::uint16_t y) {
  return {static_cast<std::uint16_t>(x - cursor->left), static_cast<std::uint16_t>(y - cursor->top)};
}

template <class Cursor>
std::uint16_t WidthOf(const Cursor* cursor) {
  return static_cast<std::uint16_t>(cursor->right - cursor->left);
}

template <class Cursor>
bool IsInside(const Cursor* cursor, Place place) {
  return place.column < WidthOf(cursor) && place.row < static_cast<std::uint16_t>(cursor->bottom - cursor->top);
}

// A field of bits in a byte: 1 bit of a plane, or a packed pixel that takes 1, 2, 4 or 8 bits.
struct Field {
  std::uint8_t* byte;
  int shift;
  unsigned mask;
};

unsigned Get(Field field) { return *field.byte >> field.shift & field.mask; }

void Set(Field field, unsigned value) {
  const unsigned others = *field.byte & ~(field.mask << field.shift);
  *field.byte = static_cast<std::uint8_t>(others | (value & field.mask) << field.shift);
}

Field PlaneField(const tagPlaneData* cursor, Place place, std::size_t plane) {
  const std::size_t row = plane * cursor->planeBytes + std::size_t{place.row} * cursor->rowBytes;
  return {cursor->data + row + place.column / 8, 7 - place.column % 8, 1};
}

Field PackedField(const tagPackedData* cursor, Place place) {
  const unsigned bits = 1U << cursor->depthClass;
  const std::size_t first = place.column * std::size_t{bits};
  const std::size_t row = std::size_t{place.row} * cursor->rowUnits * 2;
  return {cursor->data + row + first / 8, static_cast<int>(8 - bits - first % 8), (1U << bits) - 1};
}

unsigned PixelAt(const tagPlaneData* cursor, Place place) {
  unsigned value = 0;
  for (std::size_t k = 0; k < cursor->planeCount; ++k) value |= Get(PlaneField(cursor, place, k)) << k;
  return value;
}

unsigned PixelAt(const tagPackedData* cursor, Place place) { return Get(PackedField(cursor, place)); }

void SetPixel(tagPlaneData* cursor, Place place, unsigned value) {
  if (!IsInside(cursor, place)) return;
  for (std::size_t k = 0; k < cursor->planeCount; ++k) Set(PlaneField(cursor, place, k), value >> k);
}

void SetPixel(tagPackedData* cursor, Place place, unsigned value) {
  if (IsInside(cursor, place)) Set(PackedField(cursor, place), value);
}

// A run for each pixel, at most as many as the context asks for.
template <class Cursor>
std::uint16_t ReadLine(const Cursor* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  Place place = PlaceOf(cursor, x, y);
  std::uint16_t count = 0;
  for (; count < context->runCount && IsInside(cursor, place); ++count, ++place.column) {
    context->runLengths[count] = 1;
    context->values[count] = PixelAt(cursor, place);
  }
  return count;
}

template <class Cursor>
void WriteLine(Cursor* cursor, const tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  Place place = PlaceOf(cursor, x, y);
  for (std::size_t run = 0; run < context->runCount; ++run)
    for (unsigned n = context->runLengths[run]; n > 0; --n, ++place.column)
      SetPixel(cursor, place, context->values[run]);
}

}  // namespace

std::uint16_t CVT_CALL CvtReadPlaneLine(tagPlaneData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  return ReadLine(cursor, context, x, y);
}

std::uint16_t CVT_CALL CvtReadPackedLine(tagPackedData* cursor, tagCRLA* context, std::uint16_t x,
                                         std::uint16_t y) {
  return ReadLine(cursor, context, x, y);
}

void CVT_CALL CvtWritePlaneLine(tagPlaneData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  WriteLine(cursor, context, x, y);
}

void CVT_CALL CvtWritePackedLine(tagPackedData* cursor, tagCRLA* context, std::uint16_t x, std::uint16_t y) {
  WriteLine(cursor, context, x, y);
}

void CVT_CALL CvtWritePlanePixel(tagPlaneData* cursor, std::uint16_t x, std::uint16_t y, std::uint32_t value) {
  SetPixel(cursor, PlaceOf(cursor, x, y), value);
}

void CVT_CALL CvtWritePackedPixel(tagPackedData* cursor, std::uint16_t x, std::uint16_t y, std::uint32_t value) {
  SetPixel(cursor, PlaceOf(cursor, x, y), value);
}

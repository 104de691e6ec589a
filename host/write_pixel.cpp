// Single-pixel writers. Error diffusion calls them once for each pixel: the commonest layouts come first,
// and one test drops every pixel that lies outside.

#include "cvt/host.h"
#include "host/bits.h"
#include "host/line.h"

using namespace cvt::host;

void CVT_CALL CvtWritePlanePixel(tagPlaneData* cursor, std::uint16_t x, std::uint16_t y, std::uint32_t value) {
  const std::uint32_t column = ColumnOf(cursor, x), row = RowOf(cursor, y);
  if (!Inside(cursor, column, row)) return;
  std::uint8_t* byte = cursor->data + std::size_t{row} * cursor->rowBytes + column / 8;
  const std::uint32_t mask = 0x80U >> column % 8;
  if (cursor->planeCount == 1) return MergeBits(byte, mask, 0 - (value & 1));
  const std::size_t planeBytes = cursor->planeBytes;
  for (unsigned k = 0, planes = PlanesOf(cursor); k < planes; ++k)
    MergeBits(byte + k * planeBytes, mask, 0 - (value >> k & 1));
}

void CVT_CALL CvtWritePackedPixel(tagPackedData* cursor, std::uint16_t x, std::uint16_t y, std::uint32_t value) {
  const std::uint32_t column = ColumnOf(cursor, x), rowNumber = RowOf(cursor, y);
  if (!Inside(cursor, column, rowNumber)) return;
  const unsigned depthClass = cursor->depthClass;
  const std::size_t units = std::size_t{rowNumber} * cursor->rowUnits;
  std::uint8_t* row = cursor->data + units * 2;
  if (depthClass == 0) {
    MergeBits(row + column / 8, 0x80U >> column % 8, 0 - (value & 1));
  } else if (depthClass == 3) {
    row[column] = Low8(value);
  } else if (depthClass < 3) {
    const unsigned bits = 1U << depthClass;
    const unsigned shift = 8 - bits - (column << depthClass) % 8;
    MergeBits(row + (column << depthClass) / 8, ((1U << bits) - 1) << shift, value << shift);
  } else if (depthClass == 4) {
    StorePixel(row + std::size_t{column} * 2, Low16(value));
  } else if (cursor->rowUnits != 0) {  // pixels of no bits have no rows
    StorePixel(cursor->data + (units + column) * 4, value);
  }
}

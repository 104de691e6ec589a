#include "pipeline/stamp.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "cvt/cvtr2r.h"
#include "host/tables.h"
#include "pipeline/band.h"
#include "pipeline/intake.h"

namespace cvt::pipeline {
namespace {

// A value that fits no pixel of the output.
std::uint32_t MarkFor(std::int32_t depth) { return depth > 16 ? 1U << 24 : depth > 8 ? 1U << 15 : 1U << 8; }

std::uint32_t ValueOf(IRGB color, const Image& output) {
  const std::uint32_t red = color.red, green = color.green, blue = color.blue;
  if (output.depth > 16) return red << 16 | green << 8 | blue;
  if (output.depth > 8) return red >> 3 << 10 | green >> 3 << 5 | blue >> 3;
  return static_cast<std::uint32_t>(host::NearestEntry({output.palette.data(), output.palette.size()}, color));
}

// One line of the overlay, as the line buffer that the writers take it from.
tagCRLA LineOf(Stamp* stamp, std::int32_t line) {
  const Image& image = stamp->overlay->image;
  UnpackIndices(image, stamp->overlay->rows.data() + RowBytes(image) * static_cast<std::size_t>(line),
                stamp->indices.data());
  std::transform(stamp->indices.begin(), stamp->indices.end(), stamp->values.begin(),
                 [stamp](std::uint8_t index) { return stamp->valueOf[index]; });
  tagCRLA runs{};
  runs.runLengths = stamp->runLengths.data();
  runs.values = stamp->values.data();
  runs.runCount = static_cast<std::uint16_t>(image.width);
  return runs;
}

// Calls write(line buffer, x, y) for every line of the overlay that lies in the band.
template <class Write>
void ForEachLine(Stamp* stamp, const tagRasterPacked* band, Write write) {
  const Overlay& overlay = *stamp->overlay;
  const std::int32_t end = std::min(overlay.y + overlay.image.height, band->top + band->lineCount);
  for (std::int32_t y = std::max(overlay.y, std::int32_t{band->top}); y < end; ++y) {
    tagCRLA line = LineOf(stamp, y - overlay.y);
    write(&line, static_cast<std::uint16_t>(overlay.x), static_cast<std::uint16_t>(y));
  }
}

bool StampPlanes(Stamp* stamp, tagRasterPacked* band) {
  tagPlaneData* cursor = CvtOpenPlanePixel(reinterpret_cast<tagRasterPlane*>(band));
  if (cursor == nullptr) return false;
  ForEachLine(stamp, band, [=](tagCRLA* line, std::uint16_t x, std::uint16_t y) {
    CvtWritePlaneTranslucentLine(cursor, line, x, y, stamp->transparency.data());
  });
  CvtClosePlanePixel(cursor);
  return true;
}

bool StampPacked(Stamp* stamp, tagRasterPacked* band) {
  tagPackedData* cursor = CvtOpenPackedPixel(band);
  if (cursor == nullptr) return false;
  ForEachLine(stamp, band, [=](tagCRLA* line, std::uint16_t x, std::uint16_t y) {
    CvtWritePackedTranslucentLine(cursor, line, x, y, stamp->transparency.data());
  });
  CvtClosePackedPixel(cursor);
  return true;
}

}  // namespace

Stamp MakeStamp(std::shared_ptr<const Overlay> shared, const Image& output) {
  Stamp stamp;
  if (shared == nullptr) return stamp;
  stamp.overlay = std::move(shared);
  const Overlay& overlay = *stamp.overlay;
  const std::uint32_t mark = MarkFor(output.depth);
  stamp.transparency.resize(std::size_t{mark} + 1);
  stamp.transparency[mark] = 1;
  for (const IRGB color : overlay.image.palette) stamp.valueOf.push_back(ValueOf(color, output));
  stamp.valueOf.resize(256, stamp.valueOf.front());
  if (overlay.transparent >= 0) stamp.valueOf[static_cast<std::size_t>(overlay.transparent)] = mark;
  const auto width = static_cast<std::size_t>(overlay.image.width);
  stamp.indices.resize(width);
  stamp.runLengths.assign(width, 1);
  stamp.values.resize(width);
  return stamp;
}

bool StampBand(Stamp* stamp, tagRasterPacked* band) {
  if (stamp->overlay == nullptr) return true;
  return LayoutOf(band) == Layout::Planes ? StampPlanes(stamp, band) : StampPacked(stamp, band);
}

}  // namespace cvt::pipeline

// Rows of planes for sinks that take packed pixels, on the host's line readers and writers.

#include <memory>

#include "cvt/cvtr2r.h"
#include "pipeline/band.h"
#include "pipeline/image.h"
#include "pipeline/intake.h"

namespace cvt::pipeline {
namespace {

struct CloseCursor {
  void operator()(tagPlaneData* cursor) const { CvtClosePlanePixel(cursor); }
  void operator()(tagPackedData* cursor) const { CvtClosePackedPixel(cursor); }
};

// Two bands of one line, and a line buffer between them.
struct Repacker {
  RowSink sink;
  Entry planeRows;   // how rows come in
  Image packedRows;  // what goes on
  OwnedBand planes;
  OwnedBand packed;
  std::unique_ptr<tagPlaneData, CloseCursor> from;
  std::unique_ptr<tagPackedData, CloseCursor> to;
  std::vector<std::uint16_t> runLengths;
  std::vector<std::uint32_t> values;
  std::vector<std::uint8_t> scratch;
};

OwnedBand OneLine(Layout layout, std::int32_t width, std::int32_t bits) {
  const std::int32_t bytes = BandLineBytes(layout, width, bits);
  OwnedBand band = NewBand(bytes);
  if (band == nullptr) return band;
  LabelBand(layout, bytes, band.get());
  band->width = static_cast<std::uint16_t>(width);
  band->lineCount = 1;
  band->bitsPerPixel = static_cast<std::uint16_t>(bits);
  band->planeBytes = static_cast<std::uint16_t>(BandLineBytes(layout, width, 1));
  return band;
}

Status Begin(Repacker* repacker, const Image& image) {
  repacker->planeRows = MakeEntry(Intake::AsStored, image, ToneCurve{});
  repacker->packedRows = image;
  repacker->packedRows.layout = Layout::Packed;
  repacker->planes = OneLine(Layout::Planes, image.width, image.depth);
  repacker->packed = OneLine(Layout::Packed, image.width, StoredBits(image.depth));
  if (repacker->planes != nullptr && repacker->packed != nullptr) {
    repacker->from.reset(CvtOpenPlanePixel(reinterpret_cast<tagRasterPlane*>(repacker->planes.get())));
    repacker->to.reset(CvtOpenPackedPixel(repacker->packed.get()));
  }
  if (repacker->from == nullptr || repacker->to == nullptr) return OutOfMemory();
  repacker->runLengths.resize(static_cast<std::size_t>(image.width));
  repacker->values.resize(static_cast<std::size_t>(image.width));
  return repacker->sink.begin(repacker->packedRows);
}

Status Write(Repacker* repacker, std::int32_t y, const std::uint8_t* row) {
  TakeRow(repacker->planeRows, row, &repacker->scratch, repacker->planes.get(), 0);
  tagCRLA line{};
  line.runLengths = repacker->runLengths.data();
  line.values = repacker->values.data();
  line.runCount = repacker->planes->width;
  line.runCount = CvtReadPlaneLine(repacker->from.get(), &line, 0, 0);
  CvtWritePackedLine(repacker->to.get(), &line, 0, 0);
  return repacker->sink.write(y, PixelsOf(repacker->packed.get()));
}

}  // namespace

RowSink PackRows(RowSink sink) {
  auto repacker = std::make_shared<Repacker>();
  repacker->sink = std::move(sink);
  RowSink packing;
  packing.begin = [repacker](const Image& image) { return Begin(repacker.get(), image); };
  packing.write = [repacker](std::int32_t y, const std::uint8_t* row) { return Write(repacker.get(), y, row); };
  packing.end = [repacker] { return repacker->sink.end(); };
  return packing;
}

}  // namespace cvt::pipeline

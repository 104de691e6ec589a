#include <utility>
#include <vector>

#include "imageio/raw_file.h"
#include "imageio/samples.h"

namespace cvt::imageio {

using pipeline::Image;
using pipeline::Ok;
using pipeline::Status;

namespace {

struct RawWriter {
  std::unique_ptr<OutputFile> file;
  Image image;
  std::vector<std::uint8_t> row;
};

Status WriteRow(RawWriter& writer, const std::uint8_t* row) {
  writer.row.assign(row, row + pipeline::RowBytes(writer.image));
  ClearTails(writer.image, writer.row.data());
  return Write(*writer.file, writer.row.data(), writer.row.size()) ? Ok() : WriteFailure(*writer.file);
}

}  // namespace

pipeline::RowSink WriteRaw(std::unique_ptr<OutputFile> file) {
  auto writer = std::make_shared<RawWriter>();
  writer->file = std::move(file);
  return {[writer](const Image& image) {
            writer->image = image;
            return Ok();
          },
          [writer](std::int32_t, const std::uint8_t* row) { return WriteRow(*writer, row); },
          [writer] { return Commit(*writer->file); }};
}

}  // namespace cvt::imageio

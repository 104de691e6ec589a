#include "imageio/matrix_file.h"

#include "imageio/image_file.h"
#include "imageio/palette_kind.h"
#include "imageio/samples.h"
#include "imageio/suffix.h"

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Failed;
using pipeline::Image;
using pipeline::Ok;
using pipeline::Status;

namespace {

constexpr std::int32_t kMostSide = 255;

Status CheckMatrix(const Image& image) {
  if (!IsGray(image)) return Fail(Code::Input, "the matrix has colours (give a PGM of grays)");
  if (image.width <= kMostSide && image.height <= kMostSide) return Ok();
  return Fail(Code::Input, "the matrix has " + std::to_string(image.width) + " x " + std::to_string(image.height) +
                               " thresholds (give 255 x 255 at most)");
}

}  // namespace

bool IsMatrixFile(const std::string& path) { return HasSuffix(path, ".pgm"); }

Status ReadMatrix(const std::string& path, pipeline::Thresholds* thresholds) {
  pipeline::RowSource source;
  if (Status failed = OpenImage(path, {}, &source); Failed(failed)) return failed;
  const Image& image = source.image;
  if (Status failed = CheckMatrix(image); Failed(failed)) return failed;
  std::array<std::uint8_t, 256> levels{};
  for (std::size_t i = 0; i < image.palette.size(); ++i) levels[i] = image.palette[i].red;
  const auto width = static_cast<std::size_t>(image.width);
  std::vector<std::uint8_t> row(pipeline::RowBytes(image));
  *thresholds = {image.width, image.height,
                 std::vector<std::uint8_t>(width * static_cast<std::size_t>(image.height))};
  for (auto to = thresholds->values.begin(); to != thresholds->values.end(); to += image.width) {
    if (Status failed = source.read(row.data()); Failed(failed)) return failed;
    UnpackRow(row.data(), image.width, pipeline::StoredBits(image.depth), levels, &*to);
  }
  return Ok();
}

}  // namespace cvt::imageio

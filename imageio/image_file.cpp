#include "imageio/image_file.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <memory>
#include <utility>

#include "imageio/input_file.h"
#include "imageio/limits.h"
#include "imageio/output_file.h"
#include "imageio/png_file.h"
#include "imageio/pnm_file.h"
#include "imageio/raw_file.h"
#include "imageio/suffix.h"

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Failed;
using pipeline::Ok;
using pipeline::Status;

namespace {

struct Suffix {
  const char* text;
  Format format;
};
constexpr Suffix kSuffixes[] = {{".png", Format::Png}, {".pbm", Format::Pbm}, {".pgm", Format::Pgm},
                                {".ppm", Format::Ppm}, {".pnm", Format::Pnm}, {".raw", Format::Raw}};

// What raw rows hold and files for people do not is refused here for all of them.
pipeline::RowSink RefuseRawDepths(pipeline::RowSink sink) {
  sink.begin = [begin = std::move(sink.begin)](const pipeline::Image& image) {
    if (!pipeline::IsDirect(image.depth) || image.depth == pipeline::kDirectDepth) return begin(image);
    return Fail(Code::Usage, std::to_string(image.depth) + " bits a pixel are for raw output only (choose 24)");
  };
  return sink;
}

pipeline::RowSink SinkFor(Format format, std::unique_ptr<OutputFile> file) {
  if (format == Format::Raw) return WriteRaw(std::move(file));
  if (format == Format::Png) return RefuseRawDepths(WritePng(std::move(file)));
  return RefuseRawDepths(WritePnm(std::move(file), format));
}

}  // namespace

bool HasSuffix(const std::string& path, std::string_view suffix) {
  if (path.size() < suffix.size()) return false;
  return std::equal(suffix.begin(), suffix.end(), path.end() - static_cast<std::ptrdiff_t>(suffix.size()),
                    [](char want, char have) { return want == std::tolower(static_cast<unsigned char>(have)); });
}

Status CheckSize(std::int64_t width, std::int64_t height, const ReadOptions& options) {
  if (width == 0 || height == 0) return Fail(Code::Input, "the image has no pixels (give one that has)");
  if (width > kMaxWidth) {
    return Fail(Code::Limit, "the image is " + std::to_string(width) + " pixels wide, the limit is " +
                                 std::to_string(kMaxWidth) + " (cut it into narrower pieces)");
  }
  if (height > std::numeric_limits<std::int32_t>::max() || width * height > options.maxPixels) {
    return Fail(Code::Limit, "the image has " + std::to_string(width) + " x " + std::to_string(height) +
                                 " pixels, the limit is " + std::to_string(options.maxPixels) +
                                 " in all (raise it with --max-pixels)");
  }
  return Ok();
}

Status OpenImage(const std::string& path, const ReadOptions& options, pipeline::RowSource* source) {
  std::unique_ptr<InputFile> file;
  if (Status failed = OpenInput(path, &file); Failed(failed)) return failed;
  const std::string_view head = Peek(*file, 2);
  if (file->error != 0) return EndOfInput(*file, "");
  if (head.empty()) return Fail(Code::Input, "the file is empty (give an image)");
  if (head == "\x89P") return OpenPng(std::move(file), options, source);
  if (head.size() == 2 && head[0] == 'P' && head[1] >= '1' && head[1] <= '6') {
    return OpenPnm(std::move(file), options, source);
  }
  return Fail(Code::Input, "this is no image of a known format (give a PNG, PBM, PGM or PPM)");
}

Status ChooseFormat(const std::string& path, Format wanted, Format* format) {
  *format = wanted;
  if (wanted != Format::FromSuffix) return Ok();
  if (path == "-") return Fail(Code::Usage, "no name tells its format (give --format png, pbm, pgm, ppm or raw)");
  for (const Suffix& suffix : kSuffixes) {
    if (!HasSuffix(path, suffix.text)) continue;
    *format = suffix.format;
    return Ok();
  }
  return Fail(Code::Usage,
              "the suffix tells no format (name it .png, .pbm, .pgm, .ppm, .pnm or .raw, or give --format)");
}

Status CreateImage(const std::string& path, const WriteOptions& options, pipeline::RowSink* sink) {
  Format format = Format::FromSuffix;
  if (Status failed = ChooseFormat(path, options.format, &format); Failed(failed)) return failed;
  std::unique_ptr<OutputFile> file;
  if (Status failed = CreateOutput(path, options, &file); Failed(failed)) return failed;
  *sink = SinkFor(format, std::move(file));
  return Ok();
}

}  // namespace cvt::imageio

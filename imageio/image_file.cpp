#include "imageio/image_file.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <memory>
#include <utility>

#include "imageio/c_file.h"
#include "imageio/input_file.h"
#include "imageio/jpeg_file.h"
#include "imageio/limits.h"
#include "imageio/output_file.h"
#include "imageio/png_file.h"
#include "imageio/pnm_file.h"
#include "imageio/raw_file.h"
#include "imageio/suffix.h"
#include "imageio/tiff_file.h"

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
constexpr Suffix kSuffixes[] = {{".png", Format::Png}, {".tif", Format::Tiff}, {".tiff", Format::Tiff},
                                {".pbm", Format::Pbm}, {".pgm", Format::Pgm},  {".ppm", Format::Ppm},
                                {".pnm", Format::Pnm}, {".pam", Format::Pam},  {".raw", Format::Raw},
                                {".c", Format::C}};

pipeline::RowSink SinkFor(Format format, Compression compression, const std::string& path,
                          std::unique_ptr<OutputFile> file) {
  if (format == Format::Raw) return WriteRaw(std::move(file));
  if (format == Format::C) return WriteC(std::move(file), path);
  if (format == Format::Png) return WritePng(std::move(file));
  if (format == Format::Tiff) return WriteTiff(std::move(file), compression);
  return WritePnm(std::move(file), format);
}

pipeline::RowSink DepthsChecked(pipeline::RowSink sink, Format format) {
  sink.begin = [begin = std::move(sink.begin), format](const pipeline::Image& image) {
    Status status = CheckDepth(image.depth, format);
    return Failed(status) ? status : begin(image);
  };
  return sink;
}

// The order of its bytes and 42, or 43 where offsets have 64 bits.
bool IsTiff(std::string_view head) {
  constexpr std::string_view kMarks[] = {{"II*\0", 4}, {"MM\0*", 4}, {"II+\0", 4}, {"MM\0+", 4}};
  return std::find(std::begin(kMarks), std::end(kMarks), head) != std::end(kMarks);
}

bool IsPng(std::string_view head) { return head.starts_with("\x89P"); }

bool IsJpeg(std::string_view head) { return head.starts_with("\xff\xd8"); }

template <char kPlain, char kBinary>
bool IsPnm(std::string_view head) {
  return head.size() >= 2 && head[0] == 'P' && (head[1] == kPlain || head[1] == kBinary);
}

struct Reader {
  const char* kind;
  bool (*knows)(std::string_view head);  // the first four bytes, fewer where there are no more
  Status (*open)(std::unique_ptr<InputFile> file, const ReadOptions& options, pipeline::RowSource* source,
                 Stored* stored);
};
constexpr Reader kReaders[] = {{"PNG", IsPng, OpenPng},           {"TIFF", IsTiff, OpenTiff},
                               {"JPEG", IsJpeg, OpenJpeg},        {"PBM", IsPnm<'1', '4'>, OpenPnm},
                               {"PGM", IsPnm<'2', '5'>, OpenPnm}, {"PPM", IsPnm<'3', '6'>, OpenPnm},
                               {"PAM", IsPnm<'7', '7'>, OpenPnm}};

Status FindReader(const std::string& path, const ReadOptions& options, std::unique_ptr<InputFile>* file,
                  Reader* found) {
  if (Status failed = OpenInput(path, file); Failed(failed)) return failed;
  const std::string_view head = Peek(**file, 4);
  if ((*file)->error != 0) return EndOfInput(**file, "");
  if (head.empty()) return Fail(Code::Input, "the file is empty (give an image)");
  for (const Reader& reader : kReaders) {
    if (!reader.knows(head)) continue;
    *found = reader;
    if (options.page > 1 && reader.open != OpenTiff)
      return Fail(Code::Usage, "the file has 1 page (leave --page out)");
    return Ok();
  }
  return Fail(Code::Input, "this is no image of a known format (give a PNG, JPEG, TIFF, PBM, PGM, PPM or PAM)");
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
    return Fail(Code::Limit, "the image is more than " + std::to_string(kMaxWidth) +
                                 " pixels wide (cut it into narrower pieces)");
  }
  if (height > kMaxHeight) {
    return Fail(Code::Limit, "the image is more than " + std::to_string(kMaxHeight) +
                                 " pixels high (cut it into lower pieces)");
  }
  if (width * height > options.maxPixels) {
    return Fail(Code::Limit, "the image has " + std::to_string(width) + " x " + std::to_string(height) +
                                 " pixels, the limit is " + std::to_string(options.maxPixels) +
                                 " in all (raise it with --max-pixels)");
  }
  return Ok();
}

Status OpenImage(const std::string& path, const ReadOptions& options, pipeline::RowSource* source) {
  std::unique_ptr<InputFile> file;
  Reader reader = kReaders[0];
  if (Status failed = FindReader(path, options, &file, &reader); Failed(failed)) return failed;
  Stored stored;
  return reader.open(std::move(file), options, source, &stored);
}

Status DescribeImage(const std::string& path, const ReadOptions& options, std::vector<Description>* pages) {
  std::unique_ptr<InputFile> file;
  Reader reader = kReaders[0];
  if (Status failed = FindReader(path, options, &file, &reader); Failed(failed)) return failed;
  if (reader.open == OpenTiff) return DescribeTiff(std::move(file), options, pages);
  pipeline::RowSource source;
  Description page{reader.kind, {}, {}};
  if (Status failed = reader.open(std::move(file), options, &source, &page.stored); Failed(failed)) return failed;
  page.image = std::move(source.image);
  pages->push_back(std::move(page));
  return Ok();
}

Status CheckDepth(std::int32_t depth, Format format) {
  if (!pipeline::IsDirect(depth) || depth == pipeline::kDirectDepth || TakesAnyRows(format)) return Ok();
  return Fail(Code::Usage,
              std::to_string(depth) +
                  " bits a pixel are for raw and C output only (choose --format raw or c, or 24 bits)");
}

const char* SuffixOf(Format format) {
  const Suffix* found = std::find_if(std::begin(kSuffixes), std::end(kSuffixes),
                                     [format](const Suffix& suffix) { return suffix.format == format; });
  return found == std::end(kSuffixes) ? "" : found->text;
}

Status ChooseFormat(const std::string& path, Format wanted, Format* format) {
  *format = wanted;
  if (wanted == Format::Tiff) return HaveTiff();
  if (wanted != Format::FromSuffix) return Ok();
  if (path == "-") {
    return Fail(Code::Usage, "no name tells its format (give --format png, tiff, pbm, pgm, ppm, pam, raw or c)");
  }
  for (const Suffix& suffix : kSuffixes) {
    if (!HasSuffix(path, suffix.text)) continue;
    *format = suffix.format;
    return *format == Format::Tiff ? HaveTiff() : Ok();
  }
  return Fail(Code::Usage,
              "the suffix tells no format (name it .png, .tif, .pbm, .pgm, .ppm, .pnm, .pam, .raw or .c, or give "
              "--format)");
}

Status CreateImage(const std::string& path, const WriteOptions& options, pipeline::RowSink* sink) {
  Format format = Format::FromSuffix;
  if (Status failed = ChooseFormat(path, options.format, &format); Failed(failed)) return failed;
  if (options.compression != Compression::Default && format != Format::Tiff) {
    return Fail(Code::Usage, "only a TIFF has a choice of compressions (leave --compress out, or write a TIFF)");
  }
  std::unique_ptr<OutputFile> file;
  if (Status failed = CreateOutput(path, options, &file); Failed(failed)) return failed;
  *sink = DepthsChecked(SinkFor(format, options.compression, path, std::move(file)), format);
  return Ok();
}

}  // namespace cvt::imageio

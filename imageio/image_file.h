// Image files, row by row: what an application opens and creates.
//
// Reads and writes PNG, TIFF and the PBM, PGM, PPM, PAM family, reads JPEG, writes raw rows and C arrays. Memory
// does not depend on the height of the image, interlaced PNG, progressive JPEG and tiled TIFF excepted. Knows
// nothing of bands and conversions.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "pipeline/image.h"
#include "pipeline/status.h"

namespace cvt::imageio {

// Pnm: the smallest of the three that fits. C: an array in a C source.
enum class Format : std::uint8_t { FromSuffix, Png, Tiff, Pbm, Pgm, Ppm, Pnm, Pam, Raw, C };
enum class Compression : std::uint8_t { Default, None, Lzw, Deflate, G4 };  // of TIFF
enum class Existing : std::uint8_t { Refuse, Replace };                     // an output file that is there already
enum class Unfinished : std::uint8_t { Nameless, Named };                   // an output file until it is complete

struct ReadOptions {
  IRGB background{255, 255, 255};                     // what transparent pixels lie on
  std::int64_t maxPixels = 2147483647;                // width times height
  std::int64_t maxBufferBytes = 256LL * 1024 * 1024;  // for images that cannot be read row by row
  std::int32_t page = 0;                              // of a TIFF, from 1; 0: the only one
};

struct WriteOptions {
  Format format = Format::FromSuffix;
  Existing existing = Existing::Refuse;
  // Told the name of a temporary file, true before it comes into being and false (the same pointer) when it is
  // gone again: a program that is interrupted in between removes it, if it is there. No other file ever has
  // that name. Outputs on several threads call it at the same time.
  std::function<void(const char* name, bool exists)> temporary = {};
  // Called when the file is complete and about to take its name.
  std::function<void()> naming = {};
  Compression compression = Compression::Default;  // another one is refused for formats but TIFF
  // Nameless where the system can: then `temporary` is told of the moment of a replacement only.
  Unfinished unfinished = Unfinished::Nameless;
};

/// Opens an image; "-" is standard input. The first bytes tell the format. Gray and indexed images come at
/// their true depth with their palette, colours as 24-bit rows; 16-bit samples are rounded to 8 bits and
/// transparency lies on the background. The resolution comes along where the file tells one.
///
/// Code::Usage   of several pages and none is chosen, or not of so many, or of a format left out of the build
/// Code::Input   missing, unreadable, damaged or of a kind that is not read
/// Code::Limit   larger than the options allow, or in need of a larger buffer
/// `source->read` answers the same codes, and Code::Input for an image that ends early.
pipeline::Status OpenImage(const std::string& path, const ReadOptions& options, pipeline::RowSource* source);

/// How a file has the samples of an image.
struct Stored {
  std::int32_t bits = 0;      // of a sample
  bool transparency = false;  // the background may show through
};

struct Description {
  const char* kind = "";  // "PNG"
  pipeline::Image image;  // as OpenImage would deliver it
  Stored stored;
};

/// Tells of the page that the options choose, or of all where they choose none, and opens the file once. Fails as
/// OpenImage does; `pages` then has those before the one that failed.
pipeline::Status DescribeImage(const std::string& path, const ReadOptions& options,
                               std::vector<Description>* pages);

/// Creates an image; "-" is standard output. The file appears under its name when `sink->end` is done;
/// a sink that is destroyed before leaves nothing behind. Devices and pipes are written directly.
///
/// Code::Usage   no format: neither wanted nor told by the suffix, or left out of the build; or one without a
///               choice of compressions
/// Code::Output  the file exists and may not be replaced, or cannot be created
/// `sink->begin` answers Code::Usage for an image that the format cannot hold, all three of the sink
/// Code::Output when writing fails.
pipeline::Status CreateImage(const std::string& path, const WriteOptions& options, pipeline::RowSink* sink);

/// Whether the format has room for rows of any depth and layout.
constexpr bool TakesAnyRows(Format format) { return format == Format::Raw || format == Format::C; }

/// Code::Usage for a depth that raw rows have and files for people do not.
pipeline::Status CheckDepth(std::int32_t depth, Format format);

/// The suffix by which files of a format are named, with its dot.
const char* SuffixOf(Format format);

/// The format that CreateImage would take: `wanted`, or by the suffix of `path`. Code::Usage as above.
pipeline::Status ChooseFormat(const std::string& path, Format wanted, Format* format);

}  // namespace cvt::imageio

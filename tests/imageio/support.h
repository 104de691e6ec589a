// Files made by hand and images read back whole.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "folder.h"
#include "imageio/image_file.h"

namespace cvt::imageio::test {

std::string Bytes(std::string_view hex);  // blanks are skipped
std::string Hex(std::string_view bytes);
std::string Hex(const std::vector<IRGB>& colors);

std::string Deflated(const std::string& bytes);
std::string Chunk(const std::string& type, const std::string& data);

/// A PNG from its parts: `chunks` stand between header and pixels, `scan` is every row with its filter byte.
struct PngParts {
  int width, height, bits, colorType;
  std::string chunks, scan;
  int interlace = 0;
};
std::string Png(const PngParts& parts);

/// The file with these bits of a byte turned.
std::string Changed(std::string file, std::size_t at, int bits);

/// A PAM of one row with these samples, in hexadecimal digits.
std::string Pam(int width, int depth, int largest, const std::string& type, std::string_view samples);

/// An image read to its end, or as far as it went.
struct Loaded {
  pipeline::Status status;
  pipeline::Image image;
  std::vector<std::string> rows;  // hex; bits past the width cleared
};
Loaded Load(const std::string& path, const ReadOptions& options = {});

pipeline::Status Save(const std::string& path, const WriteOptions& options, const pipeline::Image& image,
                      const std::vector<std::string>& rowsHex);

std::vector<IRGB> Colors(std::string_view hex);

/// One line of this code that says this, and what to do in brackets.
void ExpectRefusal(const pipeline::Status& status, pipeline::Code code, std::string_view says);

/// What damaged bytes may come to.
void ExpectSuccessOrOneClearLine(const pipeline::Status& status);

/// One format of each writer that this build has.
std::vector<Format> WrittenFormats();

}  // namespace cvt::imageio::test

// Files made by hand and images read back whole.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "imageio/image_file.h"

namespace cvt::imageio::test {

/// A directory of its own, gone with the test.
struct Folder {
  Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder();

  std::string Path(const std::string& name) const { return (path / name).string(); }
  std::string Write(const std::string& name, const std::string& bytes) const;  // answers the path
  std::string Read(const std::string& name) const;
  std::vector<std::string> Names() const;  // sorted

  std::filesystem::path path;
};

std::string Bytes(std::string_view hex);  // blanks are skipped
std::string Hex(std::string_view bytes);
std::string Hex(const std::vector<IRGB>& colors);

std::string Chunk(const std::string& type, const std::string& data);

/// A PNG from its parts: `chunks` stand between header and pixels, `scan` is every row with its filter byte.
struct PngParts {
  int width, height, bits, colorType;
  std::string chunks, scan;
  int interlace = 0;
};
std::string Png(const PngParts& parts);

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

}  // namespace cvt::imageio::test

// A place for the files of a test.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

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

}  // namespace cvt::imageio::test

#include "folder.h"

#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace cvt::imageio::test {

Folder::Folder() {
  std::string name = (std::filesystem::temp_directory_path() / "imageio-XXXXXX").string();
  path = ::mkdtemp(name.data());
}

Folder::~Folder() { std::filesystem::remove_all(path); }

std::string Folder::Write(const std::string& name, const std::string& bytes) const {
  std::filesystem::remove(path / name);  // writing over what is there waits for the disk
  std::ofstream(path / name, std::ios::binary) << bytes;
  return Path(name);
}

std::string Folder::Read(const std::string& name) const {
  std::ifstream file(path / name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> Folder::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace cvt::imageio::test

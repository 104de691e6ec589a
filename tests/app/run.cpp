#include "run.h"

#include <stdlib.h>
#include <sys/wait.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace cvt::app::test {

namespace {

std::string Content(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

Workplace::Workplace() {
  std::string name = (std::filesystem::temp_directory_path() / "r2r-test-XXXXXX").string();
  streams = ::mkdtemp(name.data());
  files = streams / "files";
  std::filesystem::create_directory(files);
}

Workplace::~Workplace() { std::filesystem::remove_all(streams); }

Ended Workplace::Shell(const std::string& line) const {
  const std::string command =
      "cd '" + files.string() + "' && R2R='" R2R_BINARY "' && { " + line + "\n} >../out 2>../err </dev/null";
  const int ended = std::system(command.c_str());
  return {WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, Content(streams / "out"), Content(streams / "err")};
}

void Workplace::Write(const std::string& name, const std::string& bytes) const {
  std::ofstream(files / name, std::ios::binary) << bytes;
}

std::string Workplace::Read(const std::string& name) const { return Content(files / name); }

std::vector<std::string> Workplace::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(files)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace cvt::app::test

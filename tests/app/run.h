// Runs the real command in a directory of its own.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace cvt::app::test {

struct Ended {
  int status;
  std::string out, err;
};

struct Workplace {
  Workplace();
  Workplace(const Workplace&) = delete;
  Workplace& operator=(const Workplace&) = delete;
  ~Workplace();

  /// A shell line in the directory, where $R2R is the command.
  Ended Shell(const std::string& line) const;
  /// `r2r convert` with these words, quoted for the shell where they need it.
  Ended Convert(const std::string& words) const { return Shell("\"$R2R\" convert " + words); }

  void Write(const std::string& name, const std::string& bytes) const;
  std::string Read(const std::string& name) const;  // empty if there is none
  std::vector<std::string> Names() const;           // sorted

  std::filesystem::path files, streams;
};

}  // namespace cvt::app::test

// Runs the real command in a directory of its own.
#pragma once

#include <string>

#include "../imageio/folder.h"

namespace cvt::app::test {

struct Ended {
  int status;
  std::string out, err;
};

/// Commands run in the folder; what has no place there lies aside.
struct Workplace : imageio::test::Folder {
  /// A shell line in the directory, where $R2R is the command and $ASIDE the other directory.
  Ended Shell(const std::string& line) const;
  /// `r2r convert` with these words, quoted for the shell where they need it.
  Ended Convert(const std::string& words) const { return Shell("\"$R2R\" convert " + words); }

  Folder aside;
};

/// A conversion of a file, and every byte of what it makes.
struct Case {
  const char* what;
  std::string input, options, output, file;
};

/// Converts the input of the case, and finds that nothing else comes of it.
void ExpectFile(const Workplace& place, const Case& c);

}  // namespace cvt::app::test

// An output that appears complete or not at all.
//
// Bytes go to a file without a name in the target's directory, which takes the target's name when all is
// written: not even a killed program leaves part of one. Where a system has no nameless files a temporary file
// with a name stands in. Standard output, character devices and pipes have no name to take: they are written
// directly.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "imageio/image_file.h"

namespace cvt::imageio {

struct OutputFile {
  OutputFile() = default;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();  // removes the temporary file that was not committed

  int descriptor = -1;    // for reading and seeking as well, unless the file is written directly
  int error = 0;          // errno of the write that failed, 0: none
  std::string target;     // empty: written directly
  std::string temporary;  // empty: there is no name to remove
  Existing existing = Existing::Refuse;
  std::function<void(const char* name, bool exists)> onTemporary;
  std::function<void()> onNaming;
  std::vector<std::uint8_t> buffer;
};

/// Code::Output when the target may not be replaced or nothing can be created beside it.
pipeline::Status CreateOutput(const std::string& path, const WriteOptions& options,
                              std::unique_ptr<OutputFile>* file);

/// False when writing failed; nothing is written after that.
bool Write(OutputFile& file, const std::uint8_t* from, std::size_t bytes);
bool Write(OutputFile& file, std::string_view text);

/// Writes what is buffered and gives the file its name. Who wrote to the descriptor at places of his own did
/// not use Write before.
pipeline::Status Commit(OutputFile& file);

/// What to say after Write answered false.
pipeline::Status WriteFailure(const OutputFile& file);

}  // namespace cvt::imageio

// An output that appears complete or not at all.
//
// Bytes go to a temporary file beside the target, which takes the target's name when all is written.
// Standard output, character devices and pipes have no name to take: they are written directly.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "imageio/image_file.h"

namespace cvt::imageio {

struct OutputFile {
  OutputFile() = default;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();  // removes the temporary file that was not committed

  int descriptor = -1;
  int error = 0;          // errno of the write that failed, 0: none
  std::string target;     // empty: written directly
  std::string temporary;  // empty: not there, or no longer
  Existing existing = Existing::Refuse;
  std::function<void(const char* name)> onTemporary;
  std::vector<std::uint8_t> buffer;
};

/// Code::Output when the target may not be replaced or nothing can be created beside it.
pipeline::Status CreateOutput(const std::string& path, const WriteOptions& options,
                              std::unique_ptr<OutputFile>* file);

/// False when writing failed; nothing is written after that.
bool Write(OutputFile& file, const std::uint8_t* from, std::size_t bytes);

/// Writes what is buffered, closes and gives the file its name.
pipeline::Status Commit(OutputFile& file);

/// What to say after Write answered false.
pipeline::Status WriteFailure(const OutputFile& file);

}  // namespace cvt::imageio

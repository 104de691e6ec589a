// The bytes of an input, in order, from a file or a stream that cannot go back.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "pipeline/status.h"

namespace cvt::imageio {

struct InputFile {
  InputFile() = default;
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile();

  int descriptor = -1;
  int error = 0;  // errno of the read that failed, 0: none
  std::vector<std::uint8_t> buffer;
  std::size_t next = 0;    // first byte in the buffer that nobody took
  std::size_t filled = 0;  // bytes in the buffer
};

/// Opens a file for reading; "-" is standard input. Code::Input when there is nothing to read from.
pipeline::Status OpenInput(const std::string& path, std::unique_ptr<InputFile>* file);

/// The next bytes without taking them: `bytes` of them, fewer where the data ends. Valid until the next call.
std::string_view Peek(InputFile& file, std::size_t bytes);

/// Takes bytes; answers how many there were: fewer than asked for where the data ends or reading fails.
std::size_t Read(InputFile& file, std::uint8_t* to, std::size_t bytes);

/// What to say when the data ended or reading failed: `ended`, unless there was an error.
pipeline::Status EndOfInput(const InputFile& file, std::string ended);

/// What to say when reading failed with this errno.
pipeline::Status ReadFailure(int error);

bool Refill(InputFile& file);  // false: no more data

/// Takes one byte; -1 where the data ends.
inline int NextByte(InputFile& file) {
  if (file.next == file.filled && !Refill(file)) return -1;
  return file.buffer[file.next++];
}

}  // namespace cvt::imageio

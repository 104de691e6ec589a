#include "imageio/input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Ok;
using pipeline::Status;

namespace {

constexpr std::size_t kBufferBytes = 65536;

// Appends to the buffer what one read gives; false when that is nothing.
bool ReadMore(InputFile& file) {
  ssize_t got = 0;
  do {
    got = ::read(file.descriptor, file.buffer.data() + file.filled, file.buffer.size() - file.filled);
  } while (got < 0 && errno == EINTR);
  if (got < 0) file.error = errno;
  if (got <= 0) return false;
  file.filled += static_cast<std::size_t>(got);
  return true;
}

Status CannotOpen(int error) {
  const std::string reason = std::generic_category().message(error);
  if (error == ENOENT) return Fail(Code::Input, "there is no such file (check the name)");
  if (error == EACCES) return Fail(Code::Input, "reading it is not permitted (check its permissions)");
  return Fail(Code::Input, "it cannot be opened: " + reason + " (check the name and its permissions)");
}

}  // namespace

InputFile::~InputFile() {
  if (descriptor >= 0) ::close(descriptor);
}

Status OpenInput(const std::string& path, std::unique_ptr<InputFile>* file) {
  auto opened = std::make_unique<InputFile>();
  opened->descriptor =
      path == "-" ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0) : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (opened->descriptor < 0) return CannotOpen(errno);
  struct stat about {};
  if (::fstat(opened->descriptor, &about) == 0 && S_ISDIR(about.st_mode)) {
    return Fail(Code::Input, "this is a directory (name a file in it)");
  }
  opened->buffer.resize(kBufferBytes);
  *file = std::move(opened);
  return Ok();
}

bool Refill(InputFile& file) {
  file.next = file.filled = 0;
  return ReadMore(file);
}

std::string_view Peek(InputFile& file, std::size_t bytes) {
  while (file.filled - file.next < bytes && ReadMore(file)) {
  }
  return {reinterpret_cast<const char*>(file.buffer.data()) + file.next, std::min(bytes, file.filled - file.next)};
}

std::size_t Read(InputFile& file, std::uint8_t* to, std::size_t bytes) {
  std::size_t taken = 0;
  while (taken < bytes) {
    if (file.next == file.filled && !Refill(file)) break;
    const std::size_t piece = std::min(bytes - taken, file.filled - file.next);
    std::memcpy(to + taken, file.buffer.data() + file.next, piece);
    file.next += piece;
    taken += piece;
  }
  return taken;
}

Status EndOfInput(const InputFile& file, std::string ended) {
  return file.error == 0 ? Fail(Code::Input, std::move(ended)) : ReadFailure(file.error);
}

Status ReadFailure(int error) {
  return Fail(Code::Input,
              "reading failed: " + std::generic_category().message(error) + " (check the disk or the connection)");
}

}  // namespace cvt::imageio

#include "imageio/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <system_error>
#include <utility>

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Failed;
using pipeline::Ok;
using pipeline::Status;

namespace {

constexpr std::size_t kBufferBytes = 65536;
constexpr mode_t kNewFileMode = 0666;  // less the umask of the user

std::string Reason(int error) { return std::generic_category().message(error); }

Status Exists() { return Fail(Code::Output, "the file exists (give --force to replace it)"); }

bool WriteAll(OutputFile& file, const std::uint8_t* from, std::size_t bytes) {
  while (bytes > 0 && file.error == 0) {
    const ssize_t written = ::write(file.descriptor, from, bytes);
    if (written < 0) {
      if (errno != EINTR) file.error = errno;
      continue;
    }
    from += written;
    bytes -= static_cast<std::size_t>(written);
  }
  return file.error == 0;
}

bool Flush(OutputFile& file) {
  const bool done = WriteAll(file, file.buffer.data(), file.buffer.size());
  file.buffer.clear();
  return done;
}

void Expect(OutputFile& file, std::string name) {
  file.temporary = std::move(name);
  if (file.onTemporary) file.onTemporary(file.temporary.c_str(), true);
}

void Forget(OutputFile& file) {
  if (file.onTemporary) file.onTemporary(file.temporary.c_str(), false);
  file.temporary.clear();
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

// The dot keeps patterns like *.png from meeting half a file. Random, for many threads, and machines with the
// same process ids, may write to one directory.
std::string TemporaryName(const OutputFile& file) {
  std::random_device random;
  return FolderOf(file.target) + ".r2r-" + std::to_string(random()) + "-" + std::to_string(random()) + ".part";
}

// How the program itself may name a file that has no name.
std::string DescriptorPath(const OutputFile& file) { return "/proc/self/fd/" + std::to_string(file.descriptor); }

// Whether there is a file now that can be given a name later.
bool CreateNameless([[maybe_unused]] OutputFile& file) {
#ifdef O_TMPFILE
  file.descriptor = ::open(FolderOf(file.target).c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, kNewFileMode);
  if (file.descriptor < 0) return false;
  if (::access(DescriptorPath(file).c_str(), F_OK) == 0) return true;
  ::close(std::exchange(file.descriptor, -1));
#endif
  return false;
}

Status CreateNamed(OutputFile& file) {
  for (;;) {
    Expect(file, TemporaryName(file));
    file.descriptor = ::open(file.temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode);
    if (file.descriptor >= 0) return Ok();
    const int error = errno;
    Forget(file);
    if (error == EEXIST) continue;
    return Fail(Code::Output, "nothing can be created in its directory: " + Reason(error) +
                                  " (check that the directory exists and is writable)");
  }
}

Status CreateUnfinished(OutputFile& file, Unfinished unfinished) {
  if (unfinished == Unfinished::Nameless && CreateNameless(file)) return Ok();
  return CreateNamed(file);
}

Status OpenDirect(OutputFile& file, int descriptor) {
  file.descriptor = descriptor;
  if (descriptor >= 0) return Ok();
  return Fail(Code::Output, "it cannot be opened: " + Reason(errno) + " (check its permissions)");
}

// A link is followed: the file that it leads to is replaced, not the link.
std::string Resolved(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
  return real ? std::string(real.get()) : path;
}

Status CreateOverExisting(const std::string& path, const struct stat& about, Unfinished unfinished,
                          OutputFile& file) {
  if (S_ISDIR(about.st_mode)) return Fail(Code::Output, "this is a directory (name a file in it)");
  if (S_ISCHR(about.st_mode) || S_ISFIFO(about.st_mode)) {
    return OpenDirect(file, ::open(path.c_str(), O_WRONLY | O_CLOEXEC));
  }
  if (!S_ISREG(about.st_mode) && !S_ISLNK(about.st_mode)) {
    return Fail(Code::Output, "this is no file that can be replaced (choose another name)");
  }
  if (file.existing == Existing::Refuse) return Exists();
  file.target = Resolved(path);
  if (Status failed = CreateUnfinished(file, unfinished); Failed(failed)) return failed;
  if (S_ISREG(about.st_mode)) static_cast<void>(::fchmod(file.descriptor, about.st_mode & 0777));
  return Ok();
}

// rename() replaces what is there, link() refuses to: only link() keeps a file that came into being during
// the conversion. File systems without links leave a short gap between the look and the rename.
int Rename(const OutputFile& file) {
  const char* from = file.temporary.c_str();
  const char* to = file.target.c_str();
  if (file.existing == Existing::Refuse) {
    if (::link(from, to) == 0) return ::unlink(from) == 0 ? 0 : errno;
    if (errno == EEXIST) return EEXIST;
    struct stat about {};
    if (::lstat(to, &about) == 0) return EEXIST;
  }
  return std::rename(from, to) == 0 ? 0 : errno;
}

int LinkNameless(const OutputFile& file, const std::string& name) {
  const std::string from = DescriptorPath(file);
  return ::linkat(AT_FDCWD, from.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0 ? 0 : errno;
}

// A nameless file that replaces another has a name for a moment: links refuse to replace.
int NameNameless(OutputFile& file) {
  int error = LinkNameless(file, file.target);
  if (error != EEXIST || file.existing == Existing::Refuse) return error;
  while (error == EEXIST) {
    Expect(file, TemporaryName(file));
    error = LinkNameless(file, file.temporary);
    if (error != 0) Forget(file);
  }
  return error == 0 ? Rename(file) : error;
}

// File systems of other machines put writing off and tell of its failure when a descriptor is closed. What has no
// name yet needs its descriptor to get one: a second one is closed before that. The disk is not waited for.
bool Settle(OutputFile& file) {
  const bool direct = file.target.empty();
  if (::close(direct ? std::exchange(file.descriptor, -1) : ::dup(file.descriptor)) != 0) file.error = errno;
  return file.error == 0;
}

}  // namespace

OutputFile::~OutputFile() {
  if (descriptor >= 0) ::close(descriptor);
  if (temporary.empty()) return;
  ::unlink(temporary.c_str());
  Forget(*this);
}

Status CreateOutput(const std::string& path, const WriteOptions& options, std::unique_ptr<OutputFile>* file) {
  auto created = std::make_unique<OutputFile>();
  created->existing = options.existing;
  created->onTemporary = options.temporary;
  created->onNaming = options.naming;
  created->buffer.reserve(kBufferBytes);
  struct stat about {};
  Status status = Ok();
  if (path == "-") {
    status = OpenDirect(*created, ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0));
  } else if (::stat(path.c_str(), &about) == 0 || ::lstat(path.c_str(), &about) == 0) {
    status = CreateOverExisting(path, about, options.unfinished, *created);
  } else {
    created->target = path;
    status = CreateUnfinished(*created, options.unfinished);
  }
  if (!Failed(status)) *file = std::move(created);
  return status;
}

bool Write(OutputFile& file, const std::uint8_t* from, std::size_t bytes) {
  if (file.error != 0) return false;
  if (file.buffer.size() + bytes > kBufferBytes && !Flush(file)) return false;
  if (bytes >= kBufferBytes) return WriteAll(file, from, bytes);
  file.buffer.insert(file.buffer.end(), from, from + bytes);
  return true;
}

bool Write(OutputFile& file, std::string_view text) {
  return Write(file, reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

Status WriteFailure(const OutputFile& file) {
  return Fail(Code::Output,
              "writing failed: " + Reason(file.error) + " (make room, or choose another place for the output)");
}

Status Commit(OutputFile& file) {
  if (!Flush(file) || !Settle(file)) return WriteFailure(file);
  if (file.target.empty()) return Ok();
  if (file.onNaming) file.onNaming();
  const int error = file.temporary.empty() ? NameNameless(file) : Rename(file);
  if (error == EEXIST) return Exists();
  if (error != 0) {
    return Fail(Code::Output, "the finished file cannot take its name: " + Reason(error) +
                                  " (check the directory's permissions)");
  }
  if (!file.temporary.empty()) Forget(file);
  return Ok();
}

}  // namespace cvt::imageio

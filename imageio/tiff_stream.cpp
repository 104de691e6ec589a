#include "imageio/tiff_stream.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "imageio/spool.h"

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Ok;
using pipeline::Status;

namespace {

TiffStream& StreamOf(thandle_t handle) { return *static_cast<TiffStream*>(handle); }

tmsize_t ReadHandle(thandle_t handle, void* to, tmsize_t bytes) { return ReadStream(StreamOf(handle), to, bytes); }

tmsize_t WriteHandle(thandle_t handle, void* from, tmsize_t bytes) {
  return WriteStream(StreamOf(handle), from, bytes);
}

toff_t SeekHandle(thandle_t handle, toff_t offset, int whence) {
  TiffStream& stream = StreamOf(handle);
  if (whence == SEEK_CUR) offset += stream.position;
  if (whence == SEEK_END) offset += stream.size;
  return stream.position = offset;
}

toff_t SizeOfHandle(thandle_t handle) { return StreamOf(handle).size; }

int LeaveOpen(thandle_t) { return 0; }

void KeepWords(TiffStream& stream, const char* format, va_list values) {
  std::vsnprintf(stream.words, sizeof stream.words, format, values);
  const auto printable = [](char c) { return c >= ' ' && c <= '~' ? c : '?'; };
  std::transform(stream.words, std::find(std::begin(stream.words), std::end(stream.words), '\0'), stream.words,
                 printable);
}

// Answering 1 keeps the words from the hooks that print them.
int HearError(TIFF*, void* stream, const char*, const char* format, va_list values) {
  static_cast<TiffStream*>(stream)->complains = true;
  KeepWords(*static_cast<TiffStream*>(stream), format, values);
  return 1;
}

// What old programs and padded strips give rise to is sound.
bool IsHarmless(std::string_view warning) {
  return warning.starts_with("Old-style LZW") || warning.starts_with("JPEG strip size exceeds");
}

int HearWarning(TIFF* tiff, void* stream, const char* module, const char* format, va_list values) {
  return IsHarmless(format) ? 1 : HearError(tiff, stream, module, format, values);
}

// Pipes cannot go back, libtiff does: their data goes to a file first.
Status PutAside(TiffStream& stream, std::unique_ptr<InputFile>* input) {
  auto spool = std::make_unique<InputFile>();
  InputFile& file = **input;
  stream.descriptor = spool->descriptor = CreateSpool();
  if (stream.descriptor < 0) stream.error = errno;
  do WriteStream(stream, file.buffer.data() + file.next, static_cast<tmsize_t>(file.filled - file.next));
  while (stream.error == 0 && Refill(file));
  if (stream.error != 0) {
    return Fail(Code::Input, "the TIFF cannot be kept in the directory for temporary files: " +
                                 std::generic_category().message(stream.error) + " (give it as a file)");
  }
  if (file.error != 0) return EndOfInput(file, "");
  stream.position = 0;
  *input = std::move(spool);
  return Ok();
}

}  // namespace

Status FindBytes(TiffStream& stream, std::unique_ptr<InputFile>* input) {
  const InputFile& file = **input;
  struct stat about {};
  const off_t end = ::lseek(file.descriptor, 0, SEEK_CUR);  // of what the buffer has
  if (end < 0 || ::fstat(file.descriptor, &about) != 0 || !S_ISREG(about.st_mode)) return PutAside(stream, input);
  stream.descriptor = file.descriptor;
  stream.start = static_cast<std::uint64_t>(end) - file.filled;
  stream.size = static_cast<std::uint64_t>(std::max(about.st_size, end)) - stream.start;
  return Ok();
}

TiffHandle OpenTiffStream(TiffStream& stream, const char* mode, std::int64_t maxBytes) {
  const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                 TIFFOpenOptionsFree);
  if (!options) return nullptr;
  constexpr std::int64_t kMost = std::numeric_limits<tmsize_t>::max();  // of a machine of 32 bits
  TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(std::min(maxBytes, kMost)));
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), HearError, &stream);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), HearWarning, &stream);
  return TiffHandle(TIFFClientOpenExt("TIFF", mode, &stream, ReadHandle, WriteHandle, SeekHandle, LeaveOpen,
                                      SizeOfHandle, nullptr, nullptr, options.get()));
}

Status Damaged(const TiffStream& stream) {
  if (stream.error != 0) return ReadFailure(stream.error);
  return Fail(Code::Input, std::string("the TIFF is damaged: ") + stream.words + " (get an intact copy of it)");
}

tmsize_t ReadStream(TiffStream& stream, void* to, tmsize_t bytes) {
  tmsize_t taken = 0;
  while (taken < bytes && stream.position < stream.size) {
    const ssize_t got =
        ::pread(stream.descriptor, static_cast<char*>(to) + taken, static_cast<std::size_t>(bytes - taken),
                static_cast<off_t>(stream.start + stream.position));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) stream.error = errno;
    if (got <= 0) break;
    taken += got;
    stream.position += static_cast<std::uint64_t>(got);
  }
  return stream.error == 0 ? taken : -1;
}

tmsize_t WriteStream(TiffStream& stream, const void* from, tmsize_t bytes) {
  for (tmsize_t done = 0; done < bytes && stream.error == 0;) {
    const ssize_t written =
        ::pwrite(stream.descriptor, static_cast<const char*>(from) + done, static_cast<std::size_t>(bytes - done),
                 static_cast<off_t>(stream.start + stream.position));
    if (written < 0) {
      if (errno != EINTR) stream.error = errno;
      continue;
    }
    done += written;
    stream.position += static_cast<std::uint64_t>(written);
    stream.size = std::max(stream.size, stream.position);
  }
  return stream.error == 0 ? bytes : -1;
}

}  // namespace cvt::imageio

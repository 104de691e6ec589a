// The border to libtiff: it reads and writes at any place of an open descriptor, and its words are kept instead
// of printed. libtiff tells by what it answers that it failed; but much of what it finds damaged it only
// complains of and then makes the best of.
#pragma once

#include <tiffio.h>

#include <cstdint>
#include <memory>

#include "imageio/input_file.h"
#include "pipeline/status.h"

namespace cvt::imageio {

struct TiffStream {
  int descriptor = -1;         // belongs to somebody else
  std::uint64_t start = 0;     // where in the file the TIFF starts
  std::uint64_t position = 0;  // of the next byte, from `start`
  std::uint64_t size = 0;
  int error = 0;                             // errno of the call that failed, 0: none
  bool complains = false;                    // of the data; cleared by whoever wants to know
  char words[120] = "libtiff cannot start";  // a plain array, for it is filled in the midst of an error
};

struct TiffCloser {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;

/// Tells a stream where the bytes of an input are that nothing was taken from. What cannot go back, as pipes
/// cannot, is replaced by a file that has its bytes. Code::Input when reading fails or there is no room.
pipeline::Status FindBytes(TiffStream& stream, std::unique_ptr<InputFile>* input);

/// Opens a TIFF in a stream, which stays where it is until the TIFF is closed; null where that fails. Modes are
/// those of TIFFOpen. No piece of memory that libtiff takes is larger than `maxBytes`, 0: any size.
TiffHandle OpenTiffStream(TiffStream& stream, const char* mode, std::int64_t maxBytes);

/// What to say when reading a TIFF failed.
pipeline::Status Damaged(const TiffStream& stream);

/// The next bytes of a stream; -1 when reading fails.
tmsize_t ReadStream(TiffStream& stream, void* to, tmsize_t bytes);

/// Writes the next bytes of a stream; -1 when that fails, and after that always.
tmsize_t WriteStream(TiffStream& stream, const void* from, tmsize_t bytes);

}  // namespace cvt::imageio

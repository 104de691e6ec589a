// Checksums of pixels, by which two outputs can be compared whatever their files look like.
#pragma once

#include <cstdint>
#include <string>

#include "pipeline/image.h"

namespace cvt::app {

/// A sink that passes everything on and leaves in `crc` the CRC-32 of the rows so far, with bits behind the
/// last pixel as 0: of the bytes that raw output has. `crc` must outlive it.
pipeline::RowSink Checked(pipeline::RowSink sink, std::uint32_t* crc);

/// A checksum as people read it: eight hexadecimal digits.
std::string Hex(std::uint32_t crc);

}  // namespace cvt::app

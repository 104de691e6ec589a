// What the headers of PBM, PGM, PPM and PAM files say, and the text that they are made of.
#pragma once

#include <cstdint>
#include <optional>

#include "imageio/input_file.h"

namespace cvt::imageio {

enum class Samples : std::uint8_t { PlainBits, Plain, Bits, Bytes, Words };

struct PnmHeader {
  std::int64_t width = 0, height = 0;
  std::int64_t largest = 1;  // largest value of a sample
  std::int32_t colors = 1;   // 3: red, green, blue
  bool alpha = false;        // a sample for opacity follows the colour
  Samples stored = Samples::Bits;
};

/// The header of P1 to P6, taken together with the white space that ends it. Code::Input when it is none. Sizes
/// are as the file tells them, the largest value is 1 to 65535.
pipeline::Status ReadPnmHeader(InputFile& file, PnmHeader* header);

/// As ReadPnmHeader, for P7.
pipeline::Status ReadPamHeader(InputFile& file, PnmHeader* header);

/// Code::Input when a sample cannot be as large as that.
pipeline::Status CheckLargest(std::int64_t largest);

/// A header without a usable value of `what`.
pipeline::Status NoValid(const char* what);

/// Takes the next byte that is neither white space nor comment; -1 where the data ends.
int NextVisible(InputFile& file);

/// Takes a number and the one separator behind it. Where the data ends, -1; nothing where it is no number.
std::optional<std::int64_t> NextNumber(InputFile& file);

/// Where numbers stop growing: beyond every limit.
inline constexpr std::int64_t kHuge = 1000000000000;

inline constexpr std::int64_t kLargestSample = 65535;

}  // namespace cvt::imageio

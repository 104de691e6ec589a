#include "imageio/pnm_header.h"

#include <algorithm>
#include <string>

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Failed;
using pipeline::Ok;
using pipeline::Status;

namespace {

bool IsSpace(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool IsDigit(int c) { return c >= '0' && c <= '9'; }

int SkipComment(InputFile& file) {
  int c = 0;
  do c = NextByte(file);
  while (c >= 0 && c != '\n' && c != '\r');
  return c;
}

Status HeaderNumber(InputFile& file, const char* what, std::int64_t* value) {
  const std::optional<std::int64_t> number = NextNumber(file);
  if (!number) return NoValid(what);
  if (*number < 0)
    return EndOfInput(file, std::string("the file ends before its ") + what + " (get a complete copy)");
  *value = *number;
  return Ok();
}

Samples StoredAs(int kind, std::int64_t largest) {
  const bool bits = kind == 1 || kind == 4;
  if (kind <= 3) return bits ? Samples::PlainBits : Samples::Plain;
  if (bits) return Samples::Bits;
  return largest > 255 ? Samples::Words : Samples::Bytes;
}

}  // namespace

int NextVisible(InputFile& file) {
  for (;;) {
    int c = NextByte(file);
    if (c == '#') c = SkipComment(file);
    if (c < 0 || !IsSpace(c)) return c;
  }
}

std::optional<std::int64_t> NextNumber(InputFile& file) {
  int c = NextVisible(file);
  if (c < 0) return -1;
  if (!IsDigit(c)) return std::nullopt;
  std::int64_t value = 0;
  for (; IsDigit(c); c = NextByte(file)) value = std::min(value * 10 + (c - '0'), kHuge);
  if (c == '#') c = SkipComment(file);
  if (c >= 0 && !IsSpace(c)) return std::nullopt;
  return value;
}

Status NoValid(const char* what) {
  return Fail(Code::Input, std::string("the header has no valid ") + what + " (get an intact copy)");
}

Status CheckLargest(std::int64_t largest) {
  if (largest >= 1 && largest <= kLargestSample) return Ok();
  return Fail(Code::Input, "the largest value of a sample is not 1 to 65535 (get an intact copy)");
}

Status ReadPnmHeader(InputFile& file, PnmHeader* header) {
  static_cast<void>(NextByte(file));  // P
  const int kind = NextByte(file) - '0';
  if (Status failed = HeaderNumber(file, "width", &header->width); Failed(failed)) return failed;
  if (Status failed = HeaderNumber(file, "height", &header->height); Failed(failed)) return failed;
  if (kind != 1 && kind != 4) {
    if (Status failed = HeaderNumber(file, "largest value", &header->largest); Failed(failed)) return failed;
  }
  header->colors = kind == 3 || kind == 6 ? 3 : 1;
  header->stored = StoredAs(kind, header->largest);
  return CheckLargest(header->largest);
}

}  // namespace cvt::imageio

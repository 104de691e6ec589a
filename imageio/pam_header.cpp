// PAM headers: a line for each value, in any order.
#include <algorithm>
#include <charconv>
#include <iterator>
#include <string>
#include <string_view>

#include "imageio/pnm_header.h"
#include "imageio/text.h"

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Failed;
using pipeline::Ok;
using pipeline::Status;

namespace {

constexpr std::size_t kMostLineBytes = 1024;

struct Number {
  const char* key;
  std::int64_t value;
};

struct PamLines {
  Number numbers[4] = {{"WIDTH", -1}, {"HEIGHT", -1}, {"DEPTH", -1}, {"MAXVAL", -1}};  // -1: not told yet
  std::string type;
};

// The samples of a pixel that a type tells. Other types tell nothing, the number of samples does.
struct TupleType {
  const char* name;
  std::int64_t depth;
};
constexpr TupleType kTupleTypes[] = {{"BLACKANDWHITE", 1},       {"GRAYSCALE", 1},       {"RGB", 3},
                                     {"BLACKANDWHITE_ALPHA", 2}, {"GRAYSCALE_ALPHA", 2}, {"RGB_ALPHA", 4}};

Status ReadLine(InputFile& file, std::string* line) {
  line->clear();
  for (;;) {
    const int c = NextByte(file);
    if (c < 0) return EndOfInput(file, "the file ends in its header (get a complete copy)");
    if (c == '\n') return Ok();
    if (line->size() == kMostLineBytes) return NoValid("line ends");
    line->push_back(static_cast<char>(c));
  }
}

Status TakeNumber(std::string_view text, Number* number) {
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number->value);
  const bool digits = !text.empty() && text.front() != '-' && stop == end;
  if (!digits || error == std::errc::invalid_argument) return NoValid(number->key);
  if (error == std::errc::result_out_of_range || number->value > kHuge) number->value = kHuge;
  return Ok();
}

Status TakeLine(std::string_view line, PamLines* lines) {
  const std::string_view key = line.substr(0, line.find_first_of(" \t\v\f\r"));
  const std::string_view rest = Trimmed(line.substr(key.size()));
  if (line.empty() || line.front() == '#') return Ok();
  if (key == "TUPLTYPE") {
    if (lines->type.size() < kMostLineBytes) lines->type += (lines->type.empty() ? "" : " ") + std::string(rest);
    return Ok();
  }
  for (Number& number : lines->numbers) {
    if (key != number.key) continue;
    return number.value < 0
               ? TakeNumber(rest, &number)
               : Fail(Code::Input, "the header tells its " + std::string(key) + " twice (get an intact copy)");
  }
  return Fail(Code::Input, "the header has a line that is none of a PAM (get an intact copy)");
}

Status ReadLines(InputFile& file, PamLines* lines) {
  std::string line;
  if (Status failed = ReadLine(file, &line); Failed(failed)) return failed;
  if (Trimmed(line) != "P7")
    return Fail(Code::Input, "the first line of a PAM is P7 alone (give a PAM, or a PNG)");
  for (;;) {
    if (Status failed = ReadLine(file, &line); Failed(failed)) return failed;
    if (Trimmed(line) == "ENDHDR") break;
    if (Status failed = TakeLine(Trimmed(line), lines); Failed(failed)) return failed;
  }
  for (const Number& number : lines->numbers) {
    if (number.value < 0) return NoValid(number.key);
  }
  return Ok();
}

Status CheckDepth(const std::string& type, std::int64_t depth) {
  const auto known = std::find_if(std::begin(kTupleTypes), std::end(kTupleTypes),
                                  [&type](const TupleType& one) { return type == one.name; });
  if (known != std::end(kTupleTypes) && known->depth != depth) {
    return Fail(Code::Input, "the header tells " + std::to_string(depth) + " samples a pixel, " + type + " has " +
                                 std::to_string(known->depth) + " (get an intact copy)");
  }
  if (depth >= 1 && depth <= 4) return Ok();
  return Fail(Code::Input, "the PAM has " + std::to_string(depth) + " samples a pixel (give one of 1 to 4)");
}

}  // namespace

Status ReadPamHeader(InputFile& file, PnmHeader* header) {
  PamLines lines;
  if (Status failed = ReadLines(file, &lines); Failed(failed)) return failed;
  const std::int64_t depth = lines.numbers[2].value;
  if (Status failed = CheckDepth(lines.type, depth); Failed(failed)) return failed;
  header->width = lines.numbers[0].value;
  header->height = lines.numbers[1].value;
  header->largest = lines.numbers[3].value;
  header->colors = depth < 3 ? 1 : 3;
  header->alpha = depth % 2 == 0;
  header->stored = header->largest > 255 ? Samples::Words : Samples::Bytes;
  return CheckLargest(header->largest);
}

}  // namespace cvt::imageio

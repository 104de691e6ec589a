#include "app/verify_command.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "app/checksum.h"
#include "app/choose.h"
#include "app/command_line.h"
#include "app/fit_palette.h"
#include "app/list_command.h"
#include "pipeline/chart.h"

namespace cvt::app {

using pipeline::Image;
using pipeline::RowSink;
using pipeline::RowSource;

namespace {

// Conversions of the test chart, where a bar hands the result of one on to the next, and the CRC-32 of the
// rows that come out, as raw output has them.
struct Reference {
  const char* options;
  std::uint32_t crc;
};

constexpr Reference kReferences[] = {
    {"--depth 1 --halftone nearest", 0xff1cb0bb},
    {"--depth 1 --threshold 77 --invert", 0x7a554259},
    {"--depth 1 --halftone diffusion", 0xfe925114},
    {"--depth 1 --halftone diffusion --gamma 1.8", 0xc80967f7},
    {"--depth 1 --halftone ordered --matrix bayer2", 0x67613210},
    {"--depth 1 --halftone ordered --matrix bayer16", 0x38e0fe9b},
    {"--depth 1 --halftone ordered --matrix cluster8", 0x2cd1a626},
    {"--palette #104020,#f0e0c0 --halftone diffusion", 0x37d2f4aa},
    {"--depth 3 --palette gray --halftone diffusion", 0x58a437ab},
    {"--depth 8 --palette gray", 0xbccb4c0f},
    {"--depth 8 --palette cube --halftone nearest", 0xdb2b62f5},
    {"--depth 8 --palette cube --halftone ordered", 0xa0e6065f},
    {"--depth 6 --palette cube --halftone diffusion --layout planes", 0x601af99b},
    {"--palette retro-16 --halftone nearest --layout planes", 0x0b84ea38},
    {"--palette retro-16 --halftone diffusion", 0xddc0dfe8},
    {"--palette epaper-7 --halftone ordered --matrix bayer4", 0x0d906a4d},
    {"--depth 8 --palette adaptive", 0xdcf91e09},
    {"--depth 5 --palette adaptive --halftone nearest", 0x93812478},
    {"--depth 15", 0x965054b4},
    {"--depth 16 --size 50%", 0x634779c6},
    {"--depth 32 --enlarge smooth --size 150%", 0x5f392686},
    {"--crop 301x203+37+11 --size 211", 0x638858f3},
    {"--crop 301x203+37+11 --size 511x99 --reduce decimate", 0x4ba3b4a6},
    {"--size 37% --depth 1 --halftone diffusion", 0x569141fb},
    {"--depth 8 --palette gray | --size 45% | --enlarge smooth --size 230%", 0xe800b520},
    {"--depth 1 | --size 33%", 0xa2c6936c},
    {"--depth 1 --halftone ordered | --size 71% --keep-color white", 0x07d0be6f},
    {"--depth 1 | --size 170% --depth 2", 0xe414b7f0},
    {"--palette retro-16 --halftone nearest | --size 60%", 0x2902e38d},
    {"--palette retro-16 | --depth 24 --size 61% --reduce smooth", 0x2dc2a176},
    {"--depth 4 --palette gray --layout planes | --depth 1 --halftone ordered", 0x7bff5f37}};

// An image in memory: what one conversion made and the next one takes.
struct Picture {
  Image image;
  std::vector<std::uint8_t> rows;
};

std::vector<std::string> WordsOf(std::string_view options) {
  std::vector<std::string> words = {"r2r", "convert"};
  for (std::size_t start = 0; start < options.size();) {
    const std::size_t end = std::min(options.find(' ', start), options.size());
    if (end > start) words.emplace_back(options.substr(start, end - start));
    start = end + 1;
  }
  return words;
}

Outcome ReadOptions(std::string_view options, Arguments* arguments) {
  Request request;
  Outcome outcome = ParseWords(WordsOf(options), &request);
  *arguments = std::move(request.arguments);
  return outcome;
}

RowSource Reading(const Picture& from) {
  return from.rows.empty() ? pipeline::ReadChart()
                           : pipeline::ReadMemory(from.image, from.rows.data(), pipeline::RowBytes(from.image));
}

Outcome ConvertStep(std::string_view options, const Picture& from, Picture* to, std::uint32_t* crc) {
  Arguments arguments;
  if (Outcome failed = ReadOptions(options, &arguments); Failed(failed)) return failed;
  Wishes wishes;
  if (Outcome failed = ReadWishes(arguments, &wishes); Failed(failed)) return failed;
  RowSource source = Reading(from);
  Chosen chosen;
  if (Outcome failed = ChooseSettings(arguments, wishes, source.image, imageio::Format::Raw, &chosen);
      Failed(failed))
    return failed;
  if (chosen.adaptive) {
    pipeline::Status status = FitPalette(source, &chosen.settings);
    if (pipeline::Failed(status)) return {status, ""};
    source = Reading(from);
  }
  RowSink sink = Checked(pipeline::WriteMemory(&to->image, &to->rows), crc);
  return {pipeline::Convert(source, chosen.settings, sink), ""};
}

Outcome ConvertSteps(std::string_view options, std::uint32_t* crc) {
  Picture picture;
  while (!options.empty()) {
    const std::size_t bar = std::min(options.find('|'), options.size());
    Picture next;
    if (Outcome failed = ConvertStep(options.substr(0, bar), picture, &next, crc); Failed(failed)) return failed;
    picture = std::move(next);
    options.remove_prefix(std::min(bar + 1, options.size()));
  }
  return Done();
}

// One line for a result that is not the wanted one, or, with -v, for each.
std::string LineFor(const Reference& reference, std::uint32_t crc) {
  const std::string is = crc == reference.crc ? "  same       " : "  DIFFERENT  ";
  return is + Hex(crc) + "  " + reference.options + "\n";
}

}  // namespace

Outcome RunVerify(const Arguments& arguments) {
  std::string text;
  std::size_t different = 0;
  for (const Reference& reference : kReferences) {
    std::uint32_t crc = 0;
    if (Outcome failed = ConvertSteps(reference.options, &crc); Failed(failed)) return failed;
    if (crc != reference.crc) ++different;
    if (crc != reference.crc || arguments.verbose) text += LineFor(reference, crc);
  }
  const std::string all = std::to_string(std::size(kReferences));
  if (Outcome failed = Print(text + std::to_string(std::size(kReferences) - different) + " of " + all +
                             " reference results are the same\n");
      Failed(failed))
    return failed;
  if (different == 0) return Done();
  return {pipeline::Fail(pipeline::Code::Partial,
                         std::to_string(different) + " of " + all +
                             " reference results differ (this build does not give the bits that it should: "
                             "build it again with another compiler)"),
          "verify"};
}

}  // namespace cvt::app

#include "app/info_command.h"

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "app/files.h"
#include "app/list_command.h"
#include "imageio/palette_kind.h"

namespace cvt::app {

using imageio::Description;
using pipeline::Code;
using pipeline::Image;

namespace {

std::string Colors(const Image& image) {
  if (pipeline::IsDirect(image.depth)) return "direct colour";
  if (imageio::IsBlackAndWhite(image)) return "black and white";
  const std::string count = std::to_string(image.palette.size());
  return imageio::IsRamp(image, image.depth) ? count + " grays" : "palette of " + count + " colours";
}

std::string Decimal(double value) {
  std::array<char, 32> digits{};
  std::snprintf(digits.data(), digits.size(), "%.6g", value);
  return digits.data();
}

std::string ResolutionOf(const Image& image) {
  if (image.resolution.x <= 0 || image.resolution.y <= 0) return "resolution not told";
  return Decimal(image.resolution.x) + " x " + Decimal(image.resolution.y) + " pixels an inch";
}

// What the file has and the rows do not.
std::string StoredText(const imageio::Stored& stored) {
  std::string text;
  if (stored.bits > 8) text += ", samples of " + std::to_string(stored.bits) + " bits (read as 8)";
  return stored.transparency ? text + ", with transparency" : text;
}

// The colours of a palette, eight a line; grays in order speak for themselves.
std::string PaletteLines(const Image& image) {
  std::string lines;
  if (pipeline::IsDirect(image.depth) || imageio::IsRamp(image, image.depth)) return lines;
  for (std::size_t i = 0; i < image.palette.size(); ++i) {
    const IRGB color = image.palette[i];
    std::array<char, 8> digits{};
    std::snprintf(digits.data(), digits.size(), "#%02x%02x%02x", color.red, color.green, color.blue);
    lines += (i % 8 == 0 ? "  " : " ") + std::string(digits.data());
    if (i % 8 == 7 || i + 1 == image.palette.size()) lines += "\n";
  }
  return lines;
}

std::string Tell(const std::string& name, const Description& description) {
  const Image& image = description.image;
  return OneLine(name) + ": " + description.kind + ", " + std::to_string(image.width) + " x " +
         std::to_string(image.height) + " pixels, " + std::to_string(image.depth) +
         (image.depth == 1 ? " bit" : " bits") + " packed, " + Colors(image) + StoredText(description.stored) +
         ", " + ResolutionOf(image) + "\n" + PaletteLines(image);
}

Outcome TellFile(const Arguments& arguments, const std::string& path) {
  std::vector<Description> pages;
  Outcome outcome{imageio::DescribeImage(path, ReadingOptions(arguments), &pages), SourceName(path)};
  std::string text;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    text += Tell(SourceName(path) + (pages.size() > 1 ? " page " + std::to_string(i + 1) : ""), pages[i]);
  }
  if (Outcome failed = Print(text); Failed(failed)) return failed;
  return outcome;
}

}  // namespace

Outcome RunInfo(const Arguments& arguments) {
  Outcome first;
  std::size_t failed = 0;
  for (const std::string& path : arguments.operands) {
    Outcome outcome = TellFile(arguments, path);
    if (!Failed(outcome)) continue;
    if (arguments.operands.size() == 1 || outcome.status.code == Code::Output) return outcome;
    Report(outcome);
    ++failed;
  }
  if (failed == 0) return Done();
  return {
      pipeline::Fail(Code::Partial, std::to_string(failed) + " of " + std::to_string(arguments.operands.size()) +
                                        " files could not be told of (the lines above tell why)"),
      ""};
}

}  // namespace cvt::app

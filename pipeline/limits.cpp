#include "pipeline/limits.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>

#include "pipeline/band.h"

namespace cvt::pipeline {
namespace {

constexpr std::int32_t kLargestCoordinate = 65535;
constexpr std::int32_t kTallestScaled = 32767;
constexpr std::int32_t kEnlargedLineBytes = 65000;        // what the enlarging routines put into one band
constexpr std::int64_t kLargestProduct = 2147483647;      // width x new width, height x new height
constexpr std::int64_t kLargestSmoothHeights = 16843009;  // height x new height; times 255 fills 32 bits

std::string Size(std::int32_t width, std::int32_t height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

bool FitsDepth(const std::vector<IRGB>& colors, std::int32_t depth) {
  return !colors.empty() && colors.size() <= std::size_t{1} << depth;
}

Status CheckPalette(const Settings& settings) {
  if (IsDirect(settings.depth)) {
    if (!settings.palette.empty()) return Fail(Code::Usage, "direct colour has no palette (leave it out)");
    if (settings.halftone != Halftone::Nearest)
      return Fail(Code::Usage, "direct colour is not halftoned (choose a depth of 1 to 8, or leave it out)");
    if (settings.layout == Layout::Planes)
      return Fail(Code::Usage, "planes of direct colour cannot be written (choose packed pixels)");
    return Ok();
  }
  if (!FitsDepth(settings.palette, settings.depth))
    return Fail(Code::Usage, std::to_string(settings.palette.size()) + " colours do not fit a depth of " +
                                 std::to_string(settings.depth) + " (choose another depth or palette)");
  if (!settings.writtenPalette.empty() && settings.writtenPalette.size() != settings.palette.size())
    return Fail(Code::Usage, "the palettes to match and to write differ in size (give one colour for each)");
  return Ok();
}

Status CheckThresholds(const Thresholds& thresholds) {
  const std::int32_t width = thresholds.width, height = thresholds.height;
  if (thresholds.values.empty() && width == 0 && height == 0) return Ok();
  const bool sized = width >= 1 && width <= 255 && height >= 1 && height <= 255;
  if (sized && thresholds.values.size() == static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
    return Ok();
  return Fail(Code::Usage,
              "a matrix of " + Size(width, height) + " thresholds cannot be used (give 1 x 1 to 255 x 255)");
}

Status LineTooLong(std::int32_t width, std::int32_t bits, const char* which, std::int32_t bytes,
                   std::int32_t most) {
  return Fail(Code::Limit, "a line of " + std::to_string(width) + " pixels of " + std::to_string(bits) + " bits" +
                               which + " does not fit a band of " + std::to_string(bytes) + " bytes (at most " +
                               std::to_string(most) + " pixels do)");
}

Status CheckLine(Layout layout, std::int32_t width, std::int32_t bits, const char* which, std::int32_t bytes) {
  if (BandLineBytes(layout, width, bits) <= bytes) return Ok();
  const std::int32_t words = bytes / 2;
  return LineTooLong(width, bits, which, bytes, layout == Layout::Planes ? words / bits * 16 : words * 16 / bits);
}

}  // namespace

Status CheckImage(const Image& image) {
  if (image.width < 1 || image.height < 1)
    return Fail(Code::Input, "the image has no pixels (nothing to convert)");
  if (image.width > kLargestCoordinate || image.height > kLargestCoordinate)
    return Fail(Code::Limit, Size(image.width, image.height) +
                                 " pixels: neither side may exceed 65535 (cut the image into tiles first)");
  if (image.depth == kDirectDepth && image.layout == Layout::Planes)
    return Fail(Code::Usage, "planes of direct colour cannot be read (give packed pixels)");
  if (image.depth == kDirectDepth) return Ok();
  if (image.depth < 1 || image.depth > 8)
    return Fail(Code::Usage, std::to_string(image.depth) + " bits a pixel cannot be read (give 1 to 8, or 24)");
  if (FitsDepth(image.palette, image.depth)) return Ok();
  return Fail(Code::Usage, "the image's palette does not fit its depth (give 1 to 2^depth colours)");
}

Status CheckSettings(const Settings& settings) {
  constexpr std::int32_t kDepths[] = {1, 2, 3, 4, 5, 6, 7, 8, 15, 16, 24, 32};
  if (std::find(std::begin(kDepths), std::end(kDepths), settings.depth) == std::end(kDepths))
    return Fail(Code::Usage, "depth " + std::to_string(settings.depth) +
                                 " cannot be written (choose 1 to 8, or 15, 16, 24 or 32)");
  if (Status bad = CheckPalette(settings); Failed(bad)) return bad;
  if (Status bad = CheckThresholds(settings.thresholds); Failed(bad)) return bad;
  if (settings.threshold < 0 || settings.threshold > 256)
    return Fail(Code::Usage,
                "threshold " + std::to_string(settings.threshold) + " is no gray level (choose 0 to 256)");
  if (!(settings.gamma > 0) || !std::isfinite(settings.gamma))
    return Fail(Code::Usage, "the gamma is no positive number (choose 0.1 to 10)");
  if (settings.width >= 0 && settings.width <= kLargestCoordinate && settings.height >= 0 &&
      settings.height <= kLargestCoordinate)
    return Ok();
  return Fail(Code::Limit, "a size of " + Size(settings.width, settings.height) +
                               " cannot be made (choose 1 to 65535 for either side)");
}

Status CheckCrop(const Image& image, const Crop& crop) {
  const bool inside = crop.x >= 0 && crop.y >= 0 && crop.width >= 1 && crop.height >= 1 &&
                      crop.width <= image.width - crop.x && crop.height <= image.height - crop.y;
  if (!inside)
    return Fail(Code::Usage, "the rectangle to cut out does not lie within the " +
                                 Size(image.width, image.height) + " pixels of the image (choose a smaller one)");
  if (crop.x + crop.width <= kTallestScaled && crop.y + crop.height <= kTallestScaled) return Ok();
  return Fail(Code::Limit,
              "the rectangle to cut out reaches beyond column or line 32767 (cut out an earlier one)");
}

Status CheckOverlay(const Overlay& overlay, const Image& output) {
  const Image& image = overlay.image;
  if (image.width == 0) return Ok();
  if (Status bad = CheckImage(image); Failed(bad)) return bad;
  if (IsDirect(image.depth) || image.layout == Layout::Planes)
    return Fail(Code::Usage, "the overlay has no palette (give an indexed or gray image of up to 8 bits)");
  if (overlay.rows.size() != RowBytes(image) * static_cast<std::size_t>(image.height))
    return Fail(Code::Usage, "the overlay's rows do not fit its size (give all of them)");
  if (overlay.transparent < -1 || overlay.transparent >= 1 << image.depth)
    return Fail(Code::Usage, "the transparent index is none of the overlay's (give one of its palette)");
  if (overlay.x >= 0 && overlay.y >= 0 && overlay.x <= output.width - image.width &&
      overlay.y <= output.height - image.height)
    return Ok();
  return Fail(Code::Usage, "the overlay of " + Size(image.width, image.height) +
                               " pixels does not lie within the " + Size(output.width, output.height) +
                               " of the output (move it, or make it smaller)");
}

bool CanAverage(std::int32_t height, std::int32_t newHeight) {
  return height <= kTallestScaled && newHeight <= kTallestScaled &&
         std::int64_t{height} * newHeight <= kLargestSmoothHeights;
}

Status CheckScaling(const Stage& stage) {
  const Image& from = stage.entry.image;
  const Image& to = stage.output;
  const auto largest = [](std::int64_t limit, std::int32_t size) { return std::to_string(limit / size); };
  if (from.width != to.width && std::int64_t{from.width} * to.width > kLargestProduct)
    return Fail(Code::Limit, "width times new width exceeds 2147483647 (the largest new width is " +
                                 largest(kLargestProduct, from.width) + ")");
  if (stage.smooth ? CanAverage(from.height, to.height) : from.height == to.height) return Ok();
  if (from.height > kTallestScaled || to.height > kTallestScaled)
    return Fail(Code::Limit, "heights of images that are scaled may not exceed 32767 (cut the image first)");
  if (stage.smooth)
    return Fail(Code::Limit, std::to_string(from.height) + " lines cannot be averaged to " +
                                 std::to_string(to.height) + " (choose another new height, a line or two away)");
  if (std::int64_t{from.height} * to.height <= kLargestProduct) return Ok();
  return Fail(Code::Limit, "height times new height exceeds " + std::to_string(kLargestProduct) +
                               " (the largest new height is " + largest(kLargestProduct, from.height) + ")");
}

Status CheckLines(const Stage& stage) {
  const Layout layout = BandLayout(stage.entry);
  const std::int32_t bits = BandBits(layout, BandDepth(stage.entry));
  const Image& from = stage.entry.image;
  const Image& to = stage.output;
  if (Status bad = CheckLine(layout, from.width, bits, "", kBandBytes); Failed(bad)) return bad;
  const bool enlarged = from.width < to.width || from.height < to.height;
  const std::int32_t scaledBytes = enlarged && !stage.smooth ? kEnlargedLineBytes : kBandBytes;
  if (Status bad = CheckLine(layout, to.width, bits, " after scaling", scaledBytes); Failed(bad)) return bad;
  return CheckLine(to.layout, to.width, BandBits(to.layout, to.depth), " of output", kBandBytes);
}

}  // namespace cvt::pipeline

#include "app/overlay.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/files.h"
#include "imageio/samples.h"

namespace cvt::app {

using pipeline::Image;
using pipeline::Overlay;
using pipeline::RowSource;
using pipeline::Status;

namespace {

struct Place {
  std::string file;
  std::int32_t x = 0, y = 0;
};

// Takes "+N" off the end of a word; nothing where it does not end so.
std::optional<std::int32_t> TakeOffset(std::string* word) {
  constexpr std::int64_t kMostOffset = 65535;
  const std::size_t plus = word->rfind('+');
  if (plus == std::string::npos) return std::nullopt;
  const auto offset = ParseWhole(std::string_view(*word).substr(plus + 1), 0, kMostOffset);
  if (!offset) return std::nullopt;
  word->resize(plus);
  return static_cast<std::int32_t>(*offset);
}

// A file whose whole name is the word comes before one that is named by a part of it.
Place PlaceOf(const std::string& word) {
  std::error_code unknown;
  if (std::filesystem::exists(word, unknown)) return {word};
  std::string file = word;
  const auto y = TakeOffset(&file);
  const auto x = TakeOffset(&file);
  if (!x || !y || file.empty()) return {word};
  return {file, *x, *y};
}

std::string Size(std::int32_t width, std::int32_t height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

Outcome CheckFits(const Overlay& overlay, Extent output) {
  const Image& image = overlay.image;
  if (pipeline::IsDirect(image.depth)) {
    return Usage("--overlay", "it has direct colours (give an indexed or gray image; --depth 8 makes one of it)");
  }
  if (overlay.x <= output.width - image.width && overlay.y <= output.height - image.height) return Done();
  return Usage("--overlay", "its " + Size(image.width, image.height) + " pixels at +" + std::to_string(overlay.x) +
                                "+" + std::to_string(overlay.y) + " do not lie within the " +
                                Size(output.width, output.height) +
                                " of the output (move it, or make it smaller)");
}

Outcome ChooseTransparent(const PixelWish& wish, Overlay* overlay) {
  const std::vector<IRGB>& palette = overlay->image.palette;
  const auto colors = static_cast<std::int32_t>(palette.size());
  const auto found = std::find(palette.begin(), palette.end(), wish.color);
  overlay->transparent = wish.index >= 0 ? wish.index : static_cast<std::int32_t>(found - palette.begin());
  if (overlay->transparent < colors) return Done();
  if (wish.index < 0) {
    return Usage("--transparent", "the overlay's palette has no such colour (give one that it has, or an index)");
  }
  return Usage("--transparent", "the overlay's palette has no index " + std::to_string(wish.index) +
                                    " (give 0 to " + std::to_string(colors - 1) + ")");
}

Status ReadRows(RowSource& source, std::int64_t mostBytes, Overlay* overlay) {
  const std::size_t rowBytes = pipeline::RowBytes(source.image);
  const auto height = static_cast<std::size_t>(source.image.height);
  if (height > static_cast<std::uint64_t>(mostBytes) / rowBytes) {
    return pipeline::Fail(pipeline::Code::Limit, "the overlay needs more memory than the " +
                                                     std::to_string(mostBytes >> 20) +
                                                     " MiB allowed (raise it with --max-memory)");
  }
  overlay->rows.resize(rowBytes * height);
  for (std::size_t at = 0; at < overlay->rows.size(); at += rowBytes) {
    if (Status failed = source.read(overlay->rows.data() + at); pipeline::Failed(failed)) return failed;
  }
  return pipeline::Ok();
}

// Gives every pixel of the transparent colour the transparent index: palettes may have a colour twice.
void JoinTransparent(Overlay* overlay) {
  const Image& image = overlay->image;
  const auto transparent = static_cast<std::size_t>(overlay->transparent);
  std::array<std::uint8_t, 256> table = imageio::SameValues();
  for (std::size_t i = 0; i < image.palette.size(); ++i) {
    if (image.palette[i] == image.palette[transparent]) table[i] = table[transparent];
  }
  const std::int32_t bits = pipeline::StoredBits(image.depth);
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(image.width));
  for (std::size_t at = 0; at < overlay->rows.size(); at += pipeline::RowBytes(image)) {
    std::uint8_t* row = overlay->rows.data() + at;
    imageio::UnpackRow(row, image.width, bits, table, pixels.data());
    imageio::PackRow(pixels.data(), image.width, bits, row);
  }
}

Outcome Read(const Arguments& arguments, const Place& place, Extent output, Overlay* overlay) {
  RowSource source;
  Arguments plain = arguments;
  plain.page.reset();  // that is for the image
  if (Outcome failed = OpenSource(plain, place.file, &source); Failed(failed)) return failed;
  *overlay = {source.image, {}, place.x, place.y};
  if (Outcome failed = CheckFits(*overlay, output); Failed(failed)) return failed;
  if (arguments.transparent) {
    if (Outcome failed = ChooseTransparent(*arguments.transparent, overlay); Failed(failed)) return failed;
  }
  Status status = ReadRows(source, ReadingOptions(arguments).maxBufferBytes, overlay);
  if (pipeline::Failed(status)) return {status, SourceName(place.file)};
  if (arguments.transparent && arguments.transparent->index < 0) JoinTransparent(overlay);
  return Done();
}

}  // namespace

Outcome ReadOverlay(const Arguments& arguments, const Files& files, Extent output, Overlay* overlay) {
  if (!arguments.overlay && arguments.transparent) {
    return Usage("--transparent", "it belongs to --overlay (give that too, or leave it out)");
  }
  if (!arguments.overlay) return Done();
  const Place place = PlaceOf(*arguments.overlay);
  if (place.file == "-" && files.input == "-") {
    return Usage("--overlay", "standard input is the image already (give a file)");
  }
  return Read(arguments, place, output, overlay);
}

}  // namespace cvt::app

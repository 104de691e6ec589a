// Any bytes as a file that the tool reads: taken to the end or refused with one line, never more than it says.
// Built once for each kind of file; CVTR2R_READS names it.

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "imageio/image_file.h"
#include "imageio/matrix_file.h"
#include "imageio/palette_file.h"

namespace {

using namespace cvt::pipeline;
using namespace std::string_view_literals;

enum class Reads : std::uint8_t { Png, Pnm, Tiff, Jpeg, Palette, Matrix };
constexpr Reads kReads = Reads::CVTR2R_READS;

// How files of the kind begin.
std::vector<std::string_view> Heads() {
  switch (kReads) {
    case Reads::Png:
      return {"\x89PNG\r\n\x1a\n"};
    case Reads::Tiff:
      return {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv};
    case Reads::Jpeg:
      return {"\xff\xd8\xff"};
    case Reads::Palette:
      return {"GIMP Palette\n", "JASC-PAL\n0100\n", "#"};
    default:
      return {"P"};
  }
}

// Others are made to begin as they should, so that no input ends in the choice of the reader.
std::size_t GiveHead(std::string* bytes) {
  const std::vector<std::string_view> heads = Heads();
  for (std::size_t i = 0; i < heads.size(); ++i)
    if (bytes->starts_with(heads[i])) return i;
  bytes->replace(0, heads[0].size(), heads[0]);
  return 0;
}

// The bytes as a file that knows its place, or as a stream that cannot go back.
int OpenBytes(const std::string& bytes) {
  int ends[2] = {memfd_create("input", 0), -1};
  const bool stream = bytes.size() % 4 == 3 && bytes.size() < 60000;
  if (stream && (close(ends[0]) != 0 || pipe(ends) != 0)) std::abort();
  const int to = stream ? ends[1] : ends[0];
  if (write(to, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) std::abort();
  if (stream) close(to);
  return ends[0];
}

// Suffixes tell palettes apart.
std::string PathOf(int file, std::size_t head) {
  static constexpr const char* kSuffixes[] = {"gpl", "pal", "hex"};
  std::string path = "/proc/self/fd/" + std::to_string(file);
  if (kReads != Reads::Palette) return path;
  const std::filesystem::path name =
      std::filesystem::temp_directory_path() / ("cvtr2r-fuzz-" + std::to_string(getpid()) + "." + kSuffixes[head]);
  std::filesystem::remove(name);
  std::filesystem::create_symlink(path, name);
  return name;
}

void ReadImage(const std::string& path, std::int32_t page) {
  cvt::imageio::ReadOptions options;
  options.maxPixels = 1 << 20;
  options.maxBufferBytes = 1 << 22;
  options.page = page;
  RowSource source;
  const Status status = cvt::imageio::OpenImage(path, options, &source);
  if (Failed(status) != !status.message.empty()) std::abort();
  if (Failed(status)) return;
  const Image& image = source.image;
  const bool indexed = image.depth <= 8;
  if (image.width < 1 || image.height < 1 || (indexed && image.palette.empty())) std::abort();
  std::vector<std::uint8_t> row(RowBytes(image));
  for (std::int32_t y = 0; y < image.height; ++y)
    if (Failed(source.read(row.data()))) break;
}

void ReadColors(const std::string& path) {
  std::vector<IRGB> palette;
  const bool read = !Failed(cvt::imageio::ReadPalette(path, &palette));
  if (read && (palette.empty() || palette.size() > 256)) std::abort();
  std::filesystem::remove(path);
}

void ReadThresholds(const std::string& path) {
  Thresholds thresholds;
  if (Failed(cvt::imageio::ReadMatrix(path, &thresholds))) return;
  const std::size_t cells =
      static_cast<std::size_t>(thresholds.width) * static_cast<std::size_t>(thresholds.height);
  if (cells == 0 || cells > 255 * 255 || thresholds.values.size() != cells) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::size_t head = GiveHead(&bytes);
  const int file = OpenBytes(bytes);
  const std::string path = PathOf(file, head);
  if (kReads == Reads::Palette)
    ReadColors(path);
  else if (kReads == Reads::Matrix)
    ReadThresholds(path);
  else
    ReadImage(path, kReads == Reads::Tiff ? static_cast<std::int32_t>(size % 3) : 0);
  close(file);
  return 0;
}

// Reads JPEG row by row, with the exact integer transform: every machine gives the same pixels.
//
// libjpeg reports an error by a jump back to where it was entered. A jump skips destructors: libjpeg is entered
// through Succeeds alone, with work that owns nothing.
#include <cstddef>
#include <cstdio>
// Before the headers of libjpeg, which need the above.
#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>
#include <csetjmp>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

#include "imageio/jpeg_file.h"
#include "imageio/limits.h"

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Failed;
using pipeline::Image;
using pipeline::Ok;
using pipeline::Status;

namespace {

constexpr std::int64_t kMiB = 1 << 20;
constexpr std::int64_t kRowBytes = 64 * kMiB;  // more than the rows that libjpeg works with can take
constexpr int kMaxScans = 500;                 // each goes over the whole image; encoders make about ten

struct JpegReader {
  JpegReader() = default;
  JpegReader(const JpegReader&) = delete;
  JpegReader& operator=(const JpegReader&) = delete;
  ~JpegReader() { jpeg_destroy_decompress(&jpeg); }

  jpeg_decompress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg_source_mgr source{};
  jpeg_progress_mgr progress{};
  std::jmp_buf entry{};
  char words[JMSG_LENGTH_MAX] = "libjpeg cannot start";
  std::unique_ptr<InputFile> file;
  ReadOptions options;
  Image image;
  std::int32_t rowsRead = 0;
};

template <class Work>
bool Succeeds(JpegReader& reader, const Work& work) {
  static_assert(std::is_trivially_destructible_v<Work>);
  if (setjmp(reader.entry) != 0) return false;
  work();
  return true;
}

JpegReader& ReaderOf(j_common_ptr jpeg) { return *static_cast<JpegReader*>(jpeg->client_data); }

void GiveUp(j_common_ptr jpeg) {
  JpegReader& reader = ReaderOf(jpeg);
  jpeg->err->format_message(jpeg, reader.words);
  std::longjmp(reader.entry, 1);
}

// What cameras write themselves: stray bytes between the parts, newer numbers. All else that libjpeg warns of is
// damage that it made the best of.
constexpr int kHarmless[] = {JWRN_EXTRANEOUS_DATA, JWRN_JFIF_MAJOR, JWRN_ADOBE_XFORM};

void HearMessage(j_common_ptr jpeg, int level) {
  const int* const end = std::end(kHarmless);
  if (level < 0 && std::find(std::begin(kHarmless), end, jpeg->err->msg_code) == end) GiveUp(jpeg);
}

void PrintNothing(j_common_ptr) {}

void CountScans(j_common_ptr jpeg) {
  JpegReader& reader = ReaderOf(jpeg);
  if (reader.jpeg.input_scan_number <= kMaxScans) return;
  std::snprintf(reader.words, sizeof reader.words, "it has more than %d scans", kMaxScans);
  std::longjmp(reader.entry, 1);
}

void StartSource(j_decompress_ptr) {}
void EndSource(j_decompress_ptr) {}

boolean FillBuffer(j_decompress_ptr jpeg) {
  JpegReader& reader = *static_cast<JpegReader*>(jpeg->client_data);
  InputFile& file = *reader.file;
  if (file.next == file.filled && !Refill(file)) ERREXIT(jpeg, JERR_INPUT_EOF);
  reader.source.next_input_byte = file.buffer.data() + file.next;
  reader.source.bytes_in_buffer = file.filled - file.next;
  file.next = file.filled;
  return TRUE;
}

void Skip(j_decompress_ptr jpeg, long bytes) {
  jpeg_source_mgr& source = *jpeg->src;
  for (auto left = static_cast<std::size_t>(std::max(bytes, 0L)); left > 0;) {
    if (source.bytes_in_buffer == 0) FillBuffer(jpeg);
    const std::size_t piece = std::min(left, source.bytes_in_buffer);
    source.next_input_byte += piece;
    source.bytes_in_buffer -= piece;
    left -= piece;
  }
}

Status Damaged(const JpegReader& reader) {
  const int code = reader.errors.msg_code;
  if (code == JERR_SOF_UNSUPPORTED || code == JERR_BAD_PRECISION) {
    return Fail(Code::Input, "this is an unusual kind of JPEG (save it as an ordinary JPEG of 8 bits)");
  }
  return EndOfInput(*reader.file,
                    std::string("the JPEG is damaged: ") + reader.words + " (get an intact copy of it)");
}

bool ReadHeader(JpegReader& reader) {
  jpeg_decompress_struct& jpeg = reader.jpeg;
  jpeg.err = jpeg_std_error(&reader.errors);
  jpeg.client_data = &reader;
  reader.errors.error_exit = GiveUp;
  reader.errors.emit_message = HearMessage;
  reader.errors.output_message = PrintNothing;
  reader.progress.progress_monitor = CountScans;
  reader.source.init_source = StartSource;
  reader.source.fill_input_buffer = FillBuffer;
  reader.source.skip_input_data = Skip;
  reader.source.resync_to_restart = jpeg_resync_to_restart;
  reader.source.term_source = EndSource;
  return Succeeds(reader, [&reader, &jpeg] {
    jpeg_create_decompress(&jpeg);
    jpeg.src = &reader.source;
    jpeg.progress = &reader.progress;
    constexpr std::int64_t kMost = std::numeric_limits<long>::max();  // of a machine of 32 bits
    jpeg.mem->max_memory_to_use = static_cast<long>(std::min(reader.options.maxBufferBytes + kRowBytes, kMost));
    jpeg_read_header(&jpeg, TRUE);
  });
}

// A JPEG of several scans has no row complete before the last of them: its coefficients are held whole.
Status CheckMemory(JpegReader& reader) {
  if (jpeg_has_multiple_scans(&reader.jpeg) == FALSE) return Ok();
  std::int64_t needed = 0;
  for (int i = 0; i < reader.jpeg.num_components; ++i) {
    const jpeg_component_info& part = reader.jpeg.comp_info[i];
    const std::int64_t across = (part.width_in_blocks + 3) / 4 * 4;  // four at most belong together
    const std::int64_t down = (part.height_in_blocks + 3) / 4 * 4;
    needed += across * down * static_cast<std::int64_t>(sizeof(JBLOCK));
  }
  if (needed <= reader.options.maxBufferBytes) return Ok();
  return Fail(Code::Limit, "the JPEG is progressive and needs " + std::to_string((needed + kMiB - 1) / kMiB) +
                               " MiB of memory, the limit is " +
                               std::to_string(reader.options.maxBufferBytes / kMiB) +
                               " MiB (raise it with --max-memory)");
}

pipeline::Resolution ResolutionOf(const jpeg_decompress_struct& jpeg) {
  constexpr int kPerInch = 1;
  constexpr int kPerCentimeter = 2;
  if (jpeg.density_unit != kPerInch && jpeg.density_unit != kPerCentimeter) return {};
  if (jpeg.X_density == 0 || jpeg.Y_density == 0) return {};
  const double inch = jpeg.density_unit == kPerCentimeter ? 2.54 : 1;
  return {jpeg.X_density * inch, jpeg.Y_density * inch};
}

Status TakeHeader(JpegReader& reader) {
  jpeg_decompress_struct& jpeg = reader.jpeg;
  if (Status failed = CheckSize(jpeg.image_width, jpeg.image_height, reader.options); Failed(failed))
    return failed;
  if (Status failed = CheckMemory(reader); Failed(failed)) return failed;
  const bool gray = jpeg.jpeg_color_space == JCS_GRAYSCALE;
  if (!gray && jpeg.jpeg_color_space != JCS_RGB && jpeg.jpeg_color_space != JCS_YCbCr) {
    return Fail(Code::Input, "the JPEG holds CMYK or other colours for presses (save it as RGB)");
  }
  jpeg.out_color_space = gray ? JCS_GRAYSCALE : JCS_RGB;
  jpeg.dct_method = JDCT_ISLOW;
  reader.image.width = static_cast<std::int32_t>(jpeg.image_width);
  reader.image.height = static_cast<std::int32_t>(jpeg.image_height);
  reader.image.depth = gray ? 8 : pipeline::kDirectDepth;
  if (gray) reader.image.palette = pipeline::GrayRamp(8);
  reader.image.resolution = ResolutionOf(jpeg);
  return Ok();
}

Status ReadRow(JpegReader& reader, std::uint8_t* row) {
  const bool first = reader.rowsRead == 0;
  const bool last = ++reader.rowsRead == reader.image.height;
  const bool read = Succeeds(reader, [&reader, row, first, last] {
    JSAMPROW rows[] = {row};
    if (first) jpeg_start_decompress(&reader.jpeg);
    jpeg_read_scanlines(&reader.jpeg, rows, 1);
    if (last) jpeg_finish_decompress(&reader.jpeg);
  });
  return read ? Ok() : Damaged(reader);
}

}  // namespace

Status OpenJpeg(std::unique_ptr<InputFile> file, const ReadOptions& options, pipeline::RowSource* source,
                Stored* stored) {
  auto reader = std::make_shared<JpegReader>();
  reader->file = std::move(file);
  reader->options = options;
  if (!ReadHeader(*reader)) return Damaged(*reader);
  if (Status failed = TakeHeader(*reader); Failed(failed)) return failed;
  *stored = {reader->jpeg.data_precision, false};
  source->image = reader->image;
  source->read = [reader](std::uint8_t* row) { return ReadRow(*reader, row); };
  return Ok();
}

}  // namespace cvt::imageio

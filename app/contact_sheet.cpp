// Every picture is made as its caption says: the command line is parsed and run, only that the file that it
// writes is kept in memory.
#include "app/contact_sheet.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <utility>

#include "app/command_line.h"
#include "app/contact_sheet_output.h"
#include "app/convert_image.h"
#include "app/interrupt.h"
#include "app/progress.h"
#include "imageio/output_file.h"
#include "imageio/png_file.h"
#include "imageio/suffix.h"

namespace cvt::app {

using pipeline::Code;
using pipeline::Fail;
using pipeline::RowSink;
using pipeline::Status;

namespace {

using TemporaryFile = std::unique_ptr<std::FILE, decltype(&std::fclose)>;

constexpr std::int64_t kBytesPerPixel = 4;  // of the sheet, and of the picture that is drawn on it
constexpr std::int64_t kBelow = 128;        // rows that stand below a picture, headings included
constexpr std::int64_t kDefaultMebibytes = 256;

Outcome CheckFiles(const Files& files) {
  std::error_code unknown;
  const bool once = files.input == "-" || (std::filesystem::exists(files.input, unknown) &&
                                           !std::filesystem::is_regular_file(files.input, unknown));
  if (once) return Usage(InputName(files), "a contact sheet reads the image once for every picture (give a file)");
  if (imageio::HasSuffix(files.output, ".png") || imageio::HasSuffix(files.output, ".html")) return Done();
  return Usage(files.output, "a contact sheet is a picture or a page (name it .png or .html)");
}

// Whether people can read, and copy, what a caption shows.
bool IsText(const std::string& word) {
  for (const char c : word) {
    if (std::iscntrl(static_cast<unsigned char>(c)) != 0) return false;
  }
  try {
    static_cast<void>(nlohmann::json(word).dump());
  } catch (const nlohmann::json::exception&) {
    return false;  // no UTF-8
  }
  return true;
}

Outcome CheckSheet(const Arguments& arguments, Extent picture, Sheet& sheet) {
  const std::vector<SheetCell*> cells = CellsOf(sheet);
  for (const SheetCell* cell : cells) {
    for (const std::string& word : cell->words) {
      if (!IsText(word)) return Usage(word, "captions cannot show this name (give the file another one)");
    }
  }
  const std::int64_t most = arguments.maxMemory.value_or(kDefaultMebibytes);
  const std::int64_t pixels = std::int64_t{std::max(kNarrowest, picture.width)} * (picture.height + kBelow);
  const std::int64_t needed = (pixels * kBytesPerPixel * static_cast<std::int64_t>(cells.size()) >> 20) + 1;
  if (needed <= most) return Done();
  return {Fail(Code::Limit, std::to_string(cells.size()) + " pictures of this size take " +
                                std::to_string(needed) + " MiB, the limit is " + std::to_string(most) +
                                " (give a smaller --size, or raise it with --max-memory)"),
          arguments.operands[0]};
}

// The bytes of a file and what the rows were, when both are complete.
RowSink IntoPicture(std::FILE* file, Picture* picture) {
  auto output = std::make_unique<imageio::OutputFile>();
  output->descriptor = ::dup(::fileno(file));
  const RowSink png = imageio::WritePng(std::move(output));
  const RowSink rows = pipeline::WriteMemory(&picture->image, &picture->rows);
  return {[png, rows](const pipeline::Image& image) {
            Status status = rows.begin(image);
            return pipeline::Failed(status) ? status : png.begin(image);
          },
          [png, rows](std::int32_t y, const std::uint8_t* row) {
            Status status = rows.write(y, row);
            return pipeline::Failed(status) ? status : png.write(y, row);
          },
          [png, rows] {
            Status status = rows.end();
            return pipeline::Failed(status) ? status : png.end();
          }};
}

std::string Content(std::FILE* file) {
  std::string bytes;
  char part[4096];
  std::rewind(file);
  for (std::size_t got = 1; got > 0; bytes.append(part, got)) got = std::fread(part, 1, sizeof part, file);
  return bytes;
}

Outcome MakePicture(SheetCell& cell) {
  Request request;
  const Arguments& arguments = request.arguments;
  Outcome outcome = ParseWords(cell.words, &request);
  if (Failed(outcome)) return outcome;
  Wishes wishes;
  if (outcome = ReadWishes(arguments, &wishes); Failed(outcome)) return outcome;
  const TemporaryFile file(std::tmpfile(), &std::fclose);
  if (!file) return {Fail(Code::Output, "no temporary file can be created (make room for one)"), ""};
  const auto create = [&cell, &file](RowSink* sink) {
    *sink = IntoPicture(file.get(), &cell.picture);
    return Done();
  };
  Made made;
  outcome = ConvertInto(arguments, wishes, {arguments.operands[0], arguments.operands[1]}, imageio::Format::Png,
                        create, Messages::Quiet, &made);
  if (!Failed(outcome)) cell.picture.png = Content(file.get());
  return outcome;
}

Outcome MakePictures(const Arguments& arguments, Sheet& sheet) {
  const std::vector<SheetCell*> cells = CellsOf(sheet);
  Progress progress = StartProgress(arguments.quiet);
  progress.whole = static_cast<std::int32_t>(cells.size());
  std::int32_t done = 0;
  Outcome outcome = Done();
  for (SheetCell* cell : cells) {
    outcome = MakePicture(*cell);
    if (Failed(outcome)) break;
    ShowPercent(++done, &progress);
  }
  EraseProgress(progress);
  return outcome;
}

Outcome MakePage(const Arguments& arguments, const Files& files, Sheet& sheet) {
  imageio::WriteOptions options;
  if (arguments.force) options.existing = imageio::Existing::Replace;
  options.temporary = RemoveWhenInterrupted;
  std::unique_ptr<imageio::OutputFile> file;
  Status status = imageio::CreateOutput(files.output, options, &file);
  if (pipeline::Failed(status)) return {status, files.output};
  if (Outcome failed = MakePictures(arguments, sheet); Failed(failed)) return failed;
  const bool written = imageio::Write(*file, SheetPage(sheet));
  return {written ? imageio::Commit(*file) : imageio::WriteFailure(*file), files.output};
}

Outcome MakeSheetPicture(const Arguments& arguments, const Files& files, Sheet& sheet) {
  RowSink sink;
  if (Outcome failed = CreateSink(arguments, files, &sink); Failed(failed)) return failed;
  if (Outcome failed = MakePictures(arguments, sheet); Failed(failed)) return failed;
  return {WriteSheetPicture(sheet, sink), files.output};
}

}  // namespace

Outcome RunContactSheet(const Arguments& arguments) {
  const Files files{arguments.operands[0], arguments.operands[1]};
  if (Outcome failed = CheckFiles(files); Failed(failed)) return failed;
  pipeline::RowSource source;
  if (Outcome failed = OpenSource(arguments, files.input, &source); Failed(failed)) return failed;
  const Extent image{source.image.width, source.image.height};
  Sheet sheet = PlanSheet(arguments, image);
  if (Outcome failed = CheckSheet(arguments, PictureSize(arguments, image), sheet); Failed(failed)) return failed;
  const bool isPage = imageio::HasSuffix(files.output, ".html");
  return isPage ? MakePage(arguments, files, sheet) : MakeSheetPicture(arguments, files, sheet);
}

}  // namespace cvt::app

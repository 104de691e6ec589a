#include "app/report_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <system_error>

#include "app/checksum.h"

namespace cvt::app {

using pipeline::Code;
using pipeline::Fail;

namespace {

const char* NameOf(Fate fate) {
  constexpr const char* kNames[] = {"done", "skipped", "failed"};
  return kNames[static_cast<std::size_t>(fate)];
}

std::string LineFor(const ImageReport& report) {
  nlohmann::ordered_json line = {{"input", report.files.input},
                                 {"output", report.files.output},
                                 {"status", NameOf(report.fate)},
                                 {"message", report.message},
                                 {"width", nullptr},
                                 {"height", nullptr},
                                 {"milliseconds", nullptr},
                                 {"crc32", nullptr}};
  if (report.fate != Fate::Skipped) line["milliseconds"] = report.milliseconds;
  if (report.fate == Fate::Done) {
    line["width"] = report.made.width;
    line["height"] = report.made.height;
    line["crc32"] = Hex(report.made.crc);
  }
  // Names of files need not be text: what is none becomes a question mark in a box.
  return line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

// Whether a report that is to be continued ends within a line, as that of a program that was killed may.
bool EndsWithinLine(const std::string& path) {
  std::error_code unknown;
  if (!std::filesystem::is_regular_file(path, unknown)) return false;
  std::ifstream file(path, std::ios::binary);
  file.seekg(-1, std::ios::end);
  const int last = file.get();
  return file && last != '\n';
}

// What a full disk has taken of the text is cut off again. Nothing waits in a buffer to follow later.
Outcome WriteWhole(const Arguments& arguments, const ReportFile& file, const std::string& text) {
  const int descriptor = ::fileno(file.get());
  struct stat before {};
  const bool isFile = ::fstat(descriptor, &before) == 0 && S_ISREG(before.st_mode);
  if (std::fwrite(text.data(), 1, text.size(), file.get()) == text.size()) return Done();
  if (isFile) static_cast<void>(!::ftruncate(descriptor, before.st_size));
  return {Fail(Code::Output, "writing failed (make room, or choose another place for the report)"),
          OutputName({"", *arguments.report})};
}

Outcome CannotCreate(const Arguments& arguments, int error) {
  const std::string reason =
      error == EEXIST ? "the file exists (give --force to replace it, or --skip-existing to go on with it)"
                      : "it cannot be created: " + std::generic_category().message(error) +
                            " (check its directory and permissions)";
  return {Fail(Code::Output, reason), OutputName({"", *arguments.report})};
}

}  // namespace

Outcome OpenReport(const Arguments& arguments, ReportFile* file) {
  if (!arguments.report) return Done();
  const std::string& path = *arguments.report;
  const bool output = path == "-";
  const bool open = !output && arguments.skipExisting && EndsWithinLine(path);
  const char* mode = arguments.skipExisting ? "abe" : arguments.force ? "wbe" : "wbxe";
  file->reset(output ? ::fdopen(::dup(STDOUT_FILENO), "wb") : std::fopen(path.c_str(), mode));
  if (*file == nullptr) return CannotCreate(arguments, errno);
  std::setvbuf(file->get(), nullptr, _IONBF, 0);
  return open ? WriteWhole(arguments, *file, "\n") : Done();
}

Outcome AddToReport(const Arguments& arguments, const ReportFile& file, const ImageReport& report) {
  return file == nullptr ? Done() : WriteWhole(arguments, file, LineFor(report));
}

}  // namespace cvt::app

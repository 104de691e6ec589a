#include "app/report_file.h"

#include <unistd.h>

#include <cerrno>
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

}  // namespace

Outcome OpenReport(const Arguments& arguments, ReportFile* file) {
  if (!arguments.report) return Done();
  const char* mode = arguments.skipExisting ? "abe" : arguments.force ? "wbe" : "wbxe";
  file->reset(*arguments.report == "-" ? ::fdopen(::dup(STDOUT_FILENO), "wb")
                                       : std::fopen(arguments.report->c_str(), mode));
  if (*file != nullptr) return Done();
  const int error = errno;
  const std::string reason = error == EEXIST
                                 ? "the file exists (give --force to replace it, or --skip-existing to "
                                   "go on with it)"
                                 : "it cannot be created: " + std::generic_category().message(error) +
                                       " (check its directory and permissions)";
  return {Fail(Code::Output, reason), *arguments.report};
}

Outcome AddToReport(const Arguments& arguments, const ReportFile& file, const ImageReport& report) {
  if (file == nullptr) return Done();
  const std::string line = LineFor(report);
  const bool written =
      std::fwrite(line.data(), 1, line.size(), file.get()) == line.size() && std::fflush(file.get()) == 0;
  if (written) return Done();
  return {Fail(Code::Output, "writing failed (make room, or choose another place for the report)"),
          *arguments.report};
}

}  // namespace cvt::app

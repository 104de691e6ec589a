// --report: what became of each image, for programs to read.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "app/convert_image.h"

namespace cvt::app {

enum class Fate : std::uint8_t { Done, Skipped, Failed };

struct ImageReport {
  Files files;
  Fate fate = Fate::Done;
  std::string message;  // of a failure
  Made made;
  std::int64_t milliseconds = 0;
};

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using ReportFile = std::unique_ptr<std::FILE, CloseFile>;  // null: none is wanted

/// A report that exists is refused, replaced with --force, and continued with --skip-existing.
Outcome OpenReport(const Arguments& arguments, ReportFile* file);

/// Adds one line: whole, or, where the report is a file, not at all.
Outcome AddToReport(const Arguments& arguments, const ReportFile& file, const ImageReport& report);

}  // namespace cvt::app

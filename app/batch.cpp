#include "app/batch.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <system_error>
#include <thread>

#include "app/convert_image.h"
#include "app/interrupt.h"
#include "app/progress.h"
#include "app/report_file.h"

namespace cvt::app {

using pipeline::Code;
using pipeline::Fail;

namespace {

// What workers share. The first three are only read; each mutex guards what follows it.
struct Batch {
  const Arguments& arguments;
  const Wishes& wishes;
  const std::vector<Files>& files;
  std::atomic<std::size_t> next{0};
  std::atomic<bool> exhausted{false};  // memory ran out beside the conversion of an image
  std::mutex reportMutex{};
  ReportFile report{};
  Outcome reporting{};  // of the report's last line
  std::mutex mutex{};
  Progress progress{};
  std::size_t finished = 0, failed = 0;
};

bool IsThere(const std::string& path) { return path != "-" && ::access(path.c_str(), F_OK) == 0; }

// Memory that runs out is the end of one image, not of all.
Outcome ConvertGuarded(const Arguments& arguments, const Wishes& wishes, const Files& files, Messages messages,
                       Made* made) {
  try {
    return ConvertImage(arguments, wishes, files, messages, made);
  } catch (const std::bad_alloc&) {
    return {pipeline::OutOfMemory(), InputName(files)};
  }
}

Outcome Work(const Arguments& arguments, const Wishes& wishes, const Files& files, Messages messages,
             ImageReport* report) {
  report->files = files;
  if (arguments.skipExisting && IsThere(files.output)) {
    report->fate = Fate::Skipped;
    return Done();
  }
  const auto start = std::chrono::steady_clock::now();
  Outcome outcome = ConvertGuarded(arguments, wishes, files, messages, &report->made);
  const auto spent = std::chrono::steady_clock::now() - start;
  report->milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(spent).count();
  if (!Failed(outcome)) return outcome;
  report->fate = Fate::Failed;
  report->message = LineOf(outcome);
  return outcome;
}

void Tell(const Arguments& arguments, const ImageReport& report) {
  if (!arguments.verbose || report.fate == Fate::Failed) return;
  const std::string names = report.files.input + " -> " + report.files.output + ": ";
  const Made& made = report.made;
  const std::string what = report.fate == Fate::Skipped
                               ? "is there already"
                               : std::to_string(made.fromWidth) + " x " + std::to_string(made.fromHeight) +
                                     " to " + std::to_string(made.width) + " x " + std::to_string(made.height) +
                                     " pixels of " + std::to_string(made.depth) +
                                     (made.depth == 1 ? " bit" : " bits") + " in " +
                                     std::to_string(report.milliseconds) + " ms";
  std::fprintf(stderr, "r2r: %s\n", OneLine(names + what).c_str());
}

// The line of the report, as soon as the output has its name.
void AddLine(Batch& batch, const ImageReport& report) {
  {
    const std::lock_guard<std::mutex> lock(batch.reportMutex);
    if (!Failed(batch.reporting)) batch.reporting = AddToReport(batch.arguments, batch.report, report);
  }
  if (report.made.held) ReleaseInterrupts();  // not before others can go on: the signal may end this thread
}

// One image is through: tells it, under the lock, so that lines stay whole.
void Finish(Batch& batch, const Outcome& outcome, const ImageReport& report) {
  const std::lock_guard<std::mutex> lock(batch.mutex);
  EraseProgress(batch.progress);
  batch.progress.shown = 0;
  ++batch.finished;
  if (Failed(outcome)) ++batch.failed;
  Report(outcome);
  Tell(batch.arguments, report);
  ShowLine(std::to_string(batch.finished) + " of " + std::to_string(batch.files.size()) + " images, " +
               std::to_string(batch.failed) + " failed",
           &batch.progress);
}

void RunWorker(Batch& batch) try {
  for (std::size_t i = batch.next++; i < batch.files.size(); i = batch.next++) {
    ImageReport report;
    Outcome outcome = Work(batch.arguments, batch.wishes, batch.files[i], Messages::Quiet, &report);
    AddLine(batch, report);
    Finish(batch, outcome, report);
  }
} catch (const std::bad_alloc&) {
  batch.exhausted = true;
}

// As many as the system has room for. Each takes more than its stack: memory for its images, and the share that
// malloc sets aside for a thread.
void StartWorkers(Batch& batch, std::size_t wanted, std::vector<std::jthread>* workers) try {
  constexpr std::size_t kRoom = 64 << 20;
  std::vector<std::unique_ptr<char[]>> rooms;
  while (workers->size() + 1 < wanted) {
    rooms.push_back(std::make_unique_for_overwrite<char[]>(kRoom));
    workers->emplace_back([&batch] { RunWorker(batch); });
  }
} catch (const std::system_error&) {
} catch (const std::bad_alloc&) {
}

void RunWorkers(Batch& batch) {
  const auto wanted = static_cast<std::size_t>(batch.arguments.jobs.value_or(1));
  std::vector<std::jthread> workers;
  StartWorkers(batch, std::min(wanted, batch.files.size()), &workers);
  RunWorker(batch);  // this thread is one of them
}

Outcome MakeDirectory(const std::string& path, bool* made) {
  std::error_code error;
  *made = std::filesystem::create_directories(path, error);
  if (!error) return Done();
  return {Fail(Code::Output, "the directory cannot be made: " + error.message() + " (check its name)"), path};
}

// The report may lie in the directory. Without a report there is no work, and so no new directory.
Outcome OpenPlaces(const Arguments& arguments, ReportFile* report) {
  bool made = false;
  if (Outcome failed = MakeDirectory(*arguments.outDir, &made); Failed(failed)) return failed;
  Outcome outcome = OpenReport(arguments, report);
  std::error_code ignored;
  if (Failed(outcome) && made) std::filesystem::remove(*arguments.outDir, ignored);
  return outcome;
}

}  // namespace

Outcome ConvertOne(const Arguments& arguments, const Files& files) {
  Wishes wishes;
  if (Outcome failed = ReadWishes(arguments, &wishes); Failed(failed)) return failed;
  ReportFile file;
  if (Outcome failed = OpenReport(arguments, &file); Failed(failed)) return failed;
  const Messages messages = arguments.quiet ? Messages::Quiet : Messages::Progress;
  ImageReport report;
  Outcome outcome = Work(arguments, wishes, files, messages, &report);
  Outcome reporting = AddToReport(arguments, file, report);
  if (report.made.held) ReleaseInterrupts();
  Tell(arguments, report);
  return Failed(outcome) ? outcome : reporting;
}

Outcome ConvertMany(const Arguments& arguments, const std::vector<Files>& files) {
  Wishes wishes;
  if (Outcome failed = ReadWishes(arguments, &wishes); Failed(failed)) return failed;
  Batch batch{.arguments = arguments, .wishes = wishes, .files = files};
  if (Outcome failed = OpenPlaces(arguments, &batch.report); Failed(failed)) return failed;
  batch.progress = StartProgress(arguments.quiet);
  RunWorkers(batch);
  EraseProgress(batch.progress);
  if (batch.exhausted) return {pipeline::OutOfMemory(), ""};
  if (Failed(batch.reporting)) return batch.reporting;
  if (batch.failed == 0) return Done();
  return {Fail(Code::Partial, std::to_string(batch.failed) + " of " + std::to_string(files.size()) +
                                  " images failed (the lines above tell why)"),
          ""};
}

}  // namespace cvt::app

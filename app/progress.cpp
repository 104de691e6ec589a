#include "app/progress.h"

#include <unistd.h>

#include <cstdio>

namespace cvt::app {

Progress StartProgress(bool quiet) {
  Progress progress;
  progress.wanted = !quiet && ::isatty(STDERR_FILENO) == 1;
  progress.start = std::chrono::steady_clock::now();
  return progress;
}

void ShowPercent(std::int32_t done, Progress* progress) {
  if (!progress->wanted) return;
  const auto percent = static_cast<std::int32_t>(std::int64_t{done} * 100 / progress->whole);
  if (percent == progress->percent) return;
  progress->percent = percent;
  ShowLine(std::to_string(percent) + "%", progress);
}

void ShowLine(const std::string& line, Progress* progress) {
  if (!progress->wanted) return;
  if (std::chrono::steady_clock::now() - progress->start < std::chrono::seconds(1)) return;
  EraseProgress(*progress);
  progress->shown = line.size();
  std::fprintf(stderr, "%s", line.c_str());
  std::fflush(stderr);
}

void EraseProgress(const Progress& progress) {
  if (progress.shown > 0) std::fprintf(stderr, "\r%*s\r", static_cast<int>(progress.shown), "");
}

}  // namespace cvt::app

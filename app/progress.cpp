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

void ShowProgress(std::int32_t row, Progress* progress) {
  if (!progress->wanted) return;
  const auto percent = static_cast<std::int32_t>(std::int64_t{row} * 100 / progress->rows);
  if (percent == progress->percent) return;
  if (std::chrono::steady_clock::now() - progress->start < std::chrono::seconds(1)) return;
  progress->percent = percent;
  std::fprintf(stderr, "\r%3d%%", percent);
}

void EraseProgress(const Progress& progress) {
  if (progress.percent >= 0) std::fprintf(stderr, "\r    \r");
}

}  // namespace cvt::app

// A line that tells how far the work is: on a terminal, for work that takes longer than a second.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace cvt::app {

struct Progress {
  std::int32_t whole = 1;
  std::int32_t percent = -1;  // told last, shown once a second is over; -1: none yet
  std::size_t shown = 0;      // characters on the line
  bool wanted = false;
  std::chrono::steady_clock::time_point start;
};

Progress StartProgress(bool quiet);

/// Shows the percentage that `done` is of the whole, if it is another than before.
void ShowPercent(std::int32_t done, Progress* progress);

void ShowLine(const std::string& line, Progress* progress);
void EraseProgress(const Progress& progress);

}  // namespace cvt::app

// A line that tells how far the work is: on a terminal, for work that takes longer than a second.
#pragma once

#include <chrono>
#include <cstdint>

namespace cvt::app {

struct Progress {
  std::int32_t rows = 1;
  std::int32_t percent = -1;  // that the line shows; -1: no line yet
  bool wanted = false;
  std::chrono::steady_clock::time_point start;
};

Progress StartProgress(bool quiet);
void ShowProgress(std::int32_t row, Progress* progress);
void EraseProgress(const Progress& progress);

}  // namespace cvt::app

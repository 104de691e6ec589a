#include "app/report.h"

#include <algorithm>
#include <cstdio>

namespace cvt::app {

namespace {

int ExitStatus(pipeline::Code code) {
  switch (code) {
    case pipeline::Code::Ok:
      return 0;
    case pipeline::Code::Usage:
      return 2;
    case pipeline::Code::Input:
      return 3;
    case pipeline::Code::Limit:
      return 4;
    case pipeline::Code::Output:
      return 5;
    case pipeline::Code::Interrupted:
      return 130;
  }
  return 1;
}

}  // namespace

std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }, '?');
  return text;
}

int Report(const Outcome& outcome) {
  if (Failed(outcome)) {
    const std::string subject = outcome.subject.empty() ? "" : outcome.subject + ": ";
    std::fprintf(stderr, "r2r: %s\n", OneLine(subject + outcome.status.message).c_str());
  }
  return ExitStatus(outcome.status.code);
}

}  // namespace cvt::app

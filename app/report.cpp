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
    case pipeline::Code::Partial:
      break;
  }
  return 1;
}

}  // namespace

std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }, '?');
  return text;
}

std::string LineOf(const Outcome& outcome) {
  return OneLine((outcome.subject.empty() ? "" : outcome.subject + ": ") + outcome.status.message);
}

int Report(const Outcome& outcome) {
  if (Failed(outcome)) std::fprintf(stderr, "r2r: %s\n", LineOf(outcome).c_str());
  return ExitStatus(outcome.status.code);
}

}  // namespace cvt::app

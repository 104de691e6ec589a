// How a piece of work went, what it concerns, and how the user hears of it.
#pragma once

#include <string>
#include <utility>

#include "pipeline/status.h"

namespace cvt::app {

/// A status and the file or option that it is about; `subject` may be empty.
struct [[nodiscard]] Outcome {
  pipeline::Status status;
  std::string subject;
};

inline Outcome Done() { return {}; }
inline Outcome Usage(std::string subject, std::string message) {
  return {pipeline::Fail(pipeline::Code::Usage, std::move(message)), std::move(subject)};
}
inline bool Failed(const Outcome& outcome) { return pipeline::Failed(outcome.status); }

/// What the user reads of a failure.
std::string LineOf(const Outcome& outcome);

/// Prints one line on standard error if the work failed; answers the exit status.
int Report(const Outcome& outcome);

/// The text on one line: control characters, as file names may hold them, become question marks.
std::string OneLine(std::string text);

}  // namespace cvt::app

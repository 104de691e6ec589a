#include <cstdio>
#include <new>

#include "app/command_line.h"
#include "app/convert_command.h"
#include "app/interrupt.h"

namespace {

using cvt::app::Outcome;
using cvt::pipeline::Code;
using cvt::pipeline::Fail;

Outcome Print(const std::string& text) {
  const bool written = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
  if (written) return cvt::app::Done();
  return {Fail(Code::Output, "writing failed (make room, or choose another place for the output)"),
          "standard output"};
}

Outcome Run(int count, const char* const* words) {
  cvt::app::Request request;
  if (Outcome failed = cvt::app::ParseCommandLine(count, words, &request); Failed(failed)) return failed;
  if (request.action == cvt::app::Action::Print) return Print(request.text);
  return cvt::app::RunConvert(request.arguments);
}

}  // namespace

int main(int count, char** words) {
  cvt::app::HandleSignals();
  try {
    return cvt::app::Report(Run(count, words));
  } catch (const std::bad_alloc&) {
    return cvt::app::Report({Fail(Code::Limit, "there is not enough memory (convert a smaller image)"), ""});
  }
}

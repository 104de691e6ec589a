#include <new>

#include "app/command_line.h"
#include "app/interrupt.h"
#include "app/list_command.h"

namespace {

cvt::app::Outcome Run(int count, const char* const* words) {
  cvt::app::Request request;
  if (cvt::app::Outcome failed = cvt::app::ParseCommandLine(count, words, &request); Failed(failed)) return failed;
  if (request.run == nullptr) return cvt::app::Print(request.text);
  return request.run(request.arguments);
}

}  // namespace

int main(int count, char** words) {
  cvt::app::HandleSignals();
  try {
    return cvt::app::Report(Run(count, words));
  } catch (const std::bad_alloc&) {
    return cvt::app::Report(
        {cvt::pipeline::Fail(cvt::pipeline::Code::Limit, "there is not enough memory (convert a smaller image)"),
         ""});
  }
}

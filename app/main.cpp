#include <fcntl.h>
#include <unistd.h>

#include <new>

#include "app/command_line.h"
#include "app/interrupt.h"
#include "app/list_command.h"

namespace {

// The number of a standard stream that is closed would go to the next file that is opened, and what is meant for
// the stream into that file. So its place is taken, by something that cannot be used in its stead.
bool HoldStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) >= 0) continue;
    const bool input = stream == STDIN_FILENO;  // a directory is nothing to write to, /dev/stdout not excepted
    if (::open(input ? "/dev/null" : "/", input ? O_WRONLY : O_RDONLY) != stream) return false;
  }
  return true;
}

cvt::app::Outcome Run(int count, const char* const* words) {
  if (!HoldStandardStreams()) {
    return {cvt::pipeline::Fail(cvt::pipeline::Code::Output,
                                "a standard stream is closed and nothing can take its place (open it)"),
            ""};
  }
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
    return cvt::app::Report({cvt::pipeline::OutOfMemory(), ""});
  }
}

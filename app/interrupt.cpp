#include "app/interrupt.h"

#include <unistd.h>

#include <atomic>
#include <string_view>

namespace cvt::app {

namespace {

constexpr int kExitInterrupted = 130;
constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP};

// The one variable that outlives a call: a signal handler is handed nothing and can look nowhere else.
std::atomic<const char*> fileToRemove{nullptr};
static_assert(std::atomic<const char*>::is_always_lock_free);

// Calls only what is safe in the midst of anything.
extern "C" void EndInterrupted(int) {
  const char* name = fileToRemove.load();
  if (name != nullptr) ::unlink(name);
  constexpr std::string_view kWords = "r2r: interrupted (run it again for the whole image)\n";
  static_cast<void>(!::write(STDERR_FILENO, kWords.data(), kWords.size()));
  ::_exit(kExitInterrupted);
}

sigset_t EndingSignals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kEndingSignals) sigaddset(&set, signal);
  return set;
}

}  // namespace

void HandleSignals() {
  struct sigaction action {};
  action.sa_mask = EndingSignals();
  action.sa_handler = EndInterrupted;
  for (const int signal : kEndingSignals) {
    struct sigaction before {};
    ::sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) ::sigaction(signal, &action, nullptr);  // nohup ignores SIGHUP for us
  }
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

void RemoveWhenInterrupted(const char* name) { fileToRemove.store(name); }

SignalsHeld::SignalsHeld() {
  const sigset_t held = EndingSignals();
  ::sigprocmask(SIG_BLOCK, &held, &before);
}

SignalsHeld::~SignalsHeld() { ::sigprocmask(SIG_SETMASK, &before, nullptr); }

}  // namespace cvt::app

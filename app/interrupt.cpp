#include "app/interrupt.h"

#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstring>
#include <string_view>

namespace cvt::app {

namespace {

constexpr int kExitInterrupted = 130;
constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP};

enum class Slot : int { Free, Filling, Named };

// The name is a copy: the handler may run while the thread that gave it is taking it back.
struct FileToRemove {
  std::atomic<Slot> state{Slot::Free};
  char name[4096] = {};
};
static_assert(std::atomic<Slot>::is_always_lock_free);

// What outlives a call: a signal handler is handed nothing and can look nowhere else.
FileToRemove filesToRemove[256];  // as many as there can be workers
std::atomic<int> holding{0};      // threads between HoldInterrupts and ReleaseInterrupts
std::atomic<bool> ending{false};

// The handler may have stopped a thread that has what those which hold it off need, as the lock of malloc: so it
// does not wait for ever.
void AwaitRelease() {
  constexpr int kMostMilliseconds = 1000;
  ending = true;
  for (int i = 0; i < kMostMilliseconds && holding > 0; ++i) ::poll(nullptr, 0, 1);
}

// Calls only what is safe in the midst of anything.
extern "C" void EndInterrupted(int) {
  AwaitRelease();
  for (const FileToRemove& file : filesToRemove) {
    if (file.state.load() == Slot::Named) ::unlink(file.name);
  }
  constexpr std::string_view kWords = "r2r: interrupted (run it again for what is missing)\n";
  static_cast<void>(!::write(STDERR_FILENO, kWords.data(), kWords.size()));
  ::_exit(kExitInterrupted);
}

sigset_t EndingSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : kEndingSignals) sigaddset(&signals, signal);
  return signals;
}

void Add(const char* name) {
  const std::size_t bytes = std::strlen(name) + 1;
  if (bytes > sizeof(FileToRemove::name)) return;  // no system takes such a name
  for (FileToRemove& file : filesToRemove) {
    Slot free = Slot::Free;
    if (!file.state.compare_exchange_strong(free, Slot::Filling)) continue;
    std::memcpy(file.name, name, bytes);
    file.state.store(Slot::Named);
    return;
  }
}

void Remove(const char* name) {
  for (FileToRemove& file : filesToRemove) {
    if (file.state.load() != Slot::Named || std::strcmp(file.name, name) != 0) continue;
    file.state.store(Slot::Free);
    return;
  }
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

void HoldInterrupts() {
  const sigset_t signals = EndingSignals();
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  ++holding;
  if (!ending) return;
  --holding;
  for (;;) ::pause();  // the program is about to end
}

void ReleaseInterrupts() {
  --holding;
  const sigset_t signals = EndingSignals();
  ::pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

void RemoveWhenInterrupted(const char* name, bool exists) { exists ? Add(name) : Remove(name); }

}  // namespace cvt::app

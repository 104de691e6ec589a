// Signals: an interrupted conversion leaves no temporary file, a closed pipe is an error like any other.
#pragma once

#include <csignal>

namespace cvt::app {

/// SIGINT, SIGTERM and SIGHUP end the program with status 130; a pipe without a reader and a file above the
/// size limit make the write fail instead of ending it.
void HandleSignals();

/// Names the file to remove when a signal ends the program; null: none. The name must live until then.
void RemoveWhenInterrupted(const char* name);

/// Holds those signals back while it lives.
struct SignalsHeld {
  SignalsHeld();
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;
  ~SignalsHeld();

  sigset_t before;
};

}  // namespace cvt::app

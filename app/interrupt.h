// Signals: an interrupted conversion leaves no temporary file, a closed pipe is an error like any other.
#pragma once

namespace cvt::app {

/// SIGINT, SIGTERM and SIGHUP end the program with status 130; a pipe without a reader and a file above the
/// size limit make the write fail instead of ending it.
void HandleSignals();

/// Holds what an interrupted program must not leave half done: an output that takes its name, and the line of the
/// report that tells of it. A signal waits, but not for long, until ReleaseInterrupts on the same thread.
void HoldInterrupts();
void ReleaseInterrupts();

/// Names a file to remove when a signal ends the program, or, where `exists` is false, takes the name back.
/// Any thread may call it.
void RemoveWhenInterrupted(const char* name, bool exists);

}  // namespace cvt::app

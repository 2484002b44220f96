#pragma once

#include <sys/types.h>

namespace Tavrin {
namespace App {

// A restarted editor is started by the one it replaces, with the old process id in its
// environment. The new process must not take the single-instance decision while the old one
// still holds the lock, or it would hand its files to the editor that is about to end. This
// lives beside the launcher's other start-up pieces because the decision is taken before any
// module with a window is loaded.

// The environment variable that carries the predecessor's process id.
extern const char kPredecessorVariable[];

// True when the process has ended; a zombie has closed its files and released its locks, so
// it counts as ended too.
bool processEnded(pid_t pid);

// In a process started as a restart: waits (bounded) until the predecessor has ended, and
// removes the variable so this process's own children are not taken for restarts.
void waitForPredecessor();

} // namespace App
} // namespace Tavrin

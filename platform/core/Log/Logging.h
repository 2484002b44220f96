#pragma once

#include <QString>

namespace Tavrin {
namespace Log {

// Starts glog for this process: every line goes to stderr and to a log file in the
// user's cache folder ("<cache>/Klipvane/log", or KLIPVANE_LOG_DIR). Qt's own messages
// are routed into glog too, so one log tells the whole story. Safe to call twice.
void init(const char* argv0);

// The folder the log files are written to.
QString logDirectory();

} // namespace Log
} // namespace Tavrin

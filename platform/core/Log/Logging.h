#pragma once

#include <QString>

namespace Tavrin {
namespace Log {

// How many runs of one program keep their log file; older ones are deleted when a run
// starts its file.
constexpr int kKeptRuns = 10;

enum class FileStart {
    Now,   // the log file is opened at once
    Later, // lines are held until startFile(); a process that ends before it writes no file
};

// Starts glog for this process: every line goes to stderr and to this run's log file in
// the user's cache folder ("<cache>/Klipvane/log", or KLIPVANE_LOG_DIR), named
// "<program>.<yyyyMMdd-hhmmss.zzz>.<pid>.log". The folder is private to the user (0700) and
// so is each file (0600), since log lines name the files the user opened. Control
// characters in a message (a newline in a file name) are escaped as \n, \r, \xNN and a
// backslash as \\, so one message is always one line. Qt's own messages are routed into
// glog too. Safe to call twice; only the first call counts.
void init(const char* argv0, FileStart start = FileStart::Now);

// Opens the log file of a process started with FileStart::Later and writes the lines held
// so far into it. Does nothing when the file is open already.
void startFile();

// The folder the log files are written to.
QString logDirectory();

} // namespace Log
} // namespace Tavrin

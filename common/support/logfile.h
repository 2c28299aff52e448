/// @file
/// The client's log.
#pragma once

#include <string>

/// The client's log. The module calls Log() on the one global object `logfile` and nothing else.
class Logfile {
 public:
  /// Writes one line to the standard error stream: the time in UTC, the level and the message, as
  /// in "2025-01-31T12:00:00Z [2] Command x not found". Line feeds and carriage returns inside the
  /// message are written as "\n" and "\r", so that a call is always one line. The module uses the
  /// levels 2 and 4; they are written and mean nothing here.
  ///
  /// May be called from several threads at once: their lines do not mix. Not while another thread
  /// changes the environment, where the C library looks for the time zone. A line that cannot be
  /// written is lost without notice, but SIGPIPE ends a client that does nothing about it.
  void Log(std::string message, int level);
};

/// The log of the process. Usable during static initialisation.
extern Logfile logfile;

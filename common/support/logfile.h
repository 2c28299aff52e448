/// @file
/// The log of the client.
#pragma once

#include <string>

/// The log of the client. The library calls Log() on the object `logfile`.
///
/// A client may define this class and the object itself; docs/linking.md has the few lines. The
/// comments here describe the default implementation.
class Logfile {
 public:
  /// Writes one line to the standard error stream.
  ///
  ///     logfile.Log("Failed to start command x", 2);
  ///     // 2025-01-31T12:00:00Z [2] Failed to start command x
  ///
  /// The line has the time in UTC, the level and the message. Newlines and carriage returns inside
  /// the message are written as "\n" and "\r", so each call writes exactly one line. Several
  /// threads may call Log() at once, while no thread changes the environment. A line that cannot be
  /// written is lost, but SIGPIPE kills a client that leaves it at its default action.
  ///
  /// @param message the text of the line.
  /// @param level the level. The library uses 2 for programs and encodings, 4 for stored lists.
  void Log(std::string message, int level);
};

/// The log of the process. It may be used during static initialisation.
extern Logfile logfile;

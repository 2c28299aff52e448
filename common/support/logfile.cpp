#include "support/logfile.h"

#include <cstdio>
#include <ctime>
#include <utility>

namespace {

std::string Timestamp() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  gmtime_r(&now, &utc);
  char text[sizeof "-2147483648-12-31T23:59:60Z"];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc)};
}

// The message with its line ends written out, on one line.
std::string OneLine(std::string message) {
  if (message.find_first_of("\n\r") == std::string::npos) return message;
  std::string line;
  for (const char byte : message) {
    if (byte == '\n') {
      line += "\\n";
    } else if (byte == '\r') {
      line += "\\r";
    } else {
      line += byte;
    }
  }
  return line;
}

}  // namespace

// A client may define these itself. They are weak: its own count also where something else makes the
// linker take this file, such as a member of std::string that is compiled into it.
[[gnu::weak]] Logfile logfile;

[[gnu::weak]] void Logfile::Log(std::string message, int level) {
  std::string line = Timestamp() + " [" + std::to_string(level) + "] ";
  line += OneLine(std::move(message));
  line += '\n';
  // A single call: the stream's own lock keeps the lines of other threads out of this one.
  (void)std::fwrite(line.data(), 1, line.size(), stderr);
}

#include "support/logfile.h"

#include <cstdio>
#include <ctime>

namespace {

std::string Timestamp() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  gmtime_r(&now, &utc);
  char text[sizeof "-2147483648-12-31T23:59:60Z"];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc)};
}

// The message on one line: its line ends are written out.
std::string OneLine(const std::string& message) {
  std::string line;
  for (const char byte : message) {
    if (byte != '\n' && byte != '\r') {
      line += byte;
      continue;
    }
    line += byte == '\n' ? "\\n" : "\\r";
  }
  return line;
}

}  // namespace

// A client may define these itself. They are weak: its own count even if something else makes the
// linker take this file, such as a member of std::string that is compiled into it.
[[gnu::weak]] Logfile logfile;

[[gnu::weak]] void Logfile::Log(std::string message, int level) {
  std::string line = Timestamp() + " [" + std::to_string(level) + "] ";
  line += OneLine(message);
  line += '\n';
  // A single call: the stream's own lock keeps the lines of other threads out of this one.
  (void)std::fwrite(line.data(), 1, line.size(), stderr);
}

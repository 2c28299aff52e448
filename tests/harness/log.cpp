#include "harness/log.h"

#include <stdexcept>

#include "support/logfile.h"

std::string logged;
bool logThrows = false;
Logfile logfile;

void Logfile::Log(std::string message, int level) {
  logged += std::to_string(level) + " " + message + "\n";
  if (logThrows) throw std::runtime_error("log failed");
}

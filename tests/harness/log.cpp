#include "harness/log.h"

#include "support/logfile.h"

std::string logged;
Logfile logfile;

void Logfile::Log(std::string message, int level) {
  logged += std::to_string(level) + " " + message + "\n";
}

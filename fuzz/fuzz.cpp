#include "fuzz.h"

#include <cstdint>

#include "support/logfile.h"

std::string logged;

// Stands in for the log of the support library.
Logfile logfile;
void Logfile::Log(std::string message, int level) {
  logged += std::to_string(level) + " " + message;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Check({data, data + size});
  return 0;
}

#include "harness/capturedlog.h"

#include <stdexcept>

#include "support/logfile.h"

// Logfile::Log(std::string, int)
#define LOG "_ZN7Logfile3LogENSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEi"
extern "C" void RealLog(Logfile*, std::string, int) __asm__("__real_" LOG);
extern "C" void WrappedLog(Logfile*, std::string, int) __asm__("__wrap_" LOG);

void WrappedLog(Logfile* log, std::string message, int level) {
  CapturedLog* captured = CapturedLog::current;
  if (captured == nullptr) return RealLog(log, std::move(message), level);
  captured->lines.emplace_back(level, std::move(message));
  if (captured->throws) throw std::runtime_error("the log failed");
}

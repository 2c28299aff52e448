#include "harness/capturedlog.h"

#include <stdexcept>

#include "support/logfile.h"

extern "C" void RealLog(Logfile*, std::string, int) __asm__("__real_" LOG_SYMBOL);
extern "C" void WrappedLog(Logfile*, std::string, int) __asm__("__wrap_" LOG_SYMBOL);

void WrappedLog(Logfile* log, std::string message, int level) {
  CapturedLog* captured = CapturedLog::current;
  if (captured == nullptr) return RealLog(log, std::move(message), level);
  captured->lines.emplace_back(level, std::move(message));
  if (captured->throws) throw std::runtime_error("the log failed");
}

#include "harness/capturedlog.h"

#include <stdexcept>

#include "support/logfile.h"

namespace {

CapturedLog* current = nullptr;

}  // namespace

extern "C" {
void RealLog(Logfile*, std::string, int) __asm__(
    "__real__ZN7Logfile3LogENSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEi");
void WrappedLog(Logfile*, std::string, int) __asm__(
    "__wrap__ZN7Logfile3LogENSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEi");

void WrappedLog(Logfile* log, std::string message, int level) {
  if (current == nullptr) return RealLog(log, std::move(message), level);
  current->lines.emplace_back(level, std::move(message));
  if (current->throws) throw std::runtime_error("the log failed");
}
}

CapturedLog::CapturedLog() { current = this; }

CapturedLog::~CapturedLog() { current = nullptr; }

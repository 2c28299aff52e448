#pragma once

#include <string>
#include <utility>
#include <vector>

/// Takes the lines that the module logs while it lives. Without one they reach the real log.
struct CapturedLog {
  using Lines = std::vector<std::pair<int, std::string>>;  // level and message

  CapturedLog() { current = this; }
  ~CapturedLog() { current = nullptr; }
  CapturedLog& operator=(CapturedLog&&) = delete;  // neither copied nor moved

  Lines lines;
  bool throws = false;  // each call throws a std::runtime_error once its line is taken

  inline static CapturedLog* current = nullptr;
};

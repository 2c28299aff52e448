#pragma once

#include <string>
#include <utility>
#include <vector>

/// Takes the lines that the module logs while it lives. Without one they reach the real log.
class CapturedLog {
 public:
  using Lines = std::vector<std::pair<int, std::string>>;  // level and message

  CapturedLog();
  ~CapturedLog();
  CapturedLog(const CapturedLog&) = delete;
  CapturedLog& operator=(const CapturedLog&) = delete;

  Lines lines;
  bool throws = false;  // each call throws a std::runtime_error once its line is taken
};

#pragma once

#include <cstdlib>
#include <string>

/// Sets an environment variable, or unsets it (null), and puts the former state back when it goes
/// out of scope.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    const char* before = std::getenv(name);
    if (before != nullptr) before_ = before;
    wasSet_ = before != nullptr;
    Set(value);
  }
  ~ScopedEnv() { Set(wasSet_ ? before_.c_str() : nullptr); }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  void Set(const char* value) {
    (void)(value != nullptr ? setenv(name_, value, 1) : unsetenv(name_));
  }

  const char* name_;
  std::string before_;
  bool wasSet_;
};

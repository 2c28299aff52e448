#pragma once

#include <cstdlib>
#include <optional>
#include <string>

/// Sets an environment variable, or unsets it (null), and puts the former state back when it goes
/// out of scope.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    if (const char* before = std::getenv(name)) before_ = before;
    Set(value);
  }
  ~ScopedEnv() { Set(before_ ? before_->c_str() : nullptr); }
  ScopedEnv& operator=(ScopedEnv&&) = delete;  // neither copied nor moved

 private:
  void Set(const char* to) { (void)(to != nullptr ? setenv(name_, to, 1) : unsetenv(name_)); }

  const char* name_;
  std::optional<std::string> before_;
};

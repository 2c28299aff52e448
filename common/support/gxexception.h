#pragma once

#include <exception>
#include <stdexcept>
#include <string>

/// The client's exception: an error code and a message.
///
/// The module throws it for an empty command only: code 6 from System(), code 11 from
/// SystemNowait().
class GXException : public std::exception {
 public:
  GXException(int code, std::string message);
  ~GXException() override;
  GXException(const GXException&) noexcept = default;
  GXException& operator=(const GXException&) noexcept = default;

  int code() const noexcept;

  /// The message, up to its first NUL byte.
  const char* what() const noexcept override;

 private:
  int code_;
  std::runtime_error message_;  // its copies share one text, so that copying cannot throw
};

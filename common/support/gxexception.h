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
  /// An exception with this code and message.
  GXException(int code, std::string message);
  ~GXException() override;
  /// Copies share the text of the message: copying does not allocate and cannot throw.
  GXException(const GXException&) noexcept = default;
  /// As copying.
  GXException& operator=(const GXException&) noexcept = default;

  /// The code given at construction.
  int code() const noexcept;

  /// The message, up to its first NUL byte.
  const char* what() const noexcept override;

 private:
  int code_;
  std::runtime_error message_;  // its copies share one text, so that copying cannot throw
};

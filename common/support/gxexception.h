#pragma once

#include <stdexcept>
#include <string>

/// The client's exception: an error code and a message.
///
/// The module throws it for an empty command only: code 6 from System(), code 11 from
/// SystemNowait().
class GXException : public std::runtime_error {
 public:
  /// An exception with this code and message. what() returns the message up to its first NUL byte.
  GXException(int code, std::string message);
  ~GXException() override;

  /// The code given at construction.
  int code() const noexcept;

 private:
  int code_;
};

/// @file
/// The exception of the client.
#pragma once

#include <stdexcept>
#include <string>

/// The exception of the client: an error code and a message.
///
///     try {
///       GXUtils::System(command);
///     } catch (const GXException& error) {
///       std::cerr << error.code() << ": " << error.what();   // 6: Empty command
///     }
///
/// The library throws it if a command has length 0: with code 6 from GXUtils::System(), with code
/// 11 from GXUtils::SystemNowait().
class GXException : public std::runtime_error {
 public:
  /// Makes an exception.
  ///
  /// @param code the error code.
  /// @param message the message, which what() returns up to its first NUL byte.
  GXException(int code, std::string message);
  ~GXException() override;

  /// Returns the error code.
  int code() const noexcept;

 private:
  int code_;
};

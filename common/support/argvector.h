/// @file
/// The argument array of a program.
#pragma once

#include <string>
#include <vector>

/// Builds an argument array for GXUtils::System() and GXUtils::SystemNowait().
///
///     ArgVector arguments;
///     arguments.addArgument("ls");
///     arguments.addArgument("my file");
///     GXUtils::System(arguments.getArgArray());
///
/// The object owns the array and its strings.
class ArgVector {
 public:
  /// Makes an array without arguments.
  ArgVector();
  ~ArgVector();
  ArgVector(const ArgVector&) = delete;
  ArgVector& operator=(const ArgVector&) = delete;

  /// Adds a copy of an argument at the end.
  ///
  /// @param argument the argument. A program gets its bytes up to the first NUL byte.
  void addArgument(std::string argument);

  /// Returns the array.
  ///
  /// @return pointers to NUL-terminated strings, one for each argument in the order added, then a
  ///         null pointer. Without arguments the array is the null pointer alone. It is valid until
  ///         the object is destroyed or another argument is added.
  const char* const* getArgArray();

 private:
  std::vector<std::string> arguments_;
  std::vector<const char*> array_;  // empty: to be built from arguments_
};

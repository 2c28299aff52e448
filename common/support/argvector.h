#pragma once

#include <string>
#include <vector>

/// Builds the argument array that execvp() takes: pointers to NUL-terminated strings, one for each
/// argument in the order added, then a null pointer. Owns the array and the strings.
class ArgVector {
 public:
  ArgVector();
  ~ArgVector();
  ArgVector(const ArgVector&) = delete;
  ArgVector& operator=(const ArgVector&) = delete;

  /// Adds a copy of `argument`. A program sees it up to its first NUL byte.
  void addArgument(std::string argument);

  /// The array; just the null pointer when no argument was added. It and its strings stay valid and
  /// unchanged until the object is destroyed or another argument is added.
  const char* const* getArgArray();

 private:
  std::vector<std::string> arguments_;
  std::vector<const char*> array_;  // empty: to be built from arguments_
};

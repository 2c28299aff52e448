/// @file
/// What the fuzz targets share. A target checks laws and compares with a second, plain way to the
/// same result, written for reading, not for speed. Inputs are taken apart so that seeds can be
/// read and written by hand.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "gxclient_util.h"

// The laws are assertions, in every build type.
#undef NDEBUG
#include <cassert>

using Strings = std::vector<std::string>;

/// The target: checks its laws with one input.
void Check(std::string input);

/// The lines that the module has logged since a target cleared it, each as "2 message".
extern std::string logged;

inline Strings Split(const std::string& text, char separator) {
  Strings fields(1);
  for (const char byte : text) {
    if (byte == separator) fields.emplace_back();
    if (byte != separator) fields.back() += byte;
  }
  return fields;
}

inline std::string Trimmed(std::string text, const std::string& set) {
  text.erase(0, text.find_first_not_of(set));
  return text.erase(text.find_last_not_of(set) + 1);
}

/// @file
/// What the fuzz targets share. A target compares with a second, plain way to the same result,
/// written for reading, not for speed. The tests run its small worlds whole, under any compiler;
/// libFuzzer goes on from their tokens.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "gxclient_util.h"
#include "harness/log.h"

// The laws are assertions, in every build type.
#undef NDEBUG
#include <cassert>

using Strings = std::vector<std::string>;

/// Every text that is `start` and up to `count` tokens.
struct World {
  std::string start;
  std::size_t count;
  Strings tokens;
};

/// The target: the texts that its test runs, and its laws for one input.
std::vector<World> Worlds();
void Check(std::string input);

inline Strings EveryByte() {
  Strings bytes;
  for (int byte = 0; byte < 256; ++byte) bytes.emplace_back(1, static_cast<char>(byte));
  return bytes;
}

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

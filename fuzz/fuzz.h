/// @file
/// The code that the fuzz targets share. A target checks invariants of the module and compares
/// results with a reference implementation. ctest runs it over every short text. libFuzzer goes on
/// from the same tokens.
#pragma once

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "gxclient_util.h"

using Strings = std::vector<std::string>;

/// Every text of up to `count` tokens.
struct TextSet {
  std::size_t count;
  Strings tokens;
};

/// A target has these two: the texts that its test runs, and the checks of one input.
std::vector<TextSet> ShortTexts();
void Check(const std::string& input);

inline Strings EveryByte() {
  Strings bytes;
  for (int byte = 0; byte < 256; ++byte) bytes.emplace_back(1, static_cast<char>(byte));
  return bytes;
}

/// A value as a failure prints it. A text is also an entry of libFuzzer's dictionary.
inline std::string Shown(const std::string& text) {
  std::string shown = "\"";
  for (const char each : text) {
    const auto byte = static_cast<unsigned char>(each);
    char code[5] = {each};
    if (std::isalnum(byte) == 0) (void)std::snprintf(code, sizeof code, "\\x%02x", byte);
    shown += code;
  }
  return shown + "\"";
}
inline std::string Shown(int number) { return std::to_string(number); }
inline std::string Shown(const Strings& texts) {
  std::string shown;
  for (const std::string& text : texts) shown += Shown(text) + " ";
  return shown;
}

/// Aborts with both values printed unless they are equal.
template <class Value>
void Expect(const char* fact, const Value& result, const Value& expected) {
  if (result == expected) return;
  (void)std::fprintf(stderr, "%s\nresult:   %s\nexpected: %s\n", fact, Shown(result).c_str(),
                     Shown(expected).c_str());
  std::abort();
}

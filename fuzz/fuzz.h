/// @file
/// The code that the fuzz targets share. A target checks invariants of the module and compares
/// results with a reference implementation. ctest runs it over every short text. libFuzzer goes on
/// from the same tokens.
#pragma once

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <type_traits>
#include <vector>

#include "gxclient_util.h"
#include "harness/log.h"

using Strings = std::vector<std::string>;

/// Every text that is `start` and up to `count` tokens.
struct World {
  std::string start;
  std::size_t count;
  Strings tokens;
};

/// A target has these two: the texts that its test runs, and the checks of one input.
std::vector<World> Worlds();
void Check(const std::string& input);

inline Strings EveryByte() {
  Strings bytes;
  for (int byte = 0; byte < 256; ++byte) bytes.emplace_back(1, static_cast<char>(byte));
  return bytes;
}

/// A value as a failure prints it. A text is also an entry of libFuzzer's dictionary.
inline std::string Shown(const std::string& text) {
  std::string shown = "\"";
  for (const char byte : text) {
    char code[5];
    (void)std::snprintf(code, sizeof code, "\\x%02hhx", static_cast<unsigned char>(byte));
    shown += std::isalnum(static_cast<unsigned char>(byte)) != 0 ? std::string(1, byte) : code;
  }
  return shown + "\"";
}
inline std::string Shown(int number) { return std::to_string(number); }
inline std::string Shown(bool value) { return value ? "true" : "false"; }
inline std::string Shown(const Strings& texts) {
  std::string shown;
  for (const std::string& text : texts) shown += Shown(text) + " ";
  return shown;
}

/// Aborts with both values printed unless they are equal.
template <class Value>
void Expect(const char* fact, const std::type_identity_t<Value>& result, const Value& expected) {
  if (result == expected) return;
  (void)std::fprintf(stderr, "%s\nresult:   %s\nexpected: %s\n", fact, Shown(result).c_str(),
                     Shown(expected).c_str());
  std::abort();
}

// The reference implementations: the standard library's find() over copies.

inline Strings Split(std::string text, char separator) {
  Strings fields;
  for (std::size_t end; (end = text.find(separator)) != std::string::npos; text.erase(0, end + 1)) {
    fields.push_back(text.substr(0, end));
  }
  fields.push_back(text);
  return fields;
}

inline std::string Joined(const Strings& fields, const std::string& joiner) {
  std::string text = fields[0];
  for (std::size_t i = 1; i < fields.size(); ++i) text += joiner + fields[i];
  return text;
}

inline std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  if (from.empty()) return text;
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

inline std::string Trimmed(std::string text, const std::string& set) {
  text.erase(0, text.find_first_not_of(set));
  return text.erase(text.find_last_not_of(set) + 1);
}

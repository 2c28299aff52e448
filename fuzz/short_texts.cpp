// Checks every text of up to so many tokens.

#include <vector>

#include <gtest/gtest.h>

#include "check.h"

using Tokens = std::vector<std::string>;

void CheckTexts(const Tokens& tokens, std::size_t count, const std::string& beginning = "") {
  if (testing::Test::HasFailure()) return;
  CheckText(beginning);
  if (count == 0) return;
  for (const std::string& token : tokens) CheckTexts(tokens, count - 1, beginning + token);
}

TEST(ShortTexts, OfAnyByte) {
  Tokens bytes;
  for (int byte = 0; byte < 256; ++byte) bytes.emplace_back(1, static_cast<char>(byte));
  CheckTexts(bytes, 2);
}

TEST(ShortTexts, OfDigitsAndQuotes) { CheckTexts({"A", "=", "/", " ", "\""}, 6); }
TEST(ShortTexts, OfListElements) {
  CheckTexts({",", "\\", "a", " ", ";", std::string(1, '\0')}, 5);
}
TEST(ShortTexts, OfLines) { CheckTexts({"\r", "\n", "a"}, 6); }
TEST(ShortTexts, OfNumbers) { CheckTexts({"0x", "0", "1", ".", "a", "A", "\xFF", "|"}, 5); }

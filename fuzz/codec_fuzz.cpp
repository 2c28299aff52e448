// Input: how often the rest is repeated, then bytes to encode, which are text to decode as well.

#include <cstdlib>

#include "fuzz.h"

namespace {

const std::string kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";

// Looks every character up in the alphabet; "=" is the digit 64.
std::string DecodedBase64(const std::string& text) {
  std::string bytes;
  if (text.size() % 4 != 0 || text.find_first_not_of(kAlphabet) != std::string::npos) return bytes;
  for (std::size_t i = 0; i < text.size(); i += 4) {
    std::size_t d[4];
    for (std::size_t k = 0; k < 4; ++k) d[k] = kAlphabet.find(text[i + k]);
    bytes += static_cast<char>(d[0] * 4 + d[1] / 16);
    if (d[2] != 64) bytes += static_cast<char>(d[1] * 16 + d[2] / 4);
    if (d[3] != 64) bytes += static_cast<char>(d[2] * 64 + d[3]);
  }
  return bytes;
}

std::string DecodedHex(const std::string& hex) {
  std::string bytes;
  char* end = nullptr;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    const std::string pair = hex.substr(i, 2);
    bytes += static_cast<char>(std::strtol(pair.c_str(), &end, 16));
    if (*end != '\0') return {};
  }
  return hex.size() % 2 == 0 ? bytes : "";
}

}  // namespace

void Check(std::string input) {
  const int times = input.c_str()[0] & 63;
  std::string bytes = input.erase(0, 1);
  for (int i = 0; i < times; ++i) bytes += input;
  const std::vector<unsigned char> exact(bytes.begin(), bytes.end());  // nothing behind it
  const std::string text = GXUtils::Base64Encode(exact.data(), exact.size());
  assert(text.size() == (bytes.size() + 2) / 3 * 4 && text == GXUtils::Base64Encode(bytes));
  assert(DecodedBase64(text) == bytes && GXUtils::Base64Decode(text) == bytes);
  assert(GXUtils::Base64Decode(bytes) == DecodedBase64(bytes));
  assert(GXUtils::HexASCIIToString(bytes) == DecodedHex(bytes));
}

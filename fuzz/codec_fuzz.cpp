// Input: "?" to repeat the rest 31 times, or another byte; then bytes to encode, which are text to
// decode as well.

#include <cstdlib>

#include "fuzz.h"

namespace {

const std::string kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";

// Looks every character up in the alphabet; "=" is the digit 64.
std::string DecodedBase64(const std::string& text) {
  std::string bytes;
  if (text.size() % 4 != 0 || text.find_first_not_of(kAlphabet) != std::string::npos) return bytes;
  std::size_t last = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t digit = kAlphabet.find(text[i]);
    const std::size_t bits = i % 4 * 2;  // the high ones of the digit that fill a byte
    const bool fills = bits == 2 || (bits > 2 && digit != 64);
    if (fills) bytes += static_cast<char>((last << bits) + (digit >> (6 - bits)));
    last = digit;
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
  const int times = input.c_str()[0] == '?' ? 31 : 0;
  std::string bytes = input.erase(0, 1);
  for (int i = 0; i < times; ++i) bytes += input;
  const std::vector<unsigned char> exact(bytes.begin(), bytes.end());  // nothing behind it
  const std::string text = GXUtils::Base64Encode(exact.data(), exact.size());
  assert(text.size() == (bytes.size() + 2) / 3 * 4 && text == GXUtils::Base64Encode(bytes));
  assert(DecodedBase64(text) == bytes && GXUtils::Base64Decode(text) == bytes);
  assert(GXUtils::Base64Decode(bytes) == DecodedBase64(bytes));
  assert(GXUtils::HexASCIIToString(bytes) == DecodedHex(bytes));
  std::string digest(34, '#');  // of which 32 bytes are to be written
  GXUtils::SHA256Digest(bytes, reinterpret_cast<unsigned char*>(&digest[1]));
  assert(digest.front() == '#' && digest.back() == '#');
}

// Input: bytes to encode, which are text to decode as well.

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

// Bytes that do not repeat with any period of the encoder's.
std::string Mixed(unsigned size) {
  std::string bytes;
  for (unsigned i = 0; i < size; ++i) bytes += static_cast<char>(i * i >> 3);
  return bytes;
}

}  // namespace

// Whole groups, every byte at every place, and lengths around what is encoded at once: 12 bytes
// with 2 more behind them, 3072 bytes.
std::vector<World> Worlds() {
  return {{"", 8, {"A", "=", "/", " "}},
          {"", 2, EveryByte()},
          {"", 4, {Mixed(3060), Mixed(12), Mixed(7), "\xFB"}}};
}

void Check(std::string input) {
  const std::vector<unsigned char> exact(input.begin(), input.end());  // nothing behind it
  const std::string encoded = GXUtils::Base64Encode(exact.data(), exact.size());
  assert(encoded.size() == (input.size() + 2) / 3 * 4 && encoded == GXUtils::Base64Encode(input));
  assert(DecodedBase64(encoded) == input && GXUtils::Base64Decode(encoded) == input);
  for (const std::string& text : {input, input + "A/", "A/" + input}) {
    assert(GXUtils::Base64Decode(text) == DecodedBase64(text));
    assert(GXUtils::HexASCIIToString(text) == DecodedHex(text));
  }
}

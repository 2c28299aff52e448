// Input: bytes to encode, which are also a text to decode.

#include "fuzz.h"

using namespace GXUtils;

namespace {

const std::string kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";

// Arithmetic over the alphabet: a digit is a position in it, and "=" is the digit 64.
std::string DecodedBase64(const std::string& text) {
  if (text.size() % 4 != 0) return "";
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); i += 4) {
    std::size_t digits[4];
    for (std::size_t j = 0; j < 4; ++j) {
      digits[j] = kAlphabet.find(text[i + j]);
      if (digits[j] == std::string::npos) return "";
    }
    bytes += static_cast<char>(digits[0] * 4 + digits[1] / 16);
    if (digits[2] != 64) bytes += static_cast<char>(digits[1] * 16 + digits[2] / 4);
    if (digits[3] != 64) bytes += static_cast<char>(digits[2] * 64 + digits[3]);
  }
  return bytes;
}

std::string DecodedHex(const std::string& hex) {
  if (hex.size() % 2 != 0) return "";
  std::string bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    const std::string pair = hex.substr(i, 2);
    char* end = nullptr;
    bytes += static_cast<char>(std::strtol(pair.c_str(), &end, 16));
    if (*end != '\0') return "";
  }
  return bytes;
}

}  // namespace

std::vector<TextSet> ShortTexts() { return {{8, {"A", "=", "/", " "}}, {2, EveryByte()}}; }

void Check(const std::string& input) {
  const std::string encoded = Base64Encode(input);
  Expect("DecodedBase64(encoded)", DecodedBase64(encoded), input);
  Expect("Base64Decode(encoded)", Base64Decode(encoded), input);
  for (const std::string& text : {input, input + "A/", "A/" + input}) {
    Expect("Base64Decode()", Base64Decode(text), DecodedBase64(text));
    Expect("HexASCIIToString()", HexASCIIToString(text), DecodedHex(text));
  }
}

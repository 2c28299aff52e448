#include <cstdlib>
#include <random>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "gxclient_util.h"

using namespace std::string_literals;
using GXUtils::Base64Decode;
using GXUtils::Base64Encode;
using GXUtils::HexASCIIToString;

namespace {

const std::string kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";

std::string TwoBytes(unsigned i) { return {static_cast<char>(i), static_cast<char>(i >> 8)}; }

// The decoder in its plainest form.
std::string SlowDecode(const std::string& text) {
  if (text.size() % 4 != 0 || text.find_first_not_of(kAlphabet) != text.npos) return "";
  std::string data;
  for (std::size_t i = 0; i < text.size(); i += 4) {
    std::size_t d[4];
    for (std::size_t k = 0; k < 4; ++k) d[k] = kAlphabet.find(text[i + k]);
    data += static_cast<char>(d[0] * 4 + d[1] / 16);
    if (d[2] != 64) data += static_cast<char>(d[1] * 16 + d[2] / 4);
    if (d[3] != 64) data += static_cast<char>(d[2] * 64 + d[3]);
  }
  return data;
}

TEST(Base64, DecodingUndoesEncoding) {
  EXPECT_EQ(Base64Encode(nullptr, 0), "");
  std::mt19937 random(1);
  for (unsigned i = 0; i < 70000; ++i) {
    // Every one or two bytes, then random ones, some long.
    std::string data = i < 256 ? std::string(1, static_cast<char>(i)) : TwoBytes(i - 256);
    if (i >= 256 + 65536) data.resize(random() % (i % 20 == 0 ? 10000 : 60));
    for (std::size_t k = 2; k < data.size(); ++k) data[k] = static_cast<char>(random());
    const std::string text = Base64Encode(data);
    ASSERT_EQ(text.size(), (data.size() + 2) / 3 * 4);
    ASSERT_EQ(Base64Decode(text), data);
    ASSERT_EQ(Base64Encode(reinterpret_cast<unsigned char*>(data.data()), data.size()), text);
  }
}

TEST(Base64, DecodesAnyTextLikeTheSlowDecoder) {
  std::mt19937 random(2);
  for (unsigned i = 0; i < 100000; ++i) {
    std::string text(random() % 12 * 4 + (i % 16 == 0 ? i / 16 % 4 : 0), '\0');
    for (char& c : text) c = kAlphabet[random() % (i % 2 == 0 ? 65 : 64)];
    if (i % 4 == 0 && !text.empty()) text[random() % text.size()] = static_cast<char>(random());
    ASSERT_EQ(Base64Decode(text), SlowDecode(text)) << text;
  }
}

TEST(HexASCIIToString, ReadsEveryPairLikeStrtol) {
  for (unsigned i = 0; i < 65536; ++i) {
    const std::string pair = TwoBytes(i);
    char* end = nullptr;
    const std::string byte(1, static_cast<char>(std::strtol(pair.c_str(), &end, 16)));
    const bool good = *end == '\0';
    ASSERT_EQ(HexASCIIToString(pair), good ? byte : "") << i;
    ASSERT_EQ(HexASCIIToString("4a" + pair + "4B"), good ? "J" + byte + "K" : "") << i;
    ASSERT_EQ(HexASCIIToString(pair + "4C"), good ? byte + "L" : "") << i;
  }
  EXPECT_EQ(HexASCIIToString("123"), "");
}

TEST(SHA256Digest, WritesThirtyTwoBytes) {
  const std::pair<std::string, const char*> cases[] = {
      {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
      {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
      {std::string(65, 'a'), "635361c48bb9eab14198e76ea8ab7f1a41685d6ad62aa9146d301d4f17eb0ae0"},
  };
  for (const auto& [data, hex] : cases) {
    std::string digest(34, '#');
    GXUtils::SHA256Digest(data, reinterpret_cast<unsigned char*>(&digest[1]));
    EXPECT_EQ(digest, "#" + HexASCIIToString(hex) + "#");
  }
}

}  // namespace

// Base64, hexadecimal text and SHA-256. fuzz/ compares the decoders with reference implementations.

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "gxclient_util.h"

using namespace GXUtils;
using namespace std::string_literals;

TEST(Base64, HasTheVectorsOfRfc4648) {
  const std::string texts[] = {"", "Zg==", "Zm8=", "Zm9v", "Zm9vYg==", "Zm9vYmE=", "Zm9vYmFy"};
  for (std::size_t size = 0; size <= 6; ++size) {
    const std::string bytes = std::string("foobar").substr(0, size);
    EXPECT_EQ(Base64Encode(bytes), texts[size]);
    EXPECT_EQ(Base64Decode(texts[size]), bytes);
  }
}

TEST(Base64Encode, TakesBytes) {
  const unsigned char bytes[] = {0x00, 0xFB, 0xFF};
  EXPECT_EQ(Base64Encode(bytes, 3), "APv/");
  EXPECT_EQ(Base64Encode("\0\xFB\xFF"s), "APv/");
  EXPECT_EQ(Base64Encode(nullptr, 0), "");
}

TEST(Base64Encode, RefusesALengthThatNoStringHas) {
  EXPECT_THROW(Base64Encode(nullptr, std::size_t{0} - 1), std::length_error);
  const std::size_t longest = std::string().max_size() / 4 * 3;
  EXPECT_THROW(Base64Encode(nullptr, longest + 1), std::length_error);
}

TEST(Base64Decode, TakesThePadForTheDigit64) {
  EXPECT_EQ(Base64Decode("TR=="), "M");
  EXPECT_EQ(Base64Decode("QQ==QQ=="), "AA");
  EXPECT_EQ(Base64Decode("A==="), "\x04");
  EXPECT_EQ(Base64Decode("AA=A"), "\0\0"s);
}

TEST(Base64Decode, RefusesOtherLengthsAndBytes) {
  for (const char* text : {"QQ=", "QUFBQ", "QQ==\n", "QQ\nQ", "QQ Q", "QQ-Q", "QUFBQQ_Q"}) {
    EXPECT_EQ(Base64Decode(text), "") << text;
  }
}

TEST(HexASCIIToString, ReadsEachPairAsStrtolDoes) {
  EXPECT_EQ(HexASCIIToString("48656c6C6F"), "Hello");
  EXPECT_EQ(HexASCIIToString("00"), "\0"s);
  EXPECT_EQ(HexASCIIToString(" a\ta"), "\x0A\x0A");
  EXPECT_EQ(HexASCIIToString("+a-1"), "\x0A\xFF");
  EXPECT_EQ(HexASCIIToString("a\0"s), "\x0A");
}

TEST(HexASCIIToString, RefusesOtherTexts) {
  for (const char* text : {"", "414", "41zz", "zz4141", "a ", "0x"}) {
    EXPECT_EQ(HexASCIIToString(text), "") << text;
  }
}

std::string Digest(const std::string& data) {
  std::string buffer(34, '#');
  SHA256Digest(data, reinterpret_cast<unsigned char*>(&buffer[1]));
  EXPECT_EQ(buffer.front(), '#');
  EXPECT_EQ(buffer.back(), '#');
  return buffer.substr(1, 32);
}

TEST(SHA256Digest, HasTheDigestsOfFips180) {
  EXPECT_EQ(Digest("abc"), HexASCIIToString("ba7816bf8f01cfea414140de5dae2223"
                                            "b00361a396177a9cb410ff61f20015ad"));
  EXPECT_EQ(Digest(""), HexASCIIToString("e3b0c44298fc1c149afbf4c8996fb924"
                                         "27ae41e4649b934ca495991b7852b855"));
}

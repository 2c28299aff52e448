// Base64, hexadecimal text and SHA-256. fuzz/ compares the decoders with reference implementations.

#include <climits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "gxclient_util.h"

using namespace GXUtils;
using namespace std::string_literals;

TEST(Base64, HasTheVectorsOfRfc4648) {
  const std::string texts[] = {"", "Zg==", "Zm8=", "Zm9v", "Zm9vYg==", "Zm9vYmE=", "Zm9vYmFy"};
  for (std::size_t size = 0; size <= 6; ++size) {
    const std::string bytes = "foobar"s.substr(0, size);
    EXPECT_EQ(Base64Encode(bytes), texts[size]);
    EXPECT_EQ(Base64Decode(texts[size]), bytes);
  }
}

TEST(Base64Encode, TakesAnArrayOfBytes) {
  const unsigned char bytes[] = {0x00, 0xFB, 0xFF};
  EXPECT_EQ(Base64Encode(bytes, 3), "APv/");
  EXPECT_EQ(Base64Encode(bytes, 1), "AA==");
  EXPECT_EQ(Base64Encode(nullptr, 0), "");
  EXPECT_THROW(Base64Encode(nullptr, ULONG_MAX), std::length_error);
}

TEST(Base64Decode, TakesThePadForTheDigit64) {
  EXPECT_EQ(Base64Decode("TR=="), "M");
  EXPECT_EQ(Base64Decode("QQ==QQ=="), "AA");
  EXPECT_EQ(Base64Decode("A==="), "\x04");
  EXPECT_EQ(Base64Decode("AA=A"), "\0\0"s);
  // Not groups of four.
  EXPECT_EQ(Base64Decode("QQ="), "");
  EXPECT_EQ(Base64Decode("QQ\nQ"), "");
}

TEST(HexASCIIToString, ReadsEachPairAsStrtolDoes) {
  EXPECT_EQ(HexASCIIToString("48656c6C6F"), "Hello");
  EXPECT_EQ(HexASCIIToString("00"), "\0"s);
  EXPECT_EQ(HexASCIIToString(" a+a-1"), "\x0A\x0A\xFF");
  EXPECT_EQ(HexASCIIToString("41zz"), "");
  // Not pairs.
  EXPECT_EQ(HexASCIIToString("123"), "");
}

TEST(SHA256Digest, WritesThirtyTwoBytes) {
  std::string digest(33, '#');
  SHA256Digest("abc", reinterpret_cast<unsigned char*>(digest.data()));
  EXPECT_EQ(digest, HexASCIIToString("ba7816bf8f01cfea414140de5dae2223"
                                     "b00361a396177a9cb410ff61f20015ad") +
                        "#");
}

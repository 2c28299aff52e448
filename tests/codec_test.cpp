// The vectors of the standards; fuzz/codec_fuzz.cpp has the rest.

#include <gtest/gtest.h>

#include "gxclient_util.h"

TEST(Base64, HasTheVectorsOfRfc4648) {
  const char* const texts[] = {"", "Zg==", "Zm8=", "Zm9v", "Zm9vYg==", "Zm9vYmE=", "Zm9vYmFy"};
  std::string bytes;
  for (const char* text : texts) {
    EXPECT_EQ(GXUtils::Base64Encode(bytes), text);
    EXPECT_EQ(GXUtils::Base64Decode(text), bytes);
    bytes += "foobar"[bytes.size()];
  }
}

TEST(SHA256Digest, WritesThirtyTwoBytes) {
  const char* const digest = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
  std::string buffer(34, '#');
  GXUtils::SHA256Digest("abc", reinterpret_cast<unsigned char*>(&buffer[1]));
  EXPECT_EQ(buffer, "#" + GXUtils::HexASCIIToString(digest) + "#");
}

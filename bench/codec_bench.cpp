#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <absl/strings/escaping.h>
#include <glib.h>
#include <modp_b16.h>
#include <modp_b64.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/sha.h>

#include "bench.h"
#include "gxclient_util.h"

namespace {

using Codec = std::string (*)(const std::string&);

struct Peer {
  const char* name;
  Codec run;
};

const unsigned char* Bytes(const std::string& text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

// The result of a library that writes into its caller's buffer, as a string: `write` gets the
// buffer, which is large enough, and returns how much it wrote.
template <class Write>
std::string Written(std::size_t room, Write write) {
  std::string result(room, '\0');
  result.resize(static_cast<std::size_t>(write(result.data())));
  return result;
}

// The result of a library that allocates it, as a string.
template <class Free>
std::string Taken(void* buffer, std::size_t size, Free release) {
  std::string result(static_cast<const char*>(buffer), size);
  release(buffer);
  return result;
}

const std::vector<Peer> kEncoders = {
    {"Abseil", [](const std::string& data) { return absl::Base64Escape(data); }},
    {"libmodpbase64", [](const std::string& data) { return modp::b64_encode(data); }},
    {"GLib",
     [](const std::string& data) {
       char* text = g_base64_encode(Bytes(data), data.size());
       return Taken(text, (data.size() + 2) / 3 * 4, g_free);
     }},
    {"OpenSSL",
     [](const std::string& data) {
       return Written((data.size() + 2) / 3 * 4 + 1, [&](char* out) {
         return EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out), Bytes(data),
                                static_cast<int>(data.size()));
       });
     }},
};

const std::vector<Peer> kDecoders = {
    {"Abseil",
     [](const std::string& text) {
       std::string data;
       absl::Base64Unescape(text, &data);
       return data;
     }},
    {"libmodpbase64", [](const std::string& text) { return modp::b64_decode(text); }},
    {"GLib",
     [](const std::string& text) {
       std::size_t size = 0;
       unsigned char* data = g_base64_decode(text.c_str(), &size);
       return Taken(data, size, g_free);
     }},
    {"OpenSSL",
     [](const std::string& text) {
       return Written(text.size() / 4 * 3, [&](char* out) {
         return EVP_DecodeBlock(reinterpret_cast<unsigned char*>(out), Bytes(text),
                                static_cast<int>(text.size()));
       });
     }},
};

const std::vector<Peer> kHexDecoders = {
    {"Abseil", [](const std::string& hex) { return absl::HexStringToBytes(hex); }},
    {"libmodpbase64", [](const std::string& hex) { return modp::b16_decode(hex); }},
    {"OpenSSL",
     [](const std::string& hex) {
       long size = 0;
       unsigned char* data = OPENSSL_hexstr2buf(hex.c_str(), &size);
       return Taken(data, static_cast<std::size_t>(size),
                    [](void* buffer) { OPENSSL_free(buffer); });
     }},
};

std::string WithModule(const std::string& data) {
  std::string digest(SHA256_DIGEST_LENGTH, '\0');
  GXUtils::SHA256Digest(data, reinterpret_cast<unsigned char*>(digest.data()));
  return digest;
}

const std::vector<Peer> kDigests = {
    {"OpenSSL",
     [](const std::string& data) {
       std::string digest(SHA256_DIGEST_LENGTH, '\0');
       EVP_Digest(data.data(), data.size(), reinterpret_cast<unsigned char*>(digest.data()),
                  nullptr, EVP_sha256(), nullptr);
       return digest;
     }},
};

std::string RandomBytes(std::size_t size) {
  std::mt19937 random(1);
  std::string data;
  while (data.size() < size) data += static_cast<char>(random());
  return data;
}

std::string Base64Text(std::size_t size) {
  return GXUtils::Base64Encode(RandomBytes(size / 4 * 3));
}

std::string HexText(std::size_t size) {
  std::string text = RandomBytes(size);
  for (char& c : text) c = "0123456789abcdef"[c & 15];
  return text;
}

// Rows over inputs of several sizes. A copy of an argument of 16 bytes or more is an allocation, which
// weighs on the short inputs: peers take a pointer or a reference. All come to the same result.
void AddCodecRow(const std::string& name, Codec subject, std::string (*makeInput)(std::size_t),
                 const std::vector<Peer>& peers) {
  for (const auto& [size, bytes] :
       {std::pair("4 KiB", 4096), {"24 bytes", 24}, {"1 MiB", 1 << 20}}) {
    const auto input =
        std::make_shared<const std::string>(makeInput(static_cast<std::size_t>(bytes)));
    const bench::Row row(name + ", " + size, [=] { bench::Use(subject(*input)); });
    for (const Peer& peer : peers) {
      if (peer.run(*input) != subject(*input)) std::abort();
      row.Against(peer.name, [input, run = peer.run] { bench::Use(run(*input)); });
    }
  }
}

}  // namespace

void bench::AddCodecRows() {
  AddCodecRow(
      "Base64Encode", [](const std::string& data) { return GXUtils::Base64Encode(data); },
      RandomBytes, kEncoders);
  AddCodecRow(
      "Base64Encode of an array",
      [](const std::string& data) { return GXUtils::Base64Encode(Bytes(data), data.size()); },
      RandomBytes, kEncoders);
  AddCodecRow(
      "Base64Decode", [](const std::string& text) { return GXUtils::Base64Decode(text); },
      Base64Text, kDecoders);
  AddCodecRow(
      "HexASCIIToString", [](const std::string& hex) { return GXUtils::HexASCIIToString(hex); },
      HexText, kHexDecoders);
  AddCodecRow("SHA256Digest", WithModule, RandomBytes, kDigests);
}

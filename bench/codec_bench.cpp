#include <array>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <nettle/base16.h>
#include <nettle/base64.h>
#include <nettle/sha2.h>
#include <nettle/version.h>

#include "bench.h"
#include "gxclient_util.h"
#ifdef BENCH_HAS_ABSL
#include <absl/strings/escaping.h>
#endif
#ifdef BENCH_HAS_GLIB
#include <glib.h>
#endif
#ifdef BENCH_HAS_MODP
#include <modp_b16.h>
#include <modp_b64.h>
#endif
#ifdef BENCH_HAS_OPENSSL
#include <openssl/crypto.h>
#include <openssl/evp.h>
#endif

namespace {

using Codec = std::string (*)(const std::string&);

// The sizes of the inputs. From 16 bytes on a copy of the argument is an allocation, which weighs
// on the shortest ones: peers take a pointer or a reference.
constexpr std::size_t kSizes[] = {24, 4096, 1U << 20, 16U << 20};

struct Peer {
  const char* name;
  std::array<double, 4> targets;  // for each of kSizes
  Codec run;
};

constexpr double kNone = std::numeric_limits<double>::infinity();
constexpr std::array<double, 4> kFaster = {1, 1, 1, 1};

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
    {"nettle", kFaster,
     [](const std::string& data) {
       return Written(BASE64_ENCODE_RAW_LENGTH(data.size()), [&](char* out) {
         nettle_base64_encode_raw(out, data.size(), Bytes(data));
         return BASE64_ENCODE_RAW_LENGTH(data.size());
       });
     }},
#ifdef BENCH_HAS_ABSL
    {"Abseil",
     {kNone, 0.55, 1, 0.80},
     [](const std::string& data) { return absl::Base64Escape(data); }},
#endif
#ifdef BENCH_HAS_MODP
    {"libmodpbase64",
     {kNone, 0.70, 1, 1},
     [](const std::string& data) { return modp::b64_encode(data); }},
#endif
#ifdef BENCH_HAS_GLIB
    {"GLib", kFaster,
     [](const std::string& data) {
       char* text = g_base64_encode(Bytes(data), data.size());
       return Taken(text, (data.size() + 2) / 3 * 4, g_free);
     }},
#endif
#ifdef BENCH_HAS_OPENSSL
    {"OpenSSL", kFaster,
     [](const std::string& data) {
       return Written((data.size() + 2) / 3 * 4 + 1, [&](char* out) {
         return EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out), Bytes(data),
                                static_cast<int>(data.size()));
       });
     }},
#endif
};

const std::vector<Peer> kDecoders = {
    {"nettle", kFaster,
     [](const std::string& text) {
       return Written(BASE64_DECODE_LENGTH(text.size()), [&](char* out) {
         base64_decode_ctx context;
         nettle_base64_decode_init(&context);
         std::size_t size = 0;
         nettle_base64_decode_update(&context, &size, reinterpret_cast<unsigned char*>(out),
                                     text.size(), text.data());
         return size;
       });
     }},
#ifdef BENCH_HAS_ABSL
    {"Abseil",
     {kNone, 1, 1, 1},
     [](const std::string& text) {
       std::string data;
       absl::Base64Unescape(text, &data);
       return data;
     }},
#endif
#ifdef BENCH_HAS_MODP
    {"libmodpbase64",
     {kNone, 0.90, kNone, kNone},
     [](const std::string& text) { return modp::b64_decode(text); }},
#endif
#ifdef BENCH_HAS_GLIB
    {"GLib", kFaster,
     [](const std::string& text) {
       std::size_t size = 0;
       unsigned char* data = g_base64_decode(text.c_str(), &size);
       return Taken(data, size, g_free);
     }},
#endif
#ifdef BENCH_HAS_OPENSSL
    {"OpenSSL", kFaster,
     [](const std::string& text) {
       return Written(text.size() / 4 * 3, [&](char* out) {
         return EVP_DecodeBlock(reinterpret_cast<unsigned char*>(out), Bytes(text),
                                static_cast<int>(text.size()));
       });
     }},
#endif
};

const std::vector<Peer> kHexDecoders = {
    {"nettle", kFaster,
     [](const std::string& hex) {
       return Written(BASE16_DECODE_LENGTH(hex.size()), [&](char* out) {
         base16_decode_ctx context;
         nettle_base16_decode_init(&context);
         std::size_t size = 0;
         nettle_base16_decode_update(&context, &size, reinterpret_cast<unsigned char*>(out),
                                     hex.size(), hex.data());
         return size;
       });
     }},
#ifdef BENCH_HAS_ABSL
    {"Abseil",
     {kNone, 1, 1, 1},
     [](const std::string& hex) { return absl::HexStringToBytes(hex); }},
#endif
#ifdef BENCH_HAS_MODP
    {"libmodpbase64",
     {kNone, 0.90, kNone, kNone},
     [](const std::string& hex) { return modp::b16_decode(hex); }},
#endif
#ifdef BENCH_HAS_OPENSSL
    {"OpenSSL", kFaster,
     [](const std::string& hex) {
       long size = 0;
       unsigned char* data = OPENSSL_hexstr2buf(hex.c_str(), &size);
       return Taken(data, static_cast<std::size_t>(size),
                    [](void* buffer) { OPENSSL_free(buffer); });
     }},
#endif
};

std::string WithModule(const std::string& data) {
  std::string digest(SHA256_DIGEST_SIZE, '\0');
  GXUtils::SHA256Digest(data, reinterpret_cast<unsigned char*>(digest.data()));
  return digest;
}

const std::vector<Peer> kDigests = {
    {"nettle",
     {1.03, 1.03, 1.03, 1.03},
     [](const std::string& data) {
       std::string digest(SHA256_DIGEST_SIZE, '\0');
       sha256_ctx context;
       nettle_sha256_init(&context);
       nettle_sha256_update(&context, data.size(), Bytes(data));
#if NETTLE_VERSION_MAJOR >= 4
       nettle_sha256_digest(&context, reinterpret_cast<unsigned char*>(digest.data()));
#else
       nettle_sha256_digest(&context, digest.size(),
                            reinterpret_cast<unsigned char*>(digest.data()));
#endif
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

// Rows over inputs of several sizes. A peer must come to the same result.
void AddRows(const std::string& name, Codec subject, std::string (*makeInput)(std::size_t),
             const std::vector<Peer>& peers) {
  for (std::size_t i = 0; i < std::size(kSizes); ++i) {
    const auto input = std::make_shared<const std::string>(makeInput(kSizes[i]));
    const bench::Row row(name + ", " + std::to_string(kSizes[i]) + " bytes",
                         [=] { benchmark::DoNotOptimize(subject(*input)); });
    for (const Peer& peer : peers) {
      if (peer.run(*input) != subject(*input)) std::abort();
      row.Against(peer.name, peer.targets[i],
                  [=, run = peer.run] { benchmark::DoNotOptimize(run(*input)); });
    }
  }
}

}  // namespace

void bench::AddCodecRows() {
  AddRows(
      "Base64Encode", [](const std::string& data) { return GXUtils::Base64Encode(data); },
      RandomBytes, kEncoders);
  AddRows(
      "Base64Encode, array",
      [](const std::string& data) { return GXUtils::Base64Encode(Bytes(data), data.size()); },
      RandomBytes, kEncoders);
  AddRows(
      "Base64Decode", [](const std::string& text) { return GXUtils::Base64Decode(text); },
      Base64Text, kDecoders);
  AddRows(
      "HexASCIIToString", [](const std::string& hex) { return GXUtils::HexASCIIToString(hex); },
      HexText, kHexDecoders);
  AddRows("SHA256Digest", WithModule, RandomBytes, kDigests);
}

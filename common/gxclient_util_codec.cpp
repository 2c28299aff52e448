#include "gxclient_util.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

#include <nettle/sha2.h>
#include <nettle/version.h>

namespace GXUtils {
namespace {

using Byte = unsigned char;

// Encoding and decoding share it: a character's value is its position.
constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
constexpr Byte kPad = 64;
constexpr Byte kNoValue = 255;

// Two characters for every twelve bits.
struct DigitPair {
  char digits[2];
};
using PairTable = std::array<DigitPair, 4096>;

constexpr PairTable MakePairTable() {
  PairTable table{};
  for (std::size_t bits = 0; bits < table.size(); ++bits) {
    table[bits] = {{kAlphabet[bits >> 6], kAlphabet[bits & 63]}};
  }
  return table;
}
constexpr PairTable kPairs = MakePairTable();

constexpr std::array<Byte, 256> MakeValueTable() {
  std::array<Byte, 256> table{};
  for (Byte& value : table) value = kNoValue;
  for (Byte i = 0; i <= kPad; ++i) table[static_cast<Byte>(kAlphabet[i])] = i;
  return table;
}
constexpr std::array<Byte, 256> kValues = MakeValueTable();
static_assert(kValues['='] == kPad, "\"=\" counts with its position in the arithmetic");

// The six bits of each of the four characters of a group, shifted to their place in the upper 24
// bits of a word, so that "or" joins them. kSpecial is one of the lower eight bits, for "=" and for
// characters outside the alphabet.
using GroupTable = std::array<std::array<std::uint32_t, 256>, 4>;
constexpr std::uint32_t kSpecial = 1;

constexpr GroupTable MakeGroupTable() {
  GroupTable table{};
  for (unsigned place = 0; place < 4; ++place) {
    for (std::size_t c = 0; c < 256; ++c) {
      const std::uint32_t value = kValues[c];
      table[place][c] = value < kPad ? value << (26 - 6 * place) : kSpecial;
    }
  }
  return table;
}
constexpr GroupTable kGroups = MakeGroupTable();

// The values of hexadecimal digits as the upper and the lower half of a byte.
struct HexTable {
  std::array<std::uint32_t, 256> upper;
  std::array<std::uint32_t, 256> lower;
};
constexpr std::uint32_t kNotHex = 256;

constexpr HexTable MakeHexTable() {
  HexTable table{};
  for (std::uint32_t& value : table.upper) value = kNotHex;
  for (std::uint32_t& value : table.lower) value = kNotHex;
  constexpr char digits[] = "0123456789abcdefABCDEF";
  for (unsigned i = 0; i < 22; ++i) {
    const unsigned value = i < 16 ? i : i - 6;
    table.upper[static_cast<Byte>(digits[i])] = value << 4;
    table.lower[static_cast<Byte>(digits[i])] = value;
  }
  return table;
}
constexpr HexTable kHex = MakeHexTable();

const Byte* Bytes(const std::string& text) { return reinterpret_cast<const Byte*>(text.data()); }

void StoreBigEndian(char* out, std::uint32_t value) {
  out[0] = static_cast<char>(value >> 24);
  out[1] = static_cast<char>(value >> 16);
  out[2] = static_cast<char>(value >> 8);
  out[3] = static_cast<char>(value);
}

// Not memcpy: with _FORTIFY_SOURCE GCC makes a slower loop of it, by a third.
void PutPair(char* out, unsigned bits) { std::copy_n(kPairs[bits].digits, sizeof(DigitPair), out); }

void EncodeGroup(const Byte* in, char* out) {
  const unsigned first = in[0];
  const unsigned second = in[1];
  PutPair(out, first << 4 | second >> 4);
  PutPair(out + 2, (second & 15) << 8 | in[2]);
}

// Encodes the one or two bytes of the last group.
void EncodePadded(const Byte* in, std::size_t count, char* out) {
  const unsigned first = in[0];
  const unsigned second = count > 1 ? in[1] : 0;
  PutPair(out, first << 4 | second >> 4);
  out[2] = kAlphabet[count > 1 ? (second & 15) << 2 : kPad];
  out[3] = kAlphabet[kPad];
}

std::string Encode(const Byte* in, std::size_t size) {
  if (size > std::string().max_size() / 4 * 3) throw std::length_error("the data is too long");
  std::string text((size + 2) / 3 * 4, '\0');
  char* out = text.data();
  // Two groups at a time: with one, some builds take half as long again and fall behind a library.
  for (; size >= 6; size -= 6, in += 6, out += 8) {
    EncodeGroup(in, out);
    EncodeGroup(in + 3, out + 4);
  }
  for (; size >= 3; size -= 3, in += 3, out += 4) EncodeGroup(in, out);
  if (size > 0) EncodePadded(in, size, out);
  return text;
}

std::uint32_t JoinGroup(const Byte* in) {
  return kGroups[0][in[0]] | kGroups[1][in[1]] | kGroups[2][in[2]] | kGroups[3][in[3]];
}

// Decodes a group that may hold "=". Stored data relies on "=" as the digit 64 in every place.
// Returns the end of the output, or null for a character outside the alphabet.
char* DecodeSpecial(const Byte* in, char* out) {
  const unsigned d[] = {kValues[in[0]], kValues[in[1]], kValues[in[2]], kValues[in[3]]};
  if (std::find(d, d + 4, kNoValue) != d + 4) return nullptr;
  *out++ = static_cast<char>(d[0] * 4 + d[1] / 16);
  if (d[2] != kPad) *out++ = static_cast<char>(d[1] * 16 + d[2] / 4);
  if (d[3] != kPad) *out++ = static_cast<char>(d[2] * 64 + d[3]);
  return out;
}

std::uint32_t JoinHexPair(const Byte* in) { return kHex.upper[in[0]] | kHex.lower[in[1]]; }

// Reads any pair the way of strtol, with its signs, white space and NUL bytes.
bool ReadHexPair(const Byte* in, char* out) {
  const char text[] = {static_cast<char>(in[0]), static_cast<char>(in[1]), '\0'};
  char* end = nullptr;
  *out = static_cast<char>(std::strtol(text, &end, 16));
  return *end == '\0';
}

}  // namespace

std::string Base64Encode(std::string data) { return Encode(Bytes(data), data.size()); }

std::string Base64Encode(const unsigned char* data, unsigned long len) { return Encode(data, len); }

std::string Base64Decode(std::string text) {
  if (text.size() % 4 != 0) return {};
  const Byte* in = Bytes(text);
  const Byte* const end = in + text.size();
  char* out = text.data();  // never ahead of `in`: a group is read before its place is written
  for (; in != end; in += 4) {
    const std::uint32_t bits = JoinGroup(in);
    if (bits & kSpecial) {
      out = DecodeSpecial(in, out);
      if (out == nullptr) return {};
      continue;
    }
    StoreBigEndian(out, bits);  // one byte too many, which the next group overwrites
    out += 3;
  }
  text.resize(static_cast<std::size_t>(out - text.data()));
  return text;
}

std::string HexASCIIToString(std::string hex) {
  if (hex.size() % 2 != 0) return {};
  const Byte* in = Bytes(hex);
  const Byte* const end = in + hex.size();
  char* out = hex.data();  // never ahead of `in`
  while (in != end) {
    for (; end - in >= 4; in += 4, out += 2) {  // two pairs at a time, while they are plain
      const std::uint32_t first = JoinHexPair(in);
      const std::uint32_t second = JoinHexPair(in + 2);
      if ((first | second) >= kNotHex) break;
      out[0] = static_cast<char>(first);
      out[1] = static_cast<char>(second);
    }
    if (in == end) break;
    if (!ReadHexPair(in, out)) return {};
    in += 2;
    ++out;
  }
  hex.resize(hex.size() / 2);
  return hex;
}

void SHA256Digest(const std::string& data, unsigned char* digest) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, data.size(), Bytes(data));
#if NETTLE_VERSION_MAJOR >= 4
  sha256_digest(&context, digest);
#else
  sha256_digest(&context, SHA256_DIGEST_SIZE, digest);
#endif
}

}  // namespace GXUtils

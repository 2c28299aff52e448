// Input: a byte for the source encoding, the target encoding and the locale, then a text.

#include <cerrno>
#include <clocale>
#include <cstring>
#include <cwctype>

#include <iconv.h>

#include "fuzz.h"

using namespace std::string_literals;

namespace {

// One byte of TSCII may become eight; ISO-2022-KR has a header, which an iconv() without any input
// would write.
const char* const kNames[] = {"UTF-8", "ISO-8859-1", "UCS-2",   "UTF-16",     "",
                              "TSCII", "ucs-2",      "unknown", "ISO-2022-KR"};
constexpr unsigned kCount = 9;
const iconv_t kNone = reinterpret_cast<iconv_t>(-1);

// The name that iconv() gets.
std::string Plain(const std::string& name) {
  return name == "UCS-2" || name == "UTF-16" ? name + "LE" : name;
}

// Compares with a plain call of iconv(); returns the output buffer.
std::string CheckTranscode(const char* from, const char* to, std::string in, std::size_t room) {
  const std::vector<char> exact(in.begin(), in.end());  // nothing behind it
  std::string buffer(room + 8, 'j');
  logged.clear();
  char* out = room == 0 ? nullptr : buffer.data();
  const std::string name = from;  // which may stand in the buffer
  if (name.size() < room) from = static_cast<char*>(std::memcpy(out, from, name.size() + 1));
  GXUtils::Transcode(from, to, exact.data(), exact.size(), out, room);
  from = name.c_str();

  std::string expected = std::string(room, '\0') + "jjjjjjjj";
  std::string lines = "2 iconv: Unable to convert from " + Plain(from) + " to " + Plain(to) + "\n";
  iconv_t descriptor = iconv_open((Plain(to) + "//IGNORE").c_str(), Plain(from).c_str());
  if (descriptor == kNone) descriptor = iconv_open(Plain(to).c_str(), Plain(from).c_str());
  if (descriptor != kNone) {
    std::size_t inlen = in.size();
    std::size_t outlen = room;
    char* next = in.data();
    char* end = expected.data();
    const std::size_t result = iconv(descriptor, &next, &inlen, &end, &outlen);
    const bool failed = result == std::size_t(-1);
    lines = (failed ? errno == E2BIG : inlen != 0) ? "2 iconv: Insufficient space\n" : "";
    if (failed && lines.empty()) lines = "2 iconv: Bad input data\n";
    if (!failed && result != 0) lines += "2 iconv: Non-reversible conversion performed\n";
    (void)iconv_close(descriptor);
  }
  assert(buffer == expected && logged == lines);
  return buffer.erase(room);
}

// With the buffers of twice the conversion, up to the first zero unit and byte.
std::string Lowered(const std::string& text) {
  std::string wide(2 * text.size() + 4, '\0');
  GXUtils::Transcode("UTF-8", "UCS-2", text.data(), text.size(), wide.data(), wide.size());
  std::size_t size = 0;
  for (; wide[size] != '\0' || wide[size + 1] != '\0'; size += 2) {
    const auto low = static_cast<unsigned char>(wide[size]);
    const auto high = static_cast<unsigned char>(wide[size + 1]);
    const std::wint_t lower = std::towlower(low + 256U * high);
    wide[size] = static_cast<char>(lower % 256);
    wide[size + 1] = static_cast<char>(lower / 256);
  }
  std::string narrow(text.size() + 3, '\0');
  GXUtils::Transcode("UCS-2", "UTF-8", wide.data(), size, narrow.data(), text.size() + 2);
  return narrow.substr(0, narrow.find('\0'));
}

}  // namespace

// A letter with a longer small one, one outside the plane that UCS-2 has, one that is cut, one that
// is longest in TSCII; lengths around the size that needs no allocation; to ISO-8859-1, a text of
// which glibc converts a part only.
std::vector<World> Worlds() {
  std::vector<World> worlds = {{"\1", 260, {"A"}}, {"\x13", 2, {"Ω", std::string(20000, 'A')}}};
  for (unsigned head = 0; head < 2 * kCount * kCount; ++head) {
    worlds.push_back(
        {std::string(1, static_cast<char>(head)), 3, {"A", "Ä", "Ⱥ", "😀", "\xC3", "\x82", "\0"s}});
  }
  return worlds;
}

void Check(std::string input) {
  const unsigned head = static_cast<unsigned char>(input[0]);
  const char* from = kNames[head / 2 % kCount];
  const char* to = kNames[head / 2 / kCount % kCount];
  const std::string text = input.erase(0, 1);
  (void)std::setlocale(LC_CTYPE, head % 2 == 0 ? "C" : "C.UTF-8");
  std::string whole;
  for (const std::size_t room : {std::size_t{0}, text.size() / 2, 4 * text.size() + 8}) {
    whole = CheckTranscode(from, to, text, room);
  }
  assert(GXUtils::Transcode(from, to, text) == Split(whole, '\0')[0]);
  if (from == to) assert(GXUtils::ToLower(text) == Lowered(text));
}

// Input: a digit for each of source encoding, target encoding and locale, a byte for the size of
// the output buffer, then a text.

#include <cerrno>
#include <clocale>
#include <cwctype>

#include <iconv.h>

#include "fuzz.h"

namespace {

// Encodings as the module names them and as iconv() does.
const char* const kNames[8][2] = {
    {"UTF-8", "UTF-8"}, {"ISO-8859-1", "ISO-8859-1"}, {"UCS-2", "UCS-2LE"}, {"UTF-16", "UTF-16LE"},
    {"", ""},           {"US-ASCII", "US-ASCII"},     {"ucs-2", "ucs-2"},   {"unknown", "unknown"}};

// Compares with a plain call of iconv(); returns the whole output buffer.
std::string CheckTranscode(const char* const* from, const char* const* to, std::string in,
                           std::size_t room) {
  const std::vector<char> exact(in.begin(), in.end());  // nothing behind it
  std::string buffer(room + 8, 'j');
  logged.clear();
  char* out = room == 0 ? nullptr : buffer.data();
  GXUtils::Transcode(from[0], to[0], exact.data(), exact.size(), out, room);

  std::string expected = std::string(room, '\0') + "jjjjjjjj";
  std::string line = std::string("2 iconv: Unable to convert from ") + from[1] + " to " + to[1];
  const iconv_t descriptor = iconv_open((to[1] + std::string("//IGNORE")).c_str(), from[1]);
  if (descriptor != reinterpret_cast<iconv_t>(-1)) {
    std::size_t inlen = in.size();
    char* next = in.data();
    char* end = expected.data();
    const bool failed = iconv(descriptor, &next, &inlen, &end, &room) == std::size_t(-1);
    line = errno == E2BIG ? "2 iconv: Insufficient space" : "2 iconv: Bad input data";
    if (!failed) line.clear();
    (void)iconv_close(descriptor);
  }
  assert(buffer == expected && logged == line);
  return buffer;
}

// With the buffers of twice the conversion, up to the first zero unit and byte.
std::string Lowered(const std::string& text) {
  std::u16string wide(text.size() + 2, u'j');
  std::string narrow(text.size() + 2, 'j');
  GXUtils::Transcode("UTF-8", "UCS-2", text.data(), text.size(), wide.data(), wide.size() * 2);
  wide.resize(wide.find(u'\0'));
  for (char16_t& unit : wide) unit = static_cast<char16_t>(std::towlower(unit));
  GXUtils::Transcode("UCS-2", "UTF-8", wide.data(), wide.size() * 2, narrow.data(), narrow.size());
  return narrow.substr(0, narrow.find('\0'));
}

}  // namespace

void Check(std::string input) {
  const std::string head = (input + "0000").substr(0, 4);
  const std::string text = input.erase(0, 4);
  const auto& from = kNames[head[0] & 7];
  const auto& to = kNames[head[1] & 7];
  (void)std::setlocale(LC_CTYPE, head[2] == '0' ? "C" : "C.UTF-8");
  (void)CheckTranscode(from, to, text, static_cast<unsigned char>(head[3]));
  const std::string whole = CheckTranscode(from, to, text, 4 * text.size() + 8);
  const std::string result = GXUtils::Transcode(from[0], to[0], text);
  assert(result == Split(whole.substr(0, 4 * text.size() + 8), '\0')[0]);

  const std::string lower = GXUtils::ToLower(text);
  assert(lower == Lowered(text) && lower == GXUtils::ToLower(lower));
  assert(lower.find_first_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ") == std::string::npos);
}

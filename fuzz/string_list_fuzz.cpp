// Input: the separator, then a text to decode; its bars cut it into elements to encode.

#include "fuzz.h"

using namespace std::string_literals;

namespace {

using List = std::list<std::string>;

const std::string kBlanks = " \f\n\r\t\v";

// A byte at a time. Returns what is logged: nothing for a text that can be read.
std::string Decode(const std::string& text, char separator, List& elements) {
  if (Trimmed(text, kBlanks).empty()) return {};
  std::string element;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool escaped = text[i] == '\\';
    if (escaped && ++i == text.size()) return "4 DecodeStringList: Trailing slash\n";
    const bool meant = text[i] == separator;
    if (escaped && text[i] != '\\' && !meant) return "4 DecodeStringList: Bad escape sequence\n";
    if (escaped || !meant) element += text[i];
    if (!escaped && meant) elements.push_back(Trimmed(std::exchange(element, {}), kBlanks));
  }
  elements.push_back(Trimmed(element, kBlanks));
  return {};
}

List CheckDecode(const std::string& text, char separator) {
  List expected;
  List decoded = {"old"};
  const std::string line = Decode(text, separator, expected);
  logged.clear();
  assert(GXUtils::DecodeStringList(text, &decoded, separator) == line.empty());
  assert(decoded == expected && logged == line);
  return decoded;
}

}  // namespace

// Elements are looked through in blocks of 32 bytes, and for themselves from 64 on; counters hold
// 8160 specials in one go.
std::vector<World> Worlds() {
  std::vector<World> worlds = {{",", 2, EveryByte()}, {",", 4, {std::string(5000, ','), "|"}}};
  for (const std::string& separator : {","s, ";"s, " "s, "\\"s, "\0"s}) {
    worlds.push_back({separator, 6, {separator, "\\", "a", " ", "|"}});
    worlds.push_back({separator, 5, {separator, "\\", "|", std::string(33, 'a')}});
  }
  return worlds;
}

void Check(std::string input) {
  const char separator = input.c_str()[0];
  input.erase(0, 1);
  (void)CheckDecode(input, separator);
  if (separator == '\\') return;  // which the format cannot have

  // What was encoded comes back trimmed, except that a blank text is no element at all.
  const Strings fields = Split(input, '|');
  List elements(fields.begin(), fields.end());
  const std::string text = GXUtils::EncodeStringList(elements, separator);
  const std::size_t joiner = separator == ',' || separator == '\0' ? 2 : 1;
  std::size_t size = (elements.size() - 1) * joiner;
  for (std::string& element : elements) {
    for (const char byte : element) size += byte == separator || byte == '\\' ? 2 : 1;
    element = Trimmed(element, kBlanks);
  }
  assert(text.size() == size);
  if (Trimmed(text, kBlanks).empty()) elements.clear();
  assert(CheckDecode(text, separator) == elements);
}

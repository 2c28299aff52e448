// Input: the separator, then a text to decode; its bars separate elements to encode.

#include "fuzz.h"

using namespace std::string_literals;

namespace {

// A list after the round trip: its elements are trimmed, and a blank text is the empty list.
Strings ReadBack(const std::string& text, Strings elements) {
  const std::string whiteSpace = " \f\n\r\t\v";
  if (Trimmed(text, whiteSpace).empty()) return {};
  for (std::string& element : elements) element = Trimmed(element, whiteSpace);
  return elements;
}

void CheckRoundTrip(const Strings& elements, char separator) {
  const std::string text = GXUtils::EncodeStringList({elements.begin(), elements.end()}, separator);
  std::list<std::string> decoded = {"old"};
  Expect("DecodeStringList()", GXUtils::DecodeStringList(text, &decoded, separator), true);
  Expect("the decoded list", {decoded.begin(), decoded.end()}, ReadBack(text, elements));
}

}  // namespace

std::vector<World> Worlds() {
  std::vector<World> worlds = {{",", 2, EveryByte()}};
  for (const std::string& separator : {","s, ";"s, " "s, "\0"s}) {
    worlds.push_back({separator, 5, {separator, "\\", "a", " ", "|"}});
  }
  return worlds;
}

void Check(const std::string& input) {
  const char separator = input.c_str()[0];
  if (separator == '\\') return;  // which the format cannot have
  const std::string text = input.substr(std::min<std::size_t>(input.size(), 1));
  CheckRoundTrip(Split(text, '|'), separator);

  std::list<std::string> decoded;
  const bool whole = GXUtils::DecodeStringList(text, &decoded, separator);
  const Strings elements(decoded.begin(), decoded.end());
  if (whole) CheckRoundTrip(elements, separator);
  if (text.find('\\') != std::string::npos) return;
  Expect("a text without an escape", elements, ReadBack(text, Split(text, separator)));
}

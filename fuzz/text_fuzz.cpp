// Input: pattern|replacement|text. StringLines() gets the first field as what is pending and the
// others as chunks; the first two fields are compared.

#include <cctype>

#include "fuzz.h"

namespace {

std::string Replaced(std::string text, const char* pattern, const char* replacement) {
  const std::string from = pattern;
  const std::string to = replacement;
  if (from.empty()) return text;
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// Joined, replaced and cut, a chunk at a time.
void CheckLines(const Strings& fields) {
  std::string pending = fields[0];
  std::string buffer = fields[0];
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const char* chunk = i == 0 ? "" : fields[i].c_str();
    Strings lines = Split(Replaced(buffer + chunk, "\r\n", "\n"), '\n');
    buffer = lines.back();
    lines.pop_back();
    assert(GXUtils::StringLines(chunk, &pending) == lines && pending == buffer);
  }
  // A chunk that stands in the tail itself.
  Strings lines = Split(Replaced(buffer + &buffer[buffer.size() / 2], "\r\n", "\n"), '\n');
  assert(GXUtils::StringLines(&pending[pending.size() / 2], &pending).size() == lines.size() - 1);
  assert(pending == lines.back());
}

void CheckReplace(std::string text, const char* pattern, const char* replacement) {
  const std::string expected = Replaced(text, pattern, replacement);
  assert(GXUtils::ReplaceInString(text, pattern, replacement) == expected && text == expected);
}

template <class T>
int Order(const T& first, const T& second) {
  return (second < first) - (first < second);
}

// What the longer version has more counts, but for "0" at its end.
int OrderVersions(Strings first, Strings second) {
  while (first.size() > second.size() && first.back() == "0") first.pop_back();
  while (second.size() > first.size() && second.back() == "0") second.pop_back();
  return Order(first, second);
}

// The number of digits that count, and the digits.
std::pair<std::size_t, std::string> Number(std::string text) {
  if (text.rfind("0x", 0) == 0) text.erase(0, 2);
  text.erase(0, text.find_first_not_of('0'));
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return {text.size(), text};
}

void CheckOrder(const char* first, const char* second) {
  const int versions = OrderVersions(Split(first, '.'), Split(second, '.'));
  assert(Order(GXUtils::CompareVersions(first, second), 0) == versions);
  assert(GXUtils::CompareHexStrings(first, second) == Order(Number(first), Number(second)));
}

}  // namespace

// Patterns above 16 bytes are searched in another way.
std::vector<World> Worlds() {
  return {{"", 5, {"0x", "0X", "0", "1", ".", ".0", "a", "A", "\x11", "\xFF", "|"}},
          {"", 7, {"a", "\xFF", "|", "aaaaaaaaaaaaaaaa\xFF"}},
          {"", 7, {"\r", "\n", "a", "|"}},
          {"a", 1, EveryByte()}};
}

void Check(std::string input) {
  assert(GXUtils::SplitString(input, input[0]) == Split(input, input[0]));
  const std::size_t half = input.size() / 2;
  for (const std::string& set : {input.substr(half), input.substr(0, half)}) {
    assert(GXUtils::Strip(input, set) == Trimmed(input, set));
  }
  Strings fields = Split(input, '|');
  CheckLines(fields);
  fields.resize(std::max<std::size_t>(fields.size(), 3));
  CheckReplace(fields[2], fields[0].c_str(), fields[1].c_str());
  CheckOrder(fields[0].c_str(), fields[1].c_str());
  CheckOrder(fields[1].c_str(), fields[0].c_str());
}

// Input: separator|set|pattern|replacement|text. StringLines() gets what follows in further fields
// as the next chunks; the pattern is what is pending at first.

#include "fuzz.h"

namespace {

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  if (from.empty()) return text;
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

}  // namespace

void Check(std::string input) {
  Strings fields = Split(input, '|');
  fields.resize(std::max<std::size_t>(fields.size(), 5));
  std::string& text = fields[4];
  assert(GXUtils::SplitString(input, fields[0][0]) == Split(input, fields[0][0]));
  assert(GXUtils::Strip(text, fields[1]) == Trimmed(text, fields[1]));

  std::string pending = fields[2];
  std::string buffer = pending;  // joined, replaced and cut, a chunk at a time
  for (std::size_t i = 4; i < fields.size(); ++i) {
    const char* chunk = fields[i].c_str();
    Strings lines = Split(Replaced(buffer + chunk, "\r\n", "\n"), '\n');
    buffer = lines.back();
    lines.pop_back();
    assert(GXUtils::StringLines(chunk, &pending) == lines && pending == buffer);
  }

  const char* pattern = fields[2].c_str();
  const char* replacement = fields[3].c_str();
  const std::string expected = Replaced(text, pattern, replacement);
  std::string own = text;
  assert(GXUtils::ReplaceInString(text, pattern, replacement) == expected && text == expected);

  // Both taken from the text itself.
  const char* start = own.c_str();
  const char* middle = start + own.size() / 2;
  const std::string doubled = Replaced(own, middle, start);
  assert(GXUtils::ReplaceInString(own, middle, start) == doubled);
}

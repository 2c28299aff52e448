// Input: pattern|replacement|text. StringLines() gets the first field as what is pending and the
// others as chunks.

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
  std::string pending;
  std::string buffer;
  for (const std::string& field : fields) {
    if (&field == &fields[0]) pending = buffer = field;
    const char* chunk = &field == &fields[0] ? "" : field.c_str();
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

}  // namespace

// Patterns above 16 bytes are searched in another way.
std::vector<World> Worlds() {
  return {{"", 7, {"a", "\xFF", "|", "aaaaaaaaaaaaaaaa\xFF"}},
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

  // Both taken from the text itself.
  const std::string doubled = Replaced(input, &input[half], input.c_str());
  assert(GXUtils::ReplaceInString(input, &input[half], input.c_str()) == doubled);
}

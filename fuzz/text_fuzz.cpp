// Input: fields between bars. The first three are a pattern, a replacement and a text. The first
// two are also compared, and the whole input is a stream of lines.

#include "fuzz.h"

using namespace GXUtils;

namespace {

// Lines and tail are the same wherever the stream is cut, also if its start is put into the tail.
void CheckLines(const std::string& stream) {
  const Strings expected = Split(Replaced(stream, "\r\n", "\n"), '\n');
  for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
    const std::string start = stream.substr(0, cut);
    std::string tail;
    Strings lines = StringLines(start.c_str(), &tail);
    for (std::string& line : StringLines(&stream[cut], &tail)) lines.push_back(line);
    lines.push_back(tail);
    Expect("lines of a cut stream", lines, expected);

    tail = start;
    lines = StringLines(&stream[cut], &tail);
    lines.push_back(tail);
    Expect("lines with a filled tail", lines, expected);
  }
}

int Sign(int order) { return (order > 0) - (order < 0); }

// Swapped arguments swap the sign.
void CheckOrder(const char* first, const char* second) {
  const int versions = Sign(CompareVersions(first, second));
  Expect("CompareVersions(), swapped", Sign(CompareVersions(second, first)), -versions);
  const int numbers = CompareHexStrings(first, second);
  Expect("CompareHexStrings(), swapped", CompareHexStrings(second, first), -numbers);

  const std::string both = std::string(first) + second;
  if (both.size() > 16 || both.find_first_not_of("01aA") != std::string::npos) return;
  const auto number = [](const char* text) { return std::strtoull(text, nullptr, 16); };
  const bool lower = number(first) < number(second);
  Expect("CompareHexStrings()", numbers < 0, lower);
}

}  // namespace

std::vector<World> Worlds() {
  return {{"", 5, {"0x", "0X", "0", "1", ".", ".0", "a", "A", "\x11", "\xFF", "|"}},
          {"", 7, {"a", "\xFF", "|", "aaaaaaaaaaaaaaaa\xFF"}},
          {"", 7, {"\r", "\n", "a", "|"}},
          {"a", 1, EveryByte()}};
}

void Check(const std::string& input) {
  Expect("SplitString()", SplitString(input, input[0]), Split(input, input[0]));
  Strings fields = Split(input, '|');
  Expect("Strip()", Strip(input, fields[0]), Trimmed(input, fields[0]));
  if (input.find('\n') != std::string::npos) CheckLines(input.c_str());

  fields.resize(std::max<std::size_t>(fields.size(), 3));
  const char* first = fields[0].c_str();
  const char* second = fields[1].c_str();
  std::string text = fields[2];
  const std::string expected = Replaced(text, first, second);
  Expect("ReplaceInString()", ReplaceInString(text, first, second), expected);
  Expect("the replaced text", text, expected);
  CheckOrder(first, second);
}

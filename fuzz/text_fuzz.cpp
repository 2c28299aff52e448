// Input: a stream of lines, and two numbers with a bar between them.

#include <algorithm>

#include "fuzz.h"

using namespace GXUtils;

namespace {

std::string WithPlainLineEnds(const std::string& stream) {
  std::string plain;
  for (std::size_t i = 0; i < stream.size(); ++i) {
    if (stream.compare(i, 2, "\r\n") != 0) plain += stream[i];
  }
  return plain;
}

// Lines and tail joined with "\n" are the stream without the "\r" of its line ends, wherever the
// stream is cut.
void CheckLines(const std::string& stream) {
  const std::string expected = WithPlainLineEnds(stream);
  for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
    std::string tail, text;
    for (const std::string& chunk : {stream.substr(0, cut), stream.substr(cut)}) {
      for (const std::string& line : StringLines(chunk.c_str(), &tail)) text += line + "\n";
    }
    Expect("lines of a cut stream", text + tail, expected);
  }
}

int Sign(int order) { return (order > 0) - (order < 0); }

// Swapped arguments swap the sign.
void CheckOrder(const char* first, const char* second) {
  const int versions = Sign(CompareVersions(first, second));
  Expect("CompareVersions()", versions, -Sign(CompareVersions(second, first)));
  const int numbers = CompareHexStrings(first, second);
  Expect("CompareHexStrings(), swapped", numbers, -CompareHexStrings(second, first));

  const std::string both = std::string(first) + second;
  if (both.size() > 16 || both.find_first_not_of("01aA") != std::string::npos) return;
  const auto number = [](const char* text) { return std::strtoull(text, nullptr, 16); };
  Expect<int>("CompareHexStrings()", numbers < 0, number(first) < number(second));
}

}  // namespace

std::vector<TextSet> ShortTexts() {
  return {{5, {"0x", "0", "1", ".", "a", "A", "\xFF", "|"}}, {6, {"\r", "\n", "a"}}};
}

void Check(const std::string& input) {
  const std::string text = input.substr(0, input.find('\0'));
  CheckLines(text);
  const std::size_t bar = std::min(text.find('|'), text.size());
  CheckOrder(text.substr(0, bar).c_str(), &text[std::min(bar + 1, text.size())]);
}

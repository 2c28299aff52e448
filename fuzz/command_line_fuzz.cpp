// Input: a command line.

#include "fuzz.h"

using namespace GXUtils;

namespace {

// The grammar, a field at a time.
Strings Arguments(std::string line) {
  Strings arguments;
  while (!line.empty()) {
    const std::size_t space = line.find(' ');
    const std::size_t quote = line.find('"', 1);
    if (line[0] == ' ') {
      line.erase(0, 1);
    } else if (line[0] == '"' && quote != std::string::npos) {
      arguments.push_back(line.substr(1, quote - 1));
      line.erase(0, quote + 1);
    } else if (line[0] == '"') {  // unclosed: drops its field
      line.erase(0, space);
    } else {
      arguments.push_back(line.substr(0, space));
      line.erase(0, space);
    }
  }
  return arguments;
}

}  // namespace

std::vector<TextSet> ShortTexts() { return {{8, {"a", " ", "\"", "\t"}}, {2, EveryByte()}}; }

void Check(const std::string& input) {
  Expect("SplitCommandLine()", SplitCommandLine(input), Arguments(input));
}

// Splitting, joining, trimming and comparing text.

#include <cerrno>
#include <cstring>
#include <list>
#include <utility>

#include <unistd.h>

#include "gxclient_util.h"
#include "gxutil.h"

namespace gxutil {
namespace {

const std::optional<std::string>& SeparatorOption(CommandLine& line) {
  return line.Option("-s, --separator", "BYTE", "The separator, \\0 for NUL (default: comma)");
}

char SeparatorByte(const std::optional<std::string>& option) {
  const std::string text = option.value_or(",");
  if (text == "\\0") return '\0';
  if (text.size() != 1) throw UsageError("separator '" + text + "': not one byte");
  return text[0];
}

// The sign alone is the result of a comparison.
int PrintSign(int order) { return PrintLine(std::to_string((order > 0) - (order < 0))); }

int SplitString(CommandLine& line) {
  std::string& text = line.Input("TEXT", "The text itself");
  const auto& separator = SeparatorOption(line);
  const bool& nul = line.NullFlag();
  line.Parse();
  return PrintLines(GXUtils::SplitString(std::move(text), SeparatorByte(separator)), nul);
}

int Strip(CommandLine& line) {
  const std::string& text = line.Operand("TEXT", "The text");
  const std::string& set = line.Operand("SET", "The bytes to remove");
  line.Parse();
  return PrintBytes(GXUtils::Strip(text, set));
}

int ReplaceInString(CommandLine& line) {
  const std::string& operand = line.Operand("TEXT", "The text");
  const std::string& pattern = line.Operand("PATTERN", "The text to look for");
  const std::string& replacement = line.Operand("REPLACEMENT", "The text to put in its place");
  line.Parse();
  std::string text = operand;
  return PrintBytes(GXUtils::ReplaceInString(text, pattern.c_str(), replacement.c_str()));
}

int StringLines(CommandLine& line) {
  const bool& nul = line.NullFlag();
  line.Notes(
      "Reads the standard input piece by piece. A last line without a newline is\n"
      "printed as it is.");
  line.Parse();
  std::string tail;
  char chunk[65536];  // a long line takes as many searches as it has chunks
  while (!OutputFailed()) {
    const ssize_t count = read(STDIN_FILENO, chunk, sizeof chunk - 1);
    if (count < 0) return Fail("standard input", std::strerror(errno));
    if (count == 0) break;
    if (std::memchr(chunk, '\0', static_cast<std::size_t>(count)) != nullptr) {
      return Fail("standard input", "NUL byte, which a line cannot hold");
    }
    chunk[count] = '\0';
    (void)PrintLines(GXUtils::StringLines(chunk, &tail), nul);
  }
  return PrintBytes(tail);
}

int LongToString(CommandLine& line) {
  const std::string& number = line.Operand("NUMBER", "The number");
  line.Parse();
  return PrintLine(GXUtils::LongToString(ReadNumber(number)));
}

int EncodeStringList(CommandLine& line) {
  const auto& elements = line.Operands("[ELEMENT]...", "The elements of the list");
  const auto& separator = SeparatorOption(line);
  line.Parse();
  return PrintBytes(
      GXUtils::EncodeStringList({elements.begin(), elements.end()}, SeparatorByte(separator)));
}

int DecodeStringList(CommandLine& line) {
  const std::string& text = line.Input("TEXT", "The text itself");
  const auto& separator = SeparatorOption(line);
  const bool& nul = line.NullFlag();
  line.Parse();
  std::list<std::string> list;
  (void)GXUtils::DecodeStringList(text, &list, SeparatorByte(separator));
  return PrintLines({list.begin(), list.end()}, nul);
}

int CompareVersions(CommandLine& line) {
  const std::string& first = line.Operand("FIRST", "A dotted version");
  const std::string& second = line.Operand("SECOND", "Another one");
  line.Parse();
  return PrintSign(GXUtils::CompareVersions(first.c_str(), second.c_str()));
}

int CompareHexStrings(CommandLine& line) {
  const std::string& first = line.Operand("FIRST", "A hexadecimal number");
  const std::string& second = line.Operand("SECOND", "Another one");
  line.Parse();
  return PrintSign(GXUtils::CompareHexStrings(first.c_str(), second.c_str()));
}

}  // namespace

Group TextGroup() {
  return {"Text",
          {
              {"split-string", "SplitString", "Split a text at every separator",
               "gxutil split-string -s : /bin::/sbin", SplitString},
              {"strip", "Strip", "Remove bytes from both ends of a text",
               "gxutil strip '..a.b..' .", Strip},
              {"replace-in-string", "ReplaceInString", "Replace a pattern in a text",
               "gxutil replace-in-string aXbX X -", ReplaceInString},
              {"string-lines", "StringLines", "Assemble lines from the standard input",
               "printf 'one\\r\\ntwo' | gxutil string-lines", StringLines},
              {"long-to-string", "LongToString", "Write a number in decimal",
               "gxutil long-to-string -- -42", LongToString},
              {"encode-string-list", "EncodeStringList", "Store a list in one text",
               "gxutil encode-string-list 'a,b' c", EncodeStringList},
              {"decode-string-list", "DecodeStringList", "Read a stored list",
               "gxutil decode-string-list 'a\\,b, c'", DecodeStringList},
              {"compare-versions", "CompareVersions", "Print -1, 0 or 1 for two versions",
               "gxutil compare-versions 1.10 1.9", CompareVersions},
              {"compare-hex-strings", "CompareHexStrings",
               "Print -1, 0 or 1 for two hexadecimal numbers",
               "gxutil compare-hex-strings 0x00ff FE", CompareHexStrings},
          }};
}

}  // namespace gxutil

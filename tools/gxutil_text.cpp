// Splitting, joining, trimming and comparing text.

#include <charconv>
#include <cstdio>
#include <cstring>
#include <system_error>

#include <unistd.h>

#include "gxclient_util.h"
#include "gxutil.h"

namespace gxutil {
namespace {

// The sign alone is what a comparison means.
int PrintSign(int order) { return PrintLine(std::to_string((order > 0) - (order < 0))); }

int PrintInputLines(bool endWithNul) {
  std::string pending;
  char chunk[65536];  // a long line takes as many searches as it has chunks
  for (;;) {
    const ssize_t count = read(STDIN_FILENO, chunk, sizeof chunk - 1);
    if (count < 0) return Fail("the standard input cannot be read");
    if (count == 0) break;
    if (std::memchr(chunk, '\0', static_cast<std::size_t>(count)) != nullptr) {
      return Fail("the standard input has a NUL byte, which a line cannot hold");
    }
    chunk[count] = '\0';
    (void)PrintLines(GXUtils::StringLines(chunk, &pending), endWithNul);
    if (std::ferror(stdout) != 0) return kFailure;  // which main() reports
  }
  return PrintBytes(pending);  // a last line without a line end
}

std::errc ReadNumber(const std::string& text, long* number) {
  const char* end = text.data() + text.size();
  const auto [next, error] = std::from_chars(text.data(), end, *number);
  return error == std::errc() && next != end ? std::errc::invalid_argument : error;
}

std::string NumberTrouble(const std::string& text) {
  long number = 0;
  const std::errc error = ReadNumber(text, &number);
  if (error == std::errc()) return {};
  if (error == std::errc::result_out_of_range) return text + " is beyond the range of a long";
  return "'" + text + "' is no number in decimal";
}

void AddListCommands(CLI::App& app) {
  Add(app, "split-string", "Cut a text at every separator", [](CLI::App& command) {
    const auto text = Input(command, "TEXT", "The text");
    const auto separator = SeparatorOption(command);
    const auto nul = NullOption(command);
    return [=] { return PrintLines(GXUtils::SplitString(text(), separator()), nul()); };
  });
  Add(app, "string-lines", "Assemble the lines of the standard input", [](CLI::App& command) {
    const auto nul = NullOption(command);
    command.footer("What stands after the last line end is printed as it is.");
    return [=] { return PrintInputLines(nul()); };
  });
  Add(app, "encode-string-list", "Store a list in one text", [](CLI::App& command) {
    const auto separator = SeparatorOption(command);
    const OperandList elements(command, "ELEMENT...", "The elements of the list");
    return [=] {
      const std::vector<std::string> list = elements.Get();
      return PrintBytes(GXUtils::EncodeStringList({list.begin(), list.end()}, separator()));
    };
  });
  Add(app, "decode-string-list", "Read back what encode-string-list wrote", [](CLI::App& command) {
    const auto text = Input(command, "TEXT", "The text");
    const auto separator = SeparatorOption(command);
    const auto nul = NullOption(command);
    return [=] {
      std::list<std::string> list;
      const bool decoded = GXUtils::DecodeStringList(text(), &list, separator());
      (void)PrintLines({list.begin(), list.end()}, nul());
      return decoded ? 0 : kFailure;
    };
  });
}

}  // namespace

void AddTextCommands(CLI::App& app) {
  AddListCommands(app);
  Add(app, "strip", "Remove bytes from the two ends of a text", [](CLI::App& command) {
    const auto text = Operand(command, "TEXT", "The text");
    const auto set = Operand(command, "SET", "The bytes to remove");
    return [=] { return PrintBytes(GXUtils::Strip(text(), set())); };
  });
  Add(app, "replace-in-string", "Replace a pattern in a text", [](CLI::App& command) {
    const auto text = Operand(command, "TEXT", "The text");
    const auto pattern = Operand(command, "PATTERN", "What to look for");
    const auto replacement = Operand(command, "REPLACEMENT", "What to put there");
    return [=] {
      std::string rewritten = text();
      return PrintBytes(
          GXUtils::ReplaceInString(rewritten, pattern().c_str(), replacement().c_str()));
    };
  });
  Add(app, "long-to-string", "Write a number in decimal", [](CLI::App& command) {
    const auto text = Operand(command, "NUMBER", "The number");
    command.get_option("NUMBER")->check(NumberTrouble);
    return [=] {
      long number = 0;
      (void)ReadNumber(text(), &number);
      return PrintLine(GXUtils::LongToString(number));
    };
  });
  Add(app, "compare-versions", "Print -1, 0 or 1 for two versions", [](CLI::App& command) {
    const auto first = Operand(command, "FIRST", "A dotted version");
    const auto second = Operand(command, "SECOND", "Another one");
    return [=] { return PrintSign(GXUtils::CompareVersions(first().c_str(), second().c_str())); };
  });
  Add(app, "compare-hex-strings", "Print -1, 0 or 1 for two hex numbers", [](CLI::App& command) {
    const auto first = Operand(command, "FIRST", "A hexadecimal number");
    const auto second = Operand(command, "SECOND", "Another one");
    return [=] { return PrintSign(GXUtils::CompareHexStrings(first().c_str(), second().c_str())); };
  });
}

}  // namespace gxutil

#include "check.h"

#include <algorithm>
#include <cstdlib>
#include <list>
#include <vector>

#include <gtest/gtest.h>

#include "gxclient_util.h"
#include "harness/log.h"

using namespace GXUtils;

namespace {

// Arithmetic over the alphabet: a digit is a position in it, and "=" is the digit 64.
std::string DecodedBase64(const std::string& text) {
  const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
  if (text.size() % 4 != 0) return "";
  if (text.find_first_not_of(alphabet) != std::string::npos) return "";
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); i += 4) {
    std::size_t digits[4];
    for (std::size_t j = 0; j < 4; ++j) digits[j] = alphabet.find(text[i + j]);
    bytes += static_cast<char>(digits[0] * 4 + digits[1] / 16);
    if (digits[2] != 64) bytes += static_cast<char>(digits[1] * 16 + digits[2] / 4);
    if (digits[3] != 64) bytes += static_cast<char>(digits[2] * 64 + digits[3]);
  }
  return bytes;
}

std::string DecodedHex(const std::string& hex) {
  if (hex.size() % 2 != 0) return "";
  std::string bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    const std::string pair = hex.substr(i, 2);
    char* end = nullptr;
    bytes += static_cast<char>(std::strtol(pair.c_str(), &end, 16));
    if (*end != '\0') return "";
  }
  return bytes;
}

void CheckCodecs(const std::string& text) {
  EXPECT_EQ(DecodedBase64(Base64Encode(text)), text);
  // The additions make groups of a short text.
  for (const std::string& code : {text, text + "A/", "A/" + text}) {
    EXPECT_EQ(Base64Decode(code), DecodedBase64(code));
  }
  for (const std::string& code : {text, text + "A", "A" + text}) {
    EXPECT_EQ(HexASCIIToString(code), DecodedHex(code));
  }
}

// The grammar of a command line, an argument at a time.
std::vector<std::string> Arguments(std::string line) {
  std::vector<std::string> arguments;
  while (!line.empty()) {
    const std::size_t space = line.find(' ');
    const std::size_t quote = line.find('"', 1);
    if (line[0] == ' ') {
      line.erase(0, 1);
    } else if (line[0] == '"' && quote != std::string::npos) {
      arguments.push_back(line.substr(1, quote - 1));
      line.erase(0, quote + 1);
    } else {
      // An unclosed quote drops its field.
      if (line[0] != '"') arguments.push_back(line.substr(0, space));
      line.erase(0, space);
    }
  }
  return arguments;
}

// The elements of a decoded list survive the round trip.
void CheckList(const std::string& text) {
  for (const char separator : {',', ';', '\0', '\xFF'}) {
    std::list<std::string> list, again;
    if (!DecodeStringList(text, &list, separator)) continue;
    EXPECT_TRUE(DecodeStringList(EncodeStringList(list, separator), &again, separator));
    EXPECT_EQ(again, list);
  }
}

// Lines and tail joined with "\n" are the text without the "\r" of its line ends, wherever it is cut.
void CheckLines(const std::string& text) {
  std::string expected = text;
  ReplaceInString(expected, "\r\n", "\n");
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    std::string tail, joined;
    for (const std::string& chunk : {text.substr(0, cut), text.substr(cut)}) {
      for (const std::string& line : StringLines(chunk.c_str(), &tail)) joined += line + "\n";
    }
    EXPECT_EQ(joined + tail, expected);
  }
}

int Sign(int order) { return (order > 0) - (order < 0); }

// Swapped texts swap the sign.
void CheckOrder(const std::string& first, const std::string& second) {
  const char *one = first.c_str(), *other = second.c_str();
  EXPECT_EQ(Sign(CompareVersions(one, other)), -Sign(CompareVersions(other, one)));
  EXPECT_EQ(CompareHexStrings(one, other), -CompareHexStrings(other, one));
}

}  // namespace

void CheckText(const std::string& text) {
  SCOPED_TRACE(testing::PrintToString(text));
  logged.clear();  // or it grows without end
  CheckCodecs(text);
  EXPECT_EQ(SplitCommandLine(text), Arguments(text));
  CheckList(text);
  const std::string line = text.substr(0, text.find('\0'));
  CheckLines(line);
  // A bar separates two texts that are compared.
  const std::size_t bar = std::min(line.find('|'), line.size());
  CheckOrder(line.substr(0, bar), line.substr(std::min(bar + 1, line.size())));
}

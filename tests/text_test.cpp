#include <list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gxclient_util.h"
#include "harness/capturedlog.h"

using namespace std::string_literals;
using Strings = std::vector<std::string>;
using List = std::list<std::string>;

namespace {

// The tables of these functions stand in gxutil.session; here is what no command line can hold.
TEST(Text, NulIsAByteLikeAnyOther) {
  EXPECT_EQ(GXUtils::SplitString("a\0b\0"s, '\0'), (Strings{"a", "b", ""}));
  EXPECT_EQ(GXUtils::SplitString("a\0b"s, ','), (Strings{"a\0b"s}));
  EXPECT_EQ(GXUtils::Strip("\0a\0b\0"s, "\0"s), "a\0b"s);
  std::string text = "a\0b\0"s;
  EXPECT_EQ(GXUtils::ReplaceInString(text, "b", "c"), "a\0c\0"s);
  EXPECT_EQ(text, "a\0c\0"s);
  EXPECT_EQ(GXUtils::EncodeStringList({"a", "b\0c"s}, '\0'), "a\0 b\\\0c"s);
}

TEST(ReplaceInString, TakesItsOwnTextForPatternAndReplacement) {
  std::string text = "abab";
  EXPECT_EQ(GXUtils::ReplaceInString(text, text.c_str() + 2, text.c_str()), "abababab");
  EXPECT_EQ(text, "abababab");
}

TEST(StringLines, GivesTheSameLinesWhereverTheTextIsCut) {
  const std::string text = "one\r\n\ntw\ro\r\r\nthree\n\r\r\nrest\r";
  const Strings lines = {"one", "", "tw\ro\r", "three", "\r"};
  for (std::size_t first = 0; first <= text.size(); ++first) {
    for (std::size_t second = first; second <= text.size(); ++second) {
      std::string pending;
      Strings all;
      for (const std::string& chunk :
           {text.substr(0, first), text.substr(first, second - first), text.substr(second)}) {
        for (auto& line : GXUtils::StringLines(chunk.c_str(), &pending)) all.push_back(line);
      }
      EXPECT_EQ(all, lines) << first << " " << second;
      EXPECT_EQ(pending, "rest\r");
    }
  }
  std::string own = "a\r\nb\nc\r";  // a tail that the caller has filled
  EXPECT_EQ(GXUtils::StringLines("", &own), (Strings{"a", "b"}));
  EXPECT_EQ(own, "c\r");
  own = "a\nb";
  EXPECT_EQ(GXUtils::StringLines("c\nd", &own), (Strings{"a", "bc"}));
  EXPECT_EQ(own, "d");
}

TEST(StringList, SurvivesTheRoundTripWithEverySeparator) {
  std::string allBytes = "x";
  for (int byte = 0; byte < 256; ++byte) allBytes += static_cast<char>(byte);
  allBytes += 'x';
  for (int separator = 0; separator < 256; ++separator) {
    const char byte = static_cast<char>(separator);
    const List elements = {allBytes + allBytes, "", {'x', byte, byte, 'x'}};
    const std::string text = GXUtils::EncodeStringList(elements, byte);
    List decoded;
    const bool done = GXUtils::DecodeStringList(text, &decoded, byte);
    EXPECT_TRUE((done && decoded == elements) || byte == '\\') << separator;
  }
}

TEST(DecodeStringList, KeepsWhatASeparatorHadClosed) {
  CapturedLog log;
  List output = {"old"};
  EXPECT_FALSE(GXUtils::DecodeStringList("a, b ,c\\n,d", &output, ','));
  EXPECT_EQ(output, (List{"a", "b"}));
  EXPECT_FALSE(GXUtils::DecodeStringList("\\\\\\", &output, ','));
  EXPECT_EQ(output, List());
  EXPECT_EQ(log.lines, (CapturedLog::Lines{{4, "DecodeStringList: Bad escape sequence"},
                                           {4, "DecodeStringList: Trailing slash"}}));
}

TEST(DecodeStringListDeathTest, StopsOnANullOutputInEveryBuild) {
  EXPECT_DEATH(GXUtils::DecodeStringList("a", nullptr, ','),
               "gxclient_util_text\\.cpp.*DecodeStringList.*Assertion `output'");
}

}  // namespace

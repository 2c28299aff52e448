#include <climits>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "gxclient_util.h"
#include "harness/capturedlog.h"

using namespace std::string_literals;
using Strings = std::vector<std::string>;
using List = std::list<std::string>;

namespace {

int Sign(int value) { return (value > 0) - (value < 0); }

TEST(SplitString, KeepsEveryField) {
  const std::pair<std::string, Strings> cases[] = {
      {"", {""}},
      {"a", {"a"}},
      {"a,b", {"a", "b"}},
      {",a", {"", "a"}},
      {"a,,b", {"a", "", "b"}},
      {"a,", {"a", ""}},
      {",", {"", ""}},
      {"a\0b"s, {"a\0b"s}},
  };
  for (const auto& [text, fields] : cases) EXPECT_EQ(GXUtils::SplitString(text, ','), fields);
  EXPECT_EQ(GXUtils::SplitString("a\0b\0"s, '\0'), (Strings{"a", "b", ""}));
}

TEST(Strip, RemovesMembersAtTheEndsOnly) {
  const std::string blanks = " \f\n\r\t\v";
  const std::string cases[][3] = {
      {"", blanks, ""},
      {"\t a b \n", blanks, "a b"},
      {blanks, blanks, ""},
      {" a ", "", " a "},
      {"a", "a", ""},
      {"\0a\0b\0"s, "\0"s, "a\0b"s},
      {"\xff\x80z\xff", "\xff", "\x80z"},
      {"xxabyy", "yx", "ab"},
  };
  for (const auto& [text, set, kept] : cases) EXPECT_EQ(GXUtils::Strip(text, set), kept);
}

TEST(ReplaceInString, ReplacesFromLeftToRight) {
  const std::string longPattern(40, 'p');
  const std::string cases[][4] = {
      {"", "a", "b", ""},
      {"abc", "x", "y", "abc"},
      {"aaaa", "aa", "b", "bb"},
      {"aaa", "aa", "a", "aa"},
      {"aaa", "a", "aa", "aaaaaa"},
      {"a,b,", ",", "", "ab"},
      {"abc", "", "x", "abc"},
      {"a\0b\0"s, "b", "c", "a\0c\0"s},
      {"pp" + longPattern + "q" + longPattern, longPattern, "-", "-ppq-"},
  };
  for (const auto& [text, pattern, replacement, expected] : cases) {
    std::string inPlace = text;
    EXPECT_EQ(GXUtils::ReplaceInString(inPlace, pattern.c_str(), replacement.c_str()), expected);
    EXPECT_EQ(inPlace, expected);
  }
  std::string text = "abab";
  EXPECT_EQ(GXUtils::ReplaceInString(text, text.c_str() + 2, text.c_str()), "abababab");
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

TEST(LongToString, GivesDecimalText) {
  for (const long value : {0L, -1L, 1234L, LONG_MAX, LONG_MIN}) {
    EXPECT_EQ(GXUtils::LongToString(value), std::to_string(value));
  }
}

TEST(StringList, EncodesAndDecodes) {
  const struct {
    List elements;
    char separator;
    std::string text;
  } cases[] = {
      {{"a", "b"}, ',', "a, b"},
      {{"a,b", "c\\d"}, ',', "a\\,b, c\\\\d"},
      {{}, ',', ""},
      {{"", ""}, ',', ", "},
      {{"a;b", "c"}, ';', "a\\;b;c"},
      {{"a", "b\0c"s}, '\0', "a\0 b\\\0c"s},
      {{"a", "", "\\"}, ':', "a::\\\\"},
      {{"\\,", ",,x,"}, ',', "\\\\\\,, \\,\\,x\\,"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(GXUtils::EncodeStringList(c.elements, c.separator), c.text);
    List decoded = {"old"};
    EXPECT_TRUE(GXUtils::DecodeStringList(c.text, &decoded, c.separator));
    EXPECT_EQ(decoded, c.elements);
  }
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

TEST(DecodeStringList, TrimsElementsAndRefusesBadEscapes) {
  const struct {
    std::string text;
    List output;
    CapturedLog::Lines log = {};
  } cases[] = {
      {"  x ,y\\, z  ,", {"x", "y, z", ""}},
      {" \t\v\f\r\n", {}},
      {"a,", {"a", ""}},
      {" \\\\ , \\, ", {"\\", ","}},
      {"a\\b", {}, {{4, "DecodeStringList: Bad escape sequence"}}},
      {"a, b ,c\\n,d", {"a", "b"}, {{4, "DecodeStringList: Bad escape sequence"}}},
      {"a,b\\", {"a"}, {{4, "DecodeStringList: Trailing slash"}}},
      {"\\\\\\", {}, {{4, "DecodeStringList: Trailing slash"}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    CapturedLog log;
    List output = {"old"};
    EXPECT_EQ(GXUtils::DecodeStringList(c.text, &output, ','), c.log.empty());
    EXPECT_EQ(output, c.output);
    EXPECT_EQ(log.lines, c.log);
  }
  List blank;
  EXPECT_TRUE(GXUtils::DecodeStringList("a\\ b c", &blank, ' '));
  EXPECT_EQ(blank, (List{"a b", "c"}));
}

TEST(DecodeStringListDeathTest, StopsOnANullOutputInEveryBuild) {
  EXPECT_DEATH(GXUtils::DecodeStringList("a", nullptr, ','),
               "gxclient_util_text\\.cpp.*DecodeStringList.*Assertion `output'");
}

TEST(Compare, GivesTheSignAndItsOppositeWhenSwapped) {
  const struct {
    int (*compare)(const char*, const char*);
    const char* first;
    const char* second;
    int sign;
  } cases[] = {
      {GXUtils::CompareVersions, "1.2", "1.2", 0},
      {GXUtils::CompareVersions, "1.2", "1.2.0", 0},
      {GXUtils::CompareVersions, "1.2.0.0", "1.2", 0},
      {GXUtils::CompareVersions, "1.2", "1.3", -1},
      {GXUtils::CompareVersions, "1.10", "1.9", -1},
      {GXUtils::CompareVersions, "2.0", "10.0", 1},
      {GXUtils::CompareVersions, "1.2.1", "1.2", 1},
      {GXUtils::CompareVersions, "1.2", "1.2.00", -1},
      {GXUtils::CompareVersions, "1.", "1", 1},
      {GXUtils::CompareVersions, "", "0", -1},
      {GXUtils::CompareVersions, "", "", 0},
      {GXUtils::CompareVersions, "1.0", "1.0a", -1},
      {GXUtils::CompareVersions, "1.0.0.1", "1", 1},
      {GXUtils::CompareVersions, "1.\xff", "1.a", 1},
      {GXUtils::CompareHexStrings, "0xFF", "ff", 0},
      {GXUtils::CompareHexStrings, "0x0001", "1", 0},
      {GXUtils::CompareHexStrings, "100", "ff", 1},
      {GXUtils::CompareHexStrings, "0XFF", "ff", 1},
      {GXUtils::CompareHexStrings, "0", "", 0},
      {GXUtils::CompareHexStrings, "0x", "000", 0},
      {GXUtils::CompareHexStrings, "aB1", "Ab2", -1},
      {GXUtils::CompareHexStrings, "9", "A", -1},
      {GXUtils::CompareHexStrings, "\xff", "a", 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Sign(c.compare(c.first, c.second)), c.sign) << c.first << " " << c.second;
    EXPECT_EQ(Sign(c.compare(c.second, c.first)), -c.sign) << c.first << " " << c.second;
  }
}

}  // namespace

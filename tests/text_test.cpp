// Splitting, trimming, joining and comparing. fuzz/ checks invariants on every short text.

#include <climits>
#include <list>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gxclient_util.h"
#include "harness/fault.h"
#include "harness/log.h"

using namespace GXUtils;
using namespace std::string_literals;
using Strings = std::vector<std::string>;
using List = std::list<std::string>;

TEST(SplitString, KeepsEveryField) {
  EXPECT_EQ(SplitString("a::b:", ':'), (Strings{"a", "", "b", ""}));
  EXPECT_EQ(SplitString(",", ','), (Strings{"", ""}));
  EXPECT_EQ(SplitString("", ','), (Strings{""}));
  EXPECT_EQ(SplitString("a\0b"s, '\0'), (Strings{"a", "b"}));
}

TEST(Strip, RemovesBytesFromBothEnds) {
  EXPECT_EQ(Strip(" \ta b\n", " \t\n"), "a b");
  EXPECT_EQ(Strip("xyx", "yx"), "");
  EXPECT_EQ(Strip(" a ", ""), " a ");
  EXPECT_EQ(Strip("\0a\xFF"s, "\xFF\0"s), "a");
}

std::string Replaced(std::string text, const char* pattern, const char* replacement) {
  const std::string copy = ReplaceInString(text, pattern, replacement);
  EXPECT_EQ(text, copy);
  return text;
}

TEST(ReplaceInString, ReplacesFromLeftToRight) {
  EXPECT_EQ(Replaced("aXbX", "X", "-"), "a-b-");
  EXPECT_EQ(Replaced("a\r\nb", "\r\n", "\n"), "a\nb");
  EXPECT_EQ(Replaced("abc", "b", ""), "ac");
  EXPECT_EQ(Replaced("aaa", "aa", "b"), "ba");
  EXPECT_EQ(Replaced("aaa", "a", "aa"), "aaaaaa");  // the inserted text is not searched
}

TEST(ReplaceInString, LeavesATextWithoutThePattern) {
  EXPECT_EQ(Replaced("abc", "x", "y"), "abc");
  EXPECT_EQ(Replaced("abc", "", "y"), "abc");
  EXPECT_EQ(Replaced("", "a", "b"), "");
}

TEST(StringLines, AssemblesLinesFromChunks) {
  std::string tail;
  EXPECT_EQ(StringLines("one\r\ntwo\n\nthr", &tail), (Strings{"one", "two", ""}));
  EXPECT_EQ(tail, "thr");
  EXPECT_EQ(StringLines("ee\r", &tail), Strings{});
  EXPECT_EQ(StringLines("\na\rb", &tail), Strings{"three"});
  EXPECT_EQ(tail, "a\rb");
}

TEST(StringLines, SplitsATailThatTheCallerFilled) {
  std::string tail = "a\nb\nc";
  EXPECT_EQ(StringLines("d", &tail), (Strings{"a", "b"}));
  EXPECT_EQ(tail, "cd");
}

TEST(StringLines, TakesAChunkFromInsideTheTail) {
  std::string tail = "abc";
  EXPECT_EQ(StringLines(&tail[1], &tail), Strings{});
  EXPECT_EQ(tail, "abcbc");
  tail = "a\nbc";
  EXPECT_EQ(StringLines(&tail[1], &tail), (Strings{"a", "bc"}));
  EXPECT_EQ(tail, "bc");
}

TEST(StringLines, LeavesTheTailIfMemoryIsExhausted) {
  const std::string part(50, 'p');  // too long for a string without an allocation
  const std::string chunk = part + "\r\n" + part + "\n" + part + part;
  for (const std::string& before : {part, part + "\n" + part}) {
    bool complete = false;
    for (int nth = 1; !complete; ++nth) {
      std::string tail = before;
      Armed fault({.call = Call::kNew, .nth = nth});
      try {
        (void)StringLines(chunk.c_str(), &tail);
        complete = true;
      } catch (const std::bad_alloc&) {
      }
      (void)fault.Disarm();
      EXPECT_EQ(tail, complete ? part + part : before) << "allocation " << nth;
    }
  }
}

TEST(LongToString, WritesTheWholeRange) {
  EXPECT_EQ(LongToString(0), "0");
  EXPECT_EQ(LongToString(-42), "-42");
  EXPECT_EQ(std::stol(LongToString(LONG_MAX)), LONG_MAX);
  EXPECT_EQ(std::stol(LongToString(LONG_MIN)), LONG_MIN);
}

TEST(EncodeStringList, EscapesSeparatorAndBackslash) {
  EXPECT_EQ(EncodeStringList({"a,b", "c\\d"}, ','), "a\\,b, c\\\\d");
  EXPECT_EQ(EncodeStringList({"a;b", "c"}, ';'), "a\\;b;c");
  EXPECT_EQ(EncodeStringList({"a", "b"}, '\0'), "a\0 b"s);
  EXPECT_EQ(EncodeStringList({"", ""}, ','), ", ");
  EXPECT_EQ(EncodeStringList({""}, ','), "");
  EXPECT_EQ(EncodeStringList({}, ','), "");
  EXPECT_EQ(EncodeStringList({"a\\", "b"}, '\\'), "a\\\\\\b");  // cannot be read back
}

List Decoded(const std::string& text, char separator) {
  List elements = {"old"};
  logged.clear();
  EXPECT_TRUE(DecodeStringList(text, &elements, separator));
  EXPECT_EQ(logged, "");
  return elements;
}

TEST(DecodeStringList, TrimsElements) {
  EXPECT_EQ(Decoded("  x ,y\\, z  ,", ','), (List{"x", "y, z", ""}));
  EXPECT_EQ(Decoded("\\\\,\f\n\r\t\va", ','), (List{"\\", "a"}));
  EXPECT_EQ(Decoded("a\\;b;c,d", ';'), (List{"a;b", "c,d"}));
  EXPECT_EQ(Decoded("a\0\\\0b"s, '\0'), (List{"a", "\0b"s}));
  EXPECT_EQ(Decoded("a\\  b", ' '), (List{"a", "b"}));  // also an escaped space
  EXPECT_EQ(Decoded(", ", ','), (List{"", ""}));
}

TEST(DecodeStringList, TakesABlankTextForTheEmptyList) {
  EXPECT_EQ(Decoded("", ','), List{});
  EXPECT_EQ(Decoded(" \t", ','), List{});
}

TEST(DecodeStringList, KeepsTheElementsBeforeABadEscape) {
  List elements = {"old"};
  logged.clear();
  EXPECT_FALSE(DecodeStringList("a,b\\n,c", &elements, ','));
  EXPECT_EQ(elements, List{"a"});
  EXPECT_EQ(logged, "4 DecodeStringList: Bad escape sequence\n");
  logged.clear();
  EXPECT_FALSE(DecodeStringList("b\\", &elements, ','));
  EXPECT_EQ(elements, List{});
  EXPECT_EQ(logged, "4 DecodeStringList: Trailing slash\n");
}

TEST(DecodeStringListDeathTest, AbortsOnANullOutputInEveryBuild) {
  EXPECT_DEATH(DecodeStringList("a", nullptr, ','), "Assertion.*output");
}

TEST(CompareVersions, OrdersComponentsAsTexts) {
  EXPECT_LT(CompareVersions("1.2", "1.3"), 0);
  EXPECT_LT(CompareVersions("1.10", "1.9"), 0);
  EXPECT_GT(CompareVersions("2.0", "10.0"), 0);
  EXPECT_LT(CompareVersions("1.0", "1.0a"), 0);
  EXPECT_LT(CompareVersions("1.0a", "1.0b"), 0);
  EXPECT_LT(CompareVersions("1z", "1\xFF"), 0);
}

TEST(CompareVersions, TakesAMissingComponentForZero) {
  EXPECT_EQ(CompareVersions("1.2", "1.2.0.0"), 0);
  EXPECT_EQ(CompareVersions("", ""), 0);
  EXPECT_LT(CompareVersions("1.2", "1.2.0.1"), 0);
  EXPECT_LT(CompareVersions("1.2", "1.2.00"), 0);
  EXPECT_LT(CompareVersions("1", "1."), 0);
  EXPECT_LT(CompareVersions("1.", "1.0"), 0);  // an empty component is not missing
}

TEST(CompareVersions, ThrowsForANullVersion) {
  EXPECT_THROW(CompareVersions(nullptr, "1"), std::logic_error);
  EXPECT_THROW(CompareVersions("1", nullptr), std::logic_error);
}

TEST(CompareHexStrings, OrdersNumbersOfAnyLength) {
  EXPECT_EQ(CompareHexStrings("0x00FF", "ff"), 0);
  EXPECT_EQ(CompareHexStrings("0x0", ""), 0);
  EXPECT_EQ(CompareHexStrings("100", "ff"), 1);
  EXPECT_EQ(CompareHexStrings("1a", "1B"), -1);
  EXPECT_EQ(CompareHexStrings("ffffffffffffffffe", "fffffffffffffffff"), -1);
}

TEST(CompareHexStrings, TakesOtherBytesForDigits) {
  EXPECT_EQ(CompareHexStrings("0XFF", "ff"), 1);
  EXPECT_EQ(CompareHexStrings("00x1", "fff"), -1);
  EXPECT_EQ(CompareHexStrings("g", "F"), 1);
  EXPECT_EQ(CompareHexStrings("g", "\xFF"), -1);
}

// Splitting, trimming, joining and comparing. fuzz/ checks invariants on every short text.

#include <climits>
#include <stdexcept>

#include "harness/run.h"

using namespace GXUtils;
using namespace std::string_literals;
using Strings = std::vector<std::string>;
using List = std::list<std::string>;

TEST(SplitString, KeepsEveryField) {
  EXPECT_EQ(SplitString("a::b:", ':'), (Strings{"a", "", "b", ""}));
  EXPECT_EQ(SplitString("", ','), Strings{""});
  EXPECT_EQ(SplitString("a\0b"s, '\0'), (Strings{"a", "b"}));
}

TEST(Strip, RemovesBytesFromBothEnds) {
  EXPECT_EQ(Strip(" \ta b\n", " \t\n"), "a b");
  EXPECT_EQ(Strip("xyx", "yx"), "");
  EXPECT_EQ(Strip(" a ", ""), " a ");
  EXPECT_EQ(Strip("\0a\xFF"s, "\xFF\0"s), "a");
}

std::string Replaced(std::string text, const char* from, const char* to) {
  EXPECT_EQ(ReplaceInString(text, from, to), text);
  return text;
}

TEST(ReplaceInString, ReplacesFromLeftToRight) {
  EXPECT_EQ(Replaced("aXbXc", "X", ""), "abc");
  EXPECT_EQ(Replaced("a\0XbX"s, "X", "--"), "a\0--b--"s);
  EXPECT_EQ(Replaced("aaa", "aa", "b"), "ba");
  // The inserted text is not searched.
  EXPECT_EQ(Replaced("aaa", "a", "aa"), "aaaaaa");
  EXPECT_EQ(Replaced("abc", "", "y"), "abc");
  // A long pattern is searched in another way.
  const std::string from(17, 'X');
  EXPECT_EQ(Replaced("a" + from + "b" + from + "c", from.c_str(), "-"), "a-b-c");
}

TEST(StringLines, AssemblesLinesFromChunks) {
  std::string tail;
  EXPECT_EQ(StringLines("one\r\ntwo\n\nthr", &tail), (Strings{"one", "two", ""}));
  EXPECT_EQ(StringLines("ee\r", &tail), Strings{});
  EXPECT_EQ(StringLines("\na\rb", &tail), Strings{"three"});
  EXPECT_EQ(tail, "a\rb");
  // The piece may be a part of the tail.
  tail = "a\nbc";
  EXPECT_EQ(StringLines(&tail[1], &tail), (Strings{"a", "bc"}));
  EXPECT_EQ(tail, "bc");
}

TEST(StringLines, LeavesTheTailIfMemoryIsExhausted) {
  // Too long for a string without an allocation.
  const std::string part(50, 'p');
  const std::string chunk = "\n" + part + "\n";
  // For the tail, the list of lines and each of the two lines.
  for (int nth = 1; nth <= 4; ++nth) {
    std::string tail = part;
    const Armed memory({Call::kNew, nth});
    EXPECT_THROW(StringLines(chunk.c_str(), &tail), std::bad_alloc);
    EXPECT_EQ(tail, part) << "allocation " << nth;
  }
}

TEST(LongToString, WritesTheWholeRange) {
  EXPECT_EQ(LongToString(42), "42");
  EXPECT_EQ(std::stol(LongToString(LONG_MIN)), LONG_MIN);
}

TEST(EncodeStringList, EscapesSeparatorAndBackslash) {
  EXPECT_EQ(EncodeStringList({"a,b", "c\\d"}, ','), "a\\,b, c\\\\d");
  EXPECT_EQ(EncodeStringList({"a;b", "c"}, ';'), "a\\;b;c");
  EXPECT_EQ(EncodeStringList({"a", "b"}, '\0'), "a\0 b"s);
  EXPECT_EQ(EncodeStringList({}, ','), "");
}

// Decodes a text with commas.
List Decoded(const std::string& text, bool valid = true) {
  List elements = {"old"};
  logged.clear();
  EXPECT_EQ(DecodeStringList(text, &elements, ','), valid);
  return elements;
}

TEST(DecodeStringList, TrimsElements) {
  EXPECT_EQ(Decoded("  x ,y\\, z  ,"), (List{"x", "y, z", ""}));
  EXPECT_EQ(Decoded("\\\\,\f\n\r\t\va"), (List{"\\", "a"}));
  EXPECT_EQ(Decoded("a\0b,c"s), (List{"a\0b"s, "c"}));
  EXPECT_EQ(Decoded(" \t"), List{});
}

TEST(DecodeStringList, KeepsTheElementsBeforeABadEscape) {
  EXPECT_EQ(Decoded("a,b\\n,c", false), List{"a"});
  EXPECT_EQ(logged, "4 DecodeStringList: Bad escape sequence\n");
  EXPECT_EQ(Decoded("b\\", false), List{});
  EXPECT_EQ(logged, "4 DecodeStringList: Trailing slash\n");
}

TEST(DecodeStringListDeathTest, AbortsOnANullOutputInEveryBuild) {
  EXPECT_DEATH(DecodeStringList("a", nullptr, ','), "Assertion.*output");
}

TEST(CompareVersions, OrdersComponentsAsTexts) {
  EXPECT_LT(CompareVersions("1.10", "1.9"), 0);
  EXPECT_LT(CompareVersions("1.0", "1.0a"), 0);
  EXPECT_LT(CompareVersions("1z", "1\xFF"), 0);
  // A missing component counts as "0", an empty one does not.
  EXPECT_EQ(CompareVersions("1.2", "1.2.0.0"), 0);
  EXPECT_LT(CompareVersions("1.2", "1.2.0.1"), 0);
  EXPECT_LT(CompareVersions("1.2", "1.2.00"), 0);
  EXPECT_LT(CompareVersions("1.", "1.0"), 0);
  EXPECT_THROW(CompareVersions(nullptr, "1"), std::logic_error);
  EXPECT_THROW(CompareVersions("1", nullptr), std::logic_error);
}

TEST(CompareHexStrings, OrdersNumbersOfAnyLength) {
  EXPECT_EQ(CompareHexStrings("0xFF", "00ff"), 0);
  EXPECT_EQ(CompareHexStrings("000", "0"), 0);
  EXPECT_EQ(CompareHexStrings("100", "ff"), 1);
  EXPECT_EQ(CompareHexStrings("ffffffffffffffffe", "fffffffffffffffff"), -1);
  // Other bytes count as digits.
  EXPECT_EQ(CompareHexStrings("0XFF", "ff"), 1);
  EXPECT_EQ(CompareHexStrings("g", "\xFF"), -1);
}

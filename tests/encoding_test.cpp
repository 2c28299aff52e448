// Conversion between encodings, and lower case.

#include <clocale>
#include <stdexcept>

#include "harness/run.h"

using namespace GXUtils;
using namespace std::string_literals;

const std::string kNoSpace = "2 iconv: Insufficient space\n";
const std::string kBadInput = "2 iconv: Bad input data\n";
const std::string kUnable = "2 iconv: Unable to convert from ";
const Fault kNoIconv = {.call = Call::kIconvOpen, .nth = kEachTime, .error = EINVAL};

// A text, and the log lines of its conversion.
using Result = std::pair<std::string, std::string>;

// Converts into a buffer of `size` bytes, and returns all of it.
Result Convert(const char* from, const char* to, const std::string& text, std::size_t size) {
  // A copy that ends with its allocation: a sanitizer notices a read past it.
  const std::vector<char> input(text.begin(), text.end());
  std::string buffer = std::string(size, '?') + "guard";
  logged.clear();
  Transcode(from, to, input.data(), input.size(), size == 0 ? nullptr : buffer.data(), size);
  EXPECT_EQ(buffer.substr(size), "guard");
  return {buffer.substr(0, size), logged};
}

TEST(Transcode, ConvertsAndFillsTheRestWithZeros) {
  EXPECT_EQ(Convert("ISO-8859-1", "UTF-8", "a\xE4", 5), Result("aä\0\0"s, ""));
  EXPECT_EQ(Convert("UTF-8", "UTF-8", "", 2), Result("\0\0"s, ""));
  EXPECT_EQ(Convert("UTF-8", "UTF-8", "abc", 3), Result("abc", ""));
  // Little-endian, without a byte order mark.
  EXPECT_EQ(Convert("UTF-8", "UCS-2", "Ab", 4), Result("A\0b\0"s, ""));
}

TEST(Transcode, ReportsATextThatDoesNotFit) {
  EXPECT_EQ(Convert("UTF-8", "UTF-8", "abc", 2), Result("ab", kNoSpace));
  EXPECT_EQ(Convert("UTF-8", "UTF-8", "a", 0), Result("", kNoSpace));
}

TEST(Transcode, ReportsBadInput) {
  EXPECT_EQ(Convert("UTF-8", "UTF-8", "a\xC3", 3), Result("a\0\0"s, kBadInput));
  // A character that the target lacks is dropped, if iconv can.
  EXPECT_EQ(Convert("UTF-8", "ISO-8859-1", "a€b", 3), Result("ab\0"s, kBadInput));
  // Otherwise the text ends there.
  const Armed noDropping({Call::kIconvOpen});
  EXPECT_EQ(Convert("UTF-8", "ISO-8859-1", "a€b", 3), Result("a\0\0"s, kBadInput));
}

TEST(Transcode, ReportsReplacedCharactersAndInputLeftOver) {
  const std::string replaced = "2 iconv: Non-reversible conversion performed\n";
  const Armed replacing({.call = Call::kIconv, .nth = kEachTime, .error = 0});
  EXPECT_EQ(Convert("UTF-8", "UTF-8", "", 1), Result("\0"s, replaced));
  EXPECT_EQ(Convert("UTF-8", "UTF-8", "ab", 1), Result("\0"s, kNoSpace + replaced));
}

TEST(Transcode, NamesTheEncodingsThatItCannotConvert) {
  EXPECT_EQ(Convert("utf-16", "x", "a", 1), Result("\0"s, kUnable + "utf-16 to x\n"));
  const Armed refused(kNoIconv);
  const Result littleEndian = {"\0"s, kUnable + "UTF-16LE to UCS-2LE\n"};
  EXPECT_EQ(Convert("UTF-16", "UCS-2", "a", 1), littleEndian);
}

TEST(Transcode, KeepsAsciiIfIconvCannotConvertFromOrToTheLocale) {
  const std::string fallback = "2 iconv: Using ASCII truncation fallback\n";
  const std::string toLocale = kUnable + "UTF-8 to \n" + fallback;
  const std::string fromLocale = kUnable + " to UTF-8\n" + fallback;
  const Armed refused(kNoIconv);
  EXPECT_EQ(Convert("UTF-8", "", "Grüße", 8), Result("Gre\0\0\0\0\0"s, toLocale));
  EXPECT_EQ(Convert("", "UTF-8", "abcdef", 4), Result("abc\0"s, fromLocale));
  // Three bytes count, one less than the buffer has. The two of é are dropped.
  EXPECT_EQ(Convert("", "UTF-8", "éab", 4), Result("a\0\0\0"s, fromLocale));
  EXPECT_EQ(Convert("", "UTF-8", "a\0b"s, 4), Result("a\0\0\0"s, fromLocale));
  EXPECT_EQ(Convert("", "UTF-8", "a", 1), Result("\0"s, fromLocale));
  EXPECT_EQ(Convert("", "UTF-8", "a", 0), Result("", fromLocale));
}

TEST(Transcode, ThrowsForANullName) {
  char buffer = '?';
  EXPECT_THROW(Transcode(nullptr, "UTF-8", "a", 1, &buffer, 1), std::logic_error);
  EXPECT_THROW(Transcode("UTF-8", nullptr, "a", 1, &buffer, 1), std::logic_error);
  EXPECT_EQ(buffer, '?');
}

TEST(TranscodeString, IsTheTextUpToItsFirstZeroByte) {
  EXPECT_EQ(Transcode("UTF-16", "UTF-8", "A\0B\0"s), "AB");
  EXPECT_EQ(Transcode("UTF-8", "UTF-16", "ab"), "a");
  EXPECT_EQ(Transcode("unknown", "UTF-8", "ab"), "");
  // A byte becomes up to twelve, with an encoding that iconv may not have.
  const bool known = !Transcode("TSCII", "UTF-8", "A").empty();
  EXPECT_EQ(Transcode("TSCII", "UTF-8", "\x82"), known ? "ஸ்ரீ" : "");
}

Result Lower(const std::string& text) {
  logged.clear();
  const std::string lowered = ToLower(text);
  return {lowered, logged};
}

TEST(ToLower, LowersTheLettersOfTheLocale) {
  EXPECT_EQ(Lower("AZ az 09 [@]"), Result("az az 09 [@]", ""));
  // Ends at the first NUL character.
  EXPECT_EQ(Lower("AB\0C"s), Result("ab", ""));
  std::setlocale(LC_CTYPE, "C.UTF-8");
  EXPECT_EQ(Lower("ÄΩЖA"), Result("äωжa", ""));
  // There is room for two more bytes than the text has.
  EXPECT_EQ(Lower("ȺȺ"), Result("ⱥⱥ", ""));
  EXPECT_EQ(Lower("ȺȺȺ"), Result("ⱥⱥ", kNoSpace));
  // A character that UCS-2 does not have is dropped.
  EXPECT_EQ(Lower("A😀B"), Result("ab", kBadInput));
  std::setlocale(LC_CTYPE, "C");
}

TEST(ToLower, IsEmptyIfIconvCannotConvert) {
  const Armed refused(kNoIconv);
  const std::string back = kUnable + "UCS-2LE to UTF-8\n";
  EXPECT_EQ(Lower("A"), Result("", kUnable + "UTF-8 to UCS-2LE\n" + back));
}

TEST(Encodings, LeaveNothingBehind) {
  const std::string text(100, 'A');
  LeavesNothingBehind([&] { Transcode("UTF-8", "", text); });
  LeavesNothingBehind([&] { ToLower(text); });
}

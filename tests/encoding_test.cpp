#include <cerrno>
#include <clocale>
#include <deque>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gxclient_util.h"
#include "harness/capturedlog.h"
#include "harness/faults.h"

using namespace std::string_literals;
using GXUtils::ToLower;
using GXUtils::Transcode;

namespace {

const std::string kSpace = "iconv: Insufficient space";
const std::string kBad = "iconv: Bad input data";
const std::string kReplaced = "iconv: Non-reversible conversion performed";
const std::string kFallback = "iconv: Using ASCII truncation fallback";

std::string Unable(const std::string& names) { return "iconv: Unable to convert from " + names; }

struct Fault {
  const char* call;
  int nth;
  int error;
};

TEST(Transcode, FillsTheBufferAndReportsEveryProblem) {
  const std::vector<Fault> refused = {{"iconv_open", 1, EINVAL}, {"iconv_open", 2, EMFILE}};
  const std::string word =
      "Gr\xC3\xBC\xC3\x9F"
      "e";
  const struct {
    const char* from;
    const char* to;
    std::string in;
    std::string out;  // the whole buffer
    std::vector<std::string> log = {};
    std::vector<Fault> faults = {};
  } cases[] = {
      {"UTF-16", "UTF-8", "A\0B\0"s, "AB\0\0"s},
      {"UTF-8", "UCS-2", "Ab", "A\0b\0\0\0"s},
      {"UTF-8", "UTF-16", "\xF0\x9F\x98\x80", "\x3D\xD8\x00\xDE"s},
      {"UTF-8", "utf-16", "A",
       "\xFF\xFE"
       "A\0"s},
      {"UTF-8", "ISO-8859-1", word,
       "Gr\xFC\xDF"
       "e\0"s},
      {"UTF-8", "UTF-8", "", "\0\0"s},
      {"UTF-8", "UTF-8", "a\0b"s, "a\0b\0"s},
      {"UTF-8", "UTF-8", "abc", "", {kSpace}},
      {"UTF-8", "UTF-8", "abc", "ab", {kSpace}},
      {"UTF-8",
       "ISO-8859-1",
       "a\xE2\x82\xAC"
       "b",
       "ab\0"s,
       {kBad}},
      {"UTF-8",
       "ISO-8859-1",
       "a\xE2\x82\xAC"
       "b",
       "a\0\0"s,
       {kBad},
       {{"iconv_open", 1, EINVAL}}},
      {"UTF-8", "UCS-2", "a\xC3", "a\0\0\0"s, {kBad}},
      {"UTF-8", "UTF-8", "ab", "\0\0"s, {kSpace}, {{"iconv", 1, E2BIG}}},
      {"UTF-8", "UTF-8", "ab", "\0\0"s, {kBad}, {{"iconv", 1, EILSEQ}}},
      {"UTF-8", "UTF-8", "ab", "\0\0"s, {kSpace, kReplaced}, {{"iconv", 1, 0}}},
      {"UTF-8", "UTF-8", "", "\0\0"s, {kReplaced}, {{"iconv", 1, 0}}},
      {"no-such", "UTF-8", "ab", "\0\0"s, {Unable("no-such to UTF-8")}},
      {"UTF-8", "UCS-2", "ab", "\0\0"s, {Unable("UTF-8 to UCS-2LE")}, refused},
      {"UTF-8", "", word, "Gre\0\0\0\0\0\0"s, {Unable("UTF-8 to "), kFallback}, refused},
      {"", "UTF-8", "abcdef", "abc\0"s, {Unable(" to UTF-8"), kFallback}, refused},
      {"",
       "",
       "\xC3\xA9"
       "ab",
       "a\0\0\0"s,
       {Unable(" to "), kFallback},
       refused},
      {"", "", "a\0b"s, "a\0\0\0"s, {Unable(" to "), kFallback}, refused},
      {"", "", "a", "", {Unable(" to "), kFallback}, refused},
      {"", "", "a", "\0"s, {Unable(" to "), kFallback}, refused},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(Unable(c.from) + " to "s + c.to + " " + c.in);
    CapturedLog log;
    std::string buffer = std::string(c.out.size(), 'j') + "guard";
    const std::vector<char> input(c.in.begin(), c.in.end());  // nothing readable behind it
    {
      std::deque<Failing> armed;
      for (const Fault& fault : c.faults) armed.emplace_back(fault.call, fault.nth, fault.error);
      Transcode(c.from, c.to, input.data(), input.size(), c.out.empty() ? nullptr : buffer.data(),
                c.out.size());
    }
    EXPECT_EQ(buffer, c.out + "guard");
    CapturedLog::Lines lines;
    for (const std::string& line : c.log) lines.emplace_back(2, line);
    EXPECT_EQ(log.lines, lines);
  }
  EXPECT_THROW(Transcode("UTF-8", nullptr, "a"), std::logic_error);
}

TEST(Transcode, StringFormEndsAtTheFirstZeroByte) {
  CapturedLog log;
  EXPECT_EQ(Transcode("ISO-8859-1", "UTF-8", "a\xE9"), "a\xC3\xA9");
  EXPECT_EQ(Transcode("UTF-8", "UTF-8", "a\0b"s), "a");
  EXPECT_EQ(Transcode("UTF-8", "UCS-2", "ab"), "a");
  EXPECT_EQ(Transcode("UTF-8", "UTF-8", ""), "");
  EXPECT_TRUE(log.lines.empty());
  // These fill the scratch buffer of four bytes a byte and eight more, or nearly so.
  EXPECT_EQ(Transcode("TSCII", "UTF-16", "\x82\x82").size(), 16U);
  EXPECT_EQ(Transcode("ISO-8859-1", "GB18030", std::string(9, '\xC0')).size(), 36U);
  EXPECT_EQ(Transcode("no-such", "UTF-8", "a"), "");
  Failing first("iconv_open", 1, EINVAL);
  Failing second("iconv_open", 2, EINVAL);
  EXPECT_EQ(Transcode("UTF-8", "", "x\xC3\xA9y\0z"s), "xy");
  log.throws = true;
  EXPECT_THROW(Transcode("UTF-8", "UTF-8", "\xC3"), std::runtime_error);
}

TEST(ToLower, LowersTheTextOrWhatItCouldConvert) {
  const struct {
    const char* locale;
    std::string text;
    std::string lowered;
    std::vector<std::string> log = {};
    std::vector<Fault> faults = {};
  } cases[] = {
      {"C", "", ""},
      {"C", "AZ az 09 [@]", "az az 09 [@]"},
      {"C",
       "\xC3\x84"
       "A",
       "\xC3\x84"
       "a"},
      {"C.UTF-8",
       "\xC3\x84\xCE\xA9\xD0\x96"
       "A",
       "\xC3\xA4\xCF\x89\xD0\xB6"
       "a"},
      {"C.UTF-8", "AB\0C"s, "ab"},
      {"C.UTF-8",
       "A\xF0\x9F\x98\x80"
       "B",
       "ab",
       {kBad}},
      // The small letter takes three bytes, the capital two: the result may grow by two bytes.
      {"C.UTF-8", "\xC8\xBA", "\xE2\xB1\xA5"},
      {"C.UTF-8", "\xC8\xBA\xC8\xBA", "\xE2\xB1\xA5\xE2\xB1\xA5"},
      {"C.UTF-8", "\xC8\xBA\xC8\xBA\xC8\xBA", "\xE2\xB1\xA5\xE2\xB1\xA5", {kSpace}},
      {"C", "A", "", {Unable("UTF-8 to UCS-2LE")}, {{"iconv_open", 1, 0}, {"iconv_open", 2, 0}}},
      {"C", "A", "", {Unable("UCS-2LE to UTF-8")}, {{"iconv_open", 2, 0}, {"iconv_open", 3, 0}}},
  };
  const std::string before = std::setlocale(LC_ALL, nullptr);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.locale + c.text);
    ASSERT_NE(std::setlocale(LC_ALL, c.locale), nullptr);
    CapturedLog log;
    std::deque<Failing> armed;
    for (const Fault& fault : c.faults) armed.emplace_back(fault.call, fault.nth, fault.error);
    EXPECT_EQ(ToLower(c.text), c.lowered);
    CapturedLog::Lines lines;
    for (const std::string& line : c.log) lines.emplace_back(2, line);
    EXPECT_EQ(log.lines, lines);
  }
  std::setlocale(LC_ALL, before.c_str());
}

// What the C library of Linux does with a text that it cannot convert without loss.
TEST(ToLower, LongTextWithADroppedCharacterIsCut) {
  CapturedLog log;
  const std::string text = "\xF0\x9F\x98\x80" + std::string(20000, 'A');
  const std::string lowered = ToLower(text);
  EXPECT_EQ(lowered, std::string(lowered.size(), 'a'));
  EXPECT_TRUE(!lowered.empty() && lowered.size() < 20000);
  EXPECT_EQ(log.lines, (CapturedLog::Lines{{2, kBad}}));
}

}  // namespace

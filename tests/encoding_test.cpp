#include <cerrno>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gxclient_util.h"
#include "harness/capturedlog.h"
#include "harness/faults.h"

using namespace std::string_literals;
using GXUtils::ToLower;
using GXUtils::Transcode;

// What works is compared with iconv() in fuzz/ and shown in gxutil.session.
namespace {

const std::string kSpace = "2 iconv: Insufficient space\n";
const std::string kBad = "2 iconv: Bad input data\n";
const std::string kReplaced = "2 iconv: Non-reversible conversion performed\n";

const std::string kUnable = "2 iconv: Unable to convert from ";
const std::string kFallback = "2 iconv: Using ASCII truncation fallback\n";

std::string Logged(const CapturedLog& log) {
  std::string all;
  for (const auto& [level, line] : log.lines) all += std::to_string(level) + " " + line + "\n";
  return all;
}

TEST(Transcode, ReportsEveryProblemAndKeepsWhatItCan) {
  const struct {
    const char* from;
    const char* to;
    std::string in;
    std::string out;  // the whole buffer
    std::string log;
    int refused;     // so many times iconv_open() fails
    int error = -1;  // of iconv(); 0: it leaves all and counts replaced characters
  } cases[] = {
      {"UTF-8", "ISO-8859-1", "a€b", "a\0\0"s, kBad, 1},
      {"UTF-8", "UTF-8", "ab", "\0\0"s, kSpace, 0, E2BIG},
      {"UTF-8", "UTF-8", "ab", "\0\0"s, kBad, 0, EILSEQ},
      {"UTF-8", "UTF-8", "ab", "\0\0"s, kSpace + kReplaced, 0, 0},
      {"UTF-8", "UTF-8", "", "\0\0"s, kReplaced, 0, 0},
      {"UTF-8", "UCS-2", "ab", "\0\0"s, kUnable + "UTF-8 to UCS-2LE\n", 2},
      {"UTF-8", "", "Grüße", "Gre\0\0\0\0\0\0"s, kUnable + "UTF-8 to \n" + kFallback, 2},
      {"", "UTF-8", "abcdef", "abc\0"s, kUnable + " to UTF-8\n" + kFallback, 2},
      {"", "", "éab", "a\0\0\0"s, kUnable + " to \n" + kFallback, 2},
      {"", "", "a\0b"s, "a\0\0\0"s, kUnable + " to \n" + kFallback, 2},
      {"", "", "a", "", kUnable + " to \n" + kFallback, 2},
      {"", "", "a", "\0"s, kUnable + " to \n" + kFallback, 2},
  };
  for (const auto& c : cases) {
    CapturedLog log;
    std::string buffer = std::string(c.out.size(), 'j') + "guard";
    char* out = c.out.empty() ? nullptr : buffer.data();
    const std::vector<char> input(c.in.begin(), c.in.end());  // nothing readable behind it
    const Failing first("iconv_open", c.refused > 0 ? 1 : 0, EINVAL);
    const Failing second("iconv_open", c.refused > 1 ? 2 : 0, EMFILE);
    const Failing conversion("iconv", c.error >= 0 ? 1 : 0, c.error);
    Transcode(c.from, c.to, input.data(), input.size(), out, c.out.size());
    EXPECT_EQ(buffer, c.out + "guard") << c.in;
    EXPECT_EQ(Logged(log), c.log) << c.in;
  }
}

TEST(Transcode, StringFormFallsBackAndThrows) {
  CapturedLog log;
  const Failing first("iconv_open", 1, EINVAL);
  const Failing second("iconv_open", 2, EINVAL);
  EXPECT_EQ(Transcode("UTF-8", "", "xéy\0z"s), "xy");
  EXPECT_THROW(Transcode("UTF-8", nullptr, "a"), std::logic_error);
  log.throws = true;
  EXPECT_THROW(Transcode("UTF-8", "UTF-8", "\xC3"), std::runtime_error);
}

TEST(Transcode, TakesANameThatStandsInTheBuffer) {
  char buffer[] = "ISO-8859-1";
  Transcode(buffer, "UTF-8", "\xFC", 1, buffer, sizeof buffer);
  EXPECT_STREQ(buffer, "ü");
}

TEST(Transcode, TakesNoInput) {
  char buffer[] = "ISO-2022-KR";  // has a header, which a null input would write
  Transcode("UTF-8", "ISO-2022-KR", nullptr, 0, buffer, sizeof buffer);
  EXPECT_STREQ(buffer, "");
}

TEST(ToLower, HasNoFallback) {
  for (const bool back : {false, true}) {
    CapturedLog log;
    const Failing ignoring("iconv_open", back ? 2 : 1, EINVAL);
    const Failing plain("iconv_open", back ? 3 : 2, EINVAL);
    EXPECT_EQ(ToLower("A"), "");
    EXPECT_EQ(Logged(log), kUnable + (back ? "UCS-2LE to UTF-8\n" : "UTF-8 to UCS-2LE\n"));
  }
}

}  // namespace

// Conversions that fail; fuzz/encoding_fuzz.cpp compares the others with iconv().

#include <stdexcept>
#include <vector>

#include "harness/harness.h"

using namespace std::string_literals;
using namespace GXUtils;

const std::string kUnable = "2 iconv: Unable to convert from ";
const std::string kFallback = "2 iconv: Using ASCII truncation fallback\n";

TEST(Transcode, ReportsEveryProblemAndKeepsWhatItCan) {
  const std::string replaced = "2 iconv: Non-reversible conversion performed\n";
  const struct {
    const char *from, *to;
    std::string in, out, log;  // `out` is the whole buffer
    int refused;               // so many times iconv_open() fails
    bool replaces = false;     // iconv() leaves all and counts replaced characters
  } cases[] = {
      {"UTF-8", "ISO-8859-1", "a\xFF-", "a\0\0"s, "2 iconv: Bad input data\n", 1},
      {"UTF-8", "UTF-8", "ab", "\0\0"s, "2 iconv: Insufficient space\n" + replaced, 0, true},
      {"UTF-8", "UTF-8", "", "\0\0"s, replaced, 0, true},
      {"UTF-8", "UCS-2", "ab", "\0\0"s, kUnable + "UTF-8 to UCS-2LE\n", 2},
      {"UCS-2", "UTF-8", "a\0"s, "\0\0"s, kUnable + "UCS-2LE to UTF-8\n", 2},
      {"UTF-8", "", "Grüße", "Gre\0\0\0\0\0\0"s, kUnable + "UTF-8 to \n" + kFallback, 2},
      {"", "UTF-8", "abcdef", "abc\0"s, kUnable + " to UTF-8\n" + kFallback, 2},
      {"", "", "\x80\xFF-\0b"s, "-\0\0\0\0"s, kUnable + " to \n" + kFallback, 2},
      {"", "", "a", "", kUnable + " to \n" + kFallback, 2},
      {"", "", "a", "\0"s, kUnable + " to \n" + kFallback, 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.in + " from " + c.from + " to " + c.to);
    logged.clear();
    std::string buffer = std::string(c.out.size(), 'j') + "guard";
    char* out = c.out.empty() ? nullptr : buffer.data();
    const std::vector<char> input(c.in.begin(), c.in.end());  // nothing readable behind it
    const Failing first("iconv_open", c.refused > 0 ? 1 : 0, EINVAL);
    const Failing second("iconv_open", c.refused > 1 ? 2 : 0, EMFILE);
    const Failing conversion("iconv", c.replaces ? 1 : 0, 0);
    Transcode(c.from, c.to, input.data(), input.size(), out, c.out.size());
    EXPECT_EQ(buffer, c.out + "guard");
    EXPECT_EQ(logged, c.log);
  }
}

TEST(Transcode, ThrowsWhatItsCallerHasToKnow) {
  EXPECT_THROW(Transcode("UTF-8", nullptr, "a"), std::logic_error);
  logThrows = true;
  EXPECT_THROW(Transcode("UTF-8", "UTF-8", "\xC3"), std::runtime_error);
  logThrows = false;
}

TEST(ToLower, HasNoFallback) {
  logged.clear();
  const Failing ignoring("iconv_open", 1, EINVAL), plain("iconv_open", 2, EINVAL);
  EXPECT_EQ(ToLower("A"), "");
  EXPECT_EQ(logged, kUnable + "UTF-8 to UCS-2LE\n");
}

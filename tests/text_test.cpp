#include <cerrno>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gxclient_util.h"
#include "harness/faults.h"

using GXUtils::StringLines;
using Strings = std::vector<std::string>;

// The tables stand in gxutil.session, the laws in fuzz/.
TEST(DecodeStringListDeathTest, StopsOnANullOutputInEveryBuild) {
  EXPECT_DEATH(GXUtils::DecodeStringList("a", nullptr, ','),
               "gxclient_util_text\\.cpp.*DecodeStringList.*Assertion `output'");
}

TEST(StringLines, KeepsTheTailWhenMemoryIsExhausted) {
  const std::string part(50, 'p');  // too long to be kept without an allocation
  const struct {
    std::string tail;
    std::string chunk;
    Strings lines;
    std::string left;
  } cases[] = {
      {part, part, {}, part + part},
      {part, part + "\r\n" + part + "\n" + part + part, {part + part, part}, part + part},
      {part + "\n" + part, part + "\n" + part, {part, part + part}, part},
  };
  for (const auto& c : cases) {
    int failures = 0;
    for (bool failed = true; failed; ++failures) {
      std::string tail = c.tail;
      Strings lines;
      try {
        const Failing allocation("new", failures + 1, ENOMEM);
        lines = StringLines(c.chunk.c_str(), &tail);
        failed = false;
      } catch (const std::bad_alloc&) {
      }
      EXPECT_EQ(tail, failed ? c.tail : c.left);
      EXPECT_EQ(lines, failed ? Strings() : c.lines);
    }
    EXPECT_GT(failures, 1);
  }
}

TEST(StringLines, TakesAChunkFromItsTail) {
  const struct {
    std::string tail;
    std::size_t start;  // of the chunk in the tail
    Strings lines;
    std::string left;
  } cases[] = {
      {"abc", 1, {}, "abcbc"},
      {"a\nbc", 0, {"a", "bca"}, "bc"},
      {"a\r\nbc", 1, {"a", "bc"}, "bc"},
      {std::string(50, 'a'), 0, {}, std::string(100, 'a')},
  };
  for (auto c : cases) {
    c.tail.shrink_to_fit();
    EXPECT_EQ(StringLines(c.tail.c_str() + c.start, &c.tail), c.lines);
    EXPECT_EQ(c.tail, c.left);
  }
}

TEST(CompareVersions, ThrowsForANullVersion) {
  EXPECT_THROW(GXUtils::CompareVersions(nullptr, "1"), std::logic_error);
  EXPECT_THROW(GXUtils::CompareVersions("1", nullptr), std::logic_error);
}

TEST(Base64Encode, RefusesALengthThatCannotBe) {
  const unsigned char data[] = "abc";
  const unsigned long longest = std::string().max_size() / 4 * 3;
  for (const unsigned long length : {longest + 1, static_cast<unsigned long>(-1)}) {
    EXPECT_THROW(GXUtils::Base64Encode(data, length), std::length_error);
  }
}

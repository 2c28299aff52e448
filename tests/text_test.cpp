// What fuzz/ cannot show of the functions of texts: memory exhausted, null and impossible arguments.

#include <stdexcept>
#include <vector>

#include "harness/harness.h"

namespace {

using Strings = std::vector<std::string>;

TEST(DecodeStringListDeathTest, StopsOnANullOutputInEveryBuild) {
  EXPECT_DEATH(GXUtils::DecodeStringList("a", nullptr, ','), "Assertion.*output");
}

TEST(StringLines, KeepsTheTailWhenMemoryIsExhausted) {
  const std::string part(50, 'p');  // too long to be kept without an allocation
  const struct {
    std::string tail, chunk;
    Strings lines;
    std::string left;
  } cases[] = {
      {part, part, {}, part + part},
      {part, part + "\r\n" + part + "\n" + part + part, {part + part, part}, part + part},
      {part + "\n" + part, part + "\n" + part, {part, part + part}, part},
  };
  for (const auto& c : cases) {
    std::string tail = c.tail;
    Strings lines;
    for (int nth = 1; tail == c.tail; ++nth) {
      try {
        const Failing allocation("new", nth, ENOMEM);
        lines = GXUtils::StringLines(c.chunk.c_str(), &tail);
      } catch (const std::bad_alloc&) {
        EXPECT_EQ(tail, c.tail);
      }
    }
    EXPECT_EQ(tail, c.left);
    EXPECT_EQ(lines, c.lines);
  }
}

TEST(CompareVersions, ThrowsForANullVersion) {
  EXPECT_THROW(GXUtils::CompareVersions(nullptr, "1"), std::logic_error);
  EXPECT_THROW(GXUtils::CompareVersions("1", nullptr), std::logic_error);
}

TEST(Base64Encode, RefusesALengthThatCannotBe) {
  for (const unsigned long size :
       {std::string().max_size() / 4 * 3 + 1, static_cast<std::size_t>(-1)}) {
    EXPECT_THROW(GXUtils::Base64Encode(nullptr, size), std::length_error);
  }
}

}  // namespace

// What fuzz/ cannot show of the functions of texts: memory exhausted, null and impossible arguments.

#include <stdexcept>

#include "harness/harness.h"

TEST(DecodeStringListDeathTest, StopsOnANullOutputInEveryBuild) {
  EXPECT_DEATH(GXUtils::DecodeStringList("a", nullptr, ','), "Assertion.*output");
}

TEST(StringLines, KeepsTheTailWhenMemoryIsExhausted) {
  const std::string part(50, 'p');  // too long to be kept without an allocation
  const std::pair<std::string, std::string> cases[] = {
      {part, part + "\r\n" + part + "\n" + part + part}, {part + "\n" + part, part + "\n" + part}};
  for (const auto& [before, chunk] : cases) {
    std::string tail = before;
    for (int nth = 1; tail == before; ++nth) {  // until it succeeds
      try {
        const Failing allocation("new", nth, ENOMEM);
        (void)GXUtils::StringLines(chunk.c_str(), &tail);
      } catch (const std::bad_alloc&) {
        ASSERT_EQ(tail, before);
      }
    }
  }
}

TEST(CompareVersions, ThrowsForANullVersion) {
  EXPECT_THROW(GXUtils::CompareVersions(nullptr, "1"), std::logic_error);
  EXPECT_THROW(GXUtils::CompareVersions("1", nullptr), std::logic_error);
}

TEST(Base64Encode, RefusesALengthThatCannotBe) {
  for (const std::size_t size : {std::string().max_size() / 4 * 3 + 1, std::size_t{0} - 1}) {
    EXPECT_THROW(GXUtils::Base64Encode(nullptr, size), std::length_error);
  }
}

#include <cstdio>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "support/argvector.h"
#include "support/gxexception.h"
#include "support/logfile.h"
#include "support/parser.h"

using namespace std::string_literals;

namespace {

TEST(Logfile, WritesOneLineACallFromAnyThread) {
  std::FILE* stream = std::tmpfile();
  ASSERT_NE(stream, nullptr);
  Logfile log;
  log.SetStream(stream);
  const std::string filler(5000, 'm');
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&] {
      for (int i = 0; i < 50; ++i) log.Log("line\nend\r" + filler, 2);
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::rewind(stream);
  char line[6000];
  int count = 0;
  for (; std::fgets(line, sizeof line, stream) != nullptr; ++count) {
    EXPECT_EQ(std::string(line).substr(20), " [2] line\\nend\\r" + filler + "\n");
    int read = 0;
    std::sscanf(line, "%*4d-%*2d-%*2dT%*2d:%*2d:%*2dZ%n", &read);
    EXPECT_EQ(read, 20);
  }
  EXPECT_EQ(count, 200);
  std::fclose(stream);
}

TEST(ArgVector, BuildsAnArrayThatStays) {
  ArgVector arguments;
  EXPECT_EQ(arguments.getArgArray()[0], nullptr);
  for (int i = 0; i < 40; ++i) arguments.addArgument(std::to_string(i));
  const char* const* array = arguments.getArgArray();
  EXPECT_EQ(arguments.getArgArray(), array);
  for (int i = 0; i < 40; ++i) EXPECT_EQ(array[i], std::to_string(i));
  EXPECT_EQ(array[40], nullptr);
}

TEST(GXException, CarriesCodeAndMessage) {
  try {
    throw GXException(11, "text");
  } catch (const std::exception& error) {
    EXPECT_STREQ(error.what(), "text");
    EXPECT_EQ(dynamic_cast<const GXException&>(error).code(), 11);
  }
}

TEST(Parser, ReadsFieldsAndStandsAtTheirEnd) {
  using Field = std::tuple<int, std::string, int, std::uint32_t>;  // result, out, current, pos
  const struct {
    std::string text;
    int current;
    std::vector<Field> fields;
  } cases[] = {
      {"", -1, {{0, "", -1, 0}, {0, "", -1, 0}}},
      {"ab,c", 'a', {{1, "ab", ',', 3}, {1, "c", -1, 4}, {0, "", -1, 4}}},
      {",,", ',', {{0, "", ',', 1}, {0, "", ',', 2}, {0, "", -1, 2}}},
      {R"(\,a\\,\\\,)", '\\', {{1, R"(,a\)", ',', 6}, {1, R"(\,)", -1, 10}}},
      {R"(\x\)", '\\', {{1, R"(\x\)", -1, 3}}},
      {"\x80\0,\0\xFE"s, -128, {{1, "\x80\0"s, ',', 3}, {1, "\0\xFE"s, -1, 5}}},
      {"\xFF,z\xFF", -1, {{1, "\xFF", ',', 2}, {1, "z\xFF", -1, 4}}},
      {"a,\xFF", 'a', {{1, "a", ',', 2}, {0, "", -1, 3}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    Parser parser(c.text);
    EXPECT_EQ(parser.current, c.current);
    for (const Field& field : c.fields) {
      std::string out = "old";
      const int result = parser.parse_comma_escaped_string(out);
      EXPECT_EQ(Field(result != 0, out, parser.current, parser.pos), field);
      parser.advance();
    }
  }
}

}  // namespace

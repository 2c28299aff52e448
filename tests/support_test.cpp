#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/argvector.h"
#include "support/logfile.h"

using namespace std::string_literals;

// The parser is a target in fuzz/. The log is the real one, which the other tests replace.
TEST(Logfile, WritesOneLineACallFromAnyThread) {
  testing::internal::CaptureStderr();
  const std::string filler(5000, 'm');
  std::vector<std::thread> threads(4);
  for (std::thread& thread : threads) {
    thread = std::thread([&] {
      for (int i = 0; i < 50; ++i) logfile.Log("line\nend\r" + filler, 2);
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::istringstream written(testing::internal::GetCapturedStderr());
  int count = 0;
  for (std::string line; std::getline(written, line); ++count) {
    EXPECT_EQ(line.substr(sizeof "2025-01-31T12:00:00Z" - 1), " [2] line\\nend\\r" + filler);
  }
  EXPECT_EQ(count, 200);
}

TEST(ArgVector, BuildsAnArrayThatStays) {
  ArgVector arguments;
  EXPECT_EQ(arguments.getArgArray()[0], nullptr);
  for (const char* argument : {"a", "", "c"}) arguments.addArgument(argument);
  const char* const* array = arguments.getArgArray();
  EXPECT_EQ(arguments.getArgArray(), array);
  EXPECT_EQ(array[0] + "|"s + array[1] + "|" + array[2], "a||c");
  EXPECT_EQ(array[3], nullptr);
}

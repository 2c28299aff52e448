#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/argvector.h"
#include "support/logfile.h"

// The parser is a target in fuzz/.
namespace {

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
  for (int i = 0; i < 40; ++i) arguments.addArgument(std::to_string(i));
  const char* const* array = arguments.getArgArray();
  EXPECT_EQ(arguments.getArgArray(), array);
  for (int i = 0; i < 40; ++i) EXPECT_EQ(array[i], std::to_string(i));
  EXPECT_EQ(array[40], nullptr);
}

}  // namespace

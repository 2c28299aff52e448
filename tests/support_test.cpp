#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/logfile.h"

// The real log, which the other tests replace.
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

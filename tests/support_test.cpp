// The log that a client has if it defines none; the other tests define one.

#include <cstdlib>
#include <ctime>
#include <sstream>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "support/logfile.h"

TEST(Logfile, WritesTimeLevelAndMessageOnOneLine) {
  testing::internal::CaptureStderr();
  logfile.Log("line\nend\r", 2);
  const std::string line = testing::internal::GetCapturedStderr();
  std::tm time = {};
  EXPECT_STREQ(strptime(line.c_str(), "%Y-%m-%dT%H:%M:%SZ", &time), " [2] line\\nend\\r\n");
  EXPECT_LE(std::abs(std::time(nullptr) - timegm(&time)), 60);
}

TEST(Logfile, KeepsTheLinesOfThreadsApart) {
  testing::internal::CaptureStderr();
  const auto log = [] {
    for (int i = 0; i < 100; ++i) logfile.Log(std::string(5000, 'm'), 4);
  };
  std::thread first(log), second(log);
  first.join();
  second.join();
  std::istringstream written(testing::internal::GetCapturedStderr());
  int count = 0;
  // 20 bytes of time, " [4] " and the message.
  for (std::string line; std::getline(written, line); ++count) EXPECT_EQ(line.size(), 5025U);
  EXPECT_EQ(count, 200);
}

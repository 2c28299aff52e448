// The log that a client has if it defines none; the other tests define one.

#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/gxexception.h"
#include "support/logfile.h"

TEST(Logfile, WritesTimeLevelAndMessageOnOneLine) {
  testing::internal::CaptureStderr();
  logfile.Log("line\nend\r", 2);
  std::string line = testing::internal::GetCapturedStderr();
  for (std::size_t i = 0; i < line.find(' '); ++i) {
    if (line[i] >= '0' && line[i] <= '9') line[i] = '9';
  }
  EXPECT_EQ(line, "9999-99-99T99:99:99Z [2] line\\nend\\r\n");
}

TEST(Logfile, KeepsTheLinesOfThreadsApart) {
  testing::internal::CaptureStderr();
  const std::string longMessage(5000, 'm');
  std::vector<std::thread> threads(4);
  for (std::thread& thread : threads) {
    thread = std::thread([&] {
      for (int i = 0; i < 50; ++i) logfile.Log(longMessage, 4);
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::istringstream written(testing::internal::GetCapturedStderr());
  int count = 0;
  for (std::string line; std::getline(written, line); ++count) {
    EXPECT_EQ(line.substr(line.find('[')), "[4] " + longMessage);
  }
  EXPECT_EQ(count, 200);
}

TEST(GXException, IsARuntimeErrorWithACode) {
  try {
    throw GXException(6, "Empty command");
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Empty command");
    EXPECT_EQ(dynamic_cast<const GXException&>(error).code(), 6);
  }
}

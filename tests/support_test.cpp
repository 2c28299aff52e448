#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "support/argvector.h"
#include "support/exportdata.h"
#include "support/gxexception.h"
#include "support/logfile.h"
#include "support/parser.h"

// Clients of the shared libraries have these sizes compiled in: they stay as long as the SOVERSION.
static_assert(sizeof(ArgVector) == sizeof(std::pair<std::vector<int>, std::vector<int>>));
static_assert(sizeof(Exportdata) == sizeof(std::pair<std::string, int>));
static_assert(sizeof(GXException) == sizeof(std::tuple<void*, std::pair<int, std::runtime_error>>));
static_assert(sizeof(Logfile) == 1);
static_assert(sizeof(Parser) == sizeof(std::tuple<std::string, unsigned, int>));

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

#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/argvector.h"
#include "support/logfile.h"

// The parser is a target in fuzz/.
namespace {

TEST(Logfile, WritesOneLineACallFromAnyThread) {
  std::FILE* stream = std::tmpfile();
  Logfile log;
  log.SetStream(stream);
  const std::string filler(5000, 'm');
  std::vector<std::thread> threads(4);
  for (std::thread& thread : threads) {
    thread = std::thread([&] {
      for (int i = 0; i < 50; ++i) log.Log("line\nend\r" + filler, 2);
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::rewind(stream);
  char line[6000];
  int count = 0;
  for (; std::fgets(line, sizeof line, stream) != nullptr; ++count) {
    EXPECT_EQ(line + sizeof "2025-01-31T12:00:00Z" - 1, " [2] line\\nend\\r" + filler + "\n");
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

}  // namespace

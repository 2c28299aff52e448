#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "support/argvector.h"
#include "support/gxexception.h"
#include "support/logfile.h"

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

}  // namespace

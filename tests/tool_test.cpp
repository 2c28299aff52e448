#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gxclient_util.h"

using namespace std::string_literals;

namespace {

// Every command of gxutil once, through a shell: what it prints and how it exits.
TEST(Gxutil, Commands) {
  const struct {
    const char* arguments;
    std::string output;
    int exitCode = 0;
  } cases[] = {
      {"--version 2>/dev/null", "gxutil 0.1.0\n"},
      {"no-such-command 2>/dev/null", "", 2},
      {"split-command-line 2>/dev/null", "", 2},
      {"split-command-line 'ls -l \"a b\"'", "ls\n-l\na b\n"},
      {"split-command-line -0 -- '-l [a,b]' | tr '\\0' ';'", "-l;[a,b];"},
      {"split-command-line a >/dev/full", "gxutil: the standard output cannot be written\n", 1},
      {"system 'printf %s,%s a \"b c\"'", "a,b cresult 0, exit status 0\n"},
      {"system -- printf %s, -- '[a,b]' '' --help", "--,[a,b],,--help,result 0, exit status 0\n"},
      {"system -- sh -c 'exit 3' 2>/dev/null", "", 3},
      {"system -- sh -c 'kill -9 $$'", "result -1\n", 125},
      {"system no-such-program 2>/dev/null", "", 128},
      {"system -- 2>/dev/null", "", 128},
      {"system -- printf '%s ' a -- b 2>/dev/null", "a -- b "},
      {"system ''", "gxutil: Empty command\n", 1},
      {"system ls -l 2>/dev/null", "", 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.arguments);
    std::string output;
    int exitCode = -1;
    const std::string command = GXUTIL " "s + c.arguments;
    const char* argv[] = {"/bin/bash", "-c", command.c_str(), nullptr};
    GXUtils::System(argv, &output, &exitCode);
    EXPECT_EQ(output, c.output);
    EXPECT_EQ(exitCode, c.exitCode);
  }
}

}  // namespace

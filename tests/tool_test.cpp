#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "gxclient_util.h"
#include "harness/scopedenv.h"

namespace {

// Output and exit status of a command line, as gxutil.session has them.
std::string Transcript(const std::string& command) {
  std::string output;
  int exitCode = -1;
  const std::string script = "PATH=" GXUTIL_FOLDER ":$PATH; " + command;
  const char* argv[] = {"/bin/bash", "-c", script.c_str(), nullptr};
  GXUtils::System(argv, &output, &exitCode);
  if (!output.empty() && output.back() != '\n') output += " (no-eol)\n";
  return exitCode == 0 ? output : output + "[" + std::to_string(exitCode) + "]\n";
}

TEST(Gxutil, DoesWhatTheSessionSays) {
  const ScopedEnv locale("LC_ALL", "C.UTF-8");
  const ScopedEnv language("LANGUAGE", nullptr);
  std::ifstream session(GXUTIL_SESSION);
  std::string command;
  std::string expected;
  int commands = 0;
  const auto check = [&] {
    EXPECT_EQ(command.empty() ? expected : Transcript(command), expected) << command;
    expected.clear();
    ++commands;
  };
  for (std::string line; std::getline(session, line);) {
    if (line.rfind("$ ", 0) == 0) {
      check();
      command = line.substr(2);
    } else if (!line.empty() && line[0] != '#') {
      expected += line + "\n";
    }
  }
  check();
  EXPECT_GT(commands, 100);
}

}  // namespace

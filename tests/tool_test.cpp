#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "gxclient_util.h"
#include "harness/tempdir.h"

namespace {

constexpr char kPrelude[] =
    "unset LANGUAGE; export LC_ALL=C.UTF-8 PATH=" GXUTIL_FOLDER ":$PATH; cd ";

// Output and exit status of a command line, as gxutil.session has them; run in an empty folder.
std::string Transcript(const std::string& command) {
  std::string output;
  int exitCode = -1;
  const TempDir folder;
  const std::string script = kPrelude + folder.Path() + "; " + command;
  const char* argv[] = {"/bin/bash", "-c", script.c_str(), nullptr};
  GXUtils::System(argv, &output, &exitCode);
  if (!output.empty() && output.back() != '\n') output += " (no-eol)\n";
  return exitCode == 0 ? output : output + "[" + std::to_string(exitCode) + "]\n";
}

TEST(Gxutil, DoesWhatTheSessionSays) {
  std::ifstream file(GXUTIL_SESSION);
  std::vector<std::pair<std::string, std::string>> session;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("$ ", 0) == 0) {
      session.emplace_back(line.substr(2), "");
    } else if (!line.empty() && line[0] != '#') {
      session.back().second += line + "\n";
    }
  }
  EXPECT_GT(session.size(), 100U);
  for (const auto& [command, expected] : session) {
    EXPECT_EQ(Transcript(command), expected) << command;
  }
}

}  // namespace

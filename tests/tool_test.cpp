#include <fstream>
#include <sstream>
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

// Runs each command of a transcript and compares what it prints.
void Follow(std::istream& transcript, std::size_t least) {
  std::vector<std::pair<std::string, std::string>> session;
  for (std::string line; std::getline(transcript, line);) {
    if (line.rfind("$ ", 0) == 0) {
      session.emplace_back(line.substr(2), "");
    } else if (!line.empty() && line[0] != '#') {
      session.back().second += line + "\n";
    }
  }
  EXPECT_GE(session.size(), least);
  for (const auto& [command, expected] : session) {
    EXPECT_EQ(Transcript(command), expected) << command;
  }
}

TEST(Gxutil, DoesWhatTheSessionSays) {
  std::ifstream session(GXUTIL_SESSION);
  Follow(session, 100);
}

TEST(Gxutil, DoesWhatTheManualSays) {
  std::ifstream manual(GXUTIL_MANUAL);
  std::stringstream examples;
  bool inExample = false;
  for (std::string line; std::getline(manual, line);) {
    if (line == ".EX" || line == ".EE") {
      inExample = line == ".EX";
      continue;
    }
    if (!inExample) continue;
    for (const auto& [roff, text] : {std::pair{"\\-", "-"}, {"\\(aq", "'"}, {"\\e", "\\"}}) {
      line = GXUtils::ReplaceInString(line, roff, text);
    }
    examples << line << '\n';
  }
  Follow(examples, 10);
}

}  // namespace

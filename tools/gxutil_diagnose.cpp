// The commands for a client that does not find its files or programs; the doctor has its own file.

#include <cstdlib>

#include "gxclient_util.h"
#include "gxutil.h"

namespace gxutil {
namespace {

int Which(CommandLine& line) {
  const std::string& name = line.Operand("NAME", "The program");
  line.Parse();
  const std::string found = GXUtils::Which(name);
  if (!found.empty()) return PrintLine(found);
  if (name[0] == '/') return Fail(name, NotExecutable(name));
  const char* path = std::getenv("PATH");
  if (path == nullptr) return Fail(name, "PATH is not set");
  for (std::string& file : GXUtils::SplitString(path, ':')) {
    file += '/';
    file += name;
    if (GXUtils::CheckFileExist(file)) return Fail(file, NotExecutable(file));
  }
  return Fail(name, "not found in PATH");
}

int HomeDir(CommandLine& line) {
  const auto& user = line.OptionalOperand("USER", "Looked up if HOME is \"/\" (default: you)");
  line.Notes("Creates .gannorex in the home directory if it is missing.");
  line.Parse();
  return PrintLine(GXUtils::calcHomeDir(user ? *user : GXUtils::calcRunningUser()));
}

int RunningUser(CommandLine& line) {
  line.Parse();
  return PrintLine(GXUtils::calcRunningUser());
}

int ShowInFileManager(CommandLine& line) {
  const std::string& path = line.Operand("PATH", "The file");
  line.Parse();
  const int status = GXUtils::ShowInFileManager(path);
  if (status == 0) return 0;
  const char* const reasons[] = {
      "does not exist or cannot be reached",
      "no session bus, display or program to show it; see 'gxutil doctor'",
      "no answer in time; the file manager may still show it"};
  const bool known = status >= 1 && status <= 3;
  const std::string reason = known ? reasons[status - 1] : "not shown";
  return Fail(path, reason + " (status " + std::to_string(status) + ")");
}

}  // namespace

Group DiagnoseGroup() {
  return {
      "Diagnose",
      {
          {"doctor", "doctor", "Look for problems of this machine and session", "gxutil doctor",
           Doctor},
          {"which", "Which", "Find a program along PATH", "gxutil which ls", Which},
          {"home-dir", "calcHomeDir", "Print the home directory; creates .gannorex in it",
           "gxutil home-dir", HomeDir},
          {"running-user", "calcRunningUser", "Print the running user's name",
           "gxutil running-user", RunningUser},
          {"show-in-file-manager", "ShowInFileManager", "Show a file in the desktop's file manager",
           "gxutil show-in-file-manager ~/.profile", ShowInFileManager},
      }};
}

}  // namespace gxutil

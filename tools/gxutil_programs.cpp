// Running programs.

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

#include "gxclient_util.h"
#include "gxutil.h"
#include "support/argvector.h"

namespace gxutil {
namespace {

constexpr int kNoStatus = 125;  // our exit status if the program has none

// Ctrl-C goes to the program as well. gxutil survives it to print the captured output.
void SurviveInterrupt() {
  struct sigaction action = {};
  (void)sigaction(SIGINT, nullptr, &action);
  if (action.sa_handler == SIG_IGN) return;  // the program inherits that
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  (void)sigaction(SIGINT, &action, nullptr);
}

// An unclosed quote takes in whatever follows it. One more quote at the end then closes it; other
// command lines lose that quote.
void WarnOfUnclosedQuote(const std::string& commandLine) {
  if (GXUtils::SplitCommandLine(commandLine) == GXUtils::SplitCommandLine(commandLine + " \"")) {
    return;
  }
  (void)Fail(commandLine, "unclosed quote, the text up to the next space is lost");
}

// Calls `run` with a command line or with the argument array of several operands.
template <class Start>
int Launch(const std::vector<std::string>& operands, Start run) {
  if (operands.empty()) throw UsageError("COMMAND is required");
  if (operands.size() == 1) {
    WarnOfUnclosedQuote(operands[0]);
    return run(operands[0]);
  }
  ArgVector arguments;
  for (const std::string& operand : operands) arguments.addArgument(operand);
  return run(arguments.getArgArray());
}

std::string AccessProblem(const std::string& path) {
  struct stat info = {};
  if (stat(path.c_str(), &info) != 0) return path + ": " + std::strerror(errno);
  if (S_ISDIR(info.st_mode)) return path + ": is a directory";
  return access(path.c_str(), X_OK) == 0 ? "" : path + ": no execute permission";
}

// The reason why execvp() does not start the program, as far as the file system shows it.
std::string StartProblem(const std::vector<std::string>& operands) {
  const auto arguments = operands.size() == 1 ? GXUtils::SplitCommandLine(operands[0]) : operands;
  if (arguments.empty() || arguments[0].empty()) return "no program is given";
  const std::string& program = arguments[0];
  if (program.find('/') != std::string::npos) return AccessProblem(program);
  const char* path = std::getenv("PATH");
  if (path == nullptr) return "";
  for (const std::string& entry : GXUtils::SplitString(path, ':')) {
    const std::string file = (entry.empty() ? "." : entry) + "/" + program;
    if (GXUtils::CheckFileExist(file)) return AccessProblem(file);
  }
  return program + ": not found in PATH";
}

// The closing line of a run.
std::string Outcome(int result, int exitCode, const std::vector<std::string>& operands) {
  std::string meaning;
  if (exitCode == 128) meaning = StartProblem(operands);
  if (exitCode == 128 && meaning.empty()) meaning = "could not be started, or exited with 128";
  if (exitCode == 127) meaning = "started, but did not find a program or library";
  if (!meaning.empty()) meaning.insert(0, ": ");
  return "exit status " + std::to_string(exitCode) + meaning + " (result " +
         std::to_string(result) + ")";
}

int System(CommandLine& line) {
  const auto& operands = line.Operands("COMMAND | PROGRAM ARGUMENT...",
                                       "A command line, or a program and its arguments");
  const bool& quiet = line.Flag("-q, --quiet", "Do not print the closing line");
  line.Notes(
      "Prints the output and error output of the program together, after its end and\n"
      "after the end of all processes that hold them open. A closing line on the\n"
      "standard error has the exit status and the result of System(): 0, -1 if a signal\n"
      "ended the program or it could not be run, -2 for the status 127 or 128. The exit\n"
      "status is that of the program, or 125 for the result -1.");
  line.Parse();
  SurviveInterrupt();
  std::string output;
  int exitCode = 0;
  const int result = Launch(
      operands, [&](const auto& command) { return GXUtils::System(command, &output, &exitCode); });
  (void)PrintBytes(output);
  if (result == -1) {
    if (!quiet) PrintMessage("ended by a signal, or could not be run (result -1)");
    return kNoStatus;
  }
  if (!quiet) PrintMessage(Outcome(result, exitCode, operands));
  return exitCode;
}

int SystemNowait(CommandLine& line) {
  const auto& operands = line.Operands("COMMAND | PROGRAM ARGUMENT...",
                                       "A command line, or a program and its arguments");
  line.Notes("The program has the standard streams of gxutil. Its process id is printed.");
  line.Parse();
  const int pid =
      Launch(operands, [](const auto& command) { return GXUtils::SystemNowait(command); });
  if (pid == -1) return Fail(operands[0], "no pipe or process could be created (result -1)");
  if (pid < 0) return Fail(operands[0], "could not be executed (result -2)");
  return PrintLine(std::to_string(pid));
}

int SplitCommandLine(CommandLine& line) {
  const std::string& text = line.Operand("TEXT", "The command line");
  const bool& nul = line.NullFlag();
  line.Parse();
  (void)PrintLines(GXUtils::SplitCommandLine(text), nul);
  WarnOfUnclosedQuote(text);
  return 0;
}

int CheckFileExist(CommandLine& line) {
  const std::string& path = line.Operand("PATH", "The file");
  line.Parse();
  return PrintBool(GXUtils::CheckFileExist(path));
}

int CheckFileExecutable(CommandLine& line) {
  const std::string& path = line.Operand("PATH", "The file");
  line.Parse();
  if (GXUtils::CheckFileExecutable(path)) return PrintBool(true);
  (void)PrintBool(false);
  return Fail(path, NotExecutable(path));
}

}  // namespace

Group ProgramGroup() {
  return {
      "Programs",
      {
          {"system", "System", "Run a program, print its output, exit as it exited",
           "gxutil system ls -d /bin", System},
          {"system-nowait", "SystemNowait", "Start a program in a new session",
           "gxutil system-nowait sleep 5", SystemNowait},
          {"split-command-line", "SplitCommandLine", "Split a command line into arguments",
           "gxutil split-command-line 'ls -l \"my file\"'", SplitCommandLine},
          {"check-file-exist", "CheckFileExist", "Test whether a file exists",
           "gxutil check-file-exist /etc/passwd", CheckFileExist},
          {"check-file-executable", "CheckFileExecutable", "Test whether your execute bit is set",
           "gxutil check-file-executable /bin/ls", CheckFileExecutable},
      }};
}

}  // namespace gxutil

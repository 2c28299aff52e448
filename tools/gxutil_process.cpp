// Running and finding programs.

#include <cstdio>

#include "gxclient_util.h"
#include "gxutil.h"
#include "support/argvector.h"

namespace gxutil {
namespace {

constexpr int kNoStatus = 125;  // what we exit with for a program that left no exit status

int ShowRun(int result, const std::string& output, int exitCode) {
  (void)PrintBytes(output);
  // What the program printed comes first where both streams go to one place.
  (void)std::fflush(stdout);
  if (result == -1) {
    (void)std::fprintf(stderr, "result -1\n");
    return kNoStatus;
  }
  (void)std::fprintf(stderr, "result %d, exit status %d\n", result, exitCode);
  return exitCode;
}

// The two forms of a runner: one command line, or a program and its arguments after "--".
template <class StringForm, class ArrayForm>
int Launch(const OperandList& operands, StringForm stringForm, ArrayForm arrayForm) {
  const std::vector<std::string> given = operands.Get();
  if (!operands.AfterDashes()) {
    if (given.size() != 1) throw CLI::RequiredError("one COMMAND, or -- PROGRAM ARGUMENT...,");
    return stringForm(given[0]);
  }
  ArgVector arguments;
  for (const std::string& argument : given) arguments.addArgument(argument);
  return arrayForm(arguments.getArgArray());
}

OperandList CommandOperands(CLI::App& command) {
  return {command, "COMMAND | -- PROGRAM ARGUMENT...",
          "A command line to be split, or the program and its arguments"};
}

int RunProgram(const OperandList& operands) {
  std::string output;
  int exitCode = 0;
  const auto run = [&](const auto& command) {
    return GXUtils::System(command, &output, &exitCode);
  };
  const int result = Launch(operands, run, run);
  return ShowRun(result, output, exitCode);
}

int StartProgram(const OperandList& operands) {
  const auto start = [](const auto& command) { return GXUtils::SystemNowait(command); };
  const int pid = Launch(operands, start, start);
  if (pid < 0) return Fail("result " + std::to_string(pid));
  return PrintLine(std::to_string(pid));
}

}  // namespace

void AddProcessCommands(CLI::App& app) {
  Add(app, "split-command-line", "Cut a command line into its arguments", [](CLI::App& command) {
    const auto text = Operand(command, "TEXT", "The command line");
    const auto nul = NullOption(command);
    return [=] { return PrintLines(GXUtils::SplitCommandLine(text()), nul()); };
  });
  Add(app, "system",
      "Run a program, print what it printed, exit as it exited (125: no exit status)",
      [](CLI::App& command) {
        return [operands = CommandOperands(command)] { return RunProgram(operands); };
      });
  Add(app, "system-nowait", "Start a program in its own session and print its process id",
      [](CLI::App& command) {
        return [operands = CommandOperands(command)] { return StartProgram(operands); };
      });
  Add(app, "check-file-exist", "Say whether a file exists", [](CLI::App& command) {
    const auto path = Operand(command, "PATH", "The file");
    return [=] { return PrintBool(GXUtils::CheckFileExist(path())); };
  });
  Add(app, "check-file-executable", "Say whether your execute bit is set", [](CLI::App& command) {
    const auto path = Operand(command, "PATH", "The file");
    return [=] { return PrintBool(GXUtils::CheckFileExecutable(path())); };
  });
  Add(app, "which", "Find a program along PATH", [](CLI::App& command) {
    const auto name = Operand(command, "NAME", "The program");
    return [=] {
      const std::string found = GXUtils::Which(name());
      return found.empty() ? kFailure : PrintLine(found);
    };
  });
}

}  // namespace gxutil

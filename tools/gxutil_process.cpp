// Running and finding programs.

#include "gxclient_util.h"
#include "gxutil.h"
#include "support/argvector.h"

namespace gxutil {
namespace {

constexpr int kNoStatus = 125;  // what we exit with for a program that left no exit status

int ShowRun(int result, const std::string& output, int exitCode) {
  (void)PrintBytes(output);
  if (result == -1) {
    (void)Fail("result -1: a signal ended the program, or it could not be run");
    return kNoStatus;
  }
  (void)Fail("result " + std::to_string(result) + ", exit status " + std::to_string(exitCode));
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
          "A command line, or a program and its arguments"};
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
  if (pid == -1) return Fail("result -1: no pipe or process could be made");
  if (pid < 0) return Fail("result -2: the program could not be executed");
  return PrintLine(std::to_string(pid));
}

}  // namespace

void AddProcessCommands(CLI::App& app) {
  Add(app, "split-command-line", "Cut a command line into its arguments", [](CLI::App& command) {
    const auto text = Operand(command, "TEXT", "The command line");
    const auto nul = NullOption(command);
    return [=] { return PrintLines(GXUtils::SplitCommandLine(text()), nul()); };
  });
  Add(app, "system", "Run a program, print its output, exit as it exited", [](CLI::App& command) {
    const OperandList operands = CommandOperands(command);
    command.footer(
        "The output comes at the end: when the program has ended, and whatever it has\n"
        "left behind that holds its output. A NUL byte and what follows it in a piece of\n"
        "255 bytes are lost. The exit status is that of the program, 125 where it left\n"
        "none.");
    return [=] { return RunProgram(operands); };
  });
  Add(app, "system-nowait", "Start a program in its own session, print its id",
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

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

int RunProgram(const OperandList& operands) {
  std::string output;
  int exitCode = 0;
  if (!operands.AfterDashes()) {
    const std::vector<std::string> command = operands.Get();
    if (command.size() != 1) throw CLI::RequiredError("one COMMAND, or -- PROGRAM ARGUMENT...,");
    const int result = GXUtils::System(command[0], &output, &exitCode);
    return ShowRun(result, output, exitCode);
  }
  ArgVector arguments;
  for (std::string& operand : operands.Get()) arguments.addArgument(std::move(operand));
  const int result = GXUtils::System(arguments.getArgArray(), &output, &exitCode);
  return ShowRun(result, output, exitCode);
}

}  // namespace

void AddProcessCommands(CLI::App& app) {
  Add(app, "split-command-line", "Cut a command line into its arguments, one a line",
      [](CLI::App& command) {
        const auto* text = command.add_option("TEXT", "The command line")->required();
        const auto* nul = command.add_flag("-0,--null", "End each argument with NUL, not newline");
        return [=] {
          return PrintLines(GXUtils::SplitCommandLine(text->as<std::string>()), nul->count() != 0);
        };
      });
  Add(app, "system",
      "Run a program, print what it printed, exit as it exited (125: no exit status)",
      [](CLI::App& command) {
        const OperandList operands(command, "COMMAND | -- PROGRAM ARGUMENT...",
                                   "A command line to be split, or the program and its arguments");
        return [=] { return RunProgram(operands); };
      });
}

}  // namespace gxutil

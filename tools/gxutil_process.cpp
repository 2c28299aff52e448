// Running and finding programs.

#include <csignal>

#include "gxclient_util.h"
#include "gxutil.h"
#include "support/argvector.h"

namespace gxutil {
namespace {

constexpr int kNoStatus = 125;  // what we exit with for a program that left no exit status

volatile std::sig_atomic_t interrupted = 0;

void TakeInterrupts(int flags);

// From the second one on, an interrupt ends the read or the wait that it comes upon.
void CountInterrupt(int /*signal*/) {
  interrupted = 1;
  TakeInterrupts(0);
}

void TakeInterrupts(int flags) {
  struct sigaction action = {};
  action.sa_handler = CountInterrupt;
  action.sa_flags = flags;
  sigemptyset(&action.sa_mask);
  (void)sigaction(SIGINT, &action, nullptr);
}

// While a program runs, an interrupt from the keyboard is for the program, which has it as well:
// what it still prints is captured. Pressed again, it ends the capture, then the wait.
class ProgramsInterrupt {
 public:
  ProgramsInterrupt() {
    (void)sigaction(SIGINT, nullptr, &saved_);
    if (saved_.sa_handler != SIG_IGN) TakeInterrupts(SA_RESTART);
  }
  ProgramsInterrupt(const ProgramsInterrupt&) = delete;
  ProgramsInterrupt& operator=(const ProgramsInterrupt&) = delete;
  ~ProgramsInterrupt() { (void)sigaction(SIGINT, &saved_, nullptr); }

 private:
  struct sigaction saved_ = {};
};

int ShowRun(int result, const std::string& output, int exitCode) {
  (void)PrintBytes(output);
  if (result == -1) {
    (void)Fail("result -1: a signal ended the program, or it could not be run");
    // Ends as the program did, so that a script that runs this ends as well.
    if (interrupted != 0) (void)std::raise(SIGINT);
    return kNoStatus;
  }
  (void)Fail("result " + std::to_string(result) + ", exit status " + std::to_string(exitCode));
  return exitCode;
}

// The two forms of a runner: one command line, or a program and its arguments after "--".
template <class StringForm, class ArrayForm>
int Launch(const OperandList& operands, StringForm stringForm, ArrayForm arrayForm) {
  const std::vector<std::string> given = operands.Get();
  const bool isArray = operands.AfterDashes();
  if (isArray ? given.empty() : given.size() != 1) {
    throw CLI::RequiredError("one COMMAND, or -- PROGRAM ARGUMENT...,");
  }
  if (!isArray) return stringForm(given[0]);
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
  const int result = [&] {
    const ProgramsInterrupt interrupt;
    return Launch(operands, run, run);
  }();
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
    command.footer(
        "A quote that is not closed loses its argument, up to the next space or the end.");
    return [=] { return PrintLines(GXUtils::SplitCommandLine(text()), nul()); };
  });
  Add(app, "system", "Run a program, print its output, exit as it exited", [](CLI::App& command) {
    const OperandList operands = CommandOperands(command);
    command.footer(
        "The output, with the error output in it, comes at the end: when the program has\n"
        "ended, and whatever it has left behind that holds its output. A NUL byte and\n"
        "what follows it in a piece of 255 bytes are lost. The program reads the standard\n"
        "input. The exit status is that of the program, 125 where it left none. An\n"
        "interrupt from the keyboard is for the program; what it printed comes then as\n"
        "well.");
    return [=] { return RunProgram(operands); };
  });
  Add(app, "system-nowait", "Start a program in its own session, print its id",
      [](CLI::App& command) {
        const OperandList operands = CommandOperands(command);
        command.footer("The program has the standard streams of gxutil.");
        return [=] { return StartProgram(operands); };
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

/// @file
/// Shared by the commands of gxutil. A command is a function that declares its operands and
/// options, parses the command line and returns the exit status:
///
///     int Strip(CommandLine& line) {
///       const std::string& text = line.Operand("TEXT", "The text");
///       const std::string& set = line.Operand("SET", "The bytes to remove");
///       line.Parse();
///       return PrintBytes(GXUtils::Strip(text, set));
///     }
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace gxutil {

constexpr int kFailure = 1;     // the exit status of an operation that failed
constexpr int kUsageError = 2;  // the exit status for a command line that cannot be parsed

class CommandLine;

struct Command {
  const char* name;
  const char* function;  ///< the function that it calls: another name of the command
  const char* summary;
  const char* example;
  int (*run)(CommandLine& line);
};

struct Group {
  const char* title;
  std::vector<Command> commands;
};

Group DiagnoseGroup();
Group ProgramGroup();
Group TextGroup();
Group EncodingGroup();
Group HostGroup();

int Doctor(CommandLine& line);

/// A command line that cannot be parsed. what() is the reason.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Thrown by Parse() for -h.
struct HelpRequest {};

/// The command line of one command. Each member function up to Parse() declares something and
/// returns a reference to its value, which Parse() sets.
class CommandLine {
 public:
  CommandLine(const Command& command, std::vector<std::string> arguments);
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;
  ~CommandLine();

  const std::string& Operand(const char* name, const char* help);
  const std::optional<std::string>& OptionalOperand(const char* name, const char* help);

  /// The last operand: data, which may also come from a file (-f) or the standard input. The
  /// command may move the value away.
  std::string& Input(const char* name, const char* help);

  /// Any number of operands, byte for byte. Options precede the first one.
  const std::vector<std::string>& Operands(const char* name, const char* help);

  const bool& Flag(const char* names, const char* help);
  const bool& NullFlag();
  const std::optional<std::string>& Option(const char* names, const char* value, const char* help);

  /// Text for the end of the help.
  void Notes(const char* text);

  /// @throws UsageError, HelpRequest, or a std::runtime_error if the input cannot be read.
  void Parse();

  std::string Help() const;

 private:
  const Command& command_;
  std::vector<std::string> arguments_;
  std::unique_ptr<CLI::App> app_;
  std::deque<std::string> texts_;
  std::deque<std::optional<std::string>> options_;
  std::deque<bool> flags_;
  std::vector<std::string> operands_;
  std::string* input_ = nullptr;
  const std::optional<std::string>* inputOperand_ = nullptr;
  const std::optional<std::string>* inputFile_ = nullptr;
  std::string operandNames_;
  std::string helpLines_;
  std::string notes_;
};

/// @throws UsageError if `text` is not a number or out of range.
long ReadNumber(const std::string& text);

/// Print to the standard output: bytes as they are, each line with a newline or NUL byte. All
/// return 0. A write error shows in OutputFailed() and makes gxutil exit with kFailure.
int PrintBytes(const std::string& bytes);
int PrintLine(const std::string& line);
int PrintLines(const std::vector<std::string>& lines, bool endWithNul);
void Flush();
bool OutputFailed();

/// Prints "true" or "false" and returns 0 or kFailure.
int PrintBool(bool value);

/// Prints "gxutil: COMMAND: MESSAGE" as one line to the standard error, after the results so far.
void PrintMessage(const std::string& message);

/// Prints a message and makes gxutil exit with kFailure, unless the command returns another
/// status. Returns kFailure.
int Fail(const std::string& reason);
int Fail(const std::string& object, const std::string& reason);

/// Log lines of the module are failures, which Fail() prints. After QuietLog(), they only count.
void QuietLog();
int LoggedLines();

/// The reason why CheckFileExecutable() refuses `path`.
std::string NotExecutable(const std::string& path);

}  // namespace gxutil

/// @file
/// What the commands of gxutil share. A command is one Add() call:
///
///     Add(app, "name", "What it does", [](CLI::App& command) {
///       const auto text = Operand(command, "TEXT", "What it is");
///       return [=] { return PrintLine(GXUtils::Name(text())); };
///     });
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace gxutil {

constexpr int kFailure = 1;  // the exit status of an operation that failed

/// Runs a command whose operands have been read; the result is the exit status.
using Body = std::function<int()>;

/// Adds a command: `define` declares its options and operands and returns its body.
void Add(CLI::App& app, const std::string& name, const std::string& summary,
         const std::function<Body(CLI::App&)>& define);

/// What an option or operand was given as; to be called once the command line has been read.
using Text = std::function<std::string()>;
using Switch = std::function<bool()>;

/// Declares an operand that has to be given.
Text Operand(CLI::App& command, const std::string& name, const std::string& help);

/// Declares an operand that is the whole standard input where it is not given.
Text Input(CLI::App& command, const std::string& name, const std::string& help);

/// Declares "-s, --separator": one byte, or "\0" for NUL; the comma by default.
std::function<char()> SeparatorOption(CLI::App& command);

/// Declares "-0, --null" of the commands that print a list.
Switch NullOption(CLI::App& command);

/// The operands of a command that takes any number of them. They are handed on byte for byte, and
/// options stand before the first one; after "--" an operand may begin with a dash.
class OperandList {
 public:
  /// Makes `command` take the operands `name`, shown with `help` in its help text.
  OperandList(CLI::App& command, const std::string& name, const std::string& help);

  std::vector<std::string> Get() const;

  /// Whether the operands follow a "--".
  bool AfterDashes() const;

 private:
  CLI::App* command_;
};

/// Results go to the standard output: bytes as they are, lines with a line feed (or NUL) each. All
/// return the exit status 0.
int PrintBytes(const std::string& bytes);
int PrintLine(const std::string& line);
int PrintLines(const std::vector<std::string>& lines, bool endWithNul);

/// Prints "true" or "false"; the exit status is 0 or kFailure.
int PrintBool(bool value);

/// Writes "gxutil: ", the message on one line and a line feed to the standard error stream, after
/// the results so far; returns kFailure.
int Fail(std::string message);

/// Whether a call of the module has logged something, which was then shown as by Fail(). The
/// command exits with kFailure, unless it fails with another status.
bool HasLogged();

/// Keeps to itself what is logged while it lives, but for what a later one keeps meanwhile.
class KeptLog {
 public:
  KeptLog();
  KeptLog(const KeptLog&) = delete;
  KeptLog& operator=(const KeptLog&) = delete;
  ~KeptLog();

  void Keep(std::string message);
  bool Has(const std::string& message) const;

 private:
  KeptLog* outer_;
  std::vector<std::string> lines_;
};

void AddProcessCommands(CLI::App& app);
void AddTextCommands(CLI::App& app);
void AddEncodingCommands(CLI::App& app);
void AddHostCommands(CLI::App& app);
void AddDoctorCommand(CLI::App& app);

}  // namespace gxutil

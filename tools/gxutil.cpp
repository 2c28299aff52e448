// The module by hand, from a shell. Results go to the standard output, diagnostics to the standard
// error; exit status 1 for an operation that failed, 2 for a command line that makes no sense.

#include "gxutil.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <libintl.h>

using namespace std::string_literals;

namespace gxutil {
namespace {

constexpr int kUsageError = 2;

// Stands for the "--" before an operand list. No command line holds it: it has a NUL in it.
const std::string kDashes = "\0--"s;

// Puts the first "--" of a command with an operand list into the form in which OperandList knows
// it.
std::vector<std::string> MarkOperandList(const CLI::App& app, std::vector<std::string> arguments) {
  if (arguments.empty()) return arguments;
  const auto takesList = [&](const CLI::App* command) {
    return command->get_prefix_command() && command->get_name() == arguments.front();
  };
  if (app.get_subcommands(takesList).empty()) return arguments;
  const auto dashes = std::find(arguments.begin(), arguments.end(), "--");
  if (dashes != arguments.end()) *dashes = kDashes;
  return arguments;
}

std::string ReadStandardInput() {
  std::string text;
  char piece[65536];
  while (const std::size_t count = std::fread(piece, 1, sizeof piece, stdin)) {
    text.append(piece, count);
  }
  if (std::ferror(stdin) != 0) throw std::runtime_error("the standard input cannot be read");
  return text;
}

// Shows the module's messages in the user's language. The catalogues are where the installation
// puts them, seen from the program's own folder; the build folder is laid out the same way.
void UseCatalogues() {
  std::error_code error;
  std::filesystem::path directory =
      std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  if (error) directory = GXUTIL_BINDIR;  // no such link on macOS
  (void)bindtextdomain("gxclient", (directory / GXUTIL_LOCALEDIR).c_str());
  (void)textdomain("gxclient");
}

}  // namespace

void Add(CLI::App& app, const std::string& name, const std::string& summary,
         const std::function<Body(CLI::App&)>& define) {
  CLI::App* command = app.add_subcommand(name, summary);
  command->callback([body = define(*command)] {
    const int status = body();
    if (status != 0) throw CLI::RuntimeError(status);
  });
}

Text Operand(CLI::App& command, const std::string& name, const std::string& help) {
  const CLI::Option* operand = command.add_option(name, help)->required();
  return [operand] { return operand->as<std::string>(); };
}

Text Input(CLI::App& command, const std::string& name, const std::string& help) {
  const std::string fullHelp = help + " (default: standard input)";
  const CLI::Option* operand = command.add_option(name, fullHelp);
  return [operand] {
    return operand->count() != 0 ? operand->as<std::string>() : ReadStandardInput();
  };
}

std::function<char()> SeparatorOption(CLI::App& command) {
  const CLI::Option* option =
      command.add_option("-s,--separator", "The separator, \\0 for NUL (default: a comma)")
          ->option_text("BYTE")
          ->check([](const std::string& text) {
            const bool good = text.size() == 1 || text == "\\0";
            return good ? "" : "the separator is one byte";
          });
  return [option] {
    const auto text = option->count() == 0 ? "," : option->as<std::string>();
    return text.size() == 1 ? text[0] : '\0';
  };
}

Switch NullOption(CLI::App& command) {
  const CLI::Option* flag =
      command.add_flag("-0,--null", "End each item with NUL, not a line feed");
  return [flag] { return flag->count() != 0; };
}

OperandList::OperandList(CLI::App& command, const std::string& name, const std::string& help)
    : command_(&command) {
  command.prefix_command();
  command.footer("Operands:\n  " + name + "  " + help);
}

std::vector<std::string> OperandList::Get() const {
  std::vector<std::string> operands = command_->remaining();
  if (AfterDashes()) operands.erase(operands.begin());
  std::replace(operands.begin(), operands.end(), kDashes, "--"s);  // came after an operand
  return operands;
}

bool OperandList::AfterDashes() const {
  const std::vector<std::string> operands = command_->remaining();
  return !operands.empty() && operands.front() == kDashes;
}

int PrintBytes(const std::string& bytes) {
  (void)std::fwrite(bytes.data(), 1, bytes.size(), stdout);
  return 0;
}

int PrintLine(const std::string& line) { return PrintLines({line}, false); }

int PrintLines(const std::vector<std::string>& lines, bool endWithNul) {
  for (const std::string& line : lines) {
    (void)PrintBytes(line);
    (void)std::fputc(endWithNul ? '\0' : '\n', stdout);
  }
  return 0;
}

int PrintBool(bool value) {
  (void)PrintLine(value ? "true" : "false");
  return value ? 0 : kFailure;
}

int Fail(const std::string& message) {
  (void)std::fprintf(stderr, "gxutil: %s\n", message.c_str());
  return kFailure;
}

int Run(std::vector<std::string> arguments) {
  CLI::App app{"Calls the functions of gxclient_util, one command each.", "gxutil"};
  app.set_version_flag("--version", "gxutil " GXUTIL_VERSION);
  app.require_subcommand(1);
  AddProcessCommands(app);
  AddTextCommands(app);
  AddEncodingCommands(app);
  AddHostCommands(app);
  AddDoctorCommand(app);
  app.footer(  // last: the commands would inherit it
      "Exit status:\n"
      "  0  The operation succeeded\n"
      "  1  It failed\n"
      "  2  The command line makes no sense");

  arguments = MarkOperandList(app, std::move(arguments));
  std::reverse(arguments.begin(), arguments.end());  // as the parser wants them
  try {
    app.parse(std::move(arguments));
  } catch (const CLI::RuntimeError& error) {
    return error.get_exit_code();
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kUsageError;
  }
  return 0;
}

}  // namespace gxutil

int main(int argc, char** argv) {
  try {
    std::setlocale(LC_ALL, "");
    gxutil::UseCatalogues();
    const int status = gxutil::Run({argv + 1, argv + argc});
    // Results that did not reach their reader are a failure, whatever the operation said.
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
    return gxutil::Fail("the standard output cannot be written");
  } catch (const std::exception& error) {
    return gxutil::Fail(error.what());
  }
}

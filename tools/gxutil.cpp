// The module by hand, from a shell. Results go to the standard output, diagnostics to the standard
// error; exit status 1 for an operation that failed, 2 for a command line that makes no sense.

#include "gxutil.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>
#include <new>
#include <numeric>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <libintl.h>

#include "gxclient_util.h"

using namespace std::string_literals;

namespace gxutil {
namespace {

constexpr int kUsageError = 2;

constexpr std::size_t kHelpColumn = 26;  // leaves room for the texts in 80 columns

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

// How many letters have to be put in, taken out or replaced to make one word of the other.
std::size_t Distance(const std::string& from, const std::string& to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), 0);
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < to.size(); ++j) {
      const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

// The command that was probably meant: one that begins with the word, or else differs from it in
// less than half of its letters; empty where there is none.
std::string NearestCommand(const CLI::App& app, const std::string& word) {
  std::string nearest;
  std::size_t least = (word.size() + 1) / 2;
  for (const CLI::App* command : app.get_subcommands(nullptr)) {
    const std::string& name = command->get_name();
    const std::size_t distance = name.rfind(word, 0) == 0 ? 0 : Distance(word, name);
    if (distance >= least) continue;
    least = distance;
    nearest = name;
  }
  return nearest;
}

// "help", "help COMMAND" and "version" as the options that they stand for.
std::vector<std::string> ReplaceWords(std::vector<std::string> arguments) {
  if (arguments.empty()) return arguments;
  if (arguments.front() == "help" && arguments.size() > 1) {
    arguments.front() = std::exchange(arguments[1], "--help");
  }
  std::string& word = arguments.front();
  if (word == "help" || word == "version") word.insert(0, "--");
  return arguments;
}

// Why the first argument cannot be what it has to be, a command or an option of gxutil itself;
// empty where it can.
std::string CommandTrouble(const CLI::App& app, const std::vector<std::string>& arguments) {
  if (arguments.empty()) return "a command is missing; 'gxutil help' lists them";
  const std::string& word = arguments.front();
  const auto hasName = [&](const CLI::App* command) { return command->get_name() == word; };
  if (!app.get_subcommands(hasName).empty()) return {};
  if (app.get_option_no_throw(word) != nullptr) return {};
  const std::string nearest = NearestCommand(app, word);
  const std::string advice =
      nearest.empty() ? "'gxutil help' lists the commands" : "did you mean '" + nearest + "'?";
  return "'" + word + "' is no command; " + advice;
}

// Writes the help texts, also of a command with an operand list, of which the parser knows nothing.
class HelpFormatter : public CLI::Formatter {
 public:
  explicit HelpFormatter(std::string operands = {}, std::string help = {})
      : operands_(std::move(operands)), help_(std::move(help)) {
    column_width(kHelpColumn);
    label("SUBCOMMAND", "COMMAND");
    label("Positionals", "Operands");
    label("REQUIRED", "");  // the usage line tells
  }
  std::string make_usage(const CLI::App* app, std::string name) const override {
    std::string usage = GXUtils::Strip(Formatter::make_usage(app, std::move(name)), "\n");
    if (usage.rfind("Usage: ", 0) != 0) usage.insert(0, "Usage: ");  // CLI11 2.6 leaves it out
    if (!operands_.empty()) usage += " " + operands_;
    return usage + "\n";
  }
  std::string make_positionals(const CLI::App* app) const override {
    if (operands_.empty()) return Formatter::make_positionals(app);
    return "\nOperands:\n  " + operands_ + "\n" + std::string(kHelpColumn, ' ') + help_ + "\n";
  }

 private:
  std::string operands_;
  std::string help_;
};

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
// puts them, seen from the program's own directory; the build directory is laid out the same way.
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
  CLI::App* command = app.add_subcommand(name, summary)->group("Commands");
  command->callback([body = define(*command)] {
    int status = body();
    if (status == 0 && HasLogged()) status = kFailure;
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
      command.add_flag("-0,--null")->description("End each item with NUL, not a line feed");
  return [flag] { return flag->count() != 0; };
}

OperandList::OperandList(CLI::App& command, const std::string& name, const std::string& help)
    : command_(&command) {
  command.prefix_command();
  command.formatter(std::make_shared<HelpFormatter>(name, help));
}

std::vector<std::string> OperandList::Get() const {
  std::vector<std::string> operands = command_->remaining();
  if (AfterDashes()) operands.erase(operands.begin());
  std::replace(operands.begin(), operands.end(), kDashes, "--"s);  // came after an operand
  const bool isOption =
      !AfterDashes() && !operands.empty() && operands[0].size() > 1 && operands[0][0] == '-';
  if (isOption) throw CLI::ExtrasError({operands[0]});
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

int Fail(std::string message) {
  (void)std::fflush(stdout);  // results first, where both streams go to one place
  message = GXUtils::ReplaceInString(message, "\n", "\\n");
  message = GXUtils::ReplaceInString(message, "\r", "\\r");
  (void)std::fprintf(stderr, "gxutil: %s\n", message.c_str());
  return kFailure;
}

int Run(std::vector<std::string> arguments) {
  CLI::App app{"Calls the functions of gxclient_util, one command each.", "gxutil"};
  app.formatter(std::make_shared<HelpFormatter>());
  app.require_subcommand(1);
  AddProcessCommands(app);
  AddTextCommands(app);
  AddEncodingCommands(app);
  AddHostCommands(app);
  AddDoctorCommand(app);
  // Last: the commands would inherit these.
  app.set_version_flag("--version", "gxutil " GXUTIL_VERSION,
                       "Print the version; also 'gxutil version'");
  app.set_help_flag("-h,--help", "Print this text; 'gxutil help COMMAND' explains one");
  app.footer(
      "Exit status:\n"
      "  0  The operation succeeded\n"
      "  1  It failed or lost something\n"
      "  2  The command line makes no sense");

  arguments = ReplaceWords(std::move(arguments));
  const std::string trouble = CommandTrouble(app, arguments);
  if (!trouble.empty()) {
    (void)Fail(trouble);
    return kUsageError;
  }
  const std::string first = arguments.front();
  arguments = MarkOperandList(app, std::move(arguments));
  std::reverse(arguments.begin(), arguments.end());  // as the parser wants them
  try {
    app.parse(std::move(arguments));
  } catch (const CLI::RuntimeError& error) {
    return error.get_exit_code();
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);  // --help or --version
    (void)Fail(first + ": " + error.what() + "; 'gxutil help " + first + "' says more");
    return kUsageError;
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
  } catch (const std::bad_alloc&) {
    return gxutil::Fail("there is not enough memory");
  } catch (const std::exception& error) {
    return gxutil::Fail(error.what());
  }
}

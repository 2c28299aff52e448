// The functions of gxclient_util from a shell: the list of commands, output and messages.

#include "gxutil.h"

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <new>
#include <system_error>
#include <utility>

#include <libintl.h>
#include <sys/stat.h>

#include "gxclient_util.h"
#include "support/logfile.h"

// The tool's own log, in the place of the one in gxclient_support.
Logfile logfile;

namespace gxutil {
namespace {

const char* commandName = nullptr;
int writeError = 0;  // of the standard output
bool failed = false;
bool logIsQuiet = false;
int loggedLines = 0;

void RememberWriteError() {
  if (writeError == 0) writeError = errno;
}

// A message is one line, whatever it quotes.
void PrintRawMessage(std::string message) {
  message = GXUtils::ReplaceInString(message, "\n", "\\n");
  message = GXUtils::ReplaceInString(message, "\r", "\\r");
  (void)std::fprintf(stderr, "gxutil: %s\n", message.c_str());
}

// The important group first.
std::vector<Group> Groups() {
  return {DiagnoseGroup(), ProgramGroup(), TextGroup(), EncodingGroup(), HostGroup()};
}

int PrintHelp() {
  (void)PrintLine(
      "Usage: gxutil COMMAND [OPTION]... [OPERAND]...\n\n"
      "Calls the functions of gxclient_util, one command each.");
  for (const Group& group : Groups()) {
    (void)PrintLine(std::string("\n") + group.title + ":");
    for (const Command& command : group.commands) {
      std::string name = std::string("  ") + command.name;
      name.resize(26, ' ');
      (void)PrintLine(name + command.summary);
    }
  }
  return PrintLine(
      "\n"
      "'gxutil help COMMAND' explains a command. 'gxutil version' prints the version.\n"
      "An operand that begins with a dash must follow '--'.\n\n"
      "Exit status:\n"
      "  0  The operation succeeded, or the answer is true\n"
      "  1  The operation failed or lost something, or the answer is false\n"
      "  2  Usage error");
}

int RunCommand(const Command& command, std::vector<std::string> arguments) {
  commandName = command.name;
  CommandLine line(command, std::move(arguments));
  try {
    const int status = command.run(line);
    return status == 0 && failed ? kFailure : status;
  } catch (const HelpRequest&) {
    return PrintBytes(line.Help());
  } catch (const UsageError& error) {
    PrintMessage(std::string(error.what()) + "; see 'gxutil help " + command.name + "'");
    return kUsageError;
  }
}

int RunWord(const std::string& word, const std::vector<std::string>& arguments) {
  const std::vector<Group> groups = Groups();
  const char* begun = nullptr;
  for (const Group& group : groups) {
    for (const Command& command : group.commands) {
      for (const std::string name : {command.name, command.function}) {
        if (name == word) return RunCommand(command, arguments);
        if (begun == nullptr && name.rfind(word, 0) == 0) begun = command.name;
      }
    }
  }
  const std::string advice = begun == nullptr || word.empty()
                                 ? "'gxutil help' lists the commands"
                                 : std::string("did you mean '") + begun + "'?";
  PrintRawMessage("'" + word + "' is not a command; " + advice);
  return kUsageError;
}

int Run(std::vector<std::string> arguments) {
  if (arguments.empty()) {
    PrintRawMessage("a command is missing; 'gxutil help' lists them");
    return kUsageError;
  }
  std::string word = arguments[0];
  arguments.erase(arguments.begin());
  if (word == "version" || word == "--version")
    return PrintLine(std::string("gxutil ") + GXUTIL_VERSION);
  if (word == "help" || word == "-h" || word == "--help") {
    if (arguments.empty()) return PrintHelp();
    word = std::exchange(arguments[0], "--help");
  }
  return RunWord(word, arguments);
}

// Shows the module's messages in the user's language. The path of the catalogues is relative to the
// program's directory, in the build directory as well.
void UseCatalogues() {
  std::error_code error;
  std::filesystem::path directory =
      std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  if (error) directory = GXUTIL_BINDIR;  // no such link on macOS
  (void)bindtextdomain("gxclient", (directory / GXUTIL_LOCALEDIR).c_str());
  (void)textdomain("gxclient");
}

}  // namespace

int PrintBytes(const std::string& bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) RememberWriteError();
  return 0;
}

int PrintLine(const std::string& line) { return PrintLines({line}, false); }

int PrintLines(const std::vector<std::string>& lines, bool endWithNul) {
  for (const std::string& line : lines) {
    (void)PrintBytes(line);
    (void)PrintBytes(endWithNul ? std::string(1, '\0') : "\n");
  }
  return 0;
}

void Flush() {
  if (std::fflush(stdout) != 0) RememberWriteError();
}

bool OutputFailed() { return writeError != 0; }

int PrintBool(bool value) {
  (void)PrintLine(value ? "true" : "false");
  return value ? 0 : kFailure;
}

void PrintMessage(const std::string& message) {
  Flush();  // results first, where both streams go to one place
  PrintRawMessage(std::string(commandName) + ": " + message);
}

int Fail(const std::string& reason) {
  PrintMessage(reason);
  failed = true;
  return kFailure;
}

int Fail(const std::string& object, const std::string& reason) {
  return Fail(object + ": " + reason);
}

void QuietLog() { logIsQuiet = true; }

int LoggedLines() { return loggedLines; }

std::string NotExecutable(const std::string& path) {
  struct stat info = {};
  const bool exists = stat(path.c_str(), &info) == 0;
  return exists ? "no execute bit for this user" : std::strerror(errno);
}

}  // namespace gxutil

void Logfile::Log(std::string message, int /*level*/) {
  ++gxutil::loggedLines;
  if (!gxutil::logIsQuiet) (void)gxutil::Fail(message);
}

int main(int argc, char** argv) {
  using namespace gxutil;
  int status = kFailure;
  try {
    std::setlocale(LC_ALL, "");
    UseCatalogues();
    status = Run({argv + 1, argv + argc});
  } catch (const std::bad_alloc&) {
    (void)Fail("not enough memory");
  } catch (const std::exception& error) {
    (void)Fail(error.what());
  }
  Flush();
  if (!OutputFailed()) return status;
  PrintRawMessage(std::string("write error: ") + std::strerror(writeError));
  return kFailure;
}

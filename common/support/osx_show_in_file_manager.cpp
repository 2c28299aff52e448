#include "support/osx_show_in_file_manager.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <filesystem>

#include <fcntl.h>
#include <poll.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include "internal/child.h"
#include "internal/descriptor.h"
#include "internal/environment.h"

namespace {

using GXInternal::Child;
using GXInternal::CloseRange;
using GXInternal::kFirstClosedFd;
using GXInternal::Pipe;

constexpr int kShown = 0;
constexpr int kNothingThere = 1;
constexpr int kNotShown = 2;
constexpr int kNoAnswer = 3;

// What the forked children say about the program; the first byte counts.
constexpr char kSucceeded = '+';  // it exited with 0
constexpr char kFailed = '-';     // it could not be started, or ended in another way
constexpr char kTimedOut = '?';   // it was ended for taking too long

// A bus that accepts connections and answers nothing would hold dbus-send for ever.
constexpr unsigned kLongestRun = 10;  // seconds, more than dbus-send waits for the reply

// What the forked child works on, all of it made before the fork.
struct Launch {
  const char* const* argv;
  int report;       // the pipe to the parent
  int errorOutput;  // the pipe that the program has as its standard error, -1 for none
};

// The functions from here to Detach() run in the forked child: only async-signal-safe calls on
// values prepared before the fork.

// Leaves open only the standard descriptors of the program and the report. The child may live for
// seconds, and what it held of the client would stay open as long.
bool TakeDescriptors(const Launch& launch) {
  (void)close(STDIN_FILENO);
  if (open("/dev/null", O_RDWR) != STDIN_FILENO) return false;
  const int errorOutput = launch.errorOutput >= 0 ? launch.errorOutput : STDIN_FILENO;
  if (dup2(STDIN_FILENO, STDOUT_FILENO) < 0 || dup2(errorOutput, STDERR_FILENO) < 0) return false;
  CloseRange(kFirstClosedFd, launch.report - 1);
  CloseRange(launch.report + 1, INT_MAX);
  return true;
}

// Whatever the client does about signals, this child can wait for the program, the program's alarm
// ends it, and a file manager starts with no signal blocked.
void ResetSignals() {
  (void)std::signal(SIGCHLD, SIG_DFL);
  (void)std::signal(SIGALRM, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  (void)sigprocmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] void Leave(const Launch& launch, char report) {
  _exit(write(launch.report, &report, 1) == 1 ? 0 : 1);
}

[[noreturn]] void Exec(const Launch& launch) {
  (void)execvp(launch.argv[0], const_cast<char* const*>(launch.argv));
  Leave(launch, kFailed);
}

// Waits for the program in the parent's place, so that it is known how it ended also where the
// client ignores SIGCHLD or reaps every child.
[[noreturn]] void Supervise(const Launch& launch) {
  if (!TakeDescriptors(launch)) Leave(launch, kFailed);
  ResetSignals();
  const pid_t program = fork();
  if (program < 0) Leave(launch, kFailed);
  if (program == 0) {
    (void)alarm(kLongestRun);  // it stays over exec
    Exec(launch);
  }
  int status = 0;
  while (waitpid(program, &status, 0) < 0) {
    if (errno != EINTR) Leave(launch, kFailed);
  }
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) Leave(launch, kTimedOut);
  Leave(launch, status == 0 ? kSucceeded : kFailed);
}

// Leaves the program to init, in a session of its own. Nothing is reported when it has started.
[[noreturn]] void Detach(const Launch& launch) {
  if (!TakeDescriptors(launch)) Leave(launch, kFailed);
  ResetSignals();
  (void)setsid();
  const pid_t program = fork();
  if (program < 0) Leave(launch, kFailed);
  if (program == 0) Exec(launch);
  _exit(0);
}

// Back in the parent.

// Appends what has arrived, waiting for it; false at the end.
bool AppendPiece(int fd, std::string* text) {
  char piece[512];
  const ssize_t count = read(fd, piece, sizeof piece);
  if (count < 0) return errno == EINTR;
  text->append(piece, static_cast<std::size_t>(count));
  return count > 0;
}

std::string ReadAll(int fd) {
  std::string all;
  while (AppendPiece(fd, &all)) {
  }
  return all;
}

// Reads the report to its end, and first what the program has written by then: its error output may
// have no end, since what the program has started may hold it.
std::string ReadReport(int report, int errorOutput, std::string* errors) {
  std::string said;
  pollfd ends[] = {{errorOutput, POLLIN, 0}, {report, POLLIN, 0}};
  for (;;) {
    const int ready = poll(ends, 2, -1);
    if (ready < 0 && errno != EINTR) return said;
    if (ready <= 0) continue;
    if (ends[0].revents != 0) {
      if (!AppendPiece(errorOutput, errors)) ends[0].fd = -1;
    } else if (!AppendPiece(report, &said)) {
      return said;
    }
  }
}

// Runs the program to its end and takes what it writes to its standard error.
char Run(const char* const* argv, std::string* errors) {
  Child child;  // first: reaped once the pipes are closed
  Pipe report;
  Pipe errorOutput;
  if (!report.Open() || !errorOutput.Open()) return kFailed;
  const Launch launch = {argv, report.writeEnd.Get(), errorOutput.writeEnd.Get()};
  const pid_t pid = fork();
  if (pid < 0) return kFailed;
  if (pid == 0) Supervise(launch);
  child.Own(pid);

  report.writeEnd.Reset();
  errorOutput.writeEnd.Reset();
  const std::string said = ReadReport(report.readEnd.Get(), errorOutput.readEnd.Get(), errors);
  return said.empty() ? kFailed : said[0];
}

// Starts the program and waits for nothing but its exec, which closes the report. macOS has no use
// for it.
[[maybe_unused]] bool StartDetached(const char* const* argv) {
  Child child;
  Pipe report;
  if (!report.Open()) return false;
  const Launch launch = {argv, report.writeEnd.Get(), -1};
  const pid_t pid = fork();
  if (pid < 0) return false;
  if (pid == 0) Detach(launch);
  child.Own(pid);

  report.writeEnd.Reset();
  return ReadAll(report.readEnd.Get()).empty();
}

#ifdef __APPLE__

int Show(const std::string& path) {
  const char* const argv[] = {"open", "-R", path.c_str(), nullptr};
  std::string errors;
  const char result = Run(argv, &errors);
  if (result == kTimedOut) return kNoAnswer;
  return result == kSucceeded ? kShown : kNotShown;
}

#else

// The unreserved characters of RFC 3986, and the slash.
bool IsUnreserved(char byte) {
  if (byte >= 'A' && byte <= 'Z') return true;
  if (byte >= 'a' && byte <= 'z') return true;
  if (byte >= '0' && byte <= '9') return true;
  return byte == '-' || byte == '.' || byte == '_' || byte == '~' || byte == '/';
}

// More is escaped than a URI needs: dbus-send would cut the list at a comma.
std::string FileUri(const std::string& path) {
  constexpr char kHexDigits[] = "0123456789ABCDEF";
  std::string uri = "file://";
  for (const char byte : path) {
    if (IsUnreserved(byte)) {
      uri += byte;
      continue;
    }
    const auto code = static_cast<unsigned char>(byte);
    uri += '%';
    uri += kHexDigits[code >> 4];
    uri += kHexDigits[code & 15];
  }
  return uri;
}

// Whether dbus-send gave up waiting. The error's name begins its line and is not translated.
bool IsNoReply(const std::string& errors) {
  const std::string lines = "\n" + errors;
  for (const char* name : {"NoReply", "Timeout", "TimedOut"}) {
    const std::string line = std::string("\nError org.freedesktop.DBus.Error.") + name + ":";
    if (lines.find(line) != std::string::npos) return true;
  }
  return false;
}

int AskFileManager(const std::string& path) {
  if (GXInternal::SessionBusAddress().empty()) return kNotShown;
  const std::string items = "array:string:" + FileUri(path);
  // Without --print-reply it waits for no answer.
  const char* const argv[] = {"dbus-send",
                              "--session",
                              "--print-reply",
                              "--reply-timeout=5000",
                              "--dest=org.freedesktop.FileManager1",
                              "/org/freedesktop/FileManager1",
                              "org.freedesktop.FileManager1.ShowItems",
                              items.c_str(),
                              "string:",
                              nullptr};
  std::string errors;
  const char result = Run(argv, &errors);
  if (result == kSucceeded) return kShown;
  return result == kTimedOut || IsNoReply(errors) ? kNoAnswer : kNotShown;
}

// The directory that holds the item at an absolute path; "/" holds itself.
std::string DirectoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/', path.find_last_not_of('/'));
  return path.substr(0, std::max<std::size_t>(slash, 1));
}

// xdg-open may not come back before the window is closed, so it is not waited for.
int OpenDirectory(const std::string& directory) {
  using GXInternal::Environment;
  if ((Environment("DISPLAY") + Environment("WAYLAND_DISPLAY")).empty()) return kNotShown;
  const char* const argv[] = {"xdg-open", directory.c_str(), nullptr};
  return StartDetached(argv) ? kShown : kNotShown;
}

int Show(const std::string& path) {
  const int asked = AskFileManager(path);
  return asked == kNotShown ? OpenDirectory(DirectoryOf(path)) : asked;
}

#endif

}  // namespace

// Weak: a client may define its own; see logfile.cpp.
[[gnu::weak]] int osxShowInFileManager(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (!fs::exists(fs::symlink_status(path.c_str(), error))) return kNothingThere;
  const fs::path item = fs::absolute(path.c_str(), error);
  return error ? kNothingThere : Show(item.native());
}

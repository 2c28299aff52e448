#include "support/osx_show_in_file_manager.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string_view>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include "internal/child.h"
#include "internal/descriptor.h"

namespace {

using namespace GXInternal;
using Clock = std::chrono::steady_clock;

constexpr int kShown = 0;
constexpr int kNothingThere = 1;
constexpr int kNotShown = 2;

constexpr unsigned kLongestLife = 11;  // seconds, after which a signal ends a program that is asked

// How a program is started.
enum class Mode {
  kDetached,  // writes to /dev/null and lives as long as it wants
  kAsked,     // writes to the pipe and is ended when its time is up
};

// Runs in the forked child. Leaves open only the standard descriptors of the program and the pipe:
// the program may live for long and must not hold files of the client.
bool TakeDescriptors(int reportFd, Mode mode) {
  (void)close(STDIN_FILENO);
  if (open("/dev/null", O_RDWR) != STDIN_FILENO) return false;
  const int output = mode == Mode::kAsked ? reportFd : STDIN_FILENO;
  if (dup2(output, STDOUT_FILENO) < 0 || dup2(output, STDERR_FILENO) < 0) return false;
  CloseRange(kFirstClosedFd, reportFd - 1);
  CloseRange(reportFd + 1, INT_MAX);
  return true;
}

// Runs in the forked child. Sets SIGCHLD and SIGALRM to their defaults and unblocks all signals.
void ResetSignals() {
  (void)std::signal(SIGCHLD, SIG_DFL);
  (void)std::signal(SIGALRM, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  (void)sigprocmask(SIG_SETMASK, &none, nullptr);
}

// Runs in the forked child, which exits after a second fork: the program is no child of the client.
// The pipe closes with the exec, unless the program writes to it. A byte reports a failure to
// StartDetached(); ReadAnswer() finds no answer in it.
[[noreturn]] void ExecAdopted(const char* const* argv, int reportFd, Mode mode) {
  if (TakeDescriptors(reportFd, mode)) {
    ResetSignals();
    (void)setsid();
    const pid_t program = fork();
    if (program > 0) _exit(0);
    if (program == 0) {
      if (mode == Mode::kAsked) (void)alarm(kLongestLife);  // it stays over exec
      (void)execvp(argv[0], const_cast<char* const*>(argv));
    }
  }
  (void)!write(reportFd, "e", 1);
  _exit(1);
}

// Starts the program with the write end of the pipe; the read end is the caller's.
bool Start(const char* const* argv, Pipe& pipe, Mode mode) {
  if (!pipe.Open()) return false;
  const pid_t pid = fork();
  if (pid < 0) return false;
  if (pid == 0) ExecAdopted(argv, pipe.writeEnd.Get(), mode);
  pipe.writeEnd.Reset();
  Reap(pid);
  return true;
}

// Starts the program and waits until it is executed, not longer: xdg-open may exit only when the
// window is closed.
bool StartDetached(const char* const* argv) {
  Pipe pipe;
  if (!Start(argv, pipe, Mode::kDetached)) return false;
  char failure = 0;
  ssize_t count = 0;
  do {
    count = read(pipe.readEnd.Get(), &failure, 1);
  } while (count < 0 && errno == EINTR);
  return count == 0;
}

#ifdef __APPLE__

int Show(const std::string& path) {
  const char* const argv[] = {"open", "-R", path.c_str(), nullptr};
  return StartDetached(argv) ? kShown : kNotShown;
}

#else

constexpr int kNoAnswer = 3;

// A bus that accepts connections but does not answer would hold dbus-send without end.
constexpr std::chrono::seconds kLongestWait(10);  // more than dbus-send waits for the reply

// Whether the variable has a value; an empty one does not count.
bool IsSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

// Looks for the session bus as dbus-send does. Without one, dbus-send would start a bus and leave it.
bool HasSessionBus() {
  if (IsSet("DBUS_SESSION_BUS_ADDRESS")) return true;
  if (!IsSet("XDG_RUNTIME_DIR")) return false;
  const std::string bus = std::string(std::getenv("XDG_RUNTIME_DIR")) + "/bus";
  struct stat info = {};
  return lstat(bus.c_str(), &info) == 0 && S_ISSOCK(info.st_mode) && info.st_uid == getuid();
}

// Escapes all but the unreserved characters of RFC 3986 and the slash. A URI needs less, but
// dbus-send would cut the list at a comma.
std::string FileUri(const std::string& path) {
  constexpr char kHexDigits[] = "0123456789ABCDEF";
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  std::string uri = "file://";
  for (const char byte : path) {
    if (kPlain.find(byte) != std::string_view::npos) {
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

bool StartsWith(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

// The status for a line that dbus-send printed, if the line is an answer. Its lines are not
// translated.
std::optional<int> StatusOf(std::string_view line) {
  if (StartsWith(line, "method return ")) return kShown;
  if (!StartsWith(line, "Error ")) return std::nullopt;
  for (const char* name : {"NoReply:", "Timeout:", "TimedOut:"}) {
    if (StartsWith(line, std::string("Error org.freedesktop.DBus.Error.") + name)) return kNoAnswer;
  }
  return kNotShown;
}

// Returns whether there is something to read before the deadline; the end counts.
bool WaitForInput(int fd, Clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return false;
    pollfd input = {fd, POLLIN, 0};
    const int ready = poll(&input, 1, static_cast<int>(left.count()));
    if (ready > 0) return true;
    if (ready < 0 && errno != EINTR) return false;
  }
}

// Reads what dbus-send prints until a line answers, the end comes or the time is up.
int ReadAnswer(int fd) {
  const Clock::time_point deadline = Clock::now() + kLongestWait;
  std::string line;
  while (WaitForInput(fd, deadline)) {
    char piece[512];
    const ssize_t count = read(fd, piece, sizeof piece);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return StatusOf(line).value_or(kNotShown);
    for (const char byte : std::string_view(piece, static_cast<std::size_t>(count))) {
      if (byte != '\n') {
        line += byte;
        continue;
      }
      const std::optional<int> status = StatusOf(line);
      if (status) return *status;
      line.clear();
    }
  }
  return kNoAnswer;
}

int AskFileManager(const std::string& path) {
  if (!HasSessionBus()) return kNotShown;
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
  Pipe answer;
  return Start(argv, answer, Mode::kAsked) ? ReadAnswer(answer.readEnd.Get()) : kNotShown;
}

// The directory that holds the item at an absolute path; "/" holds itself.
std::string DirectoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/', path.find_last_not_of('/'));
  return path.substr(0, std::max<std::size_t>(slash, 1));
}

int OpenDirectory(const std::string& directory) {
  if (!IsSet("DISPLAY") && !IsSet("WAYLAND_DISPLAY")) return kNotShown;
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
  fs::path item = fs::absolute(path.c_str(), error);
  // These two have no name in the directory that is shown.
  const std::string name = item.filename();
  if (name == "." || name == "..") item = fs::canonical(item, error);
  return error ? kNothingThere : Show(item.native());
}

#include "gxclient_util.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <libintl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include "internal/child.h"
#include "internal/descriptor.h"
#include "internal/exec_error.h"
#include "support/argvector.h"
#include "support/gxexception.h"
#include "support/logfile.h"

namespace GXUtils {
namespace {

using namespace GXInternal;

constexpr int kRunFailed = -1;
constexpr int kNotStarted = -2;

constexpr int kNotFoundStatus = 127;    // what shells exit with for an unknown command
constexpr int kExecFailedStatus = 128;  // what our child exits with if its exec failed

constexpr int kDetachedExecFailedStatus = 1;

constexpr std::size_t kReadSize = 255;  // a piece of captured output: a NUL byte drops its rest

constexpr unsigned kLongestErrorReport = 1;  // seconds that the child has to write its error text

// Replaces an argument array without an entry: no program has the empty name.
constexpr const char* kNoProgram[] = {"", nullptr};

// The default action for SIGCHLD while a program runs. The destructor restores the previous action
// unless Restore() was called.
class DefaultSigchld {
 public:
  DefaultSigchld() = default;
  DefaultSigchld(const DefaultSigchld&) = delete;
  DefaultSigchld& operator=(const DefaultSigchld&) = delete;
  ~DefaultSigchld() {
    if (installed_) (void)Restore();
  }

  bool Install() {
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    installed_ = sigaction(SIGCHLD, &action, &saved_) == 0;
    return installed_;
  }

  bool Restore() {
    installed_ = false;
    return sigaction(SIGCHLD, &saved_, nullptr) == 0;
  }

 private:
  struct sigaction saved_ = {};
  bool installed_ = false;
};

// Runs in the forked child.
[[noreturn]] void ExecCaptured(const char* const* argv, int output) {
  (void)dup2(output, STDOUT_FILENO);
  (void)dup2(output, STDERR_FILENO);
  CloseAllFds(kFirstClosedFd, -1);  // keeps none of them
  (void)execvp(argv[0], const_cast<char* const*>(argv));
  _exit(kExecFailedStatus);
}

struct DetachedPipes {
  Pipe status;  // closes with the exec; carries a byte if that has failed
  Pipe output;  // these two only if the caller wants them
  Pipe error;
};

[[noreturn]] void EndNow(int /*signal*/) { _exit(kDetachedExecFailedStatus); }

// Ends this process after so many seconds, whatever the client does about SIGALRM. A handler does
// it: the system ignores the default action if this is process 1 of a PID namespace of the client.
void LimitLifetime(unsigned seconds) {
  struct sigaction action = {};
  action.sa_handler = EndNow;
  (void)sigaction(SIGALRM, &action, nullptr);
  sigset_t timeout;
  sigemptyset(&timeout);
  sigaddset(&timeout, SIGALRM);
  (void)sigprocmask(SIG_UNBLOCK, &timeout, nullptr);
  (void)alarm(seconds);
}

// Runs in the forked child. The error text goes to the descriptor, because the client's streams may
// be redirected or hold unflushed data.
[[noreturn]] void ExecDetached(const char* const* argv, const DetachedPipes& pipes,
                               const ExecErrorTexts& errorTexts) {
  if (pipes.output.IsOpen()) (void)dup2(pipes.output.writeEnd.Get(), STDOUT_FILENO);
  if (pipes.error.IsOpen()) (void)dup2(pipes.error.writeEnd.Get(), STDERR_FILENO);
  CloseAllFds(kFirstClosedFd, pipes.status.writeEnd.Get());
  (void)setsid();
  (void)execvp(argv[0], const_cast<char* const*>(argv));
  const int error = errno;
  (void)!write(pipes.status.writeEnd.Get(), "e", 1);
  // The parent waits for this child, which could hang: in a lock, or because the client's standard
  // error is a full pipe that the waiting thread reads.
  LimitLifetime(kLongestErrorReport);
  WriteLine(STDERR_FILENO, errorTexts.Get(error));
  _exit(kDetachedExecFailedStatus);
}

// Gives the caller a read end as the ordinary descriptor that it expects.
int HandOver(UniqueFd& end) {
  (void)fcntl(end.Get(), F_SETFD, 0);
  return end.Release();
}

bool IsExecutable(const std::string& path) {
  struct stat info = {};
  if (stat(path.c_str(), &info) != 0) return false;
  if (info.st_uid == getuid()) return (info.st_mode & S_IXUSR) != 0;
  if (info.st_gid == getgid()) return (info.st_mode & S_IXGRP) != 0;
  return (info.st_mode & S_IXOTH) != 0;
}

// Reads to the end. A failed or interrupted read ends it as well: not retried, because a signal
// handler of the client may end the capture.
void AppendOutput(int fd, std::string* output) {
  char piece[kReadSize];
  for (;;) {
    const ssize_t count = read(fd, piece, sizeof piece);
    if (count <= 0) return;
    if (output == nullptr) continue;
    output->append(piece, strnlen(piece, static_cast<std::size_t>(count)));
  }
}

bool FailRun(const char* errorLine) {
  (void)std::fputs(errorLine, stderr);
  return false;
}

// Runs the program to its end. Returns whether it exited and SIGCHLD has its previous action again,
// with the exit status in `*exitStatus`. The pipe is closed in any case.
bool RunToExit(const char* const* argv, std::string* output, int* exitStatus) {
  // Released in the reverse order: the pipe closes before the child is reaped, and the previous
  // action is restored last.
  DefaultSigchld sigchld;
  Child child;
  Pipe capture;
  if (!sigchld.Install()) return FailRun("Error: sigaction() failed\n");
  if (!capture.Open()) return FailRun("Error: pipe() failed\n");

  const pid_t pid = fork();
  if (pid < 0) return FailRun("Error: fork() failed\n");
  if (pid == 0) ExecCaptured(argv, capture.writeEnd.Get());
  child.Own(pid);

  capture.writeEnd.Reset();
  AppendOutput(capture.readEnd.Get(), output);
  capture.readEnd.Reset();

  int status = 0;
  const bool waited = child.Wait(&status);
  if (!sigchld.Restore()) return FailRun("Error: sigaction() restore failed\n");
  if (!waited || !WIFEXITED(status)) return false;
  *exitStatus = WEXITSTATUS(status);
  return true;
}

void AddCommandLine(ArgVector& arguments, std::string commandLine) {
  for (std::string& argument : SplitCommandLine(std::move(commandLine))) {
    arguments.addArgument(std::move(argument));
  }
}

}  // namespace

std::vector<std::string> SplitCommandLine(std::string commandLine) {
  std::vector<std::string> arguments;
  std::string_view rest = commandLine;
  while (!rest.empty()) {
    const bool isQuoted = rest.front() == '"';
    const std::size_t quote = isQuoted ? rest.find('"', 1) : std::string_view::npos;
    if (quote != std::string_view::npos) {
      arguments.emplace_back(rest.substr(1, quote - 1));
      rest.remove_prefix(quote + 1);
      continue;
    }
    const std::size_t end = std::min(rest.find(' '), rest.size());
    // An unclosed quote drops its field.
    if (!isQuoted && end > 0) arguments.emplace_back(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return arguments;
}

int System(const char* const* argv, std::string* output, int* exitCode) {
  if (argv[0] == nullptr) argv = kNoProgram;
  int status = 0;
  if (!RunToExit(argv, output, &status)) return kRunFailed;
  if (exitCode != nullptr) *exitCode = status;
  if (status == kExecFailedStatus) {
    logfile.Log(std::string("Failed to start command ") + argv[0], 2);
    return kNotStarted;
  }
  if (status == kNotFoundStatus) {
    logfile.Log(std::string("Command ") + argv[0] + " not found", 2);
    return kNotStarted;
  }
  return 0;
}

int System(std::string command, std::string* output, int* exitCode) {
  if (command.empty()) throw GXException(6, gettext("Empty command"));
  ArgVector arguments;
  AddCommandLine(arguments, std::move(command));
  return System(arguments.getArgArray(), output, exitCode);
}

void CloseAllFds(int firstFd, int keepFd) {
  const int first = std::max(firstFd, 0);
  if (keepFd < first || keepFd > kLastClosedFd) {
    CloseRange(first, kLastClosedFd);
    return;
  }
  CloseRange(first, keepFd - 1);
  CloseRange(keepFd + 1, kLastClosedFd);
}

int SystemNowait(const char* const* argv, int* stdoutFd, int* stderrFd) {
  if (argv[0] == nullptr) argv = kNoProgram;

  DetachedPipes pipes;
  if (!pipes.status.Open()) return kRunFailed;
  if (stdoutFd != nullptr && !pipes.output.Open()) return kRunFailed;
  if (stderrFd != nullptr && !pipes.error.Open()) return kRunFailed;
  const ExecErrorTexts errorTexts;

  const pid_t pid = fork();
  if (pid < 0) return kRunFailed;
  if (pid == 0) ExecDetached(argv, pipes, errorTexts);

  pipes.status.writeEnd.Reset();
  pipes.output.writeEnd.Reset();
  pipes.error.writeEnd.Reset();
  char report[16] = {};
  // Not retried after a signal: a handler of the client may end the wait.
  const ssize_t count = read(pipes.status.readEnd.Get(), report, sizeof report);
  pipes.status.readEnd.Reset();
  // The child still writes its error text: the read ends stay open until it has exited.
  if (count > 0) Reap(pid);
  if (count != 0) return kNotStarted;

  if (stdoutFd != nullptr) *stdoutFd = HandOver(pipes.output.readEnd);
  if (stderrFd != nullptr) *stderrFd = HandOver(pipes.error.readEnd);
  return pid;
}

int SystemNowait(std::string command, int* stdoutFd, int* stderrFd) {
  if (command.empty()) throw GXException(11, gettext("Empty command"));
  ArgVector arguments;
  AddCommandLine(arguments, std::move(command));
  return SystemNowait(arguments.getArgArray(), stdoutFd, stderrFd);
}

bool CheckFileExist(std::string path) {
  struct stat info = {};
  return stat(path.c_str(), &info) == 0;
}

bool CheckFileExecutable(std::string path) { return IsExecutable(path); }

std::string Which(std::string name) {
  if (!name.empty() && name.front() == '/')
    return IsExecutable(name) ? std::move(name) : std::string();
  const char* path = std::getenv("PATH");
  if (path == nullptr) return {};
  for (std::string& candidate : SplitString(path, ':')) {
    candidate += '/';  // so an empty entry is the root directory, unlike for execvp()
    candidate += name;
    if (IsExecutable(candidate)) return std::move(candidate);
  }
  return {};
}

}  // namespace GXUtils

// What it takes to run a program.

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <numeric>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "gxclient_util.h"
#include "gxutil_doctor.h"
#include "internal/descriptor.h"

namespace gxutil {
namespace {

bool IsOpen(int fd) { return fcntl(fd, F_GETFD) >= 0; }

// From the system's list; where there is none (a bare chroot), the numbers that ordinary limits
// reach are tried.
std::vector<int> OpenDescriptors() {
  std::vector<int> candidates;
  std::error_code error;
  for (std::filesystem::directory_iterator entry("/dev/fd", error), end; entry != end;
       entry.increment(error)) {
    candidates.push_back(std::atoi(entry->path().filename().c_str()));
  }
  if (error) {
    candidates.resize(65536);
    std::iota(candidates.begin(), candidates.end(), 0);
  }
  std::vector<int> open;  // without that of the list itself, which is closed by now
  std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(open), IsOpen);
  return open;
}

std::string LimitText(rlim_t limit) {
  return limit == RLIM_INFINITY ? "no limit" : "limit " + std::to_string(limit);
}

}  // namespace

Fact RunProgram() {
  int exitCode = 0;
  const int result = GXUtils::System("true", nullptr, &exitCode);
  if (result == 0 && exitCode == 0) return {"can be started"};
  const std::string what = result == -1  ? "did not run to its end"
                           : result == 0 ? "failed with exit status " + std::to_string(exitCode)
                                         : "was not found, or not in full";
  return {"the program 'true' " + what, "a program cannot be run",
          "See PATH above, and 'open files' and 'processes' below."};
}

Fact ProgramEnd() {
  struct sigaction action = {};
  (void)sigaction(SIGCHLD, nullptr, &action);
  if (action.sa_handler != SIG_IGN) return {"noticed"};
  return {"not noticed", "the signal that tells of it (SIGCHLD) is ignored",
          "Start the client from a terminal: what starts it now hands that down."};
}

Fact StandardStreams() {
  constexpr const char* kNames[] = {"input", "output", "error output"};
  std::string closed;
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
    if (!IsOpen(fd)) closed += std::string(closed.empty() ? "" : ", ") + kNames[fd];
  }
  if (closed.empty()) return {"open"};
  return {"closed: " + closed, "a program may take a file of its own for it",
          "Start the client with it open, such as with </dev/null >/dev/null 2>&1"};
}

Fact OpenFiles() {
  constexpr rlim_t kNeeded = 6;  // the pipes of SystemNowait()
  rlimit limit{};
  (void)getrlimit(RLIMIT_NOFILE, &limit);
  const std::vector<int> open = OpenDescriptors();
  rlim_t taken = STDERR_FILENO + 1;  // also where one of these is closed: no pipe end stays there
  int above = 0;
  for (const int fd : open) {
    if (fd > STDERR_FILENO && static_cast<rlim_t>(fd) < limit.rlim_cur) ++taken;
    if (fd > GXInternal::kLastClosedFd) ++above;
  }
  std::string value = std::to_string(open.size()) + " in use, " + LimitText(limit.rlim_cur);
  if (limit.rlim_cur < limit.rlim_max) value += " (can be raised)";
  if (above > 0) value += ", " + std::to_string(above) + " handed on to programs (above 1023)";
  if (limit.rlim_cur >= taken + kNeeded) return {value};
  return {value, "too few are left to start some programs",
          "Raise the limit with 'ulimit -n' in what starts the client."};
}

Fact Processes() {
  rlimit limit{};
  (void)getrlimit(RLIMIT_NPROC, &limit);
  return {LimitText(limit.rlim_cur) + " for this user"};
}

}  // namespace gxutil

/// @file
/// Private to the project and not installed: what runs in a forked child, and its owner in the
/// parent. A child makes async-signal-safe calls only (signal-safety(7)), as another thread may
/// have held any lock at the fork.
#pragma once

#include <algorithm>
#include <cerrno>
#include <utility>

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/syscall.h>
#endif

#ifdef GXCLIENT_COVERAGE
extern "C" void __gcov_dump();
#endif

namespace GXSupport {

// Closes the descriptors from `first` to `last` with one system call. Where the system does not
// know that call or refuses it, a loop does it, up to a number that no ordinary limit reaches.
inline void CloseRange(int first, int last) {
  constexpr int kEndOfLoop = 65536;
  if (first > last) return;
#ifdef SYS_close_range
  if (syscall(SYS_close_range, first, last, 0) == 0) return;
#endif
  for (int fd = first; fd <= std::min(last, kEndOfLoop - 1); ++fd) (void)close(fd);
}

// Leaves a forked child without running exit handlers or flushing what the client has buffered.
[[noreturn]] inline void LeaveChild(int status) {
#ifdef GXCLIENT_COVERAGE
  __gcov_dump();
#endif
  _exit(status);  // GCOVR_EXCL_LINE: the counters are written by now
}

// In the parent: waits for the child's end, through all interruptions. Somebody else may have
// reaped it already.
inline void Reap(pid_t pid) {
  while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
  }
}

// Owns a child that has to be waited for. The destructor reaps it where Wait() was not reached.
class Child {
 public:
  Child() = default;
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (pid_ > 0) Reap(pid_);
  }

  void Own(pid_t pid) { pid_ = pid; }

  // Waits once: an interrupted wait is not retried, on purpose, and leaves the child to itself.
  bool Wait(int* status) { return waitpid(std::exchange(pid_, -1), status, 0) >= 0; }

 private:
  pid_t pid_ = -1;
};

}  // namespace GXSupport

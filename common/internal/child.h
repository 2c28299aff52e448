/// @file
/// Private to the project and not installed: forked children, and their owner in the parent.
///
/// Another thread may have held any lock at the moment of the fork. So until a child executes a
/// program, it takes no lock and uses values that were prepared before the fork.
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

namespace GXInternal {

// Closes the descriptors from `first` to `last` with one system call. If the system does not have
// that call or refuses it, a loop closes those below 65,536.
inline void CloseRange(int first, int last) {
  constexpr int kEndOfLoop = 65536;
  if (first > last) return;
#ifdef SYS_close_range
  if (syscall(SYS_close_range, first, last, 0) == 0) return;
#endif
  for (int fd = first; fd <= std::min(last, kEndOfLoop - 1); ++fd) (void)close(fd);
}

// In the parent: waits for the child's exit, through all interruptions. Somebody else may have
// reaped it already.
inline void Reap(pid_t pid) {
  while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
  }
}

// Owns a child that has to be waited for. The destructor reaps it unless Wait() gave it up.
class Child {
 public:
  Child() = default;
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (pid_ > 0) Reap(pid_);
  }

  void Own(pid_t pid) { pid_ = pid; }

  // Waits once: an interrupted wait is not retried, because a signal handler of the client may end
  // it. The child is then left to itself.
  bool Wait(int* status) { return waitpid(std::exchange(pid_, -1), status, 0) >= 0; }

 private:
  pid_t pid_ = -1;
};

}  // namespace GXInternal

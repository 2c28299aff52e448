/// @file
/// Private to the project and not installed: forked children, and their owner in the parent.
///
/// Until it executes a program, a child makes async-signal-safe calls only (signal-safety(7)), on
/// values prepared before the fork: another thread may have held any lock at that moment.
#pragma once

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <utility>

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/syscall.h>
#endif

namespace GXInternal {

// Sets the standard signals that the client catches to their default action, as exec does. A
// real-time signal for the whole process group still runs its handler: to reset these as well costs
// about 1 % of a start.
inline void ResetCaughtSignals() {
  constexpr int kLastStandardSignal = 31;
  for (int signal = 1; signal <= kLastStandardSignal; ++signal) {
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) != 0) continue;
    if (action.sa_handler == SIG_DFL || action.sa_handler == SIG_IGN) continue;
    action.sa_handler = SIG_DFL;
    (void)sigaction(signal, &action, nullptr);
  }
}

// Forks a child in which no handler of a standard signal runs: it could jump back into the client's
// main loop. Every signal waits until the child has reset the handlers.
inline pid_t ForkWithoutHandlers() {
  sigset_t all;
  sigset_t previous;
  sigfillset(&all);
  (void)pthread_sigmask(SIG_SETMASK, &all, &previous);
  const pid_t pid = fork();
  if (pid == 0) ResetCaughtSignals();
  (void)pthread_sigmask(SIG_SETMASK, &previous, nullptr);
  return pid;
}

// Closes the descriptors from `first` to `last` with one system call. If the system does not have
// that call or refuses it, a loop closes them, up to a number that no ordinary limit reaches.
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

// Owns a child that has to be waited for. The destructor reaps it unless Wait() was called.
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

/// @file
/// Private to the project and not installed: a limit for the life of a process.
#pragma once

#include <csignal>

#include <unistd.h>

namespace GXInternal {

// Ends a process whose time is up.
[[noreturn]] inline void EndNow(int /*signal*/) { _exit(1); }  // GCOVR_EXCL_LINE: as with any _exit

// Ends this process after so many seconds, whatever was done about SIGALRM before. A handler does
// it: where this is process 1 of its namespace, the system ignores the default action.
// Async-signal-safe.
inline void LimitLifetime(unsigned seconds, void (*end)(int) = EndNow) {
  struct sigaction action = {};
  action.sa_handler = end;
  sigemptyset(&action.sa_mask);
  (void)sigaction(SIGALRM, &action, nullptr);
  sigset_t timeout;
  sigemptyset(&timeout);
  sigaddset(&timeout, SIGALRM);
  (void)sigprocmask(SIG_UNBLOCK, &timeout, nullptr);
  (void)alarm(seconds);
}

}  // namespace GXInternal

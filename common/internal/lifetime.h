/// @file
/// Private to the project and not installed: a limit for the life of a process.
#pragma once

#include <csignal>

#include <unistd.h>

namespace GXSupport {

// Lets SIGALRM end this process after so many seconds, whatever was done about that signal before.
inline void LimitLifetime(unsigned seconds) {
  (void)std::signal(SIGALRM, SIG_DFL);
  sigset_t timeout;
  sigemptyset(&timeout);
  sigaddset(&timeout, SIGALRM);
  (void)sigprocmask(SIG_UNBLOCK, &timeout, nullptr);
  (void)alarm(seconds);
}

}  // namespace GXSupport

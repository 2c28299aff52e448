/// @file
/// Private to the two libraries and not installed: what their forked children share. What a child
/// calls makes plain system calls only, as another thread may have held any lock at the fork.
#pragma once

#include <algorithm>
#include <cerrno>

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

// Closes the descriptors from `first` to `last`: with one call, or where the system does not know
// it or refuses it with a loop, which gives up at a number that no ordinary limit reaches.
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

// In the parent: waits for a child to its end, whatever interrupts. That somebody else has reaped
// it is fine.
inline void Reap(pid_t pid) {
  while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace GXSupport

/// @file
/// Private to the two libraries and not installed: what runs in forked children, before an exec.
/// Plain calls only, as another thread may have held any lock at the moment of the fork.
#pragma once

#ifdef __linux__
#include <sys/syscall.h>
#endif
#include <unistd.h>

#include <algorithm>

#ifdef GXCLIENT_COVERAGE
extern "C" void __gcov_dump();
#endif

namespace GXSupport {

// Closes the descriptors from `first` to `last`: with one call, or where the system does not know it
// or refuses it with a loop, which gives up at a number that no ordinary limit reaches.
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
  _exit(status);
}

}  // namespace GXSupport

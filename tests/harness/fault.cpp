#include "harness/fault.h"

#include <cstdio>
#include <cstdlib>
#include <new>

#include <iconv.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

// The fault that this use of the call has; null if the call is to work. Sets errno.
static const Fault* Firing(Call call) {
  Armed* armed = Armed::current;
  if (armed == nullptr || armed->fault.call != call) return nullptr;
  if (++armed->uses != armed->fault.nth && armed->fault.nth != kEachTime) return nullptr;
  armed->fired = true;
  errno = armed->fault.error;
  return &armed->fault;
}

void* operator new(std::size_t size) {
  void* memory = Firing(Call::kNew) ? nullptr : std::malloc(size != 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

// The linker puts __wrap_x() in the place of x(), which is then called __real_x().
extern "C" {

// `failed` is the result of a call that fails; it may use the Fault `fault`.
#define WRAP(call, result, name, failed, parameters, arguments) \
  result __real_##name parameters;                              \
  result __wrap_##name parameters {                             \
    const Fault* fault = Firing(Call::call);                    \
    return fault ? failed : __real_##name arguments;            \
  }

WRAP(kExecvp, int, execvp, -1, (const char* file, char* const* argv), (file, argv))
WRAP(kFopen, std::FILE*, fopen, static_cast<std::FILE*>(fault->answer),
     (const char* path, const char* mode), (path, mode))
WRAP(kFork, pid_t, fork, -1, (), ())
WRAP(kIconvOpen, iconv_t, iconv_open, reinterpret_cast<iconv_t>(-1),
     (const char* to, const char* from), (to, from))
WRAP(kIconv, std::size_t, iconv, static_cast<std::size_t>(fault->error == 0 ? 2 : -1),
     (iconv_t to, char** in, std::size_t* inSize, char** out, std::size_t* outSize),
     (to, in, inSize, out, outSize))
WRAP(kPipe, int, pipe2, -1, (int ends[2], int flags), (ends, flags))
WRAP(kPoll, int, poll, -1, (pollfd * fds, nfds_t count, int timeout), (fds, count, timeout))
WRAP(kRead, ssize_t, read, -1, (int fd, void* buffer, std::size_t size), (fd, buffer, size))
WRAP(kSigaction, int, sigaction, -1,
     (int signal, const struct sigaction* action, struct sigaction* old), (signal, action, old))
WRAP(kStrerror, char*, strerror, static_cast<char*>(fault->answer), (int error), (error))
WRAP(kWaitpid, pid_t, waitpid, -1, (pid_t pid, int* status, int options), (pid, status, options))
// The module passes integers only to these two variadic calls.
WRAP(kFcntl, int, fcntl, -1, (int fd, int command, long argument), (fd, command, argument))
WRAP(kCloseRange, long, syscall, -1, (long number, long a, long b, long c), (number, a, b, c))

#ifdef GXCLIENT_COVERAGE
// The counters of a forked child are written before it exits.
void __gcov_dump();
[[noreturn]] void __real__exit(int status);
[[noreturn]] void __wrap__exit(int status) {
  __gcov_dump();
  __real__exit(status);
}
#endif
}

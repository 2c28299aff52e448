#include "harness/fault.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

#include <gtest/gtest.h>
#include <iconv.h>
#include <poll.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

static Armed* armed = nullptr;  // the innermost one

Armed::Armed(const Fault& fault) : fault_(fault), outer_(std::exchange(armed, this)) {}

Armed::~Armed() {
  if (disarmed_) return;
  (void)Disarm();
  EXPECT_TRUE(fired_) << "the fault did not fire";
}

bool Armed::Disarm() {
  armed = outer_;
  disarmed_ = true;
  return fired_;
}

// The fault that this call of `call` has; null if the call is to work. Sets errno.
const Fault* Firing(Call call) {
  for (Armed* each = armed; each != nullptr; each = each->outer_) {
    const Fault& fault = each->fault_;
    if (fault.call != call) continue;
    if (++each->calls_ != fault.nth && fault.nth != kEachTime) continue;
    each->fired_ = true;
    errno = fault.error;
    return &fault;
  }
  return nullptr;
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

// A call that returns -1 if it fails.
#define FAILING(call, result, name, parameters, arguments)            \
  result __real_##name parameters;                                    \
  result __wrap_##name parameters {                                   \
    return Firing(Call::call) ? (result)-1 : __real_##name arguments; \
  }

FAILING(kExecvp, int, execvp, (const char* file, char* const* argv), (file, argv))
FAILING(kFork, pid_t, fork, (), ())
FAILING(kIconvOpen, iconv_t, iconv_open, (const char* to, const char* from), (to, from))
FAILING(kMkdir, int, mkdir, (const char* path, mode_t mode), (path, mode))
FAILING(kPipe, int, pipe2, (int ends[2], int flags), (ends, flags))
FAILING(kPoll, int, poll, (pollfd * fds, nfds_t count, int timeout), (fds, count, timeout))
FAILING(kRead, ssize_t, read, (int fd, void* buffer, std::size_t size), (fd, buffer, size))
FAILING(kSigaction, int, sigaction,
        (int signal, const struct sigaction* action, struct sigaction* old), (signal, action, old))
FAILING(kWaitpid, pid_t, waitpid, (pid_t pid, int* status, int options), (pid, status, options))
// The module passes integers only to these two variadic calls.
FAILING(kFcntl, int, fcntl, (int fd, int command, long argument), (fd, command, argument))
FAILING(kCloseRange, long, syscall, (long number, long a, long b, long c), (number, a, b, c))

std::size_t __real_iconv(iconv_t, char** in, std::size_t*, char** out, std::size_t*);
std::size_t __wrap_iconv(iconv_t to, char** in, std::size_t* inSize, char** out,
                         std::size_t* outSize) {
  const Fault* fault = Firing(Call::kIconv);
  if (fault == nullptr) return __real_iconv(to, in, inSize, out, outSize);
  return fault->error == 0 ? 2 : static_cast<std::size_t>(-1);
}

std::FILE* __real_fopen(const char* path, const char* mode);
std::FILE* __wrap_fopen(const char* path, const char* mode) {
  const Fault* fault = Firing(Call::kFopen);
  return fault ? static_cast<std::FILE*>(fault->answer) : __real_fopen(path, mode);
}

passwd* __real_getpwnam(const char* name);
passwd* __wrap_getpwnam(const char* name) {
  const Fault* fault = Firing(Call::kGetpwnam);
  lookedUp = name;
  return fault ? static_cast<passwd*>(fault->answer) : __real_getpwnam(name);
}

passwd* __real_getpwuid(uid_t user);
passwd* __wrap_getpwuid(uid_t user) {
  const Fault* fault = Firing(Call::kGetpwuid);
  lookedUp = std::to_string(user);
  return fault ? static_cast<passwd*>(fault->answer) : __real_getpwuid(user);
}

char* __real_strerror(int error);
char* __wrap_strerror(int error) {
  const Fault* fault = Firing(Call::kStrerror);
  return fault ? static_cast<char*>(fault->answer) : __real_strerror(error);
}

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

#include "harness/fault.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

#include <gtest/gtest.h>
#include <iconv.h>
#include <poll.h>
#include <pwd.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

Armed* armed = nullptr;  // the innermost one

void* SharedPage() {
  return mmap(nullptr, 1, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
}

}  // namespace

Armed::Armed(const Fault& fault)
    : fault_(fault), fired_(static_cast<bool*>(SharedPage())), outer_(std::exchange(armed, this)) {}

Armed::~Armed() {
  const bool disarmed = fired_ == nullptr;
  EXPECT_TRUE(disarmed || Disarm()) << "the fault did not fire";
}

bool Armed::Disarm() {
  armed = outer_;
  const bool fired = *fired_;
  (void)munmap(std::exchange(fired_, nullptr), 1);
  return fired;
}

// The fault that this call of `call` has; null if the call is to work. Sets errno.
const Fault* Firing(Call call) {
  for (Armed* each = armed; each != nullptr; each = each->outer_) {
    const Fault& fault = each->fault_;
    if (fault.call != call) continue;
    if (++each->calls_ != fault.nth && fault.nth != kEachTime) continue;
    *each->fired_ = true;
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

int __real_execvp(const char* file, char* const* argv);
int __wrap_execvp(const char* file, char* const* argv) {
  return Firing(Call::kExecvp) ? -1 : __real_execvp(file, argv);
}

// The module passes integers only to this variadic call and to syscall().
int __real_fcntl(int fd, int command, long argument);
int __wrap_fcntl(int fd, int command, long argument) {
  return Firing(Call::kFcntl) ? -1 : __real_fcntl(fd, command, argument);
}

std::FILE* __real_fopen(const char* path, const char* mode);
std::FILE* __wrap_fopen(const char* path, const char* mode) {
  const Fault* fault = Firing(Call::kFopen);
  return fault ? static_cast<std::FILE*>(fault->answer) : __real_fopen(path, mode);
}

pid_t __real_fork();
pid_t __wrap_fork() { return Firing(Call::kFork) ? -1 : __real_fork(); }

passwd* __real_getpwnam(const char* name);
passwd* __wrap_getpwnam(const char* name) {
  const Fault* fault = Firing(Call::kGetpwnam);
  if (fault == nullptr) return __real_getpwnam(name);
  lookedUp = name;
  return static_cast<passwd*>(fault->answer);
}

passwd* __real_getpwuid(uid_t user);
passwd* __wrap_getpwuid(uid_t user) {
  const Fault* fault = Firing(Call::kGetpwuid);
  if (fault == nullptr) return __real_getpwuid(user);
  lookedUp = std::to_string(user);
  return static_cast<passwd*>(fault->answer);
}

std::size_t __real_iconv(iconv_t to, char** in, std::size_t* inSize, char** out,
                         std::size_t* outSize);
std::size_t __wrap_iconv(iconv_t to, char** in, std::size_t* inSize, char** out,
                         std::size_t* outSize) {
  const Fault* fault = Firing(Call::kIconv);
  if (fault == nullptr) return __real_iconv(to, in, inSize, out, outSize);
  return fault->error == 0 ? 2 : static_cast<std::size_t>(-1);
}

iconv_t __real_iconv_open(const char* to, const char* from);
iconv_t __wrap_iconv_open(const char* to, const char* from) {
  return Firing(Call::kIconvOpen) ? iconv_t(-1) : __real_iconv_open(to, from);
}

int __real_mkdir(const char* path, mode_t mode);
int __wrap_mkdir(const char* path, mode_t mode) {
  return Firing(Call::kMkdir) ? -1 : __real_mkdir(path, mode);
}

int __real_pipe(int ends[2]);
int __wrap_pipe(int ends[2]) { return Firing(Call::kPipe) ? -1 : __real_pipe(ends); }

int __real_poll(pollfd* fds, nfds_t count, int timeout);
int __wrap_poll(pollfd* fds, nfds_t count, int timeout) {
  const Fault* fault = Firing(Call::kPoll);
  if (fault == nullptr) return __real_poll(fds, count, timeout);
  return fault->error == 0 ? 0 : -1;
}

ssize_t __real_read(int fd, void* buffer, std::size_t size);
ssize_t __wrap_read(int fd, void* buffer, std::size_t size) {
  return Firing(Call::kRead) ? -1 : __real_read(fd, buffer, size);
}

int __real_sigaction(int signal, const struct sigaction* action, struct sigaction* old);
int __wrap_sigaction(int signal, const struct sigaction* action, struct sigaction* old) {
  return Firing(Call::kSigaction) ? -1 : __real_sigaction(signal, action, old);
}

char* __real_strerror(int error);
char* __wrap_strerror(int error) {
  const Fault* fault = Firing(Call::kStrerror);
  return fault ? static_cast<char*>(fault->answer) : __real_strerror(error);
}

long __real_syscall(long number, long a, long b, long c);
long __wrap_syscall(long number, long a, long b, long c) {
  return Firing(Call::kCloseRange) ? -1 : __real_syscall(number, a, b, c);
}

pid_t __real_waitpid(pid_t pid, int* status, int options);
pid_t __wrap_waitpid(pid_t pid, int* status, int options) {
  return Firing(Call::kWaitpid) ? -1 : __real_waitpid(pid, status, options);
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

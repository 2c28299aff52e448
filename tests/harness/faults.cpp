#include "harness/faults.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <new>

#include <iconv.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/types.h>

namespace {

Failing* armed = nullptr;

}  // namespace

passwd* fakePasswd = nullptr;
std::string lookedUp;
std::FILE* fakeFile = nullptr;

Failing::Failing(const char* call, int nth, int error)
    : call_(call), left_(nth), error_(error), next_(armed) {
  armed = this;
}

Failing::~Failing() {
  Failing** link = &armed;
  while (*link != this) link = &(*link)->next_;
  *link = next_;
}

bool Failing::Now(const char* call) {
  for (Failing* fault = armed; fault != nullptr; fault = fault->next_) {
    if (std::strcmp(fault->call_, call) != 0 || --fault->left_ != 0) continue;
    errno = fault->error_;
    return true;
  }
  return false;
}

#define WRAP(result, name, parameters, arguments, failure)          \
  extern "C" result __real_##name parameters;                       \
  extern "C" result __wrap_##name parameters;                       \
  extern "C" result __wrap_##name parameters {                      \
    return Failing::Now(#name) ? failure : __real_##name arguments; \
  }

WRAP(pid_t, fork, (), (), -1)
WRAP(int, pipe, (int ends[2]), (ends), -1)
WRAP(ssize_t, read, (int fd, void* buffer, std::size_t size), (fd, buffer, size), -1)
WRAP(int, sigaction, (int signal, const struct sigaction* action, struct sigaction* old),
     (signal, action, old), -1)
WRAP(iconv_t, iconv_open, (const char* to, const char* from), (to, from), iconv_t(-1))
WRAP(pid_t, waitpid, (pid_t pid, int* status, int options), (pid, status, options), -1)
WRAP(int, mkdir, (const char* path, mode_t mode), (path, mode), -1)
WRAP(passwd*, getpwnam, (const char* name), (name), (lookedUp = name, fakePasswd))
WRAP(passwd*, getpwuid, (uid_t user), (user), fakePasswd)
WRAP(std::FILE*, fopen, (const char* path, const char* mode), (path, mode), fakeFile)
// With the error 0 the call succeeds, leaves all its input and counts two replaced characters.
WRAP(std::size_t, iconv,
     (iconv_t descriptor, char** in, std::size_t* inlen, char** out, std::size_t* outlen),
     (descriptor, in, inlen, out, outlen), errno == 0 ? 2 : static_cast<std::size_t>(-1))

// The two variadic ones: every call in the module passes at most this many integers.
extern "C" {
int __real_fcntl(int fd, int command, ...);
int __wrap_fcntl(int fd, int command, long argument);
int __wrap_fcntl(int fd, int command, long argument) {
  return Failing::Now("fcntl") ? -1 : __real_fcntl(fd, command, argument);
}
long __real_syscall(long number, ...);
long __wrap_syscall(long number, long a, long b, long c, long d, long e, long f);
long __wrap_syscall(long number, long a, long b, long c, long d, long e, long f) {
  return Failing::Now("syscall") ? -1 : __real_syscall(number, a, b, c, d, e, f);
}
}

void* operator new(std::size_t size) {
  void* memory = Failing::Now("new") ? nullptr : std::malloc(size != 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

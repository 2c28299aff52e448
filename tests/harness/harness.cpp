#include "harness/harness.h"

#include <cstdint>
#include <cstring>
#include <new>

#include <iconv.h>
#include <poll.h>

#include "internal/child.h"

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
  extern "C" result __wrap_##name parameters {                      \
    return Failing::Now(#name) ? failure : __real_##name arguments; \
  }

WRAP(int, execvp, (const char* file, char* const* argv), (file, argv), -1)
WRAP(pid_t, fork, (), (), -1)
WRAP(int, pipe, (int ends[2]), (ends), -1)
WRAP(int, poll, (pollfd * fds, nfds_t count, int timeout), (fds, count, timeout), -1)
WRAP(ssize_t, read, (int fd, void* buffer, std::size_t size), (fd, buffer, size), -1)
WRAP(int, sigaction, (int n, const struct sigaction* set, struct sigaction* old), (n, set, old), -1)
WRAP(iconv_t, iconv_open, (const char* to, const char* from), (to, from), iconv_t(-1))
WRAP(pid_t, waitpid, (pid_t pid, int* status, int options), (pid, status, options), -1)
WRAP(int, mkdir, (const char* path, mode_t mode), (path, mode), -1)
WRAP(passwd*, getpwnam, (const char* name), (name), (lookedUp = name, fakePasswd))
WRAP(passwd*, getpwuid, (uid_t user), (user), (lookedUp = std::to_string(user), fakePasswd))
WRAP(char*, strerror, (int error), (error), fakeErrorText.data())
WRAP(std::FILE*, fopen, (const char* path, const char* mode), (path, mode), fakeFile)
// Says how long the limit is, and sets none.
WRAP(unsigned, alarm, (unsigned seconds), (seconds),
     static_cast<unsigned>(dprintf(STDERR_FILENO, "alarm %u\n", seconds)))
// The two variadic ones: no call in the module passes more than these, nor anything but integers.
WRAP(int, fcntl, (int fd, int command, long argument), (fd, command, argument), -1)
WRAP(long, syscall, (long number, long a, long b, long c), (number, a, b, c), -1)
// With the error 0 the call succeeds, leaves all its input and counts two replaced characters.
WRAP(std::size_t, iconv,
     (iconv_t to, char** in, std::size_t* inlen, char** out, std::size_t* outlen),
     (to, in, inlen, out, outlen), errno == 0 ? 2 : static_cast<std::size_t>(-1))

void* operator new(std::size_t size) {
  void* memory = Failing::Now("new") ? nullptr : std::malloc(size != 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

void ReapAll(int) {
  const int before = errno;
  while (waitpid(-1, nullptr, WNOHANG) > 0) continue;
  errno = before;
}

std::string ProcessState() {
  std::string state;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const std::string fd = entry.path().filename();
    state += fd + " on " + std::filesystem::read_symlink(entry).string() + " flags " +
             std::to_string(fcntl(std::stoi(fd), F_GETFD)) + "\n";
  }
  struct sigaction action = {};
  (void)sigaction(SIGCHLD, nullptr, &action);
  action.sa_flags &= ~0x04000000;  // what the C library adds to every action that it sets
  const auto handler = reinterpret_cast<std::uintptr_t>(action.sa_handler);
  const bool masks = handler > 1 && sigismember(&action.sa_mask, SIGUSR1) == 1;  // not by default
  return state + "SIGCHLD " + std::to_string(handler) + " flags " +
         std::to_string(action.sa_flags) + " mask " + std::to_string(masks);
}

LeakCheck::~LeakCheck() {
  EXPECT_EQ(ProcessState(), before);
  EXPECT_TRUE(waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD) << "a child is left";
}

bool PassesInChild(const std::function<void()>& body) {
  std::fflush(nullptr);
  const pid_t pid = fork();
  if (pid == 0) {
    body();
    std::fflush(nullptr);
    GXSupport::LeaveChild(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = -1;
  return waitpid(pid, &status, 0) == pid && status == 0;
}

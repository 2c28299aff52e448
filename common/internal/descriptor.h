/// @file
/// Private to the project and not installed: owners of descriptors, and which ones are inherited.
#pragma once

#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace GXInternal {

// CloseAllFds() in a child closes the descriptors from one of these to the other. Callers rely on
// both numbers.
constexpr int kFirstClosedFd = 3;
constexpr int kLastClosedFd = 1023;

// Owns one descriptor and closes it once; -1 owns nothing. Hand it on with Release().
class UniqueFd {
 public:
  UniqueFd() = default;
  explicit UniqueFd(int fd) : fd_(fd) {}
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;
  ~UniqueFd() { Reset(); }

  int Get() const { return fd_; }
  int Release() { return std::exchange(fd_, -1); }
  void Reset(int fd = -1) {
    if (fd_ >= 0) (void)close(fd_);
    fd_ = fd;
  }

 private:
  int fd_ = -1;
};

// A pipe whose ends are close-on-exec and stay above the standard descriptors, also when the caller
// runs with 0, 1 or 2 closed. After a failed Open() the destructor closes the ends that exist.
struct Pipe {
  UniqueFd readEnd;
  UniqueFd writeEnd;

  bool Open() {
    int ends[2];
#ifdef __linux__
    if (pipe2(ends, O_CLOEXEC) != 0) return false;
#else
    // A program that another thread starts before the flag is set inherits the ends.
    if (pipe(ends) != 0) return false;
#endif
    readEnd.Reset(ends[0]);
    writeEnd.Reset(ends[1]);
    return MakePrivate(readEnd) && MakePrivate(writeEnd);
  }
  bool IsOpen() const { return writeEnd.Get() >= 0; }

 private:
  // Moves the end above the standard descriptors if necessary, and makes it close-on-exec.
  static bool MakePrivate(UniqueFd& end) {
    if (end.Get() < kFirstClosedFd) {
      end.Reset(fcntl(end.Get(), F_DUPFD_CLOEXEC, kFirstClosedFd));
      return end.Get() >= 0;
    }
    const int flags = fcntl(end.Get(), F_GETFD);
    return flags >= 0 && fcntl(end.Get(), F_SETFD, flags | FD_CLOEXEC) >= 0;
  }
};

}  // namespace GXInternal

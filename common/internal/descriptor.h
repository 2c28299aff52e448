/// @file
/// Private to the project and not installed: owners of descriptors, and which ones are inherited.
#pragma once

#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace GXSupport {

constexpr int kFirstInheritedFd = 3;  // the first one above the standard descriptors
constexpr int kLastClosedFd = 1023;   // no program inherits those from there to here; fixed

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
// runs with 0, 1 or 2 closed. After a failed Open() the destructor closes what was made.
struct Pipe {
  UniqueFd readEnd;
  UniqueFd writeEnd;

  bool Open() {
    int ends[2];
    if (pipe(ends) != 0) return false;
    readEnd.Reset(ends[0]);
    writeEnd.Reset(ends[1]);
    return Shield(readEnd) && Shield(writeEnd);
  }
  bool IsOpen() const { return writeEnd.Get() >= 0; }

 private:
  static bool Shield(UniqueFd& end) {
    if (end.Get() < kFirstInheritedFd) {
      end.Reset(fcntl(end.Get(), F_DUPFD_CLOEXEC, kFirstInheritedFd));
      return end.Get() >= 0;
    }
    const int flags = fcntl(end.Get(), F_GETFD);
    return flags >= 0 && fcntl(end.Get(), F_SETFD, flags | FD_CLOEXEC) >= 0;
  }
};

}  // namespace GXSupport

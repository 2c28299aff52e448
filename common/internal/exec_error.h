/// @file
/// Private to the project and not installed: what a forked child says about an exec that failed.
#pragma once

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <iterator>

#include <unistd.h>

namespace GXSupport {

constexpr std::size_t kLongestErrorText = 255;  // a longer translation is cut at a character

// The size of the longest beginning of `text` with whole characters only, at most `limit` bytes.
inline std::size_t SizeOfWholeCharacters(const char* text, std::size_t limit) {
  constexpr auto kIncomplete = static_cast<std::size_t>(-2);
  std::mbstate_t state{};
  std::size_t size = 0;
  while (size < limit) {
    const std::size_t length = std::mbrlen(text + size, limit - size, &state);
    if (length >= kIncomplete) break;  // or not a character of the locale
    size += length;
  }
  return size;
}

// The text of an error and a line feed, in memory of its own: made without an allocation and
// written without a stream.
class ErrorLine {
 public:
  void Set(int error) {
    const char* text = std::strerror(error);
    size_ = strnlen(text, kLongestErrorText);
    if (text[size_] != '\0') size_ = SizeOfWholeCharacters(text, size_);
    std::memcpy(bytes_, text, size_);
    bytes_[size_++] = '\n';
  }

  // Async-signal-safe.
  void Write(int fd) const {
    std::size_t done = 0;
    while (done < size_) {
      const ssize_t count = write(fd, bytes_ + done, size_ - done);
      if (count >= 0) done += static_cast<std::size_t>(count);
      if (count < 0 && errno != EINTR) return;
    }
  }

 private:
  char bytes_[kLongestErrorText + 1] = {};
  std::size_t size_ = 0;
};

// The lines for the errors that execvp() can report, fetched before the fork: strerror() takes the
// locale's lock, which another thread may hold at that moment, and the child would wait for ever.
class ExecErrorLines {
 public:
  ExecErrorLines() {
    for (std::size_t i = 0; i < kCount; ++i) lines_[i].Set(kErrors[i]);
  }

  void Write(int error, int fd) const {
    const auto found = std::find(std::begin(kErrors), std::end(kErrors), error);
    if (found != std::end(kErrors)) return lines_[found - std::begin(kErrors)].Write(fd);
    ErrorLine other;  // its lock may be taken: the caller has limited the life of this process
    other.Set(error);
    other.Write(fd);
  }

 private:
  static constexpr int kErrors[] = {
      ENOENT,  EACCES, E2BIG,   EAGAIN,       EFAULT, EINVAL,    EIO,
      EISDIR,  ELOOP,  EMFILE,  ENAMETOOLONG, ENFILE, ENODEV,    ENOEXEC,
      ENOMEM,  ENOSYS, ENOTDIR, EPERM,        ESTALE, ETIMEDOUT, ETXTBSY,
#ifdef ELIBBAD
      ELIBBAD,
#endif
  };
  static constexpr std::size_t kCount = std::size(kErrors);

  ErrorLine lines_[kCount];
};

}  // namespace GXSupport

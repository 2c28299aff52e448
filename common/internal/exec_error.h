/// @file
/// Private to the project and not installed: the text that a forked child writes if its exec fails.
#pragma once

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <iterator>

#include <sys/uio.h>
#include <unistd.h>

namespace GXInternal {

// The usual errors of execvp().
constexpr int kExecErrors[] = {
    ENOENT,  EACCES, E2BIG,   EAGAIN,       EFAULT, EINVAL,    EIO,
    EISDIR,  ELOOP,  EMFILE,  ENAMETOOLONG, ENFILE, ENODEV,    ENOEXEC,
    ENOMEM,  ENOSYS, ENOTDIR, EPERM,        ESTALE, ETIMEDOUT, ETXTBSY,
#ifdef ELIBBAD
    ELIBBAD,
#endif
};

// The texts of these errors in the caller's locale, fetched before the fork: strerror() takes the
// locale's lock, which another thread may hold at the fork, and the child would then hang.
class ExecErrorTexts {
 public:
  ExecErrorTexts() {
    for (std::size_t i = 0; i < std::size(kExecErrors); ++i) {
      texts_[i] = std::strerror(kExecErrors[i]);
    }
  }

  // In the child. Another error, or any error of a C library that has one buffer for all texts, is
  // looked up there, in the time that the child may live.
  const char* Get(int error) const {
#ifdef __linux__
    const auto found = std::find(std::begin(kExecErrors), std::end(kExecErrors), error);
    if (found != std::end(kExecErrors)) return texts_[found - std::begin(kExecErrors)];
#endif
    return std::strerror(error);
  }

 private:
  const char* texts_[std::size(kExecErrors)];
};

// Writes the text and a newline with one call, so that the lines of two children seldom mix.
inline void WriteLine(int fd, const char* text) {
  char newline = '\n';
  const iovec parts[] = {{const_cast<char*>(text), std::strlen(text)}, {&newline, 1}};
  (void)!writev(fd, parts, 2);
}

}  // namespace GXInternal

/// @file
/// Library calls that a test makes fail, or answers itself.
#pragma once

#include <cerrno>
#include <string>

/// The calls that a test can make fail. kNew is any allocation.
enum class Call {
  kCloseRange,
  kExecvp,
  kFcntl,
  kFopen,
  kFork,
  kGetpwnam,
  kGetpwuid,
  kIconv,
  kIconvOpen,
  kMkdir,
  kNew,
  kPipe,
  kPoll,
  kRead,
  kSigaction,
  kStrerror,
  kWaitpid
};

constexpr int kEachTime = 0;

/// One call that fails, or has the answer of the test.
struct Fault {
  Call call;
  int nth = 1;             ///< counted from now; or kEachTime
  int error = EINTR;       ///< 0 makes iconv() convert nothing and replace two characters
  bool required = true;    ///< the test fails unless it fires; one in a forked child fires unseen
  void* answer = nullptr;  ///< of fopen(), getpwnam(), getpwuid() and strerror()
};

/// Arms a fault while it exists. Calls of the test framework count as well: arm late, for a short time.
class Armed {
 public:
  explicit Armed(const Fault& fault);
  Armed(const Armed&) = delete;
  Armed& operator=(const Armed&) = delete;
  ~Armed();

  bool Fired() const { return fired_; }

 private:
  friend const Fault* Firing(Call call);

  Fault fault_;
  int calls_ = 0;
  bool fired_ = false;
  Armed* outer_;
};

/// The name or the user id that getpwnam() or getpwuid() was asked for last.
inline std::string lookedUp;

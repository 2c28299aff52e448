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
  kWaitpid,
};

constexpr int kEachTime = 0;

/// One call that fails, or has the answer of the test.
struct Fault {
  Call call;
  int nth = 1;  ///< from now on; or kEachTime
  int error = EINTR;
  /// The result of fopen(), getpwnam(), getpwuid() and strerror().
  void* answer = nullptr;
  // With the error 0, iconv() has converted nothing and replaced two characters.
};

/// Arms a fault while it exists. Calls of the test framework count as well: arm late, disarm early.
class Armed {
 public:
  explicit Armed(const Fault& fault);
  Armed(const Armed&) = delete;
  Armed& operator=(const Armed&) = delete;
  /// Fails the test if the fault did not fire.
  ~Armed();

  /// For a fault that need not fire, or fires in a forked child, unseen: ends it and returns whether
  /// it has fired here.
  bool Disarm();

 private:
  friend const Fault* Firing(Call call);

  Fault fault_;
  int calls_ = 0;
  bool fired_ = false;
  bool disarmed_ = false;
  Armed* outer_;
};

/// The name or the user id that getpwnam() or getpwuid() was asked for last.
inline std::string lookedUp;

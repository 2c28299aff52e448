/// @file
/// Library calls that a test makes fail, or answers itself.
#pragma once

#include <cerrno>

#include <gtest/gtest.h>

/// The calls that a test can make fail. kNew is operator new, kPipe is pipe2(), and kCloseRange is
/// any syscall().
enum class Call {
  kNone,
  kCloseRange,
  kExecvp,
  kFcntl,
  kFopen,
  kFork,
  kIconv,
  kIconvOpen,
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
  Call call = Call::kNone;
  int nth = 1;             ///< counted from now; or kEachTime
  int error = EINTR;       ///< with iconv(), 0: it converts nothing and replaces two characters
  bool required = true;    ///< the test fails unless it fires; a forked child fires it unseen
  void* answer = nullptr;  ///< of fopen() and strerror()
};

/// Arms a fault while it exists. One at a time, and for a short time: the calls of the test
/// framework count as well.
struct Armed {
  explicit Armed(const Fault& toArm) : fault(toArm) {
    EXPECT_EQ(current, nullptr);
    current = this;
  }
  Armed(const Armed&) = delete;
  ~Armed() {
    current = nullptr;
    EXPECT_TRUE(fired || !fault.required) << "the fault did not fire";
  }

  static inline Armed* current = nullptr;
  Fault fault;
  int uses = 0;
  bool fired = false;
};

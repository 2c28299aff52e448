/// @file
/// What the tests share: failing calls, the captured log, a leak check, a body in a child.
#pragma once

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "gxclient_util.h"
#include "harness/log.h"

struct passwd;

/// Makes the n-th coming call of one library function (or "new", any allocation) fail once; with 0
/// none. Several may be armed. Calls of the test framework count as well: arm late, destroy early.
class Failing {
 public:
  Failing(const char* call, int nth, int error)
      : call_(call), left_(nth), error_(error), next_(std::exchange(armed, this)) {}
  ~Failing() { armed = next_; }
  Failing& operator=(Failing&&) = delete;  // neither copied nor moved

  bool Happened() const { return left_ <= 0; }

  /// For the wrappers: whether this call of `call` is to fail; errno is set then.
  static bool Now(const char* call);

 private:
  inline static Failing* armed = nullptr;

  const char* call_;
  int left_, error_;
  Failing* next_;
};

/// What an armed call of getpwnam(), getpwuid(), fopen() or strerror() gives.
inline passwd* fakePasswd = nullptr;
inline std::string lookedUp;  ///< the name or user id that was asked for
inline std::FILE* fakeFile = nullptr;
inline std::string fakeErrorText;

/// An empty directory, removed with all that is in it when it goes out of scope.
struct TempDir {
  TempDir() { (void)!mkdtemp(path.data()); }
  ~TempDir() { (void)std::filesystem::remove_all(path); }
  TempDir& operator=(TempDir&&) = delete;  // neither copied nor moved
  std::string path = "/tmp/gxclient_test.XXXXXX";
};

/// A handler for SIGCHLD that leaves no child to anybody else.
void ReapAll(int signal);

/// The descriptors that are open, with their flags, and the action for SIGCHLD.
std::string ProcessState();

/// Fails the test unless, when it goes out of scope, the state is as before and no child is left.
struct LeakCheck {
  ~LeakCheck();
  const std::string before = ProcessState();
};

/// Runs `body` in a forked child, whose environment, limits and descriptors it may change. True
/// when it came back without a failed expectation.
bool PassesInChild(const std::function<void()>& body);

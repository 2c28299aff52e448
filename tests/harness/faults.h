#pragma once

#include <cstdio>
#include <string>
#include <utility>

struct passwd;

/// Makes the n-th coming call of one library function (or "new", any allocation) fail once; with 0
/// none. Several may be armed. Calls of the test framework count as well: arm late, destroy early.
class Failing {
 public:
  Failing(const char* call, int nth, int error)
      : call_(call), left_(nth), error_(error), next_(std::exchange(armed, this)) {}
  ~Failing();
  Failing& operator=(Failing&&) = delete;  // neither copied nor moved

  bool Happened() const { return left_ <= 0; }

  /// For the wrappers: whether this call of `call` is to fail; errno is set then.
  static bool Now(const char* call);

 private:
  inline static Failing* armed = nullptr;

  const char* call_;
  int left_;
  int error_;
  Failing* next_;
};

/// What an armed call of getpwnam(), getpwuid(), fopen() or strerror() gives.
inline passwd* fakePasswd = nullptr;
inline std::string lookedUp;  // the name given to getpwnam()
inline std::FILE* fakeFile = nullptr;
inline std::string fakeErrorText;

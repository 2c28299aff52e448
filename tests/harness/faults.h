#pragma once

#include <cstdio>
#include <string>

struct passwd;

/// Makes the n-th coming call of one library function (or "new", any allocation) fail once. Several
/// may be armed. Calls of the test framework count as well: arm late, destroy early.
class Failing {
 public:
  Failing(const char* call, int nth, int error);
  ~Failing();
  Failing(const Failing&) = delete;
  Failing& operator=(const Failing&) = delete;

  bool Happened() const { return left_ <= 0; }

  /// For the wrappers: whether this call of `call` is to fail; errno is set then.
  static bool Now(const char* call);

 private:
  const char* call_;
  int left_;
  int error_;
  Failing* next_;
};

/// What an armed call of getpwnam(), getpwuid() or fopen() gives; null unless set.
extern passwd* fakePasswd;
extern std::string lookedUp;  // the name given to getpwnam()
extern std::FILE* fakeFile;

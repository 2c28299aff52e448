/// @file
/// The former names of the harness, for tests that do not use the new ones yet.
#pragma once

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "gxclient_util.h"
#include "harness/fault.h"
#include "harness/log.h"
#include "harness/run.h"
#include "harness/temp_dir.h"

struct passwd;

inline passwd* fakePasswd = nullptr;
inline std::FILE* fakeFile = nullptr;
inline std::string fakeErrorText;

class Failing {
 public:
  Failing(const char* call, int nth, int error) {
    static const std::map<std::string, std::pair<Call, void*>> calls = {
        {"fcntl", {Call::kFcntl, nullptr}},        {"fopen", {Call::kFopen, nullptr}},
        {"fork", {Call::kFork, nullptr}},          {"getpwnam", {Call::kGetpwnam, nullptr}},
        {"iconv", {Call::kIconv, nullptr}},        {"iconv_open", {Call::kIconvOpen, nullptr}},
        {"mkdir", {Call::kMkdir, nullptr}},        {"new", {Call::kNew, nullptr}},
        {"pipe", {Call::kPipe, nullptr}},          {"poll", {Call::kPoll, nullptr}},
        {"read", {Call::kRead, nullptr}},          {"sigaction", {Call::kSigaction, nullptr}},
        {"syscall", {Call::kCloseRange, nullptr}}, {"strerror", {Call::kStrerror, nullptr}},
        {"waitpid", {Call::kWaitpid, nullptr}},    {"getpwuid", {Call::kGetpwuid, nullptr}},
    };
    if (nth == 0 || *call == '\0') return;
    void* answer = nullptr;
    const Call which = calls.at(call).first;
    if (which == Call::kFopen) answer = fakeFile;
    if (which == Call::kGetpwnam || which == Call::kGetpwuid) answer = fakePasswd;
    if (which == Call::kStrerror) answer = fakeErrorText.data();
    fault_ = std::make_unique<Armed>(Fault{which, nth, error, answer});
  }
  ~Failing() { (void)Happened(); }
  Failing& operator=(Failing&&) = delete;

  bool Happened() const {
    if (fault_) happened_ = fault_->Disarm();
    fault_.reset();
    return happened_;
  }

 private:
  mutable std::unique_ptr<Armed> fault_;
  mutable bool happened_ = true;
};

inline void ReapAll(int) {
  const int before = errno;
  while (waitpid(-1, nullptr, WNOHANG) > 0) continue;
  errno = before;
}

/// @file
/// The calls that start programs as a test sees them, and what no call may leave behind.
#pragma once

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "gxclient_util.h"
#include "harness/fault.h"
#include "harness/log.h"
#include "support/gxexception.h"

constexpr int kUnwritten = -77;  ///< what an output parameter holds before a call

/// All that a call did. A failure prints it whole.
struct Outcome {
  int result = 0;
  int status = kUnwritten;
  std::string output;
  std::string errors;  ///< what arrived at the standard error
  std::string log;
  std::string thrown;  ///< the code and the message of a GXException, as in "6 Empty command"
  bool childLeft = false;

  bool operator==(const Outcome&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Outcome& seen) {
  return out << "result " << seen.result << ", status " << seen.status
             << (seen.childLeft ? ", a child is left" : "") << "\noutput: " << seen.output
             << "\nerrors: " << seen.errors << "\nlog: " << seen.log << "\nthrown: " << seen.thrown;
}

inline Outcome Observe(const Fault& fault, const std::function<void(Outcome&)>& call) {
  Outcome seen;
  logged.clear();
  testing::internal::CaptureStderr();
  try {
    const Armed armed(fault);
    call(seen);
  } catch (const GXException& error) {
    seen.thrown = std::to_string(error.code()) + " " + error.what();
  }
  seen.errors = testing::internal::GetCapturedStderr();
  seen.log = logged;
  seen.childLeft = waitpid(-1, nullptr, 0) > 0;
  return seen;
}

constexpr Fault kNoFault = {.required = false};

/// Calls System().
inline Outcome RunProgram(const std::string& command, const Fault& fault = kNoFault) {
  return Observe(fault, [&](Outcome& seen) {
    seen.result = GXUtils::System(command, &seen.output, &seen.status);
  });
}

/// Calls SystemNowait() without output pipes.
inline Outcome StartProgram(const std::string& command, const Fault& fault = kNoFault) {
  return Observe(fault, [&](Outcome& seen) { seen.result = GXUtils::SystemNowait(command); });
}

/// Runs `body` in a forked child, whose environment, limits and descriptors it may change. Fails
/// the test if one of its expectations has failed, in the body or before. The body must not throw.
inline void PassesInChild(const std::function<void()>& body) {
  std::fflush(nullptr);
  const pid_t pid = fork();
  if (pid == 0) {
    body();
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = -1;
  EXPECT_EQ(waitpid(pid, &status, 0), pid);
  EXPECT_EQ(status, 0);
}

/// Reads the descriptor to its end and closes it.
inline std::string ReadAll(int fd) {
  std::string all;
  for (char byte = 0; read(fd, &byte, 1) == 1;) all += byte;
  (void)close(fd);
  return all;
}

/// The open descriptors and the action for SIGCHLD.
inline std::string ProcessState() {
  std::string state;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    state += entry.path().filename().string() + " on " + read_symlink(entry).string() + "\n";
  }
  struct sigaction action = {};
  (void)sigaction(SIGCHLD, nullptr, &action);
  const auto handler = reinterpret_cast<std::uintptr_t>(action.sa_handler);
  return state + "SIGCHLD: handler " + std::to_string(handler) + ", restarts " +
         std::to_string(action.sa_flags & SA_RESTART);
}

/// Fails the test unless it ends with the descriptors and the SIGCHLD action that it began with,
/// and without a child.
struct LeakCheck {
  LeakCheck() = default;
  LeakCheck(const LeakCheck&) = delete;
  ~LeakCheck() {
    EXPECT_EQ(ProcessState(), before);
    EXPECT_LT(waitpid(-1, nullptr, WNOHANG), 0) << "a child is left";
  }

  const std::string before = ProcessState();
};

/// Repeats `call` with the first, second, ... use of each function in the list failing, until none
/// fails. The call may return anything or throw std::bad_alloc. It must leave no descriptor and no
/// changed action for SIGCHLD, and no child if it throws. A leak of memory is the address
/// sanitizer's to find.
inline void LeavesNothingBehind(const std::function<void()>& call) {
  // Not sigaction(): an action that cannot be restored stays.
  for (const Call which : {Call::kFcntl, Call::kFopen, Call::kFork, Call::kIconv, Call::kIconvOpen,
                           Call::kNew, Call::kPipe, Call::kPoll, Call::kRead, Call::kWaitpid}) {
    bool failed = true;
    for (int nth = 1; failed; ++nth) {
      SCOPED_TRACE(testing::Message() << "Call " << static_cast<int>(which) << ", use " << nth);
      ASSERT_LT(nth, 300) << "it never succeeds";
      const LeakCheck leaks;
      try {
        const Armed fault({.call = which, .nth = nth, .required = false});
        call();
        failed = fault.fired;
      } catch (const std::bad_alloc&) {
        continue;
      }
      // A program that was started, or may have been.
      while (waitpid(-1, nullptr, 0) > 0) {
      }
    }
  }
}

/// Ignores and blocks SIGALRM, as a client may have done.
inline void IgnoreAlarm() {
  (void)std::signal(SIGALRM, SIG_IGN);
  sigset_t alarm;
  sigemptyset(&alarm);
  sigaddset(&alarm, SIGALRM);
  (void)sigprocmask(SIG_BLOCK, &alarm, nullptr);
}

/// A handler for SIGCHLD that leaves no child to anybody else.
inline void ReapEveryChild(int /*signal*/) {
  const int before = errno;
  while (waitpid(-1, nullptr, WNOHANG) > 0) {
  }
  errno = before;
}

/// Runs `body` with each of the descriptors 0 to 2 closed or open, and with each kind of action
/// for SIGCHLD. The body must leave nothing behind.
inline void PassesInEveryState(const std::function<void()>& body) {
  const std::pair<std::string, void (*)(int)> actions[] = {
      {"default", SIG_DFL}, {"ignored", SIG_IGN}, {"handled", ReapEveryChild}};
  for (const auto& action : actions) {
    for (int closed = 0; closed < 8; ++closed) {
      SCOPED_TRACE("SIGCHLD " + action.first + ", closed (bit by bit): " + std::to_string(closed));
      PassesInChild([&] {
        for (int fd = 0; fd <= 2; ++fd) {
          if ((closed & 1 << fd) != 0) (void)close(fd);
        }
        (void)std::signal(SIGCHLD, action.second);
        const LeakCheck leaks;
        body();
      });
    }
  }
}

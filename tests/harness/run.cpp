#include "harness/run.h"

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <new>
#include <utility>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/gxexception.h"

namespace {

// The open descriptors and the action for SIGCHLD.
std::string ProcessState() {
  std::string state;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    state += entry.path().filename().string() + " on " + read_symlink(entry).string() + "\n";
  }
  struct sigaction action = {};
  (void)sigaction(SIGCHLD, nullptr, &action);
  constexpr int kAddedByLibc = 0x04000000;  // SA_RESTORER
  const auto handler = reinterpret_cast<std::uintptr_t>(action.sa_handler);
  return state + "SIGCHLD: handler " + std::to_string(handler) + ", flags " +
         std::to_string(action.sa_flags & ~kAddedByLibc);
}

Outcome Observe(const std::optional<Fault>& fault, const std::function<void(Outcome&)>& call) {
  Outcome seen;
  logged.clear();
  testing::internal::CaptureStderr();
  try {
    std::optional<Armed> armed;
    if (fault) armed.emplace(*fault);
    call(seen);
  } catch (const GXException& error) {
    seen.thrown = std::to_string(error.code()) + " " + error.what();
  } catch (const std::exception& error) {
    seen.thrown = error.what();
  }
  seen.errors = testing::internal::GetCapturedStderr();
  seen.log = logged;
  seen.childLeft = waitpid(-1, nullptr, 0) > 0;
  return seen;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Outcome& seen) {
  return out << "result " << seen.result << ", status " << seen.status
             << (seen.childLeft ? ", a child is left" : "") << "\noutput: " << seen.output
             << "\nerrors: " << seen.errors << "\nlog: " << seen.log << "\nthrown: " << seen.thrown;
}

Outcome RunProgram(const std::string& command, std::optional<Fault> fault) {
  return Observe(fault, [&](Outcome& seen) {
    seen.result = GXUtils::System(command, &seen.output, &seen.status);
  });
}

Outcome StartProgram(const std::string& command, std::optional<Fault> fault) {
  return Observe(fault, [&](Outcome& seen) { seen.result = GXUtils::SystemNowait(command); });
}

bool PassesInChild(const std::function<void()>& body) {
  std::fflush(nullptr);
  const pid_t pid = fork();
  if (pid == 0) {
    body();
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = -1;
  return waitpid(pid, &status, 0) == pid && status == 0;
}

void CloseStandard(int set) {
  for (int fd = 0; fd <= 2; ++fd) {
    if ((set & 1 << fd) != 0) (void)close(fd);
  }
}

void ReapEveryChild(int /*signal*/) {
  const int before = errno;
  while (waitpid(-1, nullptr, WNOHANG) > 0) {
  }
  errno = before;
}

std::string ReadAll(int fd) {
  std::string all;
  char piece[512];
  ssize_t count = 0;
  while ((count = read(fd, piece, sizeof piece)) > 0) {
    all.append(piece, static_cast<std::size_t>(count));
  }
  return all;
}

LeakCheck::LeakCheck() : before_(ProcessState()) {}

LeakCheck::~LeakCheck() {
  EXPECT_EQ(ProcessState(), before_);
  const pid_t left = waitpid(-1, nullptr, WNOHANG);
  EXPECT_TRUE(left < 0 && errno == ECHILD) << "a child is left";
}

void LeavesNothingBehind(const std::function<void()>& call) {
  // Not sigaction(): an action that cannot be restored stays.
  constexpr Call kCalls[] = {Call::kFcntl,     Call::kFopen,  Call::kFork, Call::kIconv,
                             Call::kIconvOpen, Call::kNew,    Call::kPipe, Call::kPoll,
                             Call::kRead,      Call::kWaitpid};
  constexpr int kMostUses = 300;
  for (const Call which : kCalls) {
    bool failed = true;
    for (int nth = 1; failed; ++nth) {
      SCOPED_TRACE(testing::Message() << "Call " << static_cast<int>(which) << ", use " << nth);
      ASSERT_LT(nth, kMostUses) << "it never succeeds";
      const LeakCheck leaks;
      Armed fault({.call = which, .nth = nth});
      try {
        call();
      } catch (const std::bad_alloc&) {
      }
      failed = fault.Disarm();
      while (waitpid(-1, nullptr, 0) > 0) {  // a program that was started, or may have been
      }
    }
  }
}

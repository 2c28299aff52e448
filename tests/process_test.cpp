#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "gxclient_util.h"
#include "harness/capturedlog.h"
#include "harness/faults.h"
#include "harness/leakcheck.h"
#include "support/descriptor.h"
#include "support/gxexception.h"

using namespace std::string_literals;
using GXUtils::System;
using GXUtils::SystemNowait;

namespace {

constexpr int kUnwritten = 77;

// A run of /bin/sh, which gives every exit status and output there is.
struct ShellRun {
  explicit ShellRun(const std::string& script, std::string start = "") : output(std::move(start)) {
    const char* argv[] = {"/bin/sh", "-c", script.c_str(), nullptr};
    result = System(argv, &output, &exitCode);
  }
  int result;
  std::string output;
  int exitCode = kUnwritten;
};

void IgnoreSignal(int) {}

std::string ReadAll(int fd) {
  std::string text;
  char piece[512];
  for (ssize_t count; (count = read(fd, piece, sizeof piece)) > 0;) {
    text.append(piece, static_cast<std::size_t>(count));
  }
  close(fd);
  return text;
}

// The grammar's table stands in gxutil.session.
TEST(SplitCommandLine, NulIsOrdinary) {
  EXPECT_EQ(GXUtils::SplitCommandLine("a\0b \"c\0 d\""s),
            (std::vector<std::string>{"a\0b"s, "c\0 d"s}));
}

TEST(System, ReportsHowTheProgramEnded) {
  const struct {
    const char* script;
    int result;
    int exitCode;
    const char* output;
    CapturedLog::Lines log;
  } cases[] = {
      {"exit 0", 0, 0, "abc", {}},
      {"exit 1", 0, 1, "abc", {}},
      {"exit 126", 0, 126, "abc", {}},
      {"exit 255", 0, 255, "abc", {}},
      {"printf x; exit 127", -2, 127, "abcx", {{2, "Command /bin/sh not found"}}},
      {"printf x; exit 128", -2, 128, "abcx", {{2, "Failed to start command /bin/sh"}}},
      {"printf x; kill -9 $$", -1, kUnwritten, "abcx", {}},
      {"printf 1; printf 2 >&2; printf 3", 0, 0, "abc123", {}},
      {"printf 'a\\0b'; sleep 0.2; printf c", 0, 0, "abcac", {}},
      {"(sleep 0.2; printf late) &", 0, 0, "abclate", {}},
      {"printf 'a\\0%0253dbc'", 0, 0, "abcabc", {}},  // a piece is 255 bytes
      {"[ -e /proc/self/fd/900 ]", 0, 1, "abc", {}},
  };
  const GXSupport::UniqueFd inherited(dup2(STDERR_FILENO, 900));
  for (const auto& c : cases) {
    SCOPED_TRACE(c.script);
    CapturedLog log;
    const LeakCheck leaks;
    const ShellRun run(c.script, "abc");
    EXPECT_EQ(run.result, c.result);
    EXPECT_EQ(run.exitCode, c.exitCode);
    EXPECT_EQ(run.output, c.output);
    EXPECT_EQ(log.lines, c.log);
  }
}

TEST(System, TellsWhatItCouldNotStart) {
  const char* const noEntry[] = {nullptr};
  const char* const missing[] = {"/no/such", nullptr};
  const struct {
    std::function<int(std::string*, int*)> run;
    const char* program;
  } cases[] = {
      {[&](auto* output, int* code) { return System(missing, output, code); }, "/no/such"},
      {[](auto* output, int* code) { return System("no-such-program -x", output, code); },
       "no-such-program"},
      {[](auto* output, int* code) { return System("  ", output, code); }, ""},
      {[](auto* output, int* code) { return System("\"unterminated", output, code); }, ""},
      {[&](auto* output, int* code) { return System(noEntry, output, code); }, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.program);
    CapturedLog log;
    const LeakCheck leaks;
    std::string output;
    int exitCode = kUnwritten;
    EXPECT_EQ(c.run(&output, &exitCode), -2);
    EXPECT_EQ(exitCode, 128);
    EXPECT_EQ(output, "");
    const CapturedLog::Lines line = {{2, "Failed to start command "s + c.program}};
    EXPECT_EQ(log.lines, line);
  }
}

TEST(System, StringFormSplitsAndRefusesTheEmptyCommand) {
  std::string output;
  EXPECT_EQ(System("printf %s,%s,%s \"a b\" \"\" c", &output), 0);
  EXPECT_EQ(output, "a b,,c");
  try {
    System(""s, &output);
    ADD_FAILURE() << "nothing was thrown";
  } catch (const GXException& error) {
    EXPECT_EQ(error.code(), 6);
    EXPECT_STREQ(error.what(), "Empty command");
  }
}

TEST(System, DrainsOutputThatNobodyWants) {
  const char* argv[] = {"/bin/sh", "-c", "head -c 1000000 /dev/zero", nullptr};
  int exitCode = kUnwritten;
  EXPECT_EQ(System(argv, nullptr, &exitCode), 0);
  EXPECT_EQ(exitCode, 0);
}

TEST(System, FaultsLeaveNothingBehind) {
  const struct {
    const char* call;
    int nth;
    const char* error;
    const char* output;
    const char* script = "printf x";
  } cases[] = {
      {"sigaction", 1, "Error: sigaction() failed\n", ""},
      {"pipe", 1, "Error: pipe() failed\n", ""},
      {"fcntl", 1, "Error: pipe() failed\n", ""},
      {"fcntl", 2, "Error: pipe() failed\n", ""},
      {"fcntl", 3, "Error: pipe() failed\n", ""},
      {"fcntl", 4, "Error: pipe() failed\n", ""},
      {"fork", 1, "Error: fork() failed\n", ""},
      {"waitpid", 1, "", "x"},
      {"sigaction", 2, "Error: sigaction() restore failed\n", "x"},
      {"sigaction", 2, "Error: sigaction() restore failed\n", "x", "printf x; kill -9 $$"},
  };
  struct sigaction custom {};
  custom.sa_handler = IgnoreSignal;
  custom.sa_flags = SA_NOCLDSTOP | SA_NODEFER;
  sigaddset(&custom.sa_mask, SIGUSR1);
  struct sigaction before {};
  ASSERT_EQ(sigaction(SIGCHLD, &custom, &before), 0);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.call + std::to_string(c.nth));
    CapturedLog log;
    const LeakCheck leaks;
    testing::internal::CaptureStderr();
    Failing fault(c.call, c.nth, EINTR);
    const ShellRun run(c.script);
    EXPECT_TRUE(fault.Happened());
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.exitCode, kUnwritten);
    EXPECT_EQ(run.output, c.output);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.error);
    EXPECT_EQ(log.lines, CapturedLog::Lines());
    // The two that cannot clean up behind themselves.
    if (c.call == "waitpid"s) (void)waitpid(-1, nullptr, 0);
    if (c.call == "sigaction"s && c.nth == 2) sigaction(SIGCHLD, &custom, nullptr);
  }
  sigaction(SIGCHLD, &before, nullptr);
}

TEST(System, AnInterruptedReadEndsTheCapture) {
  const LeakCheck leaks;
  Failing interrupted("read", 1, EINTR);
  const ShellRun run("trap '' PIPE; printf x 2>&-; exit 3");
  EXPECT_EQ(run.result, 0);
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_EQ(run.output, "");
}

TEST(System, ExceptionsPassThroughOnceAllIsCleanedUp) {
  const LeakCheck leaks;
  const char* argv[] = {"/bin/sh", "-c", "printf %064d 1; exit 127", nullptr};
  std::string output;
  {
    Failing allocation("new", 1, ENOMEM);
    EXPECT_THROW(System(argv, &output), std::bad_alloc);
  }
  CapturedLog log;
  log.throws = true;
  int exitCode = kUnwritten;
  EXPECT_THROW(System(argv, &output, &exitCode), std::runtime_error);
  EXPECT_EQ(exitCode, 127);
}

TEST(Runners, WorkWithStandardDescriptorsClosed) {
  for (int closed = 0; closed < 8; ++closed) {
    SCOPED_TRACE(closed);
    EXPECT_TRUE(PassesInChild([&] {
      for (int fd = 0; fd < 3; ++fd) {
        if ((closed >> fd & 1) != 0) close(fd);
      }
      CapturedLog log;
      const LeakCheck leaks;
      const ShellRun good("printf out; printf err >&2; [ -e /proc/self/fd/0 ] || exit 3");
      EXPECT_EQ(good.result, 0);
      EXPECT_EQ(good.exitCode, (closed & 1) != 0 ? 3 : 0);
      EXPECT_EQ(good.output, "outerr");
      EXPECT_EQ(System("no-such-program"), -2);
      EXPECT_EQ(log.lines.size(), 1U);

      int out = kUnwritten;
      int err = kUnwritten;
      EXPECT_EQ(SystemNowait("  "), -2);
      EXPECT_EQ(SystemNowait("no-such-program", &out, &err), -2);
      EXPECT_EQ(out, kUnwritten);
      const int pid =
          SystemNowait("sh -c \"printf out; printf err >&2; kill -STOP $$\"", &out, &err);
      EXPECT_EQ(waitpid(pid, nullptr, WUNTRACED), pid);  // back while the program runs
      EXPECT_EQ(kill(pid, SIGCONT), 0);
      EXPECT_GT(out, 2);
      EXPECT_GT(err, 2);
      EXPECT_EQ(ReadAll(out), "out");
      EXPECT_EQ(ReadAll(err), "err");
      EXPECT_EQ(waitpid(pid, nullptr, 0), pid);
    }));
  }
}

TEST(SystemNowait, HandsOverTheChildAndItsOutput) {
  const char* argv[] = {"/bin/sh", "-c",
                        "printf out; printf err >&2; read x; printf $?; [ ! -e /proc/self/fd/900 ]",
                        nullptr};
  EXPECT_TRUE(PassesInChild([&] {
    int input[2];
    ASSERT_EQ(pipe2(input, O_CLOEXEC), 0);
    dup2(input[0], STDIN_FILENO);
    dup2(input[0], 900);
    const LeakCheck leaks;
    int out = -1;
    int err = -1;
    const int pid = SystemNowait(argv, &out, &err);
    ASSERT_GT(pid, 0);  // back while the program still waits for its input
    EXPECT_EQ(waitpid(pid, nullptr, WNOHANG), 0);
    EXPECT_EQ(getsid(pid), pid);
    for (const int fd : {out, err}) {
      EXPECT_EQ(fcntl(fd, F_GETFD), 0);
      EXPECT_EQ(fcntl(fd, F_GETFL) & O_NONBLOCK, 0);
    }
    EXPECT_EQ(write(input[1], "\n", 1), 1);
    EXPECT_EQ(ReadAll(out), "out0");
    EXPECT_EQ(ReadAll(err), "err");
    int status = -1;
    EXPECT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_EQ(status, 0);
  }));
}

TEST(SystemNowait, SharesTheCallersOutputAndLeavesItsBuffersAlone) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "the sanitizer flushes every stream in _exit()";
#endif
  int both[2];
  ASSERT_EQ(pipe2(both, O_CLOEXEC), 0);
  EXPECT_TRUE(PassesInChild([&] {
    std::setvbuf(stdout, nullptr, _IOFBF, 4096);
    dup2(both[1], STDOUT_FILENO);
    dup2(both[1], STDERR_FILENO);
    const LeakCheck leaks;
    std::cout << "buffered";
    EXPECT_EQ(SystemNowait("no-such-program -x"), -2);
    EXPECT_EQ(SystemNowait("/"), -2);
    const int pid = SystemNowait("sh -c \"exec printf shared\"");
    EXPECT_EQ(waitpid(pid, nullptr, 0), pid);
  }));
  close(both[1]);
  const std::string missing = std::strerror(ENOENT) + "\n"s;
  const std::string noProgram = std::strerror(EACCES) + "\n"s;
  EXPECT_EQ(ReadAll(both[0]), missing + noProgram + "sharedbuffered");
}

TEST(SystemNowait, FaultsLeaveNothingBehind) {
  const struct {
    const char* call;
    int upToNth;
    int result;
  } cases[] = {{"pipe", 3, -1}, {"fcntl", 12, -1}, {"fork", 1, -1}, {"read", 1, -2}};
  for (const auto& c : cases) {
    for (int nth = 1; nth <= c.upToNth; ++nth) {
      SCOPED_TRACE(c.call + std::to_string(nth));
      const LeakCheck leaks;
      int out = kUnwritten;
      int err = kUnwritten;
      Failing fault(c.call, nth, EINTR);
      EXPECT_EQ(SystemNowait("true", &out, &err), c.result);
      EXPECT_TRUE(fault.Happened());
      EXPECT_EQ(out, kUnwritten);
      EXPECT_EQ(err, kUnwritten);
      const bool running = c.result == -2;  // the program is nobody's
      EXPECT_EQ(waitpid(-1, nullptr, 0) > 0, running);
    }
  }
  const LeakCheck leaks;
  int err = kUnwritten;
  Failing interrupted("waitpid", 1, EINTR);
  EXPECT_EQ(SystemNowait("no-such-program", nullptr, &err), -2);
  EXPECT_TRUE(interrupted.Happened());
  EXPECT_EQ(err, kUnwritten);
  try {
    SystemNowait(""s);
    ADD_FAILURE() << "nothing was thrown";
  } catch (const GXException& error) {
    EXPECT_EQ(error.code(), 11);
    EXPECT_STREQ(error.what(), "Empty command");
  }
}

TEST(CheckFileExecutable, AsksTheFirstClassThatTheRealIdsBelongTo) {
  if (getuid() != 0) GTEST_SKIP() << "only the superuser can give files away";
  constexpr uid_t kUser = 1001;
  constexpr gid_t kGroup = 1002;
  const struct {
    mode_t mode;
    uid_t owner;
    gid_t group;
    bool executable;
  } cases[] = {
      {0100, kUser, 0, true},  {0644, kUser, kGroup, false}, {0077, kUser, kGroup, false},
      {0010, 0, kGroup, true}, {0707, 0, kGroup, false},     {0701, 0, 0, true},
      {0776, 0, 0, false},     {0100, 0, 0, false},
  };
  char path[] = "/tmp/gxclientXXXXXX";
  close(mkstemp(path));
  for (const auto& c : cases) {
    SCOPED_TRACE(c.mode);
    ASSERT_EQ(chown(path, c.owner, c.group), 0);
    ASSERT_EQ(chmod(path, c.mode), 0);
    EXPECT_TRUE(PassesInChild([&] {
      ASSERT_EQ(setresgid(kGroup, 0, 0), 0);
      ASSERT_EQ(setresuid(kUser, 0, 0), 0);
      EXPECT_EQ(GXUtils::CheckFileExecutable(path), c.executable);
      EXPECT_EQ(GXUtils::Which(path), c.executable ? path : "");
    }));
  }
  unlink(path);
}

TEST(Which, WalksThePathAsWritten) {
  char folder[] = "/tmp/gxclientXXXXXX";
  ASSERT_NE(mkdtemp(folder), nullptr);
  const std::string dir = folder;
  for (const char* name : {"/a", "/b", "/b/tool", "/a/none", "/a/sub", "/a/sub/tool"}) {
    ASSERT_EQ(mkdir((dir + name).c_str(), name == "/a/none"s ? 0600 : 0700), 0);
  }
  ASSERT_EQ(symlink("nowhere", (dir + "/a/tool").c_str()), 0);
  const struct {
    const char* path;
    std::string name;
    std::string found;
  } cases[] = {
      {"a:b", "tool", "b/tool"},
      {"a/sub:b", "tool", "a/sub/tool"},
      {"b/", "tool", "b//tool"},
      {"b:a", "sub/tool", "a/sub/tool"},
      {"b", "", "b/"},
      {"a", "none", ""},
      {"b", dir + "/b/tool", dir + "/b/tool"},
      {"b", dir + "/a/none", ""},
      {"", "bin", "/bin"},
      {"b::b", "bin", "/bin"},
      {"b", "./tool", "b/./tool"},
  };
  EXPECT_TRUE(PassesInChild([&] {
    ASSERT_EQ(chdir(folder), 0);
    for (const auto& c : cases) {
      setenv("PATH", c.path, 1);
      EXPECT_EQ(GXUtils::Which(c.name), c.found) << c.path << " " << c.name;
    }
    unsetenv("PATH");
    EXPECT_EQ(GXUtils::Which("ls"), "");
    EXPECT_TRUE(GXUtils::CheckFileExist("a/none"));
    EXPECT_FALSE(GXUtils::CheckFileExist("a/tool"));
  }));
  std::filesystem::remove_all(folder);
}

TEST(CloseAllFds, ClosesExactlyItsRange) {
  const struct {
    int firstFd;
    int keepFd;
    std::vector<int> open;
  } cases[] = {
      {100, 200, {99, 200, 1024}},
      {100, 0, {99, 1024}},
      {100, 100, {99, 100, 1024}},
      {100, 1023, {99, 1023, 1024}},
      {100, 1024, {99, 1024}},
      {-5, -7, {1024}},
      {1023, 3, {99, 100, 200, 201, 1022, 1024}},
      {1024, 2000, {99, 100, 200, 201, 1022, 1023, 1024}},
  };
  for (const auto& c : cases) {
    for (const bool refused : {false, true}) {
      SCOPED_TRACE(std::to_string(c.firstFd) + " " + std::to_string(refused));
      EXPECT_TRUE(PassesInChild([&] {
        const std::vector<int> candidates = {99, 100, 200, 201, 1022, 1023, 1024};
        for (const int fd : candidates) ASSERT_EQ(dup2(STDERR_FILENO, fd), fd);
        Failing one("syscall", refused ? 1 : 0, ENOSYS);
        Failing two("syscall", refused ? 2 : 0, EPERM);
        GXUtils::CloseAllFds(c.firstFd, c.keepFd);
        std::vector<int> open;
        for (const int fd : candidates) {
          if (fcntl(fd, F_GETFD) >= 0) open.push_back(fd);
        }
        EXPECT_EQ(open, c.open);
      }));
    }
  }
}

}  // namespace

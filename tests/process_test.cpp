// The runners, and all functions in states of the process and the machine in which they have to
// hold; docs/hostile-states.md lists those. What a shell can show stands in gxutil.session.

#include <atomic>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <functional>
#include <iomanip>
#include <iostream>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "gxclient_util.h"
#include "harness/capturedlog.h"
#include "harness/faults.h"
#include "harness/leakcheck.h"
#include "harness/scopedenv.h"
#include "harness/tempdir.h"
#include "internal/descriptor.h"
#include "support/exportdata.h"
#include "support/gxexception.h"

using namespace std::string_literals;
using GXUtils::System;
using GXUtils::SystemNowait;

namespace {

constexpr int kUnwritten = 77;
const std::string kUmlauts = [] {
  std::string text;
  while (text.size() < 300) text += "\u00FC";
  return text;
}();
constexpr char kKilled[] = "sh -c \"printf x; kill -9 $$\"";
constexpr char kInterrupts[] = "sh -c \"trap '' PIPE; printf x 2>&-; exit 3\"";

// An output parameter that lives as long as the call.
template <class T = std::string>
T* Out(T&& value = T()) {
  return &value;
}

void DoNothing(int) {}

void ReapAll(int) {
  const int before = errno;
  while (waitpid(-1, nullptr, WNOHANG) > 0) continue;
  errno = before;
}

void OnSigchld(void (*handler)(int), int flags) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  sigaddset(&action.sa_mask, SIGUSR1);
  (void)sigaction(SIGCHLD, &action, nullptr);
}

void SetLimit(decltype(RLIMIT_NOFILE) resource, rlim_t value) {
  rlimit limit{};
  ASSERT_EQ(getrlimit(resource, &limit), 0);
  limit.rlim_cur = value;  // not the other one, which valgrind refuses
  ASSERT_EQ(setrlimit(resource, &limit), 0);
}

void RefuseCloseRange() {
  sock_filter filter[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_close_range, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program = {4, filter};
  ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
  ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0);
}

// Both runners with a program that works and one that is missing.
void ExpectRunnersWork() {
  const CapturedLog log;
  const LeakCheck leaks;
  std::string output = "abc";
  int status = kUnwritten;
  EXPECT_EQ(System("sh -c \"echo out; echo err >&2; [ -e /dev/fd/0 ]\"", &output, &status), 0);
  EXPECT_EQ(output, "abcout\nerr\n");
  EXPECT_EQ(status, fcntl(STDIN_FILENO, F_GETFD) < 0 ? 1 : 0);
  EXPECT_EQ(System("no-such-program"), -2);
  EXPECT_EQ(System("head -c 100000 /dev/zero"), 0);  // read although nobody wants it

  int out = kUnwritten, err = kUnwritten;
  EXPECT_EQ(SystemNowait("no-such-program", &out, &err), -2);
  EXPECT_EQ(out + err, 2 * kUnwritten);
  const int pid = SystemNowait("sh -c \"echo out; echo err >&2; kill -STOP $$\"", &out, &err);
  ASSERT_GT(pid, 0);
  EXPECT_EQ(waitpid(pid, nullptr, WUNTRACED), pid);  // back while the program runs
  EXPECT_EQ(getsid(pid), pid);
  EXPECT_EQ(kill(pid, SIGCONT), 0);
  for (const int fd : {out, err}) {
    EXPECT_GT(fd, STDERR_FILENO);
    EXPECT_EQ(fcntl(fd, F_GETFD), 0);
    EXPECT_EQ(fcntl(fd, F_GETFL) & O_NONBLOCK, 0);
    std::string text;
    for (char byte; read(fd, &byte, 1) > 0;) text += byte;
    EXPECT_EQ(text, fd == out ? "out\n" : "err\n");
    close(fd);
  }
  (void)waitpid(pid, nullptr, 0);  // where SIGCHLD is ignored there is nothing to wait for
}

TEST(SplitCommandLine, NulIsOrdinary) {
  const std::vector<std::string> arguments = {"a\0b"s, "c\0 d"s};
  EXPECT_EQ(GXUtils::SplitCommandLine("a\0b \"c\0 d\""s), arguments);
}

TEST(Runners, WorkInEveryState) {
  const std::function<void()> states[] = {
      [] {},
      [] { OnSigchld(SIG_IGN, 0); },
      [] { OnSigchld(SIG_DFL, SA_NOCLDWAIT); },
      [] { OnSigchld(ReapAll, SA_RESTART); },
      [] {
        sigset_t all;
        sigfillset(&all);
        (void)sigprocmask(SIG_SETMASK, &all, nullptr);
      },
      RefuseCloseRange,
  };
  for (unsigned i = 0; i < std::size(states) * 8; ++i) {  // the last bits: 0, 1 and 2 closed
    EXPECT_TRUE(PassesInChild([&] {
      for (int fd = 0; fd < 3; ++fd) {
        if ((i >> fd & 1) != 0) close(fd);
      }
      states[i / 8]();
      ExpectRunnersWork();
    })) << i;
  }
}

TEST(Runners, FaultsLeaveNothingBehind) {
  const struct {
    bool detached;
    const char* command;
    const char* call;
    int first, last;      // each of these calls fails once
    const char* outcome;  // result or thrown code, exit status or one of two descriptors, texts
  } cases[] = {
      {false, "printf x", "sigaction", 1, 1, "-1 77 abcError: sigaction() failed\n"},
      {false, "printf x", "pipe", 1, 1, "-1 77 abcError: pipe() failed\n"},
      {false, "printf x", "fcntl", 1, 4, "-1 77 abcError: pipe() failed\n"},
      {false, "printf x", "fork", 1, 1, "-1 77 abcError: fork() failed\n"},
      {false, "printf x", "waitpid", 1, 1, "-1 77 abcx, a child"},
      {false, "printf x", "sigaction", 2, 2, "-1 77 abcxError: sigaction() restore failed\n"},
      {false, kKilled, "sigaction", 2, 2, "-1 77 abcxError: sigaction() restore failed\n"},
      {false, kKilled, "", 0, 0, "-1 77 abcx"},
      {false, kInterrupts, "read", 1, 1, "0 3 abc"},
      {false, "", "", 0, 0, "6 77 abcEmpty command"},
      {false, "sh -c \"printf x; exit 127\"", "", 0, 0, "77 127 abcxthe log failed"},
      {true, "true", "pipe", 1, 3, "-1 77 abc"},
      {true, "true", "fcntl", 1, 12, "-1 77 abc"},
      {true, "true", "fork", 1, 1, "-1 77 abc"},
      {true, "true", "read", 1, 1, "-2 77 abc, a child"},
      {true, "no-such-program", "waitpid", 1, 1, "-2 77 abc"},
      {true, "", "", 0, 0, "11 77 abcEmpty command"},
  };
  for (const auto& c : cases) {
    for (int nth = c.first; nth <= c.last; ++nth) {
      SCOPED_TRACE(c.command + " "s + c.call + std::to_string(nth));
      OnSigchld(DoNothing, SA_NOCLDSTOP | SA_NODEFER);
      CapturedLog log;
      log.throws = true;
      const LeakCheck leaks;
      std::string texts = "abc";
      int result = kUnwritten, out = kUnwritten;
      testing::internal::CaptureStderr();
      try {
        const Failing fault(c.call, nth, EINTR);
        result = c.detached ? SystemNowait(c.command, &out, &out) : System(c.command, &texts, &out);
        EXPECT_TRUE(fault.Happened());
      } catch (const GXException& error) {
        result = error.code();
        texts += error.what();
      } catch (const std::runtime_error& error) {
        texts += error.what();
      }
      texts += testing::internal::GetCapturedStderr();
      if (waitpid(-1, nullptr, 0) > 0) texts += ", a child";
      // What could not be restored.
      if (c.call == "sigaction"s) OnSigchld(DoNothing, SA_NOCLDSTOP | SA_NODEFER);
      EXPECT_EQ(std::to_string(result) + " " + std::to_string(out) + " " + texts, c.outcome);
    }
  }
  (void)std::signal(SIGCHLD, SIG_DFL);
}

TEST(System, AnExceptionEndsTheProgram) {
  const LeakCheck leaks;
  const char* endless[] = {"yes", nullptr};
  const Failing allocation("new", 1, ENOMEM);
  EXPECT_THROW(System(endless, Out()), std::bad_alloc);
}

TEST(System, AMemoryLimitEndsACapture) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizer reserves more address space than any limit";
#endif
  EXPECT_TRUE(PassesInChild([] {
    const LeakCheck leaks;
    SetLimit(RLIMIT_AS, 256 << 20);
    std::string output;
    EXPECT_THROW(System("yes", &output), std::bad_alloc);
    EXPECT_GT(output.size(), 1000000U);
  }));
}

TEST(Runners, WriteNothingThatTheClientHasBuffered) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "the sanitizer flushes every stream in _exit()";
#endif
  const CapturedLog log;
  std::string output;
  testing::internal::CaptureStdout();
  std::cout << "buffered";
  EXPECT_EQ(System("no-such-program", &output), -2);
  EXPECT_EQ(SystemNowait("no-such-program", nullptr, Out<int>()), -2);
  EXPECT_EQ(testing::internal::GetCapturedStdout() + output, "buffered");
}

// The error is written to descriptor 2 and nothing else is, whatever the client does to its streams.
TEST(SystemNowait, WritesItsErrorOnce) {
  GXSupport::Pipe error;
  ASSERT_TRUE(error.Open());
  EXPECT_TRUE(PassesInChild([&] {
    (void)dup2(error.writeEnd.Get(), STDERR_FILENO);
    std::ios::sync_with_stdio(false);
    std::cerr << std::nounitbuf << "waits for ever" << std::setw(99);
    std::clog << "waits for ever";
    static char buffer[BUFSIZ];
    (void)std::setvbuf(stderr, buffer, _IOFBF, sizeof buffer);
    (void)std::fputs("waits for the end", stderr);
    std::cerr.rdbuf(std::cout.rdbuf());
    std::cerr.exceptions(std::ios::badbit | std::ios::failbit);
    EXPECT_EQ(SystemNowait("no-such-program"), -2);
  }));
  error.writeEnd.Reset();
  char text[100] = "";
  (void)!read(error.readEnd.Get(), text, sizeof text - 1);
  EXPECT_EQ(text, std::strerror(ENOENT) + "\nwaits for the end"s);
}

TEST(SystemNowait, CutsALongErrorAtACharacter) {
  std::setlocale(LC_CTYPE, "C.UTF-8");
  testing::internal::CaptureStderr();
  for (const std::string& text : {std::string(255, 'x'), std::string(256, 'x'), "x" + kUmlauts}) {
    fakeErrorText = text;
    const Failing translated("strerror", 1, 0);
    EXPECT_EQ(SystemNowait("no-such-program"), -2);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), std::string(255, 'x') + "\n" +
                                                        std::string(255, 'x') + "\nx" +
                                                        kUmlauts.substr(0, 254) + "\n");
  std::setlocale(LC_CTYPE, "C");
}

TEST(SystemNowait, StartsWithMemoryExhausted) {
  const char* const programs[][2] = {{"true", nullptr}, {"no-such-program", nullptr}};
  for (const auto& argv : programs) {
    const Failing allocation("new", 1, ENOMEM);
    const int result = SystemNowait(argv);
    EXPECT_FALSE(allocation.Happened());
    EXPECT_EQ(result > 0, &argv == programs);
    EXPECT_EQ(result > 0, waitpid(-1, nullptr, 0) > 0);
  }
}

// A full pipe that nobody reads, in a PID namespace too, where the default action ends no process 1.
TEST(SystemNowait, AChildThatCannotWriteEnds) {
  for (const int flags : {0, CLONE_NEWPID}) {
    const auto allowed = [flags] { return unshare(flags) == 0 ? (void)0 : _exit(1); };
    if (!PassesInChild(allowed)) GTEST_SKIP() << "the rest needs the right to make a namespace";
    GXSupport::Pipe error;
    ASSERT_TRUE(error.Open());
    (void)fcntl(error.writeEnd.Get(), F_SETFL, O_NONBLOCK);
    while (write(error.writeEnd.Get(), "full", 4) > 0) continue;
    (void)fcntl(error.writeEnd.Get(), F_SETFL, 0);
    EXPECT_TRUE(PassesInChild([&] {
      (void)dup2(error.writeEnd.Get(), STDERR_FILENO);
      (void)std::signal(SIGALRM, SIG_IGN);
      EXPECT_EQ(unshare(flags), 0);
      EXPECT_EQ(SystemNowait("no-such-program"), -2);
    }));
  }
}

TEST(CheckFileExecutable, AsksTheFirstClassThatTheRealIdsBelongTo) {
  if (getuid() != 0) GTEST_SKIP() << "only the superuser can give files away";
  constexpr unsigned kUser = 1001, kGroup = 1002;
  const unsigned cases[][4] = {
      // mode, owner, group, whether executable
      {0100, kUser, 0, 1},  {0644, kUser, kGroup, 0}, {0077, kUser, kGroup, 0},
      {0010, 0, kGroup, 1}, {0707, 0, kGroup, 0},     {0701, 0, 0, 1},
      {0776, 0, 0, 0},      {0100, 0, 0, 0},
  };
  const TempDir directory;
  const std::string path = directory.Path();
  EXPECT_TRUE(PassesInChild([&] {
    ASSERT_EQ(setresgid(kGroup, 0, 0) + setresuid(kUser, 0, 0), 0);
    for (const auto& [mode, owner, group, executable] : cases) {
      ASSERT_EQ(chown(path.c_str(), owner, group) + chmod(path.c_str(), mode), 0);
      EXPECT_EQ(GXUtils::CheckFileExecutable(path), executable == 1) << mode;
    }
  }));
}

TEST(CloseAllFds, ClosesExactlyItsRange) {
  const int cases[][2] = {{100, 200},  {100, 0}, {100, 100}, {100, 1023},
                          {100, 1024}, {-5, -7}, {1023, 3},  {1024, 2000}};
  for (const auto& [firstFd, keepFd] : cases) {
    for (const int refused : {0, 1}) {
      EXPECT_TRUE(PassesInChild([&, first = firstFd, keep = keepFd] {
        SetLimit(RLIMIT_NOFILE, 2048);
        for (int fd = 99; fd < 1100; ++fd) (void)dup2(STDERR_FILENO, fd);
        const Failing fault[] = {{"syscall", refused, ENOSYS}, {"syscall", 2 * refused, EPERM}};
        GXUtils::CloseAllFds(first, keep);
        for (int fd = 99; fd < 1100; ++fd) {
          EXPECT_EQ(fcntl(fd, F_GETFD) >= 0, fd < first || fd == keep || fd > 1023) << fd;
        }
      })) << firstFd
          << keepFd << refused;
    }
  }
}

TEST(Hostile, NoDescriptorLeft) {
  EXPECT_TRUE(PassesInChild([] {
    SetLimit(RLIMIT_NOFILE, 3);
    int fd = kUnwritten;
    EXPECT_EQ(System("true"), -1);
    EXPECT_EQ(SystemNowait("true", &fd), -1);
    EXPECT_EQ(fd, kUnwritten);
    EXPECT_EQ(GXUtils::GenerateTempFile("x", &fd), "");
    EXPECT_EQ(fd, -1);
    EXPECT_EQ(GXUtils::GetBogoMips(), -1);
  }));
}

struct Exports : std::vector<Exportdata*> {
  ~Exports() {
    for (const Exportdata* record : *this) delete record;
  }
};

void Start(const char* command) {
  int fds[2] = {-1, -1};
  const int pid = SystemNowait(command, &fds[0], &fds[1]);
  for (const int fd : fds) close(fd);
  if (pid > 0) (void)waitpid(pid, nullptr, 0);
}

const std::string kText(100, 'A');
const std::string kFolder = "/tmp/" + kText + kText;
using List = std::list<std::string>;

// Every public function that allocates or calls the system.
const std::function<void()> kFunctions[] = {
    [] { System("printf %s%s " + kText + " \"" + kText + "\"", Out()); },
    [] { System("no-such-program-" + kText); },
    [] { Start("true"); },
    [] { Start("no-such-program"); },
    [] { GXUtils::Which("no-such-program-" + kText); },
    [] { GXUtils::Strip(kText, kText) += GXUtils::LongToString(1); },
    [] { GXUtils::ReplaceInString(*Out(kText + kText), "A", "BB"); },
    [] { GXUtils::StringLines((kText + "\n" + kText).c_str(), Out(kText + "\n" + kText)); },
    [] { GXUtils::DecodeStringList(kText + ", \\," + kText + ", ", Out<List>(), ','); },
    [] { GXUtils::DecodeStringList(kText + "\\x", Out<List>(), ','); },
    [] { GXUtils::EncodeStringList(List(3, kText + ","), ','); },
    [] { GXUtils::CompareVersions("1.2.3", "1.2.4"); },
    [] { GXUtils::Transcode("UTF-8", "", GXUtils::Transcode("UTF-8", "UCS-2", kText) + kText); },
    [] { GXUtils::ToLower(GXUtils::Base64Decode(GXUtils::Base64Encode(kText))); },
    [] { GXUtils::HexASCIIToString(kText); },
    [] { GXUtils::CheckCreateDir(kFolder, false) && rmdir(kFolder.c_str()); },
    [] { GXUtils::UnlinkOrTruncate(GXUtils::GenerateTempFile(kText, nullptr).c_str()); },
    [] { GXUtils::calcHomeDir(kText); },
    [] { GXUtils::AddPathPrefix(GXUtils::calcRunningUser() + kText); },
    [] { GXUtils::ShowInFileManager("/tmp"); },
    [] { GXUtils::GetBogoMips(); },
    [] { parse_nfs_export_option("/" + kText + ",ro,/" + kText + ",rw,/b", *Out<Exports>()); },
};

TEST(Hostile, AnyCallMayFailAndNothingStaysBehind) {
  const TempDir directory;
  const ScopedEnv environment[] = {{"HOME", directory.Path().c_str()},
                                   {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such"},
                                   {"DISPLAY", nullptr},
                                   {"WAYLAND_DISPLAY", nullptr}};
  testing::internal::CaptureStderr();
  for (const auto& function : kFunctions) {
    for (const char* name : {"new", "pipe", "fcntl", "fork", "read", "waitpid", "syscall", "iconv",
                             "iconv_open", "mkdir", "fopen", "getpwuid"}) {
      bool failed = true;
      for (int nth = 1; failed; ++nth) {
        SCOPED_TRACE(testing::Message() << &function - kFunctions << name << nth);
        const LeakCheck leaks;
        try {
          const Failing fault(name, nth, EINTR);
          function();
          failed = fault.Happened();
        } catch (const std::bad_alloc&) {
          EXPECT_STREQ(name, "new");
        }
        // After a failed wait or a failed read of the status pipe the child is nobody's.
        while (name != "new"s && waitpid(-1, nullptr, 0) > 0) continue;
        ASSERT_LT(nth, 300);
      }
    }
  }
  (void)testing::internal::GetCapturedStderr();
}

TEST(Hostile, ThreadsDoNotDisturbEachOther) {
  std::atomic<bool> done{false};
  std::vector<std::thread> threads;
  const auto repeat = [&](auto work) {
    threads.emplace_back([&done, work] {
      while (!done) work();
    });
  };
  for (const std::string& mine : {std::string(50, 'a'), std::string(50, 'b')}) {
    repeat([mine] {
      EXPECT_EQ(GXUtils::SplitString("x," + mine, ',').back(), mine);
      EXPECT_EQ(GXUtils::Base64Decode(GXUtils::Base64Encode(mine)), mine);
      EXPECT_EQ(GXUtils::Transcode("UTF-8", "ISO-8859-1", mine), mine);
      EXPECT_EQ(GXUtils::ToLower(mine), mine);
      EXPECT_NE(GXUtils::Which("sh"), "");
      EXPECT_EQ(GXUtils::UnlinkOrTruncate(GXUtils::GenerateTempFile(mine, nullptr).c_str()), 0);
    });
  }
#ifndef __SANITIZE_THREAD__  // setlocale() is the client's race, not ours
  for (const char* locale : {"C", "C.UTF-8"}) repeat([=] { std::setlocale(LC_ALL, locale); });
#endif
#ifndef __SANITIZE_ADDRESS__  // takes a lock of its own for every stream, and holds it over a fork
  repeat([] { std::cerr << "" << std::flush; });
#endif
  std::string output;
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(SystemNowait("no-such-program", nullptr, Out<int>()), -2);
    if (i % 10 == 0) System("printf x", &output);
  }
  done = true;
  EXPECT_EQ(output, std::string(10, 'x'));
  for (std::thread& thread : threads) thread.join();
}

}  // namespace

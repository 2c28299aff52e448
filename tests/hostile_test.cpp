// States of the process and the machine in which the module has to hold; docs/hostile-states.md
// lists them all, with the tests of the other files.

#include <atomic>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <functional>
#include <iostream>
#include <list>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "gxclient_util.h"
#include "harness/capturedlog.h"
#include "harness/faults.h"
#include "harness/leakcheck.h"
#include "harness/scopedenv.h"
#include "harness/tempdir.h"
#include "support/exportdata.h"

using namespace std::string_literals;
using GXUtils::System;
using GXUtils::SystemNowait;

namespace {

// Both runners with a program that works and one that is missing.
void ExpectRunnersWork() {
  const CapturedLog log;
  const LeakCheck leaks;
  std::string output;
  EXPECT_EQ(System("echo works", &output), 0);
  EXPECT_EQ(output, "works\n");
  EXPECT_EQ(System("no-such-program"), -2);
  int out = -1;
  int err = -1;
  EXPECT_EQ(SystemNowait("no-such-program", &out, &err), -2);
  const int pid = SystemNowait("echo works", &out, &err);
  ASSERT_GT(pid, 0);
  char text[16] = {};
  EXPECT_EQ(read(out, text, sizeof text), 6);
  EXPECT_EQ(read(err, text, sizeof text), 0);
  close(out);
  close(err);
  (void)waitpid(pid, nullptr, 0);  // where SIGCHLD is ignored there is nothing to wait for
}

void SetLimit(decltype(RLIMIT_NOFILE) resource, rlim_t value) {
  struct rlimit limit {};
  ASSERT_EQ(getrlimit(resource, &limit), 0);
  limit.rlim_cur = value;
  ASSERT_EQ(setrlimit(resource, &limit), 0);
}

void ReapAll(int) {
  const int before = errno;
  while (waitpid(-1, nullptr, WNOHANG) > 0) {
  }
  errno = before;
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

TEST(Hostile, RunnersWorkInEveryState) {
  const auto onSigchld = [](void (*handler)(int), int flags) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    (void)sigaction(SIGCHLD, &action, nullptr);
  };
  const struct {
    const char* what;
    std::function<void()> enter;
  } states[] = {
      {"SIGCHLD ignored", [&] { onSigchld(SIG_IGN, 0); }},
      {"children are not kept", [&] { onSigchld(SIG_DFL, SA_NOCLDWAIT); }},
      {"a handler that reaps", [&] { onSigchld(ReapAll, SA_RESTART); }},
      {"all signals blocked",
       [] {
         sigset_t all;
         sigfillset(&all);
         (void)sigprocmask(SIG_SETMASK, &all, nullptr);
       }},
      {"PATH not set", [] { unsetenv("PATH"); }},
      {"close_range refused", RefuseCloseRange},
      {"pipes numbered above 1023",
       [] {
         SetLimit(RLIMIT_NOFILE, 2048);
         while (fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3) < 1100) {
         }
       }},
  };
  for (const auto& state : states) {
    EXPECT_TRUE(PassesInChild([&] {
      SCOPED_TRACE(state.what);
      state.enter();
      if (!testing::Test::HasFailure()) ExpectRunnersWork();
    })) << state.what;
  }
}

TEST(Hostile, NoDescriptorLeft) {
  EXPECT_TRUE(PassesInChild([] {
    CapturedLog log;
    SetLimit(RLIMIT_NOFILE, 64);
    while (dup(STDIN_FILENO) >= 0) {
    }
    for (int free = 0; free < 3; ++free) {  // 0, 1 or 2 descriptors are left for the pipes
      if (free > 0) close(64 - free);
      int fd = -2;
      EXPECT_EQ(System("true"), free < 2 ? -1 : 0);
      EXPECT_EQ(SystemNowait("true", &fd), -1);
      EXPECT_EQ(fd, -2);
      if (free > 0) continue;
      EXPECT_EQ(GXUtils::GenerateTempFile("x", &fd), "");
      EXPECT_EQ(fd, -1);
      EXPECT_EQ(GXUtils::GetBogoMips(), -1);
    }
    EXPECT_EQ(dup(STDIN_FILENO), 62);
    EXPECT_EQ(dup(STDIN_FILENO), 63);
  }));
}

TEST(Hostile, MemoryLimitEndsACapture) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizer reserves more address space than any limit";
#endif
  EXPECT_TRUE(PassesInChild([] {
    const LeakCheck leaks;
    SetLimit(RLIMIT_AS, 256 << 20);
    const char* argv[] = {"/bin/sh", "-c", "yes | head -c 1000000000", nullptr};
    std::string output;
    EXPECT_THROW(System(argv, &output), std::bad_alloc);
    EXPECT_GT(output.size(), 1000000U);
  }));
}

// Every public function that allocates or calls the system, with what a caller does with the
// result.
std::vector<std::function<void()>> AllFunctions() {
  static const std::string text(100, 'A');
  static const std::string list = GXUtils::EncodeStringList({text, text + ",", ""}, ',');
  const auto start = [](const char* command) {
    int fds[2] = {-1, -1};
    const int pid = SystemNowait(command, &fds[0], &fds[1]);
    for (const int fd : fds) close(fd);
    if (pid > 0) (void)waitpid(pid, nullptr, 0);
  };
  return {
      [] { GXUtils::SplitCommandLine(text + " \"" + text + "\" b"); },
      [] {
        std::string output;
        System("printf %s " + text, &output);
      },
      [] { System("no-such-program-" + text); },
      [=] { start("true"); },
      [=] { start("no-such-program"); },
      [] { GXUtils::Which("no-such-program-" + text); },
      [] { GXUtils::Strip(text, text) += GXUtils::LongToString(1); },
      [] {
        std::string copy = text;
        GXUtils::ReplaceInString(copy, "A", "BB");
      },
      [] {
        std::string pending = text + "\n" + text;
        GXUtils::StringLines((text + "\n" + text).c_str(), &pending);
      },
      [] {
        std::list<std::string> output;
        GXUtils::DecodeStringList(list, &output, ',');
        GXUtils::EncodeStringList(output, ',');
        GXUtils::DecodeStringList(text + "\\x", &output, ',');
      },
      [] { GXUtils::CompareVersions("1.2.3", "1.2.4"); },
      [] { GXUtils::Transcode("UTF-8", "UCS-2", text); },
      [] { GXUtils::Transcode("UTF-8", "", text + text); },
      [] { GXUtils::ToLower(text); },
      [] { GXUtils::Base64Decode(GXUtils::Base64Encode(text)); },
      [] { GXUtils::HexASCIIToString(text); },
      [] {
        GXUtils::CheckCreateDir("/tmp/" + text + text, false) &&
            rmdir(("/tmp/" + text + text).c_str());
      },
      [] { GXUtils::UnlinkOrTruncate(GXUtils::GenerateTempFile(text, nullptr).c_str()); },
      [] { GXUtils::calcHomeDir(text); },
      [] { GXUtils::calcRunningUser(); },
      [] { GXUtils::AddPathPrefix(text); },
      [] { GXUtils::ShowInFileManager("/tmp"); },
      [] { GXUtils::GetBogoMips(); },
      [] {
        std::vector<Exportdata*> exports;
        try {
          parse_nfs_export_option("/" + text + ",ro,/" + text + ",rw,/b", exports);
        } catch (const std::bad_alloc&) {
        }
        for (const Exportdata* record : exports) delete record;
      },
  };
}

TEST(Hostile, AnyCallMayFailAndNothingStaysBehind) {
  const TempDir folder;
  const ScopedEnv home("HOME", folder.Path().c_str());
  const ScopedEnv bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such");
  const ScopedEnv display("DISPLAY", nullptr);
  const ScopedEnv wayland("WAYLAND_DISPLAY", nullptr);
  testing::internal::CaptureStderr();
  int function = 0;
  for (const auto& call : AllFunctions()) {
    for (const char* name : {"new", "pipe", "fcntl", "fork", "read", "waitpid", "syscall", "iconv",
                             "iconv_open", "mkdir", "fopen", "getpwuid"}) {
      bool failed = true;
      for (int nth = 1; failed; ++nth) {
        SCOPED_TRACE(testing::Message() << function << name << nth);
        const LeakCheck leaks;
        {
          Failing fault(name, nth, EINTR);
          try {
            call();
          } catch (const std::bad_alloc&) {
            EXPECT_STREQ(name, "new");
          }
          failed = fault.Happened();
        }
        // After a failed wait or a failed read of the status pipe the child is nobody's.
        while (name != "new"s && waitpid(-1, nullptr, 0) > 0) {
        }
        ASSERT_LT(nth, 300);
      }
    }
    ++function;
  }
  (void)testing::internal::GetCapturedStderr();
}

TEST(Hostile, ThreadsDoNotDisturbEachOther) {
  alarm(100);  // ends the test where something hangs
  std::atomic<bool> done{false};
  std::vector<std::thread> threads;
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([&, i] {
      const std::string mine(50, static_cast<char>('a' + i));
      while (!done) {
        EXPECT_EQ(GXUtils::SplitString("x," + mine, ',').back(), mine);
        EXPECT_EQ(GXUtils::Base64Decode(GXUtils::Base64Encode(mine)), mine);
        EXPECT_EQ(GXUtils::Transcode("UTF-8", "ISO-8859-1", mine), mine);
        EXPECT_EQ(GXUtils::ToLower(mine), mine);
        EXPECT_NE(GXUtils::Which("sh"), "");
        int fd = -1;
        GXUtils::UnlinkOrTruncate(GXUtils::GenerateTempFile(mine, &fd).c_str());
        close(fd);
      }
    });
  }
#ifndef __SANITIZE_THREAD__  // setlocale() is the client's race, not ours
  threads.emplace_back([&] {
    while (!done) {
      std::setlocale(LC_ALL, "C.UTF-8");
      std::setlocale(LC_ALL, "C");
    }
  });
#endif
#ifndef __SANITIZE_ADDRESS__  // takes a lock of its own for every stream, and holds it over a fork
  threads.emplace_back([&] {
    while (!done) std::cerr << "" << std::flush;
  });
#endif
  for (int i = 0; i < 100; ++i) {
    int err = -1;
    EXPECT_EQ(SystemNowait("no-such-program", nullptr, &err), -2);
    if (i % 10 != 0) continue;
    std::string output;
    EXPECT_EQ(System("echo works", &output), 0);
    EXPECT_EQ(output, "works\n");
  }
  done = true;
  for (std::thread& thread : threads) thread.join();
  alarm(0);
}

}  // namespace

// What docs/hostile-states.md promises of the process and the machine.

#include <atomic>
#include <clocale>
#include <cstring>
#include <iostream>
#include <thread>

#include <sched.h>

#include "harness/harness.h"
#include "internal/descriptor.h"
#include "support/exportdata.h"
#include "support/gxexception.h"

using namespace std::string_literals;
using namespace GXUtils;

namespace {

constexpr int kNone = 77;  // stands in what a call does not write

// An output parameter that lives as long as the call.
template <class T = std::string>
T* Out(T&& value = T()) {
  return &value;
}

void OnSigchld(void (*handler)(int), int flags) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  sigaddset(&action.sa_mask, SIGUSR1);
  (void)sigaction(SIGCHLD, &action, nullptr);
}

void BlockAllSignals() {
  sigset_t all;
  sigfillset(&all);
  (void)sigprocmask(SIG_SETMASK, &all, nullptr);
}

// Both runners with a program that works and one that is missing.
void RunPrograms() {
  const LeakCheck leaks;
  std::string output = "abc";
  int status = kNone, out = kNone, err = kNone;
  EXPECT_EQ(System("sh -c \"echo out; echo err >&2; [ -e /dev/fd/0 ]\"", &output, &status), 0);
  EXPECT_EQ(output, "abcout\nerr\n");
  EXPECT_EQ(status, fcntl(STDIN_FILENO, F_GETFD) < 0 ? 1 : 0);
  EXPECT_EQ(System("no-such-program"), -2);
  EXPECT_EQ(System("head -c 100000 /dev/zero"), 0);  // read although nobody wants it
  EXPECT_EQ(SystemNowait("no-such-program", &out, &err), -2);
  EXPECT_EQ(out + err, 2 * kNone);

  const int pid = SystemNowait("sh -c \"echo out; echo err >&2; kill -STOP $$\"", &out, &err);
  ASSERT_GT(pid, 0);
  EXPECT_EQ(waitpid(pid, nullptr, WUNTRACED), pid);  // back while the program runs
  EXPECT_EQ(getsid(pid), pid);
  EXPECT_EQ(kill(pid, SIGCONT), 0);
  for (const int fd : {out, err}) {
    EXPECT_GT(fd, STDERR_FILENO);
    EXPECT_EQ(fcntl(fd, F_GETFD) + (fcntl(fd, F_GETFL) & O_NONBLOCK), 0);
    char text[9] = "";
    EXPECT_EQ(read(fd, text, 4) + read(fd, text + 4, 4), 4);
    EXPECT_STREQ(text, fd == out ? "out\n" : "err\n");
    close(fd);
  }
  (void)waitpid(pid, nullptr, 0);  // where SIGCHLD is ignored there is nothing to wait for
}

TEST(Hostile, RunnersWorkInEveryState) {
  const std::pair<const char*, std::function<void()>> states[] = {
      {"as usual", [] {}},
      {"SIGCHLD ignored", [] { OnSigchld(SIG_IGN, 0); }},
      {"no zombies", [] { OnSigchld(SIG_DFL, SA_NOCLDWAIT); }},
      {"every child reaped", [] { OnSigchld(ReapAll, SA_RESTART); }},
      {"all signals blocked", BlockAllSignals},
      {"no close_range", [] { static const Failing refused("syscall", 1, EPERM); }},
  };
  for (const auto& [state, enter] : states) {
    for (int closed = 0; closed < 8; ++closed) {  // whichever standard descriptors
      EXPECT_TRUE(PassesInChild([&, enterState = enter] {
        for (int fd = 0; fd < 3; ++fd) (void)((closed >> fd & 1) != 0 && close(fd));
        enterState();
        RunPrograms();
      })) << state
          << ", closed: " << closed;
    }
  }
}

TEST(Hostile, AFailedCallOfARunnerHasItsResult) {
  const struct {
    bool detached;
    const char *command, *call;
    int first, last;   // each of these calls fails once
    int result;        // or the code of the exception
    const char* text;  // output, exception, log and standard error
    int status = kNone, children = 0;
  } cases[] = {
      {false, "true", "sigaction", 1, 1, -1, "Error: sigaction() failed\n"},
      {false, "printf x", "sigaction", 2, 2, -1, "xError: sigaction() restore failed\n"},
      {false, "true", "pipe", 1, 1, -1, "Error: pipe() failed\n"},
      {false, "true", "fcntl", 1, 4, -1, "Error: pipe() failed\n"},
      {false, "true", "fork", 1, 1, -1, "Error: fork() failed\n"},
      {false, "printf x", "waitpid", 1, 1, -1, "x", kNone, 1},
      {false, "sh -c \"trap '' PIPE; printf x 2>&-; exit 3\"", "read", 1, 1, 0, "", 3},
      {false, "sh -c \"exit 127\"", "", 0, 0, kNone, "log failed2 Command sh not found\n", 127},
      {false, " ", "", 0, 0, kNone, "log failed2 Failed to start command \n", 128},
      {false, "", "", 0, 0, 6, "Empty command"},
      {true, "true", "pipe", 1, 3, -1, ""},
      {true, "true", "fcntl", 1, 12, -1, ""},
      {true, "true", "fork", 1, 1, -1, ""},
      {true, "true", "read", 1, 1, -2, "", kNone, 1},
      {true, "no-such-program", "waitpid", 1, 1, -2, ""},
      {true, " ", "", 0, 0, -2, ""},
      {true, "", "", 0, 0, 11, "Empty command"},
  };
  const auto doNothing = [](int) {};
  logThrows = true;
  for (const auto& c : cases) {
    for (int nth = c.first; nth <= c.last; ++nth) {
      SCOPED_TRACE(testing::Message() << c.detached << " " << c.command << ": " << c.call << nth);
      OnSigchld(doNothing, SA_NOCLDSTOP | SA_NODEFER);
      const LeakCheck leaks;
      std::string text;
      logged.clear();
      int result = kNone, out = kNone;
      testing::internal::CaptureStderr();
      try {
        const Failing fault(c.call, nth, EINTR);
        result = c.detached ? SystemNowait(c.command, &out, &out) : System(c.command, &text, &out);
        EXPECT_TRUE(fault.Happened());
      } catch (const GXException& error) {
        result = error.code();
        text += error.what();
      } catch (const std::runtime_error& error) {
        text += error.what();
      }
      EXPECT_EQ(text + logged + testing::internal::GetCapturedStderr(), c.text);
      EXPECT_EQ(result, c.result);
      EXPECT_EQ(out, c.status);
      EXPECT_EQ(waitpid(-1, nullptr, 0) > 0, c.children == 1);
      // What could not be restored.
      if (c.call == "sigaction"s) OnSigchld(doNothing, SA_NOCLDSTOP | SA_NODEFER);
    }
  }
  (void)std::signal(SIGCHLD, SIG_DFL);
  logThrows = false;
}

TEST(Hostile, MemoryExhaustedEndsACaptureAndNoDetachedStart) {
  const LeakCheck leaks;
  const char* const endless[] = {"yes", nullptr};
  const char* const missing[] = {"no-such-program", nullptr};
  const char* const works[] = {"true", nullptr};
  const Failing allocation("new", 1, ENOMEM);
  EXPECT_EQ(SystemNowait(missing), -2);
  EXPECT_GT(SystemNowait(works), 0);
  EXPECT_GT(waitpid(-1, nullptr, 0), 0);
  EXPECT_THROW(System(endless, Out()), std::bad_alloc);
}

// Whatever the client does to its streams, and nothing of what it has in them.
TEST(Hostile, AFailedStartWritesItsErrorAlone) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "the sanitizer flushes every stream in _exit()";
#endif
  testing::internal::CaptureStderr();
  EXPECT_TRUE(PassesInChild([] {
    std::cerr.rdbuf(std::cout.rdbuf());
    static char buffer[BUFSIZ];  // of its own: the stream may have been used
    (void)std::setvbuf(stderr, buffer, _IOFBF, sizeof buffer);
    (void)std::fputs("waits for the end", stderr);
    std::string output;
    EXPECT_EQ(System("/no/such/program", &output), -2);
    EXPECT_EQ(output, "");
    EXPECT_EQ(SystemNowait("/no/such/program"), -2);
  }));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), std::strerror(ENOENT) + "\nwaits for the end"s);
}

// A full pipe that nobody reads; where that is allowed, in a PID namespace, whose process 1 no
// default action ends.
TEST(Hostile, AChildThatCannotWriteItsErrorEnds) {
  GXSupport::Pipe error;
  ASSERT_TRUE(error.Open());
  (void)fcntl(error.writeEnd.Get(), F_SETFL, O_NONBLOCK);
  while (write(error.writeEnd.Get(), "full", 4) > 0) continue;
  (void)fcntl(error.writeEnd.Get(), F_SETFL, 0);
  EXPECT_TRUE(PassesInChild([&] {
    (void)dup2(error.writeEnd.Get(), STDERR_FILENO);
    (void)std::signal(SIGALRM, SIG_IGN);
    BlockAllSignals();
    (void)unshare(CLONE_NEWPID);
    EXPECT_EQ(SystemNowait("no-such-program"), -2);
  }));
}

struct Exports : std::vector<Exportdata*> {
  ~Exports() {
    for (const Exportdata* record : *this) delete record;
  }
};

void Start(const char* command) {
  int fds[2] = {-1, -1};
  (void)SystemNowait(command, &fds[0], &fds[1]);
  for (const int fd : fds) close(fd);
}

TEST(Hostile, AnyCallMayFailAndNothingStaysBehind) {
  const std::string text(100, 'A');
  // What opens, starts or owns something that is not a string.
  const std::pair<const char*, std::function<void()>> functions[] = {
      {"System", [&] { System("printf %s%s " + text + " \"" + text + "\"", Out()); }},
      {"System, no program", [&] { System("no-such-program-" + text); }},
      {"SystemNowait", [] { Start("true"); }},
      {"SystemNowait, no program", [] { Start("no-such-program"); }},
      {"Transcode", [&] { Transcode("UTF-8", "", text); }},
      {"ToLower", [&] { ToLower(text + text + text); }},
      {"GenerateTempFile", [&] { unlink(GenerateTempFile(text, nullptr).c_str()); }},
      {"ShowInFileManager", [] { ShowInFileManager("/tmp"); }},
      {"GetBogoMips", [] { GetBogoMips(); }},
      {"exports", [&] { parse_nfs_export_option("/" + text + ",ro,/b,rw,/c", *Out<Exports>()); }},
  };
  EXPECT_TRUE(PassesInChild([&] {
    for (const char* display : {"DISPLAY", "WAYLAND_DISPLAY"}) (void)unsetenv(display);
    (void)setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such", 1);
    testing::internal::CaptureStderr();
    for (const auto& [function, call] : functions) {
      for (const char* name : {"new", "pipe", "fcntl", "fork", "read", "waitpid", "syscall",
                               "iconv", "iconv_open", "fopen"}) {
        bool failed = true;
        for (int nth = 1; failed; ++nth) {
          SCOPED_TRACE(testing::Message() << function << ", " << name << " " << nth);
          const LeakCheck leaks;
          try {
            const Failing fault(name, nth, EINTR);
            call();
            failed = fault.Happened();
          } catch (const std::bad_alloc&) {
            ASSERT_LT(nth, 300) << "it never succeeds";
            continue;
          }
          while (waitpid(-1, nullptr, 0) > 0) continue;  // what was started, or could not be told
        }
      }
    }
    (void)testing::internal::GetCapturedStderr();
  }));
}

TEST(Hostile, ThreadsDoNotDisturbEachOther) {
  std::atomic<bool> done{false};
  std::vector<std::thread> threads;
  const auto repeat = [&](auto work) {
    threads.emplace_back([&done, work] {
      while (!done) work();
    });
  };
  for (const char letter : {'a', 'b'}) {
    repeat([mine = std::string(50, letter)] {
      EXPECT_EQ(Transcode("UTF-8", "ISO-8859-1", mine), mine);
      EXPECT_NE(Which("sh"), "");
      EXPECT_EQ(UnlinkOrTruncate(GenerateTempFile(mine, nullptr).c_str()), 0);
    });
  }
// setlocale() is the client's race, not ours; the other sanitizer locks every stream over a fork.
#if !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)
  for (const char* locale : {"C", "C.UTF-8"}) repeat([=] { std::setlocale(LC_ALL, locale); });
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

// Running programs and finding them.

#include <atomic>
#include <cstring>
#include <fstream>
#include <thread>

#include <sched.h>
#include <sys/resource.h>

#include "harness/run.h"
#include "harness/temp_dir.h"

using namespace GXUtils;
using namespace std::string_literals;

using Strings = std::vector<std::string>;

const std::string kTalks = "sh -c \"echo out; echo err >&2\"";

// Makes every descriptor below 1100 the standard error.
void OpenDescriptors() {
  rlimit limit = {};
  (void)getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = 2048;
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  for (int fd = 0; fd < 1100; ++fd) (void)dup2(STDERR_FILENO, fd);
}

TEST(SplitCommandLine, KnowsSpacesAndDoubleQuotesOnly) {
  EXPECT_EQ(SplitCommandLine("ls  -l /tmp "), (Strings{"ls", "-l", "/tmp"}));
  EXPECT_EQ(SplitCommandLine("\"my prog\" \"\""), (Strings{"my prog", ""}));
  EXPECT_EQ(SplitCommandLine("a\"b c\""), (Strings{"a\"b", "c\""}));
  EXPECT_EQ(SplitCommandLine("\"a b\"c"), (Strings{"a b", "c"}));
  EXPECT_EQ(SplitCommandLine("a\tb\\ c'\0"s), (Strings{"a\tb\\", "c'\0"s}));
  // An unclosed quote loses its word.
  EXPECT_EQ(SplitCommandLine("a \"b c"), (Strings{"a", "c"}));
}

TEST(System, ReportsHowTheProgramEnded) {
  EXPECT_EQ(RunProgram(kTalks), (Outcome{.status = 0, .output = "out\nerr\n"}));
  EXPECT_EQ(RunProgram("sh -c \"exit 255\""), (Outcome{.status = 255}));
  EXPECT_EQ(RunProgram("sh -c \"kill -9 $$\""), (Outcome{.result = -1}));

  const Outcome missing = {
      .result = -2, .status = 128, .log = "2 Failed to start command no-such-program\n"};
  EXPECT_EQ(RunProgram("no-such-program"), missing);
  EXPECT_EQ(RunProgram(" ").log, "2 Failed to start command \n");
  EXPECT_EQ(RunProgram(""), (Outcome{.thrown = "6 Empty command"}));

  // 127 is taken for "not found", whoever exits with it.
  const Outcome notFound = {.result = -2, .status = 127, .log = "2 Command sh not found\n"};
  EXPECT_EQ(RunProgram("sh -c \"exit 127\""), notFound);
}

TEST(System, AppendsEachPieceUpToItsFirstNul) {
  // One piece is "a", a NUL byte and 253 digits, the next one "bc".
  const char* const argv[] = {"printf", "a\\0%0253dbc", nullptr};
  std::string output = "before ";
  EXPECT_EQ(System(argv, &output), 0);
  EXPECT_EQ(output, "before abc");
}

TEST(System, ReadsToTheLastWriter) {
  EXPECT_EQ(RunProgram("sh -c \"echo early; (sleep 0.1; echo late) &\"").output, "early\nlate\n");
  // An output that nobody wants is read as well: this is more than a pipe holds.
  EXPECT_EQ(System("head -c 100000 /dev/zero"), 0);
}

TEST(System, ReportsEachFailedCall) {
  const auto failing = [](Call call, int nth = 1) { return RunProgram("printf x", {call, nth}); };
  const Outcome noSignal = {.result = -1, .errors = "Error: sigaction() failed\n"};
  const Outcome noPipe = {.result = -1, .errors = "Error: pipe() failed\n"};
  const Outcome noFork = {.result = -1, .errors = "Error: fork() failed\n"};
  EXPECT_EQ(failing(Call::kSigaction), noSignal);
  EXPECT_EQ(failing(Call::kPipe), noPipe);
  EXPECT_EQ(failing(Call::kFork), noFork);
  // Two uses for each end of the pipe.
  for (int nth = 1; nth <= 4; ++nth) EXPECT_EQ(failing(Call::kFcntl, nth), noPipe);
  // An interrupted wait is not repeated.
  EXPECT_EQ(failing(Call::kWaitpid), (Outcome{.result = -1, .output = "x", .childLeft = true}));
  const Outcome notRestored = {
      .result = -1, .output = "x", .errors = "Error: sigaction() restore failed\n"};
  EXPECT_EQ(failing(Call::kSigaction, 2), notRestored);
}

TEST(System, ClosesThePipeWhenItCannotReadOn) {
  EXPECT_EQ(RunProgram("sh -c \"yes; exit 3\"", {Call::kRead}), (Outcome{.status = 3}));
  const char* const endless[] = {"yes", nullptr};
  std::string output;
  const LeakCheck leaks;
  // With an array of arguments, memory is first needed for the output.
  const Armed memory({Call::kNew});
  EXPECT_THROW(System(endless, &output), std::bad_alloc);
}

TEST(CloseAllFds, ClosesTheRangeUpTo1023ButOne) {
  const struct {
    int first, keep;
  } cases[] = {{100, 200}, {100, 100}, {100, 0}, {100, 1023}, {-5, -7}, {1024, 2000}};
  for (const auto& c : cases) {
    for (const Call refused : {Call::kNone, Call::kCloseRange}) {
      SCOPED_TRACE(testing::Message() << c.first << ", " << c.keep);
      PassesInChild([&] {
        OpenDescriptors();
        const bool required = refused != Call::kNone && c.first <= 1023;
        const Armed fault({.call = refused, .nth = kEachTime, .required = required});
        CloseAllFds(c.first, c.keep);
        for (int fd = 0; fd < 1100; ++fd) {
          EXPECT_EQ(fcntl(fd, F_GETFD) >= 0, fd < c.first || fd == c.keep || fd > 1023) << fd;
        }
      });
    }
  }
}

TEST(SystemNowait, HandsOverTheOutputOfTheRunningProgram) {
  int out = -1, err = -1;
  const int pid = SystemNowait("sh -c \"echo out; echo err >&2; kill -STOP $$\"", &out, &err);
  ASSERT_GT(pid, 0);
  // It has stopped itself: the call did not wait.
  EXPECT_EQ(waitpid(pid, nullptr, WUNTRACED), pid);
  EXPECT_EQ(getsid(pid), pid);
  EXPECT_EQ(kill(pid, SIGCONT), 0);
  for (const int fd : {out, err}) {
    EXPECT_EQ(fcntl(fd, F_GETFD), 0);  // not close-on-exec
    EXPECT_EQ(fcntl(fd, F_GETFL) & O_NONBLOCK, 0);
  }
  EXPECT_EQ(ReadAll(out), "out\n");
  EXPECT_EQ(ReadAll(err), "err\n");
  EXPECT_EQ(waitpid(pid, nullptr, 0), pid);
}

TEST(SystemNowait, ReportsEachFailedCall) {
  const auto fails = [](Call call, int nth) {
    int out = kUnwritten, err = kUnwritten;
    const Armed fault({call, nth});
    EXPECT_EQ(SystemNowait("true", &out, &err), -1) << static_cast<int>(call) << ", " << nth;
    EXPECT_EQ(out, kUnwritten);
    EXPECT_EQ(err, kUnwritten);
  };
  // Three pipes, and two uses for each end of them.
  for (int nth = 1; nth <= 3; ++nth) fails(Call::kPipe, nth);
  for (int nth = 1; nth <= 12; ++nth) fails(Call::kFcntl, nth);
  fails(Call::kFork, 1);
  EXPECT_EQ(StartProgram("true", {Call::kRead}), (Outcome{.result = -2, .childLeft = true}));
}

TEST(SystemNowait, WritesTheErrorOfAFailedExec) {
  const Outcome missing = {.result = -2, .errors = "No such file or directory\n"};
  EXPECT_EQ(StartProgram("/no/such"), missing);
  EXPECT_EQ(StartProgram(" "), missing);
  // An interrupted wait for the child is repeated.
  EXPECT_EQ(StartProgram("/no/such", {Call::kWaitpid}), missing);
  EXPECT_EQ(StartProgram(""), (Outcome{.thrown = "11 Empty command"}));
  // The text has the language of the caller. It is looked up before the fork: a use in the child
  // would not count as fired.
  char translated[] = "nicht vorhanden";
  const Fault locale = {.call = Call::kStrerror, .nth = kEachTime, .answer = translated};
  EXPECT_EQ(StartProgram("/no/such", locale).errors, "nicht vorhanden\n");
  // An error outside the list of those that are looked up.
  const Fault unusual = {.call = Call::kExecvp, .error = ENOTUNIQ, .required = false};
  EXPECT_EQ(StartProgram("true", unusual).errors, std::strerror(ENOTUNIQ) + "\n"s);
}

// The standard error is a full pipe that nobody reads. As process 1 of a PID namespace, if that is
// permitted, the child survives the default action of a signal.
TEST(SystemNowait, EndsAChildThatCannotWriteItsError) {
  PassesInChild([] {
    int full[2];
    EXPECT_EQ(pipe2(full, O_NONBLOCK), 0);
    while (write(full[1], "full", 4) > 0) {
    }
    (void)fcntl(full[1], F_SETFL, 0);
    (void)dup2(full[1], STDERR_FILENO);
    IgnoreAlarm();
    (void)unshare(CLONE_NEWPID);
    EXPECT_EQ(SystemNowait("no-such-program"), -2);
    EXPECT_LT(waitpid(-1, nullptr, WNOHANG), 0);
  });
}

TEST(SystemAndNowait, WorkInEveryState) {
  PassesInEveryState([] {
    std::string output;
    EXPECT_EQ(System(kTalks, &output), 0);
    EXPECT_EQ(output, "out\nerr\n");
    // A closed standard input stays closed.
    int status = kUnwritten;
    EXPECT_EQ(System("test -e /dev/fd/0", nullptr, &status), 0);
    EXPECT_EQ(status, fcntl(STDIN_FILENO, F_GETFD) < 0 ? 1 : 0);
    int out = kUnwritten, err = kUnwritten;
    EXPECT_EQ(SystemNowait("no-such-program", &out, &err), -2);
    EXPECT_EQ(out, kUnwritten);
    EXPECT_GT(SystemNowait(kTalks, &out, &err), 0);
    EXPECT_EQ(ReadAll(out), "out\n");
    EXPECT_EQ(ReadAll(err), "err\n");
    // Fails if the action for SIGCHLD has reaped it.
    (void)waitpid(-1, nullptr, 0);
  });
}

TEST(SystemAndNowait, LeaveNothingBehind) {
  // Long enough for an allocation, which can fail.
  const std::string text(100, 'A');
  for (const std::string& command : {"printf " + text, "no-such-" + text}) {
    LeavesNothingBehind([&] {
      std::string output;
      int out = -1, err = -1;
      (void)System(command, &output);
      (void)SystemNowait(command, &out, &err);
      for (const int fd : {out, err}) (void)close(fd);
    });
  }
}

TEST(SystemAndNowait, PassOnNoDescriptorFrom3To1023) {
  PassesInChild([] {
    OpenDescriptors();
    const std::string list = "sh -c \"cd /proc/$$/fd; ls -dm 0 3 900 1023 1024 1099 2>/dev/null\"";
    int out = -1;
    EXPECT_EQ(RunProgram(list).output, "0, 1024, 1099\n");
    EXPECT_GT(SystemNowait(list, &out), 0);
    EXPECT_EQ(ReadAll(out), "0, 1024, 1099\n");
  });
}

// A failed exec must not write the text that waits in the streams of the forked client.
TEST(SystemAndNowait, LeaveTheClientsStreamsAlone) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "the sanitizer flushes every stream in _exit()";
#endif
  testing::internal::CaptureStderr();
  PassesInChild([] {
    static char buffer[BUFSIZ];
    (void)std::setvbuf(stderr, buffer, _IOFBF, sizeof buffer);
    (void)std::fputs("text of the client", stderr);
    std::string output;
    EXPECT_EQ(System("/no/such", &output), -2);
    EXPECT_EQ(output, "");
    EXPECT_EQ(SystemNowait("/no/such"), -2);
  });
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "No such file or directory\ntext of the client");
}

// For the thread sanitizer, and for the locks of malloc and iconv that a thread holds at the fork.
TEST(SystemAndNowait, RunBesideThreads) {
  std::atomic<bool> done{false};
  const auto work = [&done](const std::string& text) {
    while (!done) {
      EXPECT_EQ(Transcode("UTF-8", "ISO-8859-1", text), text);
      EXPECT_EQ(UnlinkOrTruncate(GenerateTempFile(text, nullptr).c_str()), 0);
    }
  };
  std::thread first(work, std::string(50, 'a')), second(work, std::string(50, 'b'));
  int err = -1;
  for (int i = 0; i < 100; ++i) EXPECT_EQ(SystemNowait("no-such-program", nullptr, &err), -2);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(System("true"), 0);
  done = true;
  first.join();
  second.join();
}

TEST(CheckFileExist, FollowsLinks) {
  const TempDir top;
  std::filesystem::create_symlink("/no/such", top.path + "/dangling");
  EXPECT_TRUE(CheckFileExist(top.path));
  EXPECT_TRUE(CheckFileExist("/dev/fd"));
  EXPECT_FALSE(CheckFileExist(top.path + "/dangling"));
}

// The real user and group count, and the bit of the first class that they belong to.
TEST(CheckFileExecutable, ReadsOneBit) {
  const TempDir item;
  EXPECT_TRUE(CheckFileExecutable(item.path));
  EXPECT_FALSE(CheckFileExecutable("/no/such"));
  if (getuid() != 0) GTEST_SKIP() << "only the superuser may give files away";
  constexpr uid_t kUser = 1001;
  constexpr gid_t kGroup = 1002;
  const auto executable = [&](uid_t owner, gid_t group, mode_t mode) {
    EXPECT_EQ(chown(item.path.c_str(), owner, group), 0);
    EXPECT_EQ(chmod(item.path.c_str(), mode), 0);
    return CheckFileExecutable(item.path);
  };
  PassesInChild([&] {
    EXPECT_EQ(setresgid(kGroup, 0, 0), 0);
    EXPECT_EQ(setresuid(kUser, 0, 0), 0);
    EXPECT_TRUE(executable(kUser, 0, 0100));
    EXPECT_FALSE(executable(kUser, kGroup, 0677));
    EXPECT_TRUE(executable(0, kGroup, 0010));
    EXPECT_FALSE(executable(0, kGroup, 0767));
    EXPECT_TRUE(executable(0, 0, 0001));
    EXPECT_FALSE(executable(0, 0, 0776));
  });
}

TEST(Which, TakesEachEntryOfPathAsItIsWritten) {
  const TempDir top;
  const auto found = [](const char* path, const char* name) {
    (void)setenv("PATH", path, 1);
    return Which(name);
  };
  PassesInChild([&] {
    std::filesystem::current_path(top.path);
    // install(1) makes an executable.
    (void)!std::system("mkdir -p a/sub b; install /dev/null a/sub/tool; install /dev/null b/tool");
    std::ofstream("a/tool").close();
    EXPECT_EQ(found("a:b", "tool"), "b/tool");
    EXPECT_EQ(found("a/sub:b", "tool"), "a/sub/tool");
    EXPECT_EQ(found("b/:a/", "sub/tool"), "a//sub/tool");
    EXPECT_EQ(found("b", "none"), "");
    EXPECT_EQ(found("b", "/bin/sh"), "/bin/sh");
    EXPECT_EQ(found("b", "/etc/passwd"), "");
    // An empty entry is the root directory. An empty name is the entry, if that is a directory.
    EXPECT_EQ(found(":b", "bin"), "/bin");
    EXPECT_EQ(found("a/tool:b", ""), "b/");
    (void)unsetenv("PATH");
    EXPECT_EQ(Which("sh"), "");
    // Along the default path of the system.
    EXPECT_EQ(System("true"), 0);
  });
}

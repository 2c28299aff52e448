// Running programs and finding them.

#include <atomic>
#include <clocale>
#include <cstring>
#include <iostream>
#include <thread>

#include <sched.h>
#include <sys/resource.h>

#include "harness/run.h"
#include "harness/temp_dir.h"

using namespace GXUtils;
using namespace std::string_literals;

namespace {

const std::string kMissing = "No such file or directory\n";

// Makes every descriptor below 1100 the standard error.
void OpenDescriptors() {
  rlimit limit = {};
  (void)getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = 2048;
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  for (int fd = 0; fd < 1100; ++fd) (void)dup2(STDERR_FILENO, fd);
}

TEST(SplitCommandLine, KnowsSpacesAndDoubleQuotesOnly) {
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"  ", {}},
      {"ls  -l /tmp ", {"ls", "-l", "/tmp"}},
      {"\"my prog\" \"\"", {"my prog", ""}},
      {"a\"b c\"", {"a\"b", "c\""}},
      {"\"a b\"c", {"a b", "c"}},
      {"a \"b c", {"a", "c"}},  // an unclosed quote loses its word
      {"a\tb\\ c'\0"s, {"a\tb\\", "c'\0"s}},
  };
  for (const auto& [line, arguments] : cases) EXPECT_EQ(SplitCommandLine(line), arguments) << line;
}

TEST(System, ReportsHowTheProgramEnded) {
  EXPECT_EQ(RunProgram("printf x"), (Outcome{.status = 0, .output = "x"}));
  EXPECT_EQ(RunProgram("sh -c \"echo out; echo err >&2; exit 255\""),
            (Outcome{.status = 255, .output = "out\nerr\n"}));
  EXPECT_EQ(RunProgram("sh -c \"kill -9 $$\""), (Outcome{.result = -1}));

  const std::string notStarted = "2 Failed to start command ";
  EXPECT_EQ(RunProgram("no-such-program"),
            (Outcome{.result = -2, .status = 128, .log = notStarted + "no-such-program\n"}));
  EXPECT_EQ(RunProgram(" "), (Outcome{.result = -2, .status = 128, .log = notStarted + "\n"}));
  EXPECT_EQ(RunProgram(""), (Outcome{.thrown = "6 Empty command"}));

  // 127 is taken for "not found", whoever exits with it.
  EXPECT_EQ(RunProgram("sh -c \"exit 127\""),
            (Outcome{.result = -2, .status = 127, .log = "2 Command sh not found\n"}));
}

TEST(System, AppendsEachPieceUpToItsFirstNul) {
  // One piece is "a", NUL and 253 zeros, the next one "bc".
  const char* const argv[] = {"printf", "a\\0%0253dbc", nullptr};
  std::string output = "before ";
  EXPECT_EQ(System(argv, &output), 0);
  EXPECT_EQ(output, "before abc");
}

TEST(System, ReadsToTheLastWriterAndDrainsUnwantedOutput) {
  EXPECT_EQ(RunProgram("sh -c \"(sleep 0.1; echo late) & echo early\""),
            (Outcome{.status = 0, .output = "early\nlate\n"}));
  EXPECT_EQ(System("head -c 100000 /dev/zero"), 0);  // more than a pipe holds
}

TEST(System, ReportsEachFailedCall) {
  const auto run = [](Call call, int nth = 1) { return RunProgram("printf x", Fault{call, nth}); };
  const Outcome noPipe = {.result = -1, .errors = "Error: pipe() failed\n"};
  EXPECT_EQ(run(Call::kSigaction),
            (Outcome{.result = -1, .errors = "Error: sigaction() failed\n"}));
  EXPECT_EQ(run(Call::kPipe), noPipe);
  for (int nth = 1; nth <= 4; ++nth) EXPECT_EQ(run(Call::kFcntl, nth), noPipe);  // two for each end
  EXPECT_EQ(run(Call::kFork), (Outcome{.result = -1, .errors = "Error: fork() failed\n"}));
  // An interrupted wait is not repeated.
  EXPECT_EQ(run(Call::kWaitpid), (Outcome{.result = -1, .output = "x", .childLeft = true}));
  EXPECT_EQ(
      run(Call::kSigaction, 2),
      (Outcome{.result = -1, .output = "x", .errors = "Error: sigaction() restore failed\n"}));
}

TEST(System, ClosesThePipeWhenItCannotReadOn) {
  EXPECT_EQ(RunProgram("sh -c \"yes; exit 3\"", Fault{Call::kRead}), (Outcome{.status = 3}));
  const char* const endless[] = {"yes", nullptr};
  std::string output;
  const LeakCheck leaks;
  const Armed memory({Call::kNew});  // first needed for the output
  EXPECT_THROW(System(endless, &output), std::bad_alloc);
}

TEST(CloseAllFds, ClosesTheRangeUpTo1023ButOne) {
  const struct {
    int first, keep;
  } cases[] = {{100, 200}, {100, 100}, {100, 0}, {100, 1023}, {-5, -7}, {1024, 2000}};
  for (const auto& c : cases) {
    for (const int nth : {kEachTime, 99}) {  // close_range() fails always, or never
      SCOPED_TRACE(testing::Message() << c.first << ", " << c.keep << ", " << nth);
      EXPECT_TRUE(PassesInChild([&] {
        OpenDescriptors();
        const Armed refusal({.call = Call::kCloseRange, .nth = nth, .required = false});
        CloseAllFds(c.first, c.keep);
        for (int fd = 0; fd < 1100; ++fd) {
          const bool open = fcntl(fd, F_GETFD) >= 0;
          EXPECT_EQ(open, fd < c.first || fd == c.keep || fd > 1023) << fd;
        }
      }));
    }
  }
}

TEST(SystemNowait, HandsOverTheOutputOfTheRunningProgram) {
  int out = -1, err = -1;
  const int pid = SystemNowait("sh -c \"echo out; echo err >&2; kill -STOP $$\"", &out, &err);
  ASSERT_GT(pid, 0);
  EXPECT_EQ(waitpid(pid, nullptr, WUNTRACED), pid);  // it stopped itself: the call did not wait
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
    SCOPED_TRACE(testing::Message() << "Call " << static_cast<int>(call) << ", use " << nth);
    EXPECT_EQ(SystemNowait("true", &out, &err), -1);
    EXPECT_EQ(out, kUnwritten);
    EXPECT_EQ(err, kUnwritten);
  };
  for (int nth = 1; nth <= 3; ++nth) fails(Call::kPipe, nth);
  for (int nth = 1; nth <= 12; ++nth) fails(Call::kFcntl, nth);
  fails(Call::kFork, 1);
  EXPECT_EQ(StartProgram("true", Fault{Call::kRead}), (Outcome{.result = -2, .childLeft = true}));
}

TEST(SystemNowait, WritesTheErrorOfAFailedExec) {
  EXPECT_EQ(StartProgram("/no/such"), (Outcome{.result = -2, .errors = kMissing}));
  EXPECT_EQ(StartProgram(" "), (Outcome{.result = -2, .errors = kMissing}));
  EXPECT_EQ(StartProgram(""), (Outcome{.thrown = "11 Empty command"}));
  // An interrupted wait for the child is repeated.
  EXPECT_EQ(StartProgram("/no/such", Fault{Call::kWaitpid}),
            (Outcome{.result = -2, .errors = kMissing}));
  // The caller looks the text up, in its locale: a use in the child would not count as fired.
  char translated[] = "nicht vorhanden";
  const Fault locale = {.call = Call::kStrerror, .nth = kEachTime, .answer = translated};
  EXPECT_EQ(StartProgram("/no/such", locale),
            (Outcome{.result = -2, .errors = "nicht vorhanden\n"}));
  // An error that execvp(3) does not have.
  const Fault unusual = {.call = Call::kExecvp, .error = ENOTUNIQ, .required = false};
  EXPECT_EQ(StartProgram("true", unusual),
            (Outcome{.result = -2, .errors = std::strerror(ENOTUNIQ) + "\n"s}));
}

// The standard error is a full pipe that nobody reads. As process 1 of a PID namespace, if that is
// permitted, the child survives the default action of a signal.
TEST(SystemNowait, EndsAChildThatCannotWriteItsError) {
  int full[2];
  ASSERT_EQ(pipe2(full, O_NONBLOCK), 0);
  while (write(full[1], "full", 4) > 0) {
  }
  (void)fcntl(full[1], F_SETFL, 0);
  EXPECT_TRUE(PassesInChild([&] {
    (void)dup2(full[1], STDERR_FILENO);
    (void)std::signal(SIGALRM, SIG_IGN);
    sigset_t all;
    sigfillset(&all);
    (void)sigprocmask(SIG_SETMASK, &all, nullptr);
    (void)unshare(CLONE_NEWPID);
    EXPECT_EQ(SystemNowait("no-such-program"), -2);
  }));
  for (const int fd : full) (void)close(fd);
}

TEST(SystemAndNowait, WorkWithoutStandardDescriptorsAndWithAnyActionForSigchld) {
  const auto runPrograms = [](bool hasInput) {
    const LeakCheck leaks;
    std::string output;
    int status = kUnwritten, out = kUnwritten, err = kUnwritten;
    EXPECT_EQ(System("sh -c \"echo out; echo err >&2; test -e /dev/fd/0\"", &output, &status), 0);
    EXPECT_EQ(output, "out\nerr\n");
    EXPECT_EQ(status, hasInput ? 0 : 1);
    EXPECT_EQ(SystemNowait("no-such-program", &out, &err), -2);
    EXPECT_EQ(out, kUnwritten);
    EXPECT_EQ(err, kUnwritten);
    EXPECT_GT(SystemNowait("sh -c \"echo out; echo err >&2\"", &out, &err), 0);
    EXPECT_EQ(ReadAll(out), "out\n");
    EXPECT_EQ(ReadAll(err), "err\n");
    (void)waitpid(-1, nullptr, 0);  // unless the action for SIGCHLD has reaped it
  };
  for (const auto& action : {SIG_DFL, SIG_IGN, ReapEveryChild}) {
    for (int closed = 0; closed < 8; ++closed) {
      EXPECT_TRUE(PassesInChild([&] {
        CloseStandard(closed);
        (void)std::signal(SIGCHLD, action);
        runPrograms((closed & 1) == 0);
      })) << "closed descriptors: "
          << closed << ", SIGCHLD ignored: " << (action == SIG_IGN);
    }
  }
}

TEST(SystemAndNowait, LeaveNothingBehind) {
  const std::string text(100, 'A');  // needs an allocation, which can fail
  testing::internal::CaptureStderr();
  for (const std::string& command : {"printf " + text, "no-such-" + text}) {
    LeavesNothingBehind([&] {
      std::string output;
      (void)System(command, &output);
    });
    LeavesNothingBehind([&] {
      int out = -1, err = -1;
      (void)SystemNowait(command, &out, &err);
      for (const int fd : {out, err}) (void)close(fd);
    });
  }
  (void)testing::internal::GetCapturedStderr();
}

TEST(SystemAndNowait, PassOnNoDescriptorFrom3To1023) {
  EXPECT_TRUE(PassesInChild([] {
    OpenDescriptors();
    const std::string list = "sh -c \"cd /proc/$$/fd; ls -dm 0 3 900 1023 1024 1099 2>/dev/null\"";
    int out = -1;
    EXPECT_EQ(RunProgram(list).output, "0, 1024, 1099\n");
    EXPECT_GT(SystemNowait(list, &out), 0);
    EXPECT_EQ(ReadAll(out), "0, 1024, 1099\n");
  }));
}

// The error goes to the descriptor, whatever the client has done to its streams. The child does
// not write the text that waits in them.
TEST(SystemAndNowait, LeaveTheClientsStreamsAlone) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "the sanitizer flushes every stream in _exit()";
#endif
  testing::internal::CaptureStderr();
  EXPECT_TRUE(PassesInChild([] {
    std::cerr.rdbuf(std::cout.rdbuf());
    static char buffer[BUFSIZ];
    (void)std::setvbuf(stderr, buffer, _IOFBF, sizeof buffer);
    (void)std::fputs("text of the client", stderr);
    std::string output;
    EXPECT_EQ(System("/no/such/program", &output), -2);
    EXPECT_EQ(output, "");
    EXPECT_EQ(SystemNowait("/no/such/program"), -2);
  }));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), kMissing + "text of the client");
}

// For the thread sanitizer, and for a lock that one thread holds while another one forks.
TEST(SystemAndNowait, RunBesideThreads) {
  std::atomic<bool> done{false};
  std::vector<std::thread> threads;
  const auto repeat = [&](auto work) {
    threads.emplace_back([&done, work] {
      while (!done) work();
    });
  };
  for (const char letter : {'a', 'b'}) {
    repeat([text = std::string(50, letter)] {
      EXPECT_EQ(Transcode("UTF-8", "ISO-8859-1", text), text);
      EXPECT_EQ(UnlinkOrTruncate(GenerateTempFile(text, nullptr).c_str()), 0);
    });
  }
// A client that calls setlocale() races by itself. The address sanitizer locks streams over a fork.
#if !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)
  for (const char* locale : {"C", "C.UTF-8"}) repeat([=] { std::setlocale(LC_ALL, locale); });
  repeat([] { std::cerr << "" << std::flush; });
#endif
  int err = -1;
  for (int i = 0; i < 100; ++i) EXPECT_EQ(SystemNowait("no-such-program", nullptr, &err), -2);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(System("true"), 0);
  done = true;
  for (std::thread& thread : threads) thread.join();
  std::setlocale(LC_ALL, "C");
}

TEST(CheckFileExist, FollowsLinks) {
  const TempDir top;
  std::filesystem::create_symlink("/no/such", top.path + "/dangling");
  EXPECT_TRUE(CheckFileExist(top.path));
  EXPECT_TRUE(CheckFileExist("/dev/fd"));  // a link to a directory
  EXPECT_FALSE(CheckFileExist(top.path + "/dangling"));
}

// The real user and group count, and the bit of the first class that they belong to.
TEST(CheckFileExecutable, ReadsOneBit) {
  const TempDir directory;
  EXPECT_FALSE(CheckFileExecutable("/no/such"));
  EXPECT_TRUE(CheckFileExecutable(directory.path));
  EXPECT_EQ(chmod(directory.path.c_str(), 0677), 0);
  EXPECT_FALSE(CheckFileExecutable(directory.path));
  if (getuid() != 0) GTEST_SKIP() << "only the superuser may give files away";
  const struct {
    uid_t owner;
    gid_t group;
    mode_t mode;
    bool executable;
  } cases[] = {
      {.owner = 1001, .group = 0, .mode = 0100, .executable = true},
      {.owner = 1001, .group = 1002, .mode = 0677, .executable = false},
      {.owner = 0, .group = 1002, .mode = 0010, .executable = true},
      {.owner = 0, .group = 1002, .mode = 0767, .executable = false},
      {.owner = 0, .group = 0, .mode = 0001, .executable = true},
      {.owner = 0, .group = 0, .mode = 0776, .executable = false},
  };
  EXPECT_TRUE(PassesInChild([&] {
    EXPECT_EQ(setresgid(1002, 0, 0), 0);
    EXPECT_EQ(setresuid(1001, 0, 0), 0);
    for (const auto& c : cases) {
      EXPECT_EQ(chown(directory.path.c_str(), c.owner, c.group), 0);
      EXPECT_EQ(chmod(directory.path.c_str(), c.mode), 0);
      EXPECT_EQ(CheckFileExecutable(directory.path), c.executable) << std::oct << c.mode;
    }
  }));
}

TEST(Which, TakesEachEntryOfPathAsItIsWritten) {
  const TempDir top;
  const std::string makeFiles = "cd " + top.path +  // install makes an executable
                                " && mkdir -p a/sub b && touch a/none && ln -s nowhere a/tool"
                                " && install /dev/null a/sub/tool && install /dev/null b/tool";
  ASSERT_EQ(std::system(makeFiles.c_str()), 0);
  const struct {
    const char *path, *name, *found;
  } cases[] = {
      {"a:b", "tool", "b/tool"},  // a/tool is a dangling link
      {"a/sub:b", "tool", "a/sub/tool"},
      {"b/:a/", "sub/tool", "a//sub/tool"},
      {"a", "none", ""},       // not executable
      {":b", "bin", "/bin"},   // an empty entry is the root directory
      {"a/none:b", "", "b/"},  // the directory
      {"b", "/bin/sh", "/bin/sh"},
      {"b", "/etc/passwd", ""},
  };
  EXPECT_TRUE(PassesInChild([&] {
    std::filesystem::current_path(top.path);
    for (const auto& c : cases) {
      (void)setenv("PATH", c.path, 1);
      EXPECT_EQ(Which(c.name), c.found) << c.path;
    }
    (void)unsetenv("PATH");
    EXPECT_EQ(Which("sh"), "");
    EXPECT_EQ(System("true"), 0);  // along the default path of the system
  }));
}

}  // namespace

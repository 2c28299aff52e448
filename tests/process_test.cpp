// What fuzz/ and gxutil.session cannot show; hostile_test.cpp has the failures.

#include <clocale>
#include <cstring>

#include <sys/resource.h>

#include "harness/harness.h"

static struct sigaction seen = {};

TEST(System, HasTheDefaultActionForSigchldWhileItRuns) {
  (void)std::signal(SIGUSR1, [](int) { (void)sigaction(SIGCHLD, nullptr, &seen); });
  (void)std::signal(SIGCHLD, SIG_IGN);
  EXPECT_EQ(GXUtils::System("sh -c \"kill -USR1 $PPID\""), 0);
  EXPECT_EQ(seen.sa_handler, SIG_DFL);
  EXPECT_EQ(seen.sa_flags & (SA_RESTART | SA_NOCLDWAIT), SA_RESTART);
  (void)std::signal(SIGCHLD, SIG_DFL);
}

TEST(SystemNowait, WritesTheTextOfAnyErrorCutAtACharacter) {
  std::string umlauts;
  while (umlauts.size() < 300) umlauts += "ü";
  const std::string longest(255, 'x');
  std::setlocale(LC_CTYPE, "C.UTF-8");
  testing::internal::CaptureStderr();
  for (const std::string& text : {longest, longest + "x", umlauts}) {
    fakeErrorText = text;
    const Failing translated("strerror", 1, 0);
    EXPECT_EQ(GXUtils::SystemNowait("/no/such/program"), -2);
  }
  const Failing unusual("execvp", 1, ENOTUNIQ);
  EXPECT_EQ(GXUtils::SystemNowait("true"), -2);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), longest + "\n" + longest + "\n" +
                                                        umlauts.substr(0, 254) + "\n" +
                                                        std::strerror(ENOTUNIQ) + "\n");
  std::setlocale(LC_CTYPE, "C");
}

TEST(CheckFileExecutable, AsksTheFirstClassThatTheRealIdsBelongTo) {
  if (getuid() != 0) GTEST_SKIP() << "only the superuser can give files away";
  constexpr unsigned kUser = 1001, kGroup = 1002;
  const struct {
    unsigned mode, owner, group;
    bool executable;
  } cases[] = {{0100, kUser, 0, true},  {0644, kUser, kGroup, false}, {0077, kUser, kGroup, false},
               {0010, 0, kGroup, true}, {0707, 0, kGroup, false},     {0701, 0, 0, true},
               {0776, 0, 0, false},     {0100, 0, 0, false}};
  const TempDir file;
  EXPECT_TRUE(PassesInChild([&] {
    ASSERT_EQ(setresgid(kGroup, 0, 0) + setresuid(kUser, 0, 0), 0);
    for (const auto& c : cases) {
      ASSERT_EQ(chown(file.path.c_str(), c.owner, c.group) + chmod(file.path.c_str(), c.mode), 0);
      EXPECT_EQ(GXUtils::CheckFileExecutable(file.path), c.executable) << c.mode << " " << c.owner;
    }
  }));
}

TEST(CloseAllFds, ClosesExactlyItsRange) {
  const struct {
    int first, keep;
  } cases[] = {{100, 200},  {100, 0}, {100, 100}, {100, 1023},
               {100, 1024}, {-5, -7}, {1023, 3},  {1024, 2000}};
  for (const auto& c : cases) {
    for (const int refused : {0, 1}) {
      EXPECT_TRUE(PassesInChild([&] {
        rlimit limit{};
        ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
        limit.rlim_cur = 2048;
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
        for (int fd = 0; fd < 1100; ++fd) (void)dup2(STDERR_FILENO, fd);
        const Failing fault[] = {{"syscall", refused, ENOSYS}, {"syscall", 2 * refused, EPERM}};
        GXUtils::CloseAllFds(c.first, c.keep);
        for (int fd = 0; fd < 1100; ++fd) {
          EXPECT_EQ(fcntl(fd, F_GETFD) >= 0, fd < c.first || fd == c.keep || fd > 1023) << fd;
        }
      })) << c.first
          << ", " << c.keep << ", refused " << refused;
    }
  }
}

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "harness/faults.h"
#include "harness/leakcheck.h"
#include "harness/tempdir.h"
#include "internal/descriptor.h"
#include "support/osx_show_in_file_manager.h"

using namespace std::string_literals;

namespace {

const std::string kName = "a-z_A.Z~09@[`{: ,'\"%41\\\nü\xFF";
const std::string kEscapedName = "a-z_A.Z~09%40%5B%60%7B%3A%20%2C%27%22%2541%5C%0A%C3%BC%FF";

const std::string kAsk =
    "dbus-send --session --print-reply --reply-timeout=5000 --dest=org.freedesktop.FileManager1 "
    "/org/freedesktop/FileManager1 org.freedesktop.FileManager1.ShowItems array:string:file://";

// Replaces the environment by what a case of desktop/cases says.
void SetEnvironment(std::istream& words) {
  (void)clearenv();
  (void)setenv("SESSION", std::to_string(getsid(0)).c_str(), 1);
  for (std::string word; words >> word && word != "|";) {
    const std::size_t end = word.find('=');
    (void)setenv(word.substr(0, end).c_str(), &word[end + 1], 1);
  }
  std::string does;
  (void)std::getline(words, does);
  (void)setenv("DOES", does.c_str(), 1);
}

// Shows `path` as a case says; `calls` is what the programs write to.
void Show(const std::string& line, const std::string& path, const std::string& uri,
          const std::string& folder, std::FILE* calls) {
  std::istringstream words(line);
  int status = 0;
  int runs = 0;
  std::string programs;
  std::string call;
  words >> status >> programs >> call >> runs;
  SetEnvironment(words);
  for (int nth = 1; nth <= runs; ++nth) {
    SCOPED_TRACE(testing::Message() << line << " " << nth << " " << path);
    const LeakCheck leaks;
    const Failing fault(call.c_str(), nth, EINTR);
    EXPECT_EQ(osxShowInFileManager(path), status);
    for (const char program : programs) {
      if (program == '-') continue;
      char called[1000] = "";  // not through a stream: some wait for more than a line
      EXPECT_EQ(std::fgets(called, sizeof called, calls), called);
      EXPECT_EQ(called, (program == 's' ? kAsk + uri + " string:" : "xdg-open " + folder) + "\n");
    }
  }
}

void ReapOne(int) {
  const int error = errno;
  (void)waitpid(-1, nullptr, WNOHANG);
  errno = error;
}

// Whatever the client does about signals; SIGCHLD in one of three ways.
void TakeSignals(int way) {
  (void)std::signal(SIGCHLD, way == 0 ? SIG_DFL : way == 1 ? SIG_IGN : ReapOne);
  (void)std::signal(SIGALRM, SIG_IGN);
  sigset_t alarm;
  sigemptyset(&alarm);
  sigaddset(&alarm, SIGALRM);
  (void)sigprocmask(SIG_BLOCK, &alarm, nullptr);
}

TEST(ShowInFileManager, TakesWhatTheDesktopHas) {
  const TempDir directory;
  const std::string top = directory.Path();
  ASSERT_EQ(std::system(("cd " + top + " && " DESKTOP "/make").c_str()), 0);
  EXPECT_EQ(mknod((top + "/u/bus").c_str(), S_IFSOCK | 0600, 0), 0);
  std::ofstream(top + "/" + kName) << "";
  std::FILE* calls = std::fopen((top + "/calls").c_str(), "r+");
  const GXSupport::UniqueFd inherited(dup2(STDERR_FILENO, 900));
  // Whichever standard descriptors the client has closed.
  for (int closed = 0; closed < 8; ++closed) {
    EXPECT_TRUE(PassesInChild([&] {
      std::ifstream cases(DESKTOP "/cases");
      for (int fd = 0; fd < 3; ++fd) (void)((closed >> fd & 1) != 0 && close(fd));
      TakeSignals(closed % 3);
      EXPECT_EQ(chdir(top.c_str()), 0);
      EXPECT_TRUE(cases.is_open());
      for (std::string line; std::getline(cases, line);) {
        if (line.empty() || line[0] == '#') continue;
        Show(line, kName, directory.Path(kEscapedName), top, calls);
      }
      const std::string both = "0 sx - 1 PATH=sx DBUS_SESSION_BUS_ADDRESS=x: DISPLAY=:0 | refuse";
      Show(both, top + "/u/bus", top + "/u/bus", top + "/u", calls);
      Show(both, top + "/l/such\0x"s, top + "/l/such", top + "/l", calls);
      Show(both, "l//", top + "/l//", top, calls);
      Show(both, "/", "/", "/", calls);
      Show("1 - - 1 PATH=sx DISPLAY=:0 |", "missing", "", "", calls);
      Show("1 - - 1 PATH=sx DISPLAY=:0 |", "", "", "", calls);
    })) << closed;
  }
  (void)std::fclose(calls);
}

TEST(ShowInFileManager, ReachesAFileManager) {
  const TempDir directory;
  std::FILE* service = popen(DESKTOP "/file-manager", "r");
  char line[1000] = "";
  const bool there = std::fgets(line, sizeof line, service) != nullptr;
  std::istringstream environment("PATH=/usr/bin:/bin DBUS_SESSION_BUS_ADDRESS="s + line);
  SetEnvironment(environment);
  for (const std::string end : {"", "mute"}) {
    if (!there) break;
    std::ofstream(directory.Path(kName + end)) << "";
    EXPECT_EQ(osxShowInFileManager(directory.Path(kName + end)), end.empty() ? 0 : 3);
    EXPECT_NE(std::fgets(line, sizeof line, service), nullptr);
    EXPECT_EQ(line, "(['file://" + directory.Path(kEscapedName + end) + "'], '')\n");
  }
  pclose(service);
  if (!there) GTEST_SKIP() << "needs dbus-run-session, python3 and gi";
}

}  // namespace

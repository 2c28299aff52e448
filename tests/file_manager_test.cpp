// Showing a file on a desktop whose programs are stand-ins, desktop/program.

#include "harness/run.h"
#include "harness/temp_dir.h"
#include "support/osx_show_in_file_manager.h"

namespace {

const std::string kName = "a-z_A.Z~09@[`{: ,'\"%41\\\nü\xFF";
const std::string kEscapedName = "a-z_A.Z~09%40%5B%60%7B%3A%20%2C%27%22%2541%5C%0A%C3%BC%FF";
const std::string kAsk =
    "dbus-send --session --print-reply --reply-timeout=5000 --dest=org.freedesktop.FileManager1 "
    "/org/freedesktop/FileManager1 org.freedesktop.FileManager1.ShowItems array:string:file://";

constexpr char kAnswers[] = "echo method return time=0";
constexpr char kRefuses[] = "echo Error org.freedesktop.DBus.Error.ServiceUnknown: x >&2; exit 1";

void Set(const char* variable, const std::string& value) {
  (void)setenv(variable, value.c_str(), 1);
}

// A directory with the item and with search paths: "both" has both programs, "opener" xdg-open,
// "none" none.
class ShowInFileManager : public testing::Test {
 protected:
  ShowInFileManager() {
    (void)clearenv();
    std::filesystem::current_path(top_.path);
    (void)mknod(kName.c_str(), S_IFREG | 0600, 0);
    Set("DESKTOP", DESKTOP);
    (void)!std::system(
        "mkdir both opener none && mkfifo calls && ln -s /no/such link && "
        "for program in both/dbus-send both/xdg-open opener/xdg-open; do "
        "ln -s $DESKTOP/program $program; done");
    calls_ = open("calls", O_RDWR | O_CLOEXEC);
    Set("PATH", "both");
    Set("SESSION", std::to_string(getsid(0)));
    Set("DBUS_SESSION_BUS_ADDRESS", "x:");
    Set("DISPLAY", ":0");
  }
  ~ShowInFileManager() override { (void)close(calls_); }

  // The next line in the pipe "calls"; waits for it.
  std::string NextCall() {
    std::string line;
    char byte = 0;
    while (read(calls_, &byte, 1) == 1 && byte != '\n') line += byte;
    return line;
  }

  const TempDir top_;
  const std::string ask_ = kAsk + top_.path + "/" + kEscapedName + " string:";
  int calls_ = -1;
};

TEST_F(ShowInFileManager, AsksTheFileManager) {
  const std::pair<std::string, int> answers[] = {
      {kAnswers, 0},
      {"printf %0100000d 0 >&2; echo >&2; printf 'method return time=0'", 0},
      {"echo Error org.freedesktop.DBus.Error.NoReply: x >&2; exit 1", 3},
      {"echo Error org.freedesktop.DBus.Error.Timeout: x >&2; exit 1", 3},
      {"echo x >&2; echo Error org.freedesktop.DBus.Error.TimedOut: x >&2; exit 1", 3},
  };
  for (const auto& [answer, status] : answers) {
    Set("DBUS_SEND", answer);
    EXPECT_EQ(osxShowInFileManager(kName), status) << answer;
    EXPECT_EQ(NextCall(), ask_);
  }
}

TEST_F(ShowInFileManager, OpensTheDirectoryIfTheFileManagerDoesNotShowTheItem) {
  for (const char* answer :
       {kRefuses, "exit 1", "echo a: Error org.freedesktop.DBus.Error.NoReply:"}) {
    Set("DBUS_SEND", answer);
    EXPECT_EQ(osxShowInFileManager(kName), 0) << answer;
    EXPECT_EQ(NextCall(), ask_);
    EXPECT_EQ(NextCall(), "xdg-open " + top_.path);
  }
}

TEST_F(ShowInFileManager, OpensTheDirectoryOfTheItem) {
  Set("PATH", "opener");
  const std::pair<std::string, std::string> items[] = {
      {"link", top_.path}, {"none//", top_.path}, {"both/xdg-open", top_.path + "/both"},
      {"..", "/"},         {"/tmp", "/"},         {"/", "/"}};
  for (const auto& [item, directory] : items) {
    EXPECT_EQ(osxShowInFileManager(item), 0) << item;
    EXPECT_EQ(NextCall(), "xdg-open " + directory);
  }
}

TEST_F(ShowInFileManager, DoesNotWaitForXdgOpen) {
  Set("PATH", "opener");
  Set("XDG_OPEN", "read -r x <gate; echo done >calls");
  ASSERT_EQ(mkfifo("gate", 0600), 0);
  EXPECT_EQ(osxShowInFileManager(kName), 0);
  EXPECT_EQ(std::system("PATH=/bin; echo >gate"), 0);
  EXPECT_EQ(NextCall(), "xdg-open " + top_.path);
  EXPECT_EQ(NextCall(), "done");
}

TEST_F(ShowInFileManager, AsksNobodyWithoutABus) {
  Set("DBUS_SEND", kAnswers);
  ASSERT_EQ(mknod("none/bus", S_IFSOCK | 0600, 0), 0);
  std::filesystem::create_symlink("../none/bus", "both/bus");
  const struct {
    const char *address, *runtimeDirectory;
    bool asked;
  } buses[] = {{"x:", "opener", true}, {"", "none", true}, {"", "both", false}, {"", "", false}};
  for (const auto& bus : buses) {
    Set("DBUS_SESSION_BUS_ADDRESS", bus.address);
    Set("XDG_RUNTIME_DIR", bus.runtimeDirectory);
    EXPECT_EQ(osxShowInFileManager(kName), 0);
    EXPECT_EQ(NextCall(), bus.asked ? ask_ : "xdg-open " + top_.path);
  }
}

TEST_F(ShowInFileManager, ReportsThatItCannotShowTheItem) {
  EXPECT_EQ(osxShowInFileManager("missing"), 1);
  EXPECT_EQ(osxShowInFileManager(""), 1);
  Set("PATH", "opener");
  (void)unsetenv("DISPLAY");
  EXPECT_EQ(osxShowInFileManager(kName), 2);
  Set("WAYLAND_DISPLAY", "wayland-0");
  EXPECT_EQ(osxShowInFileManager(kName), 0);
  Set("PATH", "none");
  EXPECT_EQ(osxShowInFileManager(kName), 2);
}

TEST_F(ShowInFileManager, EndsAProgramThatDoesNotAnswer) {
  Set("DBUS_SEND", "exec 9>lives; echo waiting; exec /bin/sleep 1000");
  ASSERT_EQ(mkfifo("lives", 0600), 0);
  const int lives = open("lives", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  EXPECT_EQ(osxShowInFileManager(kName), 3);
  (void)fcntl(lives, F_SETFL, 0);
  EXPECT_EQ(ReadAll(lives), "");  // ends with the program
}

TEST_F(ShowInFileManager, WorksInEveryState) {
  Set("DBUS_SEND", kRefuses);
  void (*const handlers[])(int) = {SIG_DFL, SIG_IGN, ReapEveryChild};
  for (int closed = 0; closed < 8; ++closed) {
    EXPECT_TRUE(PassesInChild([&] {
      (void)dup2(STDERR_FILENO, 900);
      CloseStandard(closed);
      (void)std::signal(SIGCHLD, handlers[closed % 3]);
      sigset_t others;
      sigfillset(&others);
      sigdelset(&others, SIGCHLD);
      (void)sigprocmask(SIG_BLOCK, &others, nullptr);
      const LeakCheck leaks;
      EXPECT_EQ(osxShowInFileManager(kName), 0);
      EXPECT_EQ(NextCall(), ask_);
      EXPECT_EQ(NextCall(), "xdg-open " + top_.path);
    })) << closed;
  }
}

TEST_F(ShowInFileManager, LeavesNothingBehind) {
  std::filesystem::create_symlink("/bin/echo", "none/dbus-send");
  std::filesystem::create_symlink("/bin/echo", "none/xdg-open");
  Set("PATH", "none");
  LeavesNothingBehind([] { (void)osxShowInFileManager(kName); });
}

}  // namespace

// Showing a file on a desktop whose programs are stand-ins, desktop/program.

#include "harness/run.h"
#include "harness/temp_dir.h"
#include "support/osx_show_in_file_manager.h"

using namespace std::string_literals;

// A name with the neighbours of the letters and digits, which a URI must escape.
const std::string kName = "a-z_A.Z~09@[`{: ,'\"%41\\\nü\xFF";
const std::string kEscapedName = "a-z_A.Z~09%40%5B%60%7B%3A%20%2C%27%22%2541%5C%0A%C3%BC%FF";
const std::string kAsk =
    "dbus-send --session --print-reply --reply-timeout=5000 --dest=org.freedesktop.FileManager1 "
    "/org/freedesktop/FileManager1 org.freedesktop.FileManager1.ShowItems array:string:file://";

constexpr char kRefuses[] = "echo Error org.freedesktop.DBus.Error.ServiceUnknown: x >&2; exit 1";

void Set(const char* variable, const std::string& value) {
  (void)setenv(variable, value.c_str(), 1);
}

// A directory with the item and with search paths: "both" has both programs, "opener" xdg-open,
// "none" none.
class ShowInFileManager : public testing::Test {
 protected:
  ShowInFileManager() {
    // Without PATH, the shell searches the directories of the system.
    (void)clearenv();
    std::filesystem::current_path(top_.path);
    (void)mknod(kName.c_str(), S_IFREG | 0600, 0);
    // The path of desktop/program.
    Set("PROGRAM", STAND_IN);
    (void)!std::system(
        "mkdir both opener none; mkfifo calls gate; ln -s /no/such link;"
        "for name in both/dbus-send both/xdg-open opener/xdg-open;"
        "do ln -s \"$PROGRAM\" $name; done");
    calls_ = open("calls", O_RDWR | O_CLOEXEC);
    Set("PATH", "both");
    Set("SESSION", std::to_string(getsid(0)));
    Set("DBUS_SESSION_BUS_ADDRESS", "x:");
    Set("DISPLAY", ":0");
  }
  ~ShowInFileManager() override { (void)close(calls_); }

  // Waits for the next line in the pipe.
  std::string NextCall() const {
    std::string line;
    for (char byte = 0; read(calls_, &byte, 1) == 1 && byte != '\n';) line += byte;
    return line;
  }

  const TempDir top_;
  const std::string ask_ = kAsk + top_.path + "/" + kEscapedName + " string:";
  const std::string open_ = "xdg-open " + top_.path;
  int calls_ = -1;
};

TEST_F(ShowInFileManager, AsksTheFileManager) {
  // A long line before the answer, which has no newline.
  Set("DBUS_SEND", "printf %0100000d 0 >&2; echo >&2; printf 'method return time=0'");
  EXPECT_EQ(osxShowInFileManager(kName), 0);
  EXPECT_EQ(NextCall(), ask_);
  for (const char* error : {"NoReply", "Timeout", "TimedOut"}) {
    Set("DBUS_SEND", "echo Error org.freedesktop.DBus.Error."s + error + ": x >&2; exit 1");
    EXPECT_EQ(osxShowInFileManager(kName), 3) << error;
    EXPECT_EQ(NextCall(), ask_);
  }
}

TEST_F(ShowInFileManager, OpensTheDirectoryIfTheFileManagerDoesNotShowTheItem) {
  // The last one does not count, because it does not begin its line.
  for (const char* answer : {kRefuses, "exit 1", "echo a: method return time=0"}) {
    Set("DBUS_SEND", answer);
    EXPECT_EQ(osxShowInFileManager(kName), 0) << answer;
    EXPECT_EQ(NextCall(), ask_);
    EXPECT_EQ(NextCall(), open_);
  }
}

TEST_F(ShowInFileManager, OpensTheDirectoryOfTheItem) {
  Set("PATH", "opener");
  const auto directory = [this](const char* item) {
    EXPECT_EQ(osxShowInFileManager(item), 0);
    return NextCall();
  };
  EXPECT_EQ(directory("link"), open_);
  EXPECT_EQ(directory("none//"), open_);
  // The working directory is in /tmp.
  EXPECT_EQ(directory(".."), "xdg-open /");
  EXPECT_EQ(directory("/"), "xdg-open /");
}

TEST_F(ShowInFileManager, DoesNotWaitForXdgOpen) {
  Set("PATH", "opener");
  Set("XDG_OPEN", "read -r x <gate; echo done >calls");
  EXPECT_EQ(osxShowInFileManager(kName), 0);
  EXPECT_EQ(std::system("echo >gate"), 0);
  EXPECT_EQ(NextCall(), open_);
  EXPECT_EQ(NextCall(), "done");
}

// The bus is a socket in the runtime directory if no variable names it. A link to one does not
// count, as for dbus-send.
TEST_F(ShowInFileManager, AsksOnlyWithABus) {
  Set("DBUS_SEND", "echo method return time=0");
  Set("DBUS_SESSION_BUS_ADDRESS", "");
  (void)mknod("none/bus", S_IFSOCK | 0600, 0);
  std::filesystem::create_symlink("../none/bus", "both/bus");
  for (const char* runtimeDirectory : {"none", "both", "opener", ""}) {
    Set("XDG_RUNTIME_DIR", runtimeDirectory);
    EXPECT_EQ(osxShowInFileManager(kName), 0);
    EXPECT_EQ(NextCall(), runtimeDirectory == "none"s ? ask_ : open_);
  }
}

TEST_F(ShowInFileManager, ReportsThatItCannotShowTheItem) {
  EXPECT_EQ(osxShowInFileManager("missing"), 1);
  EXPECT_EQ(osxShowInFileManager(""), 1);
  Set("PATH", "none");
  EXPECT_EQ(osxShowInFileManager(kName), 2);
  Set("PATH", "opener");
  (void)unsetenv("DISPLAY");
  EXPECT_EQ(osxShowInFileManager(kName), 2);
  Set("WAYLAND_DISPLAY", "wayland-0");
  EXPECT_EQ(osxShowInFileManager(kName), 0);
  EXPECT_EQ(NextCall(), open_);
  const Armed noProcess({.call = Call::kFork, .nth = kEachTime});
  EXPECT_EQ(osxShowInFileManager(kName), 2);
}

// Takes 11 seconds.
TEST_F(ShowInFileManager, EndsAProgramThatDoesNotAnswer) {
  IgnoreAlarm();
  Set("DBUS_SEND", "exec 9>gate; echo asked >&9; exec /bin/sleep 1000");
  const int lives = open("gate", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  EXPECT_EQ(osxShowInFileManager(kName), 3);
  (void)fcntl(lives, F_SETFL, 0);
  // The pipe ends with the program.
  EXPECT_EQ(ReadAll(lives), "asked\n");
}

TEST_F(ShowInFileManager, WorksInEveryState) {
  Set("DBUS_SEND", kRefuses);
  // desktop/program looks for a descriptor that it should not have.
  EXPECT_EQ(dup2(STDERR_FILENO, 900), 900);
  PassesInEveryState([this] {
    EXPECT_EQ(osxShowInFileManager(kName), 0);
    EXPECT_EQ(NextCall(), ask_);
    EXPECT_EQ(NextCall(), open_);
  });
}

TEST_F(ShowInFileManager, LeavesNothingBehind) {
  // The stand-in would fill the pipe.
  std::filesystem::create_symlink("/bin/echo", "none/dbus-send");
  std::filesystem::create_symlink("/bin/echo", "none/xdg-open");
  Set("PATH", "none");
  LeavesNothingBehind([] { (void)osxShowInFileManager(kName); });
}
